// Declarations of variables and arrays, with their storage and first values.
#include "script/Script.h"

namespace {

constexpr DWORD kWordSize = CScriptArea::WORD_SIZE;

// Of one element of what the symbol is, as long as it is no array.
DWORD ElementSize(const ScriptSymbol& symbol) {
    return symbol.size == SIZE_CHARACTER && symbol.depth == 0 ? 1 : kWordSize;
}

} // namespace

bool CVScript::Declare(DWORD definitionFloor, DWORD evaluationFloor, BYTE type) {
    do {
        if (!DeclareOne(definitionFloor, evaluationFloor, type))
            return false;
    } while (m_Reader.Accept(','));
    return true;
}

// Counts as a statement: first values that call functions made of declarations take any time.
bool CVScript::DeclareOne(DWORD definitionFloor, DWORD evaluationFloor, BYTE type) {
    if (!SpendStatement())
        return false;
    BYTE depth = 0;
    for (; m_Reader.Accept('@'); ++depth)
        if (depth == MOST_REFERENCES) {
            ReportError(ERR_SYNTAX);
            return false;
        }
    m_Reader.Expect(TOKEN_NAME);
    if (HasError())
        return false;
    const bool isText = type == TOKEN_STRING;
    const DWORD name = m_Reader.Name();
    if (isText && !m_Names[name].ends_with('$')) {
        ReportError(ERR_STRING_NAME, m_Names[name]);
        return false;
    }
    const DWORD symbol = m_Symbols.DefineSymbol(definitionFloor, name, {},
                                                isText ? SIZE_CHARACTER : SIZE_WORD, depth);
    if (symbol == 0)
        return false;
    m_Reader.SkipText();

    const bool isArray = m_Reader.Accept('[');
    if (isArray ? !DeclareArray(symbol, evaluationFloor) : isText && !DeclareText(symbol))
        return false;
    if (m_Reader.Accept('=')) {
        if (isArray)
            InitializeArray(symbol, evaluationFloor);
        else
            InitializeScalar(symbol, evaluationFloor);
    }
    return !HasError();
}

// A text variable's buffer is its own for as long as the variable lives.
bool CVScript::DeclareText(DWORD symbol) {
    ScriptSymbol& entry = m_Symbols[symbol];
    const bool isScalar = entry.depth == 0;
    const DWORD storage = Alloc(ElementSize(entry) * CScriptArea::TEXT_BUFFER);
    if (storage == 0)
        return false;
    const DWORD location = CScriptMemory::AreaLocation(storage);
    entry.word = isScalar ? ScriptWord::Text(location)
                          : ScriptWord::Integer(static_cast<std::int32_t>(location));
    entry.home = isScalar ? storage : 0;
    ++entry.depth;
    return true;
}

bool CVScript::DeclareArray(DWORD symbol, DWORD evaluationFloor) {
    const std::string_view name = m_Names[m_Symbols[symbol].name];
    if (m_Reader.Peek() == ']') {
        ReportError(ERR_NO_DIMENSION, name);
        return false;
    }
    const std::int32_t dimension = Evaluate(evaluationFloor).value;
    if (HasError())
        return false;
    if (dimension <= 0) {
        ReportError(ERR_NO_DIMENSION, name);
        return false;
    }
    ScriptSymbol& entry = m_Symbols[symbol];
    const bool isText = entry.size == SIZE_CHARACTER;
    const bool holdsTexts = isText && entry.depth == 0;
    const auto count = static_cast<DWORD>(dimension);
    const DWORD storage =
        count < CScriptArea::CAPACITY ? Alloc(kWordSize * count) : Alloc(CScriptArea::CAPACITY);
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
    m_Reader.Expect(']');
    return !HasError();
}

void CVScript::InitializeArray(DWORD symbol, DWORD evaluationFloor) {
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
void CVScript::StoreElement(DWORD place, ScriptWord word) {
    word = m_Memory.Resolve(word);
    const bool isKept =
        m_Memory.IsLiteral(word) && ReadText(word).size() < CScriptArea::TEXT_BUFFER;
    if (word.text && !isKept)
        word = CopyTextTo(place, word);
    m_Memory.StoreWord(place, word);
}

void CVScript::InitializeScalar(DWORD symbol, DWORD evaluationFloor) {
    ScriptWord word = Evaluate(evaluationFloor);
    if (HasError())
        return;
    if (word.text && m_Symbols[symbol].home != 0)
        word = CopyTextTo(CScriptMemory::SymbolLocation(symbol), word);
    m_Symbols[symbol].word = word;
}
