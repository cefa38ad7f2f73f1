// The value heap: storage that scopes take and give back, and the texts that outlive a scope.
//
// Leaving a block or call gives back every byte taken while it ran. A text that somebody who stays
// still refers to is moved down first, to where the scope began, so that it lives on in the scope
// around it: the result of a call, and the text of a variable that keeps none of its own (a
// parameter, an INTEGER variable). Such a variable then has a home there, into which the next text
// is copied, so that a loop does not use up the heap.
#include "script/Script.h"

#include <algorithm>

DWORD CVScript::Alloc(DWORD count) {
    const DWORD start = m_Area.Alloc(count);
    if (start == 0)
        ReportError(ERR_TOKEN_OVERFLOW, {}, CScriptReport::NO_LINE);
    return start;
}

DWORD CVScript::AllocTextBuffer() {
    const DWORD start = m_Area.AllocRaw(CScriptArea::TEXT_BUFFER);
    if (start == 0)
        ReportError(ERR_TOKEN_OVERFLOW, {}, CScriptReport::NO_LINE);
    return start;
}

// The copy stands in the home, or without one in a buffer of the running block.
ScriptWord CVScript::CopyText(ScriptWord text, DWORD home) {
    const std::string_view characters = ReadText(text);
    if (HasError())
        return {};
    const DWORD buffer = home != 0 ? home : AllocTextBuffer();
    if (buffer == 0)
        return {};
    m_Area.StoreText(buffer, characters);
    return ScriptWord::Text(CScriptMemory::AreaLocation(buffer));
}

// Whether a text is given back while the variable stays: at the end of the first scope that began
// after the variable was made.
bool CVScript::DiesBefore(DWORD symbol, ScriptWord text) const {
    const auto scope = std::ranges::find_if(
        m_Scopes, [symbol](const Scope& begun) { return begun.symbols >= symbol; });
    return scope != m_Scopes.end() && CScriptMemory::AreaPosition(text.Location()) >= scope->heap;
}

void CVScript::KeepTexts(const Scope& scope, bool keepResult) {
    GatherKept(scope, keepResult);
    // In this order no text is overwritten before it has moved.
    std::ranges::sort(m_Moving, {}, &KeptText::source);
    DWORD target = scope.heap;
    DWORD moved = 0;
    for (const KeptText& text : m_Moving) {
        const bool isShared = text.source == moved;
        if (!isShared) {
            // Only a dead reference leads into another one's buffer; it stays dead.
            if (text.source < target)
                continue;
            moved = text.source;
            m_Area.MoveBuffer(target, moved);
            target += CScriptArea::TEXT_BUFFER;
        }
        const DWORD home = target - CScriptArea::TEXT_BUFFER;
        const ScriptWord word = ScriptWord::Text(CScriptMemory::AreaLocation(home));
        if (text.symbol == 0) {
            m_nResult = word;
        } else {
            m_Symbols[text.symbol].word = word;
            // Of several that refer to one text, one may write there.
            m_Symbols[text.symbol].home = isShared ? 0 : home;
        }
    }
    m_Area.SetHeap(target);
}

// Leaves in m_Kept, of the scope's entries, those that the scope around it has to look after.
void CVScript::GatherKept(const Scope& scope, bool keepResult) {
    m_Moving.clear();
    const auto isGivenBack = [&](const ScriptWord& word) {
        const DWORD position = CScriptMemory::AreaPosition(word.Location());
        return word.text && position >= scope.heap &&
               position + CScriptArea::TEXT_BUFFER <= m_Area.Heap();
    };
    std::size_t staying = scope.kept;
    for (std::size_t index = scope.kept; index < m_Kept.size(); ++index) {
        const DWORD symbol = m_Kept[index];
        if (symbol > scope.symbols)
            continue;
        // Given text twice in this scope, it is listed twice: to move it twice would share it.
        if (std::ranges::find(m_Moving, symbol, &KeptText::symbol) != m_Moving.end())
            continue;
        ScriptSymbol& entry = m_Symbols[symbol];
        if (isGivenBack(entry.word)) {
            m_Moving.push_back({CScriptMemory::AreaPosition(entry.word.Location()), symbol});
            m_Kept[staying++] = symbol;
        }
        if (entry.home >= scope.heap)
            entry.home = 0;
    }
    m_Kept.resize(staying);
    if (keepResult && isGivenBack(m_nResult))
        m_Moving.push_back({CScriptMemory::AreaPosition(m_nResult.Location()), 0});
}
