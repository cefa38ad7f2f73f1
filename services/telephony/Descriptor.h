// A file descriptor that closes itself. One thread uses an object.
#pragma once

#include <unistd.h>

#include <utility>

namespace telephonyservice {

class CDescriptor {
  public:
    CDescriptor() = default;
    explicit CDescriptor(int descriptor) : m_nDescriptor(descriptor) {}
    CDescriptor(CDescriptor&& other) noexcept
        : m_nDescriptor(std::exchange(other.m_nDescriptor, -1)) {}
    CDescriptor& operator=(CDescriptor&& other) noexcept {
        std::swap(m_nDescriptor, other.m_nDescriptor);
        return *this;
    }
    ~CDescriptor() {
        if (m_nDescriptor >= 0)
            close(m_nDescriptor);
    }

    // -1 when there is none.
    int Get() const { return m_nDescriptor; }
    explicit operator bool() const { return m_nDescriptor >= 0; }

  private:
    int m_nDescriptor = -1;
};

} // namespace telephonyservice
