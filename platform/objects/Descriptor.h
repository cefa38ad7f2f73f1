// A file descriptor that closes itself. One thread at a time uses an object.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace platform {

class CDescriptor {
  public:
    CDescriptor() = default;
    explicit CDescriptor(int descriptor) : m_descriptor(descriptor) {}
    CDescriptor(CDescriptor&& other) noexcept : m_descriptor(other.Detach()) {}
    CDescriptor& operator=(CDescriptor&& other) noexcept {
        if (this != &other)
            Reset(other.Detach());
        return *this;
    }
    ~CDescriptor() { Reset(); }

    // -1 when there is none.
    int Get() const { return m_descriptor; }
    explicit operator bool() const { return m_descriptor >= 0; }
    int Detach() { return std::exchange(m_descriptor, -1); }

    // Closes what is held and takes the new one over. Returns 0, or the errno value of the close.
    int Reset(int descriptor = -1) {
        const int former = std::exchange(m_descriptor, descriptor);
        // Linux gives the descriptor back even when a signal interrupts the close.
        return former < 0 || close(former) == 0 || errno == EINTR ? 0 : errno;
    }

  private:
    int m_descriptor = -1;
};

} // namespace platform
