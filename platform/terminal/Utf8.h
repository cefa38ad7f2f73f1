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
        More,      // the byte was taken, the character is not complete
        Character, // the byte completed the character of Code() and Bytes()
        Invalid,   // the byte cannot begin a character; it was taken
        Broken,    // the sequence before this byte, Bytes(), is broken; give the byte again
    };

    // Takes the next byte; after every result but More the decoder is idle again.
    Result Feed(std::uint8_t byte);

    // Takes the next byte and tells what it ends: a character goes to one function, as the decoder
    // that has it, each byte that belongs to none to the other one, in order.
    template <class OnCharacter, class OnByte>
    void Read(std::uint8_t byte, const OnCharacter& onCharacter, const OnByte& onByte) {
        Result result = Feed(byte);
        if (result == Result::Broken) {
            GiveUp(onByte);
            result = Feed(byte);
        }
        if (result == Result::Character)
            onCharacter(*this);
        else if (result == Result::Invalid)
            onByte(byte);
    }
    // Ends the sequence in progress; its bytes go to the function.
    template <class OnByte> void GiveUp(const OnByte& onByte) {
        m_nMissing = 0;
        for (const char byte : Bytes())
            onByte(static_cast<std::uint8_t>(byte));
    }

    // No sequence is in progress.
    bool IsIdle() const { return m_nMissing == 0; }
    // Forgets the sequence in progress.
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

// Reads a whole text in this way.
template <class OnCharacter, class OnByte>
void ReadUtf8(std::string_view text, const OnCharacter& onCharacter, const OnByte& onByte) {
    CUtf8Decoder decoder;
    for (const char byte : text)
        decoder.Read(static_cast<std::uint8_t>(byte), onCharacter, onByte);
    if (!decoder.IsIdle())
        decoder.GiveUp(onByte);
}

} // namespace platform
