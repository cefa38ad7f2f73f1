// CPty: a pseudo-terminal for a test: the port to open by its path, and the device at the other
// end. One thread at a time in each direction. No wait is longer than 20 s, and then fails the
// test.
#pragma once

#include <string>
#include <string_view>

class CPty {
  public:
    CPty();
    ~CPty() { Unplug(); }
    CPty(const CPty&) = delete;
    CPty& operator=(const CPty&) = delete;

    const char* Path() const { return m_path.c_str(); }

    // The device says something; blocks until the port's side has taken it.
    void Send(std::string_view bytes);

    // What the device has received: at least one byte, up to that many; empty on failure.
    std::string ReceiveSome(std::size_t most);
    // Exactly that many bytes.
    std::string Receive(std::size_t count);

    // The port's line settings, as its driver has them: the baud rate, RTS/CTS flow control, and
    // XON/XOFF (2 in both directions, 1 in one).
    unsigned Speed() const;
    bool HasHandshake() const;
    int XonXoffDirections() const;

    // The device is gone.
    void Unplug();

  private:
    bool WaitFor(short events) const;
    struct termios2 Settings() const;

    int m_device = -1;
    std::string m_path;
};
