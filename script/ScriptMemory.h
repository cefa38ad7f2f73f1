// CScriptMemory: the one door to all memory that a script can reach.
//
// A location is 32 bits wide and means something to the engine only. This class knows where each
// kind of memory stands in that address space and refuses everything else, so that no script,
// however hostile, reads or writes outside of it:
//
//   the region       token stream (reading only) and value heap; also what lies above the heap's
//                    top, where a dead reference may still point
//   the symbols      the value words of live variables, as whole words only
//   the results      six buffers of the built-ins that return text
//   the responses    the last answer of SendCommand and of SendCommandGetString; reading only
//
// Owned by the engine; used from the script's thread.
#pragma once

#include "platform/Types.h"
#include "script/ResultBuffers.h"
#include "script/ScriptArea.h"
#include "script/ScriptValue.h"
#include "script/SymbolTable.h"

#include <string_view>

class CScriptMemory {
  public:
    CScriptMemory(CScriptArea& area, CSymbolTable& symbols, CResultBuffers& results)
        : m_area(area), m_symbols(symbols), m_results(results) {}

    // Where the token stream ends and the writable heap begins.
    void SetStreamEnd(DWORD position) { m_streamEnd = position; }

    static constexpr DWORD AreaLocation(DWORD position) { return AREA_BASE + position; }
    static constexpr DWORD SymbolLocation(DWORD symbol) {
        return SYMBOL_BASE + SYMBOL_STRIDE * symbol;
    }
    static constexpr DWORD ResultLocation(EResultBuffer buffer) {
        return RESULT_BASE + RESULT_STRIDE * static_cast<DWORD>(buffer);
    }
    static constexpr DWORD ResponseLocation(EResponse response) {
        return RESPONSE_BASE + RESPONSE_STRIDE * static_cast<DWORD>(response);
    }

    // The position in the region that a location means; 0 when it means something else.
    static constexpr DWORD AreaPosition(DWORD location) {
        const DWORD position = location - AREA_BASE;
        return position < CScriptArea::CAPACITY ? position : 0;
    }

    // Each is FALSE, and changes nothing, when the location leads outside of what may be read or
    // written so.
    bool LoadWord(DWORD location, ScriptWord& word) const;
    bool LoadCharacter(DWORD location, std::int32_t& character) const; // sign-extended
    bool StoreWord(DWORD location, ScriptWord word);
    bool StoreCharacter(DWORD location, BYTE character);

    // The variable whose value word a location is; 0: none.
    DWORD FindVariable(DWORD location) const;

    // The text at a location, up to its NUL or the end of the memory it stands in. It stays valid
    // until that memory is written to.
    bool ReadText(DWORD location, std::string_view& text) const;

    // Writes a text with its NUL, cut at 255 characters and at the end of the memory; it may
    // overlap what is written to.
    bool WriteText(DWORD location, std::string_view text);

  private:
    static constexpr DWORD AREA_BASE = 0x00010000;
    static constexpr DWORD SYMBOL_BASE = 0x00020000;
    static constexpr DWORD SYMBOL_STRIDE = 8;
    static constexpr DWORD RESULT_BASE = 0x00030000;
    static constexpr DWORD RESULT_STRIDE = 0x200;
    // Far apart: a response is bounded by the modem layer at a megabyte.
    static constexpr DWORD RESPONSE_BASE = 0x01000000;
    static constexpr DWORD RESPONSE_STRIDE = 0x01000000;

    // Bytes from a location to the end of its memory.
    struct Span {
        BYTE* bytes = nullptr;
        DWORD count = 0;
        bool isWritable = false;
    };
    Span Find(DWORD location) const;

    CScriptArea& m_area;
    CSymbolTable& m_symbols;
    CResultBuffers& m_results;
    DWORD m_streamEnd = CScriptArea::START;
};
