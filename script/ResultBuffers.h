// CResultBuffers: where the texts stand that built-in functions return.
//
// Owned by the engine, used from the script's thread. A text is valid until the same built-in is
// called again.
#pragma once

#include "platform/Types.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

// The built-ins with a buffer of their own.
enum class EResultBuffer : DWORD { Left, Right, Middle, Number, PhoneModel, PhoneManufacturer };

// Texts that the engine holds for the built-ins, of any length.
enum class EResponse : DWORD { SendCommand, SendCommandGetString, AccessPoint };

class CResultBuffers {
  public:
    static constexpr std::size_t kBuffers = 6;
    static constexpr std::size_t kResponses = 3;
    static constexpr std::size_t kBufferSize = 260;

    using Buffer = std::array<char, kBufferSize>;

    Buffer& operator[](EResultBuffer buffer) { return m_buffers[static_cast<std::size_t>(buffer)]; }
    std::string& operator[](EResponse response) {
        return m_responses[static_cast<std::size_t>(response)];
    }

  private:
    std::array<Buffer, kBuffers> m_buffers{};
    std::array<std::string, kResponses> m_responses;
};
