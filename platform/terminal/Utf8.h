// Reads UTF-8 byte by byte. A broken sequence is found where the standard's "maximal subpart" ends;
// overlong forms, surrogates and values beyond U+10FFFF are broken. Holds only the bytes of the
// sequence in progress; used by one thread.
#pragma once

#include <cstdint>
#include <string_view>

namespace platform {

class CUtf8Decoder {
  public:
    enum class Result {
        MORE,      // the byte was taken, the character is not complete
        CHARACTER, // the byte completed the character of Code() and Bytes()
        INVALID,   // the byte cannot begin a character; it was taken
        BROKEN,    // the sequence before this byte, Bytes(), is broken; give the byte again
    };

    // Takes the next byte; after every result but MORE the decoder is idle again.
    Result Feed(std::uint8_t byte);

    // No sequence is in progress.
    bool IsIdle() const { return m_nMissing == 0; }
    // Gives the sequence in progress up.
    void Drop() { m_nMissing = 0; }

    char32_t Code() const { return m_code; }
    std::string_view Bytes() const { return {m_bytes, m_nLength}; }

  private:
    Result Begin(std::uint8_t byte);
    Result Open(std::uint8_t byte, std::uint8_t missing, std::uint8_t lowest, std::uint8_t highest);

    char32_t m_code = 0;
    char m_bytes[4] = {};
    std::uint8_t m_nLength = 0;
    std::uint8_t m_nMissing = 0;
    std::uint8_t m_lowest = 0; // the bounds of the next byte
    std::uint8_t m_highest = 0;
};

// Reads a whole text: every character goes to one function, as the decoder that has it, every byte
// that belongs to none to the other one, in order.
template <class OnCharacter, class OnByte>
void ReadUtf8(std::string_view text, OnCharacter onCharacter, OnByte onByte) {
    CUtf8Decoder decoder;
    const auto giveUp = [&] {
        for (const char byte : decoder.Bytes())
            onByte(static_cast<std::uint8_t>(byte));
        decoder.Drop();
    };
    for (const char next : text) {
        const auto byte = static_cast<std::uint8_t>(next);
        CUtf8Decoder::Result result = decoder.Feed(byte);
        if (result == CUtf8Decoder::Result::BROKEN) {
            giveUp();
            result = decoder.Feed(byte);
        }
        if (result == CUtf8Decoder::Result::CHARACTER)
            onCharacter(decoder);
        else if (result == CUtf8Decoder::Result::INVALID)
            onByte(byte);
    }
    if (!decoder.IsIdle())
        giveUp();
}

} // namespace platform
