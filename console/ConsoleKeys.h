// Recognises the special keys in the bytes that a terminal sends: a table of sequences, held as a
// tree of bytes. Knows nothing of where bytes come from or when they came.
//
// What is not in the table is told in one of two ways: as the bytes that it is (Find), or as a
// keyboard's (FindTyped), on which nothing but a key begins with ESC. Used by one thread.
#pragma once

#include "platform/Types.h"

#include <cstdint>
#include <string_view>

namespace platform {

class CConsoleKeys {
  public:
    CConsoleKeys() { m_nodes[0] = {}; }

    enum class Kind {
        Byte, // a character
        Key,  // a special key
        Alt,  // an ESC that makes the character after it one with Alt
        More, // may become a key with more bytes
    };
    struct Match {
        Kind kind;
        std::uint8_t length; // bytes that it takes; 0 with More
        WORD virtualKey;     // with KEY
        DWORD controlKeys;   // with KEY: the modifiers held down
    };

    static constexpr std::uint8_t kEscape = 0x1B;

    // Adds a sequence or gives one another meaning. It begins with ESC and has 2 to kLongest bytes,
    // without a second ESC; others are left out: a key that sends a plain character is that
    // character. FALSE when it was left out or the table is full.
    bool Add(std::string_view sequence, WORD virtualKey, DWORD controlKeys);

    // What the bytes (at least one) begin with: a key of the table, or the byte. An ESC before a
    // key's sequence is Alt. Final: no more bytes come, so the answer is never More.
    Match Find(const std::uint8_t* bytes, std::size_t count, bool final) const;

    // The same for bytes of a keyboard: a control sequence that is not in the table is the key
    // kOther, also one that is cut off, by a byte that cannot be part of it, by the end of the
    // bytes or after kLongestOther of them. Every other character behind an ESC is one with Alt.
    Match FindTyped(const std::uint8_t* bytes, std::size_t count, bool final) const;

    static constexpr WORD kOther = 0xFC; // VK_NONAME: a key that is none of ours
    static constexpr std::size_t kLongest = 16;
    static constexpr std::size_t kLongestOther = 64; // twice what any keyboard is known to send

  private:
    struct Node {
        std::uint8_t byte;
        std::uint8_t virtualKey; // 0: no sequence ends here
        std::uint8_t controlKeys;
        std::uint16_t child; // 0: none
        std::uint16_t next;  // with the same beginning; 0: none
    };
    static constexpr std::uint16_t kMostNodes = 2048;

    std::uint16_t ChildOf(std::uint16_t node, std::uint8_t byte) const;
    std::uint16_t MakeChild(std::uint16_t node, std::uint8_t byte);
    Match Walk(const std::uint8_t* bytes, std::size_t count, bool final) const;
    static Match Other(const std::uint8_t* bytes, std::size_t count, bool final);

    Node m_nodes[kMostNodes]; // the first is the ESC that every sequence begins with
    std::uint16_t m_nNodes = 1;
};

} // namespace platform
