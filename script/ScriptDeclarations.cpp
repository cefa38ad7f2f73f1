// How: a text variable gets its buffer at once and keeps it. The elements of a STRING array begin
// as the literals that they were given, in the token stream, and get buffers when they are assigned
// to.
#include "script/ScriptDeclarations.h"

#include <algorithm>

namespace {

constexpr DWORD kWordSize = CScriptArea::kWordSize;

} // namespace

// Each counts as a statement: first values that call functions made of declarations take any time.
bool CScriptDeclarations::Declare(DWORD definitionFloor, DWORD evaluationFloor, BYTE type) {
    do {
        if (!SpendStatement() || !DeclareOne(definitionFloor, evaluationFloor, type))
            return false;
    } while (m_Reader.Accept(','));
    return true;
}

bool CScriptDeclarations::DeclareOne(DWORD definitionFloor, DWORD evaluationFloor, BYTE type) {
    const DWORD symbol = DefineVariable(definitionFloor, type);
    if (symbol == 0)
        return false;
    const bool isArray = m_Reader.Accept('[');
    if (isArray && !DeclareArray(symbol, evaluationFloor))
        return false;
    if (!isArray && type == TOKEN_STRING && !DeclareText(symbol))
        return false;
    if (!m_Reader.Accept('='))
        return true;
    if (isArray)
        InitializeArray(symbol, evaluationFloor);
    else
        InitializeScalar(symbol, evaluationFloor);
    return !HasError();
}

// The references in front of a name, and the name; its entry, 0 after a report.
DWORD CScriptDeclarations::DefineVariable(DWORD definitionFloor, BYTE type) {
    BYTE depth = 0;
    for (; m_Reader.Accept('@'); ++depth)
        if (depth == kMostReferences) {
            ReportError(ERR_SYNTAX);
            return 0;
        }
    m_Reader.Expect(TOKEN_NAME);
    if (HasError())
        return 0;
    const bool isText = type == TOKEN_STRING;
    const DWORD name = m_Reader.Name();
    if (isText && !m_Names[name].ends_with('$')) {
        ReportError(ERR_STRING_NAME, m_Names[name]);
        return 0;
    }
    const BYTE size = isText ? kSizeCharacter : kSizeWord;
    const DWORD symbol = m_Symbols.DefineSymbol(definitionFloor, name, {}, size, depth);
    if (symbol != 0)
        m_Reader.SkipText();
    return symbol;
}

// A text variable's buffer is its own for as long as the variable lives.
bool CScriptDeclarations::DeclareText(DWORD symbol) {
    ScriptSymbol& entry = m_Symbols[symbol];
    const bool isScalar = entry.depth == 0;
    const DWORD storage = Alloc((isScalar ? 1 : kWordSize) * CScriptArea::kTextBuffer);
    if (storage == 0)
        return false;
    const DWORD location = CScriptMemory::AreaLocation(storage);
    entry.word = isScalar ? ScriptWord::Text(location)
                          : ScriptWord::Integer(static_cast<std::int32_t>(location));
    entry.home = isScalar ? storage : 0;
    ++entry.depth;
    return true;
}

bool CScriptDeclarations::DeclareArray(DWORD symbol, DWORD evaluationFloor) {
    std::int32_t dimension = 0;
    if (m_Reader.Peek() != ']')
        dimension = Evaluate(evaluationFloor).value;
    if (HasError())
        return false;
    if (dimension <= 0) {
        ReportError(ERR_NO_DIMENSION, m_Names[m_Symbols[symbol].name]);
        return false;
    }
    if (!MakeArray(symbol, dimension))
        return false;
    m_Reader.Expect(']');
    return !HasError();
}

bool CScriptDeclarations::MakeArray(DWORD symbol, std::int32_t dimension) {
    ScriptSymbol& entry = m_Symbols[symbol];
    const bool isText = entry.size == kSizeCharacter;
    const bool holdsTexts = isText && entry.depth == 0;
    // What is larger than all there is gets as much as that: nothing.
    const auto count = static_cast<DWORD>(dimension);
    const DWORD storage = Alloc(kWordSize * std::min(count, CScriptArea::kCapacity));
    if (storage == 0)
        return false;
    if (isText)
        m_Area.MakeElements(storage, count);
    entry.word =
        ScriptWord::Integer(static_cast<std::int32_t>(CScriptMemory::AreaLocation(storage)));
    entry.elements = static_cast<WORD>(dimension);
    entry.depth = static_cast<BYTE>(entry.depth + (isText ? 2 : 1));
    for (DWORD index = 0; holdsTexts && index < count; ++index)
        m_Area.StoreWord(storage + kWordSize * index, m_Memory.EmptyText());
    return true;
}

void CScriptDeclarations::InitializeArray(DWORD symbol, DWORD evaluationFloor) {
    m_Reader.Expect('(');
    DWORD count = 0;
    do {
        if (HasError())
            return;
        const ScriptWord word = Evaluate(evaluationFloor);
        if (!HasError() && count < m_Symbols[symbol].elements)
            StoreElement(m_Symbols[symbol].word.Location() + kWordSize * count, word);
        ++count;
    } while (m_Reader.Accept(','));
    if (!HasError())
        m_Reader.Expect(')');
    if (!HasError() && count > m_Symbols[symbol].elements)
        ReportError(ERR_TOO_MANY, m_Names[m_Symbols[symbol].name]);
}

// A literal that fits needs no room until something else is assigned.
void CScriptDeclarations::StoreElement(DWORD place, ScriptWord word) {
    word = m_Memory.Resolve(word);
    const bool isKept =
        m_Memory.IsLiteral(word) && ReadText(word).size() <= CScriptArea::kTextLength;
    if (word.text && !isKept)
        word = CopyTextTo(place, word);
    m_Memory.StoreWord(place, word);
}

void CScriptDeclarations::InitializeScalar(DWORD symbol, DWORD evaluationFloor) {
    ScriptWord word = Evaluate(evaluationFloor);
    if (HasError())
        return;
    if (word.text && m_Symbols[symbol].home != 0)
        word = CopyTextTo(CScriptMemory::SymbolLocation(symbol), word);
    m_Symbols[symbol].word = word;
}
