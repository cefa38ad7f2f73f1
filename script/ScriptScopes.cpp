// How texts are kept when a scope ends: those that outlive it are sorted by where they stand and
// moved down one after the other, so that none is overwritten before it has moved. The first who
// refers to a text, its owner if there is one, gets it for a home; others share it.
#include "script/ScriptScopes.h"

#include <algorithm>
#include <tuple>

DWORD CScriptScopes::Alloc(DWORD count) {
    const DWORD start = m_Area.Alloc(count);
    if (start == 0)
        ReportError(ERR_TOKEN_OVERFLOW, {}, CScriptReport::kNoLine);
    return start;
}

DWORD CScriptScopes::AllocTextBuffer() {
    const DWORD start = m_Area.AllocRaw(CScriptArea::kTextBuffer);
    if (start == 0)
        ReportError(ERR_TOKEN_OVERFLOW, {}, CScriptReport::kNoLine);
    return start;
}

// The place's home, a new one in the running scope if it has none; 0 after a report.
DWORD CScriptScopes::HomeFor(DWORD place) {
    DWORD home = m_Memory.HomeOf(place);
    if (home != 0)
        return home;
    home = AllocTextBuffer();
    if (home == 0)
        return 0;
    if (m_Memory.IsPlace(place)) {
        m_Memory.SetHome(place, home);
        m_Kept.push_back(place);
    } else {
        m_bTextStored = true;
    }
    return home;
}

ScriptWord CScriptScopes::CopyTextTo(DWORD place, ScriptWord text) {
    return CopyText(HomeFor(place), text);
}

// The text in the home; no text after a report.
ScriptWord CScriptScopes::CopyText(DWORD home, ScriptWord text) {
    const std::string_view characters = home == 0 ? std::string_view{} : ReadText(text);
    if (HasError())
        return {};
    m_Area.StoreText(home, characters);
    return ScriptWord::Text(CScriptMemory::AreaLocation(home));
}

ScriptWord CScriptScopes::TextFor(DWORD place, DWORD symbol, ScriptWord text, bool copies) {
    if (!copies && !DiesBefore(place, text))
        return Borrow(symbol, text);
    const DWORD home = symbol != 0 ? m_Symbols[symbol].home : 0;
    return CopyText(home != 0 ? home : HomeFor(place), text);
}

bool CScriptScopes::GiveElementRoom(DWORD location) {
    const DWORD element = CScriptMemory::ElementOf(location);
    const ScriptWord text = ScriptWord::Text(location);
    if (element != 0 && m_Memory.IsLiteral(m_Memory.Resolve(text)))
        m_Memory.StoreWord(element, CopyTextTo(element, text));
    return !HasError();
}

// What a place stores that refers to a text without a copy.
ScriptWord CScriptScopes::Borrow(DWORD symbol, ScriptWord text) {
    m_bTextStored = true;
    if (symbol != 0 && std::ranges::find(m_Borrowers, symbol) == m_Borrowers.end())
        m_Borrowers.push_back(symbol);
    return m_Memory.Resolve(text);
}

// Those that a call has bound end with it.
void CScriptScopes::DropBorrowers(std::size_t first, DWORD lastSymbol) {
    const auto bound = m_Borrowers.begin() + static_cast<std::ptrdiff_t>(first);
    m_Borrowers.erase(
        std::remove_if(bound, m_Borrowers.end(), [&](DWORD symbol) { return symbol > lastSymbol; }),
        m_Borrowers.end());
}

void CScriptScopes::LeaveToBorrowers(DWORD place) {
    const DWORD home = m_Memory.HomeOf(place);
    if (home == 0 && !LoadKept(place).text)
        return;
    const DWORD first = CScriptMemory::AreaLocation(home);
    const auto refers = [&](const ScriptWord& word) {
        return word.text && ((home != 0 && word.Location() - first < CScriptArea::kTextBuffer) ||
                             CScriptMemory::ElementOf(word.Location()) == place);
    };
    // Mostly of one text only, which they go on to share.
    ScriptWord text, copy;
    const auto leave = [&](ScriptWord& word, DWORD keeper) {
        const ScriptWord current = m_Memory.Resolve(word);
        if (!copy.text || current.value != text.value)
            copy = CopyText(AllocTextBuffer(), current);
        text = current;
        word = copy;
        m_Kept.push_back(keeper);
    };
    for (const DWORD symbol : m_Borrowers)
        if (CScriptMemory::SymbolLocation(symbol) != place && refers(m_Symbols[symbol].word))
            leave(m_Symbols[symbol].word, CScriptMemory::SymbolLocation(symbol));
    for (std::size_t index = 0; index < m_Arguments.size(); ++index)
        if (refers(m_Arguments[index]))
            leave(m_Arguments[index], ArgumentPlace(index));
}

// Whether a text is given back while the place stays: at the end of the first scope that began
// after the place was made.
bool CScriptScopes::DiesBefore(DWORD place, ScriptWord text) const {
    const DWORD symbol = m_Memory.FindVariable(place);
    const DWORD position = CScriptMemory::AreaPosition(place);
    if (symbol == 0 && !m_Memory.IsPlace(place))
        return false;
    const auto scope = std::ranges::find_if(m_Scopes, [&](const Scope& begun) {
        return symbol != 0 ? begun.symbols >= symbol : begun.heap > position;
    });
    const DWORD source = CScriptMemory::AreaPosition(m_Memory.Resolve(text).Location());
    return scope != m_Scopes.end() && source >= scope->heap;
}

void CScriptScopes::KeepTexts(const Scope& scope, bool keepsResult) {
    GatherKept(scope);
    if (keepsResult)
        GatherResult(scope);
    std::ranges::sort(m_Moving, {}, [](const KeptText& text) {
        return std::tuple(text.source, !text.isOwned, text.place);
    });
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
            target += CScriptArea::kTextBuffer;
        }
        // Of several that refer to one text, one may write there.
        const DWORD home = target - CScriptArea::kTextBuffer;
        StoreKept(text.place, ScriptWord::Text(CScriptMemory::AreaLocation(home)),
                  isShared ? 0 : home);
    }
    m_Area.SetHeap(target);
}

bool CScriptScopes::IsGivenBack(const ScriptWord& word, const Scope& scope) const {
    const DWORD position = CScriptMemory::AreaPosition(word.Location());
    return word.text && position >= scope.heap &&
           position + CScriptArea::kTextBuffer <= m_Area.Heap();
}

// Whether whoever referred to a text ends with the scope.
bool CScriptScopes::IsGone(DWORD place, const Scope& scope) const {
    if (place >= kArgumentBase)
        return place - kArgumentBase >= m_Arguments.size();
    if (const DWORD position = CScriptMemory::AreaPosition(place); position != 0)
        return position >= scope.heap;
    const DWORD symbol = m_Memory.FindVariable(place);
    return symbol == 0 || symbol > scope.symbols;
}

ScriptWord CScriptScopes::LoadKept(DWORD place) const {
    if (place >= kArgumentBase)
        return m_Arguments[place - kArgumentBase];
    ScriptWord word;
    m_Memory.LoadWord(place, word);
    return word;
}

void CScriptScopes::StoreKept(DWORD place, ScriptWord word, DWORD home) {
    if (place == kResultPlace) {
        m_nResult = word;
    } else if (place >= kArgumentBase) {
        m_Arguments[place - kArgumentBase] = word;
    } else {
        m_Memory.StoreWord(place, word);
        m_Memory.SetHome(place, home);
    }
}

// Leaves in m_Kept, of the scope's entries, those that the scope around it has to look after.
void CScriptScopes::GatherKept(const Scope& scope) {
    m_Moving.clear();
    std::size_t staying = scope.kept;
    for (std::size_t index = scope.kept; index < m_Kept.size(); ++index) {
        const DWORD place = m_Kept[index];
        if (IsGone(place, scope))
            continue;
        // Given text twice in this scope, it is listed twice: to move it twice would share it.
        if (std::ranges::find(m_Moving, place, &KeptText::place) != m_Moving.end())
            continue;
        const ScriptWord word = LoadKept(place);
        const DWORD home = m_Memory.HomeOf(place);
        if (IsGivenBack(word, scope)) {
            const DWORD source = CScriptMemory::AreaPosition(word.Location());
            m_Moving.push_back({source, place, source == home});
            m_Kept[staying++] = place;
        }
        if (home >= scope.heap)
            m_Memory.SetHome(place, 0);
    }
    m_Kept.resize(staying);
}

// The text of an element that ends here is told by what the element refers to.
void CScriptScopes::GatherResult(const Scope& scope) {
    if (IsGone(CScriptMemory::ElementOf(m_nResult.Location()), scope))
        m_nResult = m_Memory.Resolve(m_nResult);
    if (IsGivenBack(m_nResult, scope))
        m_Moving.push_back(
            {CScriptMemory::AreaPosition(m_nResult.Location()), kResultPlace, false});
}
