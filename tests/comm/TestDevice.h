// CTestDevice: the device at the other end of a port, which is a pseudo-terminal to be opened by
// its path. One thread at a time in each direction.
#pragma once

#include "tests/support/Pipe.h"

#include <poll.h>

constexpr DWORD PATIENCE = 60'000; // for what must come; no test waits that long unless it fails

// Bytes that show where they belong.
inline std::string MakePattern(std::size_t count) {
    std::string pattern(count, '\0');
    unsigned value = 1;
    for (char& byte : pattern) {
        value = value * 1103515245 + 12345;
        byte = static_cast<char>(value >> 16);
    }
    return pattern;
}

class CTestDevice {
  public:
    CTestDevice() : m_device(OpenMaster(m_path)) {}
    // One that is there, with the far end of its cable.
    CTestDevice(const char* path, const char* farEnd)
        : m_path(path), m_device(OpenFarEnd(farEnd)) {}

    int Get() const { return m_device.Get(); }
    const char* Path() const { return m_path.c_str(); }
    void Close() { m_device.Reset(); }

    void Say(const std::string& text) const {
        for (std::size_t said = 0; said < text.size();) {
            const ssize_t count = write(Get(), text.data() + said, text.size() - said);
            ASSERT_GT(count, 0);
            said += static_cast<std::size_t>(count);
        }
    }

    // At least one byte, up to that many; empty on failure.
    std::string HearSome(std::size_t most) const {
        std::string heard(most, '\0');
        pollfd polled = {Get(), POLLIN, 0};
        const bool isReady = poll(&polled, 1, static_cast<int>(PATIENCE)) == 1;
        const ssize_t count = isReady ? read(Get(), heard.data(), most) : 0;
        heard.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return heard;
    }

    // Exactly that many bytes, or what came before the failure.
    std::string Hear(std::size_t count) const {
        std::string heard;
        std::string some;
        while (heard.size() < count && !(some = HearSome(count - heard.size())).empty())
            heard += some;
        return heard;
    }

  private:
    std::string m_path;
    CDescriptor m_device;
};
