// The value heap: storage that scopes take and give back, and the texts that outlive a scope.
//
// Leaving a block or call gives back every byte taken while it ran. A text that somebody who stays
// still refers to is moved down first, to where the scope began, so that it lives on in the scope
// around it: the result of a call, and the text of a place that got its home there (an array
// element, a parameter, an INTEGER variable). The home goes with the text; what is assigned later
// is copied into it, so that a loop does not use up the heap.
//
// Others may refer to what a home holds: parameters that were given the variable, and what an
// expression under way has loaded before a call. Before another text is assigned they get a copy.
#include "script/Script.h"

#include <algorithm>
#include <tuple>

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

// The place's home, a new one in the running block if it has none; 0 after a report.
DWORD CVScript::HomeFor(DWORD place) {
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

ScriptWord CVScript::CopyTextTo(DWORD place, ScriptWord text) {
    return CopyText(HomeFor(place), text);
}

// The text in the home; no text after a report.
ScriptWord CVScript::CopyText(DWORD home, ScriptWord text) {
    const std::string_view characters = home == 0 ? std::string_view{} : ReadText(text);
    if (HasError())
        return {};
    m_Area.StoreText(home, characters);
    return ScriptWord::Text(CScriptMemory::AreaLocation(home));
}

// The text of an element that is a literal so far is about to be written to. False after a report.
bool CVScript::GiveElementRoom(DWORD location) {
    const DWORD element = CScriptMemory::ElementOf(location);
    const ScriptWord text = ScriptWord::Text(location);
    if (element != 0 && m_Memory.IsLiteral(m_Memory.Resolve(text)))
        m_Memory.StoreWord(element, CopyTextTo(element, text));
    return !HasError();
}

// What a place stores that refers to a text without a copy.
ScriptWord CVScript::Borrow(DWORD symbol, ScriptWord text) {
    m_bTextStored = true;
    if (symbol != 0 && std::ranges::find(m_Borrowers, symbol) == m_Borrowers.end())
        m_Borrowers.push_back(symbol);
    return m_Memory.Resolve(text);
}

// Those that a call has bound end with it.
void CVScript::DropBorrowers(std::size_t first, DWORD lastSymbol) {
    const auto bound = m_Borrowers.begin() + static_cast<std::ptrdiff_t>(first);
    m_Borrowers.erase(
        std::remove_if(bound, m_Borrowers.end(), [&](DWORD symbol) { return symbol > lastSymbol; }),
        m_Borrowers.end());
}

// Another text is about to be assigned to a place: whoever else refers to what it holds keeps that.
void CVScript::LeaveText(DWORD place) {
    const DWORD home = m_Memory.HomeOf(place);
    if (home == 0 && !LoadKept(place).text)
        return;
    const DWORD first = CScriptMemory::AreaLocation(home);
    const auto refers = [&](const ScriptWord& word) {
        return word.text && ((home != 0 && word.Location() - first < CScriptArea::TEXT_BUFFER) ||
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
bool CVScript::DiesBefore(DWORD place, ScriptWord text) const {
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

void CVScript::KeepTexts(const Scope& scope, bool keepResult) {
    GatherKept(scope, keepResult);
    // In this order no text is overwritten before it has moved, and its home goes to the owner.
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
            target += CScriptArea::TEXT_BUFFER;
        }
        // Of several that refer to one text, one may write there.
        const DWORD home = target - CScriptArea::TEXT_BUFFER;
        StoreKept(text.place, ScriptWord::Text(CScriptMemory::AreaLocation(home)),
                  isShared ? 0 : home);
    }
    m_Area.SetHeap(target);
}

// Whether whoever referred to a text ends with the scope.
bool CVScript::IsGone(DWORD place, const Scope& scope) const {
    if (place >= ARGUMENT_BASE)
        return place - ARGUMENT_BASE >= m_Arguments.size();
    if (const DWORD position = CScriptMemory::AreaPosition(place); position != 0)
        return position >= scope.heap;
    const DWORD symbol = m_Memory.FindVariable(place);
    return symbol == 0 || symbol > scope.symbols;
}

ScriptWord CVScript::LoadKept(DWORD place) const {
    if (place >= ARGUMENT_BASE)
        return m_Arguments[place - ARGUMENT_BASE];
    ScriptWord word;
    m_Memory.LoadWord(place, word);
    return word;
}

void CVScript::StoreKept(DWORD place, ScriptWord word, DWORD home) {
    if (place == RESULT_PLACE) {
        m_nResult = word;
    } else if (place >= ARGUMENT_BASE) {
        m_Arguments[place - ARGUMENT_BASE] = word;
    } else {
        m_Memory.StoreWord(place, word);
        m_Memory.SetHome(place, home);
    }
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
        const DWORD place = m_Kept[index];
        if (IsGone(place, scope))
            continue;
        // Given text twice in this scope, it is listed twice: to move it twice would share it.
        if (std::ranges::find(m_Moving, place, &KeptText::place) != m_Moving.end())
            continue;
        const ScriptWord word = LoadKept(place);
        const DWORD home = m_Memory.HomeOf(place);
        if (isGivenBack(word)) {
            const DWORD source = CScriptMemory::AreaPosition(word.Location());
            m_Moving.push_back({source, place, source == home});
            m_Kept[staying++] = place;
        }
        if (home >= scope.heap)
            m_Memory.SetHome(place, 0);
    }
    m_Kept.resize(staying);
    if (!keepResult)
        return;
    // The text of an element that ends here is told by what the element refers to.
    if (IsGone(CScriptMemory::ElementOf(m_nResult.Location()), scope))
        m_nResult = m_Memory.Resolve(m_nResult);
    if (isGivenBack(m_nResult))
        m_Moving.push_back(
            {CScriptMemory::AreaPosition(m_nResult.Location()), RESULT_PLACE, false});
}
