// An owned file descriptor: closed when it goes.
#pragma once

#include <unistd.h>
#include <utility>

class CDescriptor {
  public:
    CDescriptor() = default;
    explicit CDescriptor(int descriptor) : m_nDescriptor(descriptor) {}
    CDescriptor(CDescriptor&& other) noexcept : m_nDescriptor(other.Detach()) {}
    CDescriptor& operator=(CDescriptor&& other) noexcept {
        Reset(other.Detach());
        return *this;
    }
    ~CDescriptor() { Reset(); }

    int Get() const { return m_nDescriptor; }
    bool IsOpen() const { return m_nDescriptor >= 0; }
    int Detach() { return std::exchange(m_nDescriptor, -1); }
    void Reset(int descriptor = -1) {
        if (m_nDescriptor >= 0)
            close(m_nDescriptor);
        m_nDescriptor = descriptor;
    }

  private:
    int m_nDescriptor = -1;
};
