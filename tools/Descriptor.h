// Owns one file descriptor and closes it at the end. One thread at a time.
#pragma once

#include <unistd.h>

#include <utility>

namespace modemsim {

class CDescriptor {
  public:
    CDescriptor() = default;
    explicit CDescriptor(int descriptor) : m_hDescriptor(descriptor) {}
    CDescriptor(CDescriptor&& other) noexcept
        : m_hDescriptor(std::exchange(other.m_hDescriptor, -1)) {}
    CDescriptor& operator=(CDescriptor&& other) noexcept {
        if (this != &other) {
            Close();
            m_hDescriptor = std::exchange(other.m_hDescriptor, -1);
        }
        return *this;
    }
    ~CDescriptor() { Close(); }

    // -1 when there is none.
    int Get() const { return m_hDescriptor; }
    bool IsOpen() const { return m_hDescriptor >= 0; }

    void Close() {
        if (IsOpen())
            ::close(std::exchange(m_hDescriptor, -1));
    }

  private:
    int m_hDescriptor = -1;
};

} // namespace modemsim
