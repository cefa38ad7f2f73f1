// The values of a script: 32-bit words, and what is known of one while it is evaluated.
#pragma once

#include "platform/Types.h"

// A word and whether it refers to text. A text is a location in the engine's own address space
// (ScriptMemory.h), never an address of this process. The mark goes wherever the value goes: every
// value that refers to text has it, no integer does, whatever its bits.
struct ScriptWord {
    std::int32_t value = 0;
    bool text = false;

    constexpr DWORD Location() const { return static_cast<DWORD>(value); }

    static constexpr ScriptWord Integer(std::int32_t value) { return {value, false}; }
    static constexpr ScriptWord Text(DWORD location) {
        return {static_cast<std::int32_t>(location), true};
    }
};

// Size codes: what a value or a symbol is made of.
inline constexpr BYTE kSizeFunction = 0;
inline constexpr BYTE kSizeCharacter = 1;
inline constexpr BYTE kSizeWord = 4;

// Levels of reference that a declaration may have.
inline constexpr BYTE kMostReferences = 100;

// A value under evaluation: plain, or the location where the value is stored.
struct ScriptValue {
    DWORD floor;           // the symbols above this one are the local scope
    ScriptWord word;       // the value, or its location
    DWORD symbol = 0;      // the entry whose value word the location is; 0 for other locations
    BYTE size = kSizeWord; // size code
    BYTE depth = 0;        // levels of reference down to a plain character or word
    WORD elements = 0;     // of the array that the name is; 0: none
    bool isLocation = false;

    explicit ScriptValue(DWORD scopeFloor) : floor(scopeFloor) {}

    // A plain word: size code 4, depth 0.
    void BecomePlain(ScriptWord value) {
        word = value;
        size = kSizeWord;
        depth = 0;
        elements = 0;
        isLocation = false;
    }
    void BecomeInteger(std::int32_t value) { BecomePlain(ScriptWord::Integer(value)); }
};
