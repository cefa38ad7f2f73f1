#include "platform/terminal/Utf8.h"

namespace platform {

CUtf8Decoder::Result CUtf8Decoder::Feed(std::uint8_t byte) {
    if (m_nMissing == 0)
        return Begin(byte);
    if (byte < m_lowest || byte > m_highest) {
        m_nMissing = 0;
        return Result::Broken;
    }
    m_bytes[m_nLength++] = static_cast<char>(byte);
    m_code = (m_code << 6) | (byte & 0x3F);
    m_lowest = 0x80;
    m_highest = 0xBF;
    return --m_nMissing == 0 ? Result::Character : Result::More;
}

// The bounds of the second byte keep overlong forms, surrogates and too large values out.
CUtf8Decoder::Result CUtf8Decoder::Begin(std::uint8_t byte) {
    if (byte < 0x80) {
        Open(byte, 0, 0, 0);
        m_code = byte;
        return Result::Character;
    }
    if (byte < 0xC2 || byte > 0xF4)
        return Result::Invalid;
    if (byte < 0xE0)
        return Open(byte, 1, 0x80, 0xBF);
    if (byte < 0xF0)
        return Open(byte, 2, byte == 0xE0 ? 0xA0 : 0x80, byte == 0xED ? 0x9F : 0xBF);
    return Open(byte, 3, byte == 0xF0 ? 0x90 : 0x80, byte == 0xF4 ? 0x8F : 0xBF);
}

CUtf8Decoder::Result CUtf8Decoder::Open(std::uint8_t byte, std::uint8_t missing,
                                        std::uint8_t lowest, std::uint8_t highest) {
    m_bytes[0] = static_cast<char>(byte);
    m_nLength = 1;
    m_nMissing = missing;
    m_lowest = lowest;
    m_highest = highest;
    m_code = byte & (0x3FU >> missing);
    return Result::More;
}

} // namespace platform
