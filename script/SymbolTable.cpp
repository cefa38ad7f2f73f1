#include "script/SymbolTable.h"

#include <new>

bool CSymbolTable::Reserve() {
    m_Symbols.reset(new (std::nothrow) ScriptSymbol[MOST_SYMBOLS + 1]());
    m_pSymTop = GLOBAL_FLOOR;
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
    if (m_pSymTop == MOST_SYMBOLS) {
        m_report.ReportError(ERR_SYMTAB_FULL, {}, CScriptReport::NO_LINE);
        return 0;
    }
    const DWORD symbol = ++m_pSymTop;
    m_Symbols[symbol] = {name, word, size, depth, 0, 0, m_entries[name].newest};
    m_entries[name].newest = symbol;
    if (floor == GLOBAL_FLOOR)
        m_entries[name].global = symbol;
    return symbol;
}
