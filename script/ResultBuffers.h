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
    static constexpr std::size_t BUFFERS = 6;
    static constexpr std::size_t RESPONSES = 3;
    static constexpr std::size_t BUFFER_SIZE = 260;

    using Buffer = std::array<char, BUFFER_SIZE>;

    Buffer& operator[](EResultBuffer buffer) { return m_buffers[static_cast<std::size_t>(buffer)]; }
    std::string& operator[](EResponse response) {
        return m_responses[static_cast<std::size_t>(response)];
    }

  private:
    std::array<Buffer, BUFFERS> m_buffers{};
    std::array<std::string, RESPONSES> m_responses;
};
