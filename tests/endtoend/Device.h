// A serial device, or a terminal, that the test plays: the master side of a pseudo-terminal, or the
// far end of a cable.
#pragma once

#include "tests/support/PseudoTerminal.h"
#include "tests/support/Pump.h"

class CDevice : public IPollable {
  public:
    // A device's line is raw.
    explicit CDevice(bool raw = true);
    // One that is there, with the far end of its cable, and what unplugs it.
    CDevice(const std::string& path, const std::string& farEnd, std::function<void()> unplug = {})
        : m_line(path, farEnd), m_unplug(std::move(unplug)) {}

    void Send(std::string_view bytes) { m_toSend += bytes; }
    bool IsAllSent() const { return m_toSend.empty(); }
    // Sends this text over and over, from now on.
    void SendEndlessly(std::string text) { m_endless = std::move(text); }
    std::size_t GetSentCount() const { return m_nSent; }

    // Sends back what it gets, and takes no more while that is held up.
    void SetEcho(bool echo) { m_pReceiver = echo ? this : nullptr; }
    // Sends there what it gets, and the reverse.
    void JoinTo(CDevice& other) {
        m_pReceiver = &other;
        other.m_pReceiver = this;
    }
    // Takes at most this many bytes, then sleeps a little; 0 takes none.
    void SetReadLimit(std::size_t limit) { m_nReadLimit = limit; }

    // Everything received and not yet taken by a test.
    std::string& GetReceived() { return m_received; }
    // Unplugs the device.
    void Vanish() {
        if (m_unplug)
            m_unplug();
        else
            m_line.CloseMaster();
    }

    CPseudoTerminal& GetLine() { return m_line; }
    const std::string& GetPath() const { return m_line.GetPath(); }

    int GetDescriptor() const override { return m_line.GetMaster(); }
    short GetEvents() const override;
    void OnReady(short events) override;

  protected:
    static constexpr std::size_t kNoLimit = 65536;

    virtual void OnReceived(const std::string&) {}

  private:
    CPseudoTerminal m_line;
    std::function<void()> m_unplug;
    std::string m_toSend;
    std::string m_endless;
    std::string m_received;
    std::size_t m_nSent = 0;
    std::size_t m_nReadLimit = kNoLimit;
    CDevice* m_pReceiver = nullptr;
};

// The device of a test: a pseudo-terminal, or in tests/vm a real one that the environment names.
CDevice MakeDevice();
