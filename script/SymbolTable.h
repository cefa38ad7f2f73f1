// CSymbolTable: the declared names of a run: built-ins, global variables and functions, then the
// parameters and locals of the calls and blocks in progress, newest on top.
//
// Owned by the engine; used from the script's thread. A scope is every entry above a floor; it ends
// by DropTo. Which entry a name means is not searched: each name knows its newest entry, each entry
// the one of the same name below it, and each name its global.
#pragma once

#include "platform/Types.h"
#include "script/NameTable.h"
#include "script/ScriptReport.h"
#include "script/ScriptValue.h"

#include <memory>
#include <vector>

struct ScriptSymbol {
    DWORD name; // its number in the name table
    ScriptWord word;
    BYTE size;     // size code
    BYTE depth;    // levels of reference
    WORD elements; // of an array; 0: none
    DWORD home;    // position of the text buffer that belongs to it; 0: none
    DWORD hidden;  // the entry of the same name below; 0: none
};

class CSymbolTable {
  public:
    // The region that the entries stand for is as large as the other one, 12 bytes an entry; 768
    // bytes at its end stay free. The built-ins are among them.
    static constexpr DWORD kMostSymbols = (61440 - 768) / 12;

    CSymbolTable(const CNameTable& names, CScriptReport& report)
        : m_names(names), m_report(report) {}

    // Takes the memory; FALSE when there is none.
    bool Reserve();
    // Makes ready for the names interned so far.
    void UseNames();

    // The entry that a name means: the newest one above a floor, else its global one (all that was
    // defined at the global floor); 0: none.
    DWORD FindVisible(DWORD name, DWORD floor) const {
        const Entries entries = m_entries[name];
        return entries.newest > floor ? entries.newest : entries.global;
    }
    // The same; none is reported.
    DWORD LookupName(DWORD name, DWORD floor) {
        const DWORD symbol = FindVisible(name, floor);
        if (symbol == 0)
            m_report.ReportError(ERR_UNDEFINED, m_names[name]);
        return symbol;
    }

    // The newest entry of a name above a floor; 0: none.
    DWORD FindSymbol(DWORD floor, DWORD name) const {
        const DWORD newest = m_entries[name].newest;
        return newest > floor ? newest : 0;
    }

    // Makes an entry; 0 after a report: the name has one above the floor, or the table is full.
    DWORD DefineSymbol(DWORD floor, DWORD name, ScriptWord word, BYTE size, BYTE depth);

    // Drops every entry above the given one.
    void DropTo(DWORD top) {
        for (; m_pSymTop > top; --m_pSymTop) {
            const ScriptSymbol& symbol = m_Symbols[m_pSymTop];
            m_entries[symbol.name].newest = symbol.hidden;
        }
    }

    DWORD Top() const { return m_pSymTop; }
    ScriptSymbol& operator[](DWORD symbol) { return m_Symbols[symbol]; }
    const ScriptSymbol& operator[](DWORD symbol) const { return m_Symbols[symbol]; }

    // The floor of the global scope; no entry. Whatever is defined above it is global: no local's
    // floor is below the built-ins.
    static constexpr DWORD kGlobalFloor = 0;

  private:
    // What a name means: the newest entry of it, and its global one; 0: none.
    struct Entries {
        DWORD newest = 0;
        DWORD global = 0;
    };

    const CNameTable& m_names;
    CScriptReport& m_report;
    std::unique_ptr<ScriptSymbol[]> m_Symbols;
    DWORD m_pSymTop = kGlobalFloor;
    std::vector<Entries> m_entries; // by name
};
