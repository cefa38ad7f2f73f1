// CScriptCheck: reads a whole script and tells what is wrong with it, without running anything.
//
// Lives for one check, on one thread. It is total: any bytes are a script to it. What it reports
// would be an error whenever the line is run; a script that runs has no findings, but for what
// stands in places that are never reached.
#pragma once

#include "script/CheckScope.h"
#include "script/SourceTokens.h"
#include "script/StatementCheck.h"

#include <string_view>
#include <vector>

class CScriptCheck {
  public:
    // Checks the source, which must outlive the object.
    explicit CScriptCheck(std::string_view source);

    // Lines and texts, in the order of the lines.
    const CCheckFindings::Set& Findings() const { return m_findings.Get(); }

  private:
    void ReadTopLevel();
    void ReadFunctionLine();
    std::size_t CountParameters();
    void SkipFunction();
    void CheckMain();

    CCheckFindings m_findings;
    CSourceTokens m_tokens;
    CSourceCursor m_cursor;
    CCheckScope m_scope;
    CStatementCheck m_statements;
    std::vector<std::size_t> m_functions; // where each one's parameters begin
    const SourceToken* m_pMain = nullptr; // its name
    std::size_t m_nMainParameters = 0;
};
