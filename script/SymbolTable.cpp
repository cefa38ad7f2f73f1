#include "script/SymbolTable.h"

#include <new>

bool CSymbolTable::Reserve() {
    m_Symbols.reset(new (std::nothrow) ScriptSymbol[kMostSymbols + 1]());
    m_pSymTop = kGlobalFloor;
    return m_Symbols != nullptr;
}

void CSymbolTable::UseNames() {
    m_entries.assign(m_names.Count(), Entries{});
}

DWORD CSymbolTable::DefineSymbol(DWORD floor, DWORD name, ScriptWord word, BYTE size, BYTE depth) {
    if (FindSymbol(floor, name) != 0) {
        m_report.ReportError(ERR_DUPLICATE, m_names[name]);
        return 0;
    }
    if (m_pSymTop == kMostSymbols) {
        m_report.ReportError(ERR_SYMTAB_FULL, {}, CScriptReport::kNoLine);
        return 0;
    }
    const DWORD symbol = ++m_pSymTop;
    m_Symbols[symbol] = {name, word, size, depth, 0, 0, m_entries[name].newest};
    m_entries[name].newest = symbol;
    if (floor == kGlobalFloor)
        m_entries[name].global = symbol;
    return symbol;
}
