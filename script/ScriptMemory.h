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
//   the elements     the text of a STRING array's element, wherever it stands at the time: what
//   begins as
//                    a literal gets a buffer when it is written to
//
// A place is the location of a variable's value word or of an element of a STRING array. It may
// have a home: a text buffer of its own, in which it keeps the text it was given.
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
    void SetStreamEnd(DWORD position) { m_pStreamEnd = position; }

    static constexpr DWORD AreaLocation(DWORD position) { return kAreaBase + position; }
    static constexpr DWORD SymbolLocation(DWORD symbol) {
        return kSymbolBase + kSymbolStride * symbol;
    }
    static constexpr DWORD ResultLocation(EResultBuffer buffer) {
        return kResultBase + kResultStride * static_cast<DWORD>(buffer);
    }
    static constexpr DWORD ResponseLocation(EResponse response) {
        return kResponseBase + kResponseStride * static_cast<DWORD>(response);
    }

    // The position in the region that a location means; 0 when it means something else.
    static constexpr DWORD AreaPosition(DWORD location) {
        const DWORD position = location - kAreaBase;
        return position < CScriptArea::kCapacity ? position : 0;
    }

    // Each is FALSE, and changes nothing, when the location leads outside of what may be read or
    // written so.
    bool LoadWord(DWORD location, ScriptWord& word) const;
    bool LoadCharacter(DWORD location, std::int32_t& character) const; // sign-extended
    bool StoreWord(DWORD location, ScriptWord word);
    bool StoreCharacter(DWORD location, BYTE character);

    // The variable whose value word a location is; 0: none.
    DWORD FindVariable(DWORD location) const;

    bool IsPlace(DWORD location) const {
        return FindVariable(location) != 0 || FindElement(location) != 0;
    }
    // The position of a place's home; 0: it has none.
    DWORD HomeOf(DWORD place) const;
    void SetHome(DWORD place, DWORD home);

    // Whether a text stands in the token stream.
    bool IsLiteral(ScriptWord text) const {
        const DWORD position = AreaPosition(text.Location());
        return text.text && position >= CScriptArea::kStart && position < m_pStreamEnd;
    }
    // The text of no characters, a literal as well.
    ScriptWord EmptyText() const { return ScriptWord::Text(AreaLocation(m_pStreamEnd - 1)); }

    // A literal that was loaded from an array element is the element's text; all else stays.
    ScriptWord ToElementText(DWORD place, ScriptWord word) const {
        return IsLiteral(word) && FindElement(place) != 0 ? ElementText(place) : word;
    }
    ScriptWord ElementText(DWORD place) const {
        return ScriptWord::Text(kElementBase + AreaPosition(place));
    }
    // The element whose text a location is; 0: none.
    static constexpr DWORD ElementOf(DWORD location) {
        const DWORD position = location - kElementBase;
        return position < CScriptArea::kCapacity ? AreaLocation(position) : 0;
    }
    // Where the text stands now: of an element's text what the element refers to.
    ScriptWord Resolve(ScriptWord text) const {
        return ElementOf(text.Location()) == 0 ? text : ResolveElement(text);
    }

    // The text at a location, up to its NUL or the end of the memory it stands in. It stays valid
    // until that memory is written to.
    bool ReadText(DWORD location, std::string_view& text) const;

    // Writes a text with its NUL, cut at 255 characters and at the end of the memory; it may
    // overlap what is written to.
    bool WriteText(DWORD location, std::string_view text);

  private:
    static constexpr DWORD kAreaBase = 0x00010000;
    static constexpr DWORD kSymbolBase = 0x00020000;
    static constexpr DWORD kSymbolStride = 8;
    static constexpr DWORD kResultBase = 0x00030000;
    static constexpr DWORD kResultStride = 0x200;
    static constexpr DWORD kElementBase = 0x00040000;
    // Far apart: a response is bounded by the modem layer at a megabyte.
    static constexpr DWORD kResponseBase = 0x01000000;
    static constexpr DWORD kResponseStride = 0x01000000;

    // Bytes from a location to the end of its memory.
    struct Span {
        BYTE* bytes = nullptr;
        DWORD count = 0;
        bool isWritable = false;
    };
    Span Find(DWORD location) const {
        if (const DWORD position = AreaPosition(location); position >= CScriptArea::kStart)
            return {m_area.Bytes() + position, CScriptArea::kCapacity - position,
                    position >= m_pStreamEnd};
        return FindElsewhere(location);
    }
    // All but the region. Out of line: nearly all that a script reaches is there.
    [[gnu::noinline]] Span FindElsewhere(DWORD location) const;
    DWORD FindElement(DWORD location) const;
    ScriptWord ResolveElement(ScriptWord text) const;

    CScriptArea& m_area;
    CSymbolTable& m_symbols;
    CResultBuffers& m_results;
    DWORD m_pStreamEnd = CScriptArea::kStart;
};
