// CStatementCheck: reads the statements and declarations of a script without running them and
// reports what is wrong whenever they are run.
//
// Lives for one check, on one thread. Whatever is wrong with one line does not hide the next; only
// where blocks do not fit together the rest of the function is given up.
#pragma once

#include "script/ExpressionCheck.h"

class CStatementCheck {
  public:
    CStatementCheck(CSourceCursor& cursor, CCheckScope& scope, CCheckFindings& findings)
        : m_cursor(cursor), m_scope(scope), m_findings(findings),
          m_expressions(cursor, scope, findings) {}

    // A function from its parameters' "(" on, up to and with its ENDFUNCTION.
    void CheckFunction();

    // The declarators behind STRING or INTEGER, to the end of the line.
    void CheckDeclaration(BYTE type);

    void ReportOutOfPlace(const SourceToken& token, std::string_view remark) {
        m_expressions.ReportOutOfPlace(token, remark);
    }

  private:
    bool ReadParameters();
    bool ReadParameter();
    bool ReadBlock();
    bool ReadBlockBody();
    bool ReadStatement();
    bool ReadKeyword(const SourceToken& token);
    bool ReadNested(BYTE code);
    bool ReadControl(BYTE code);
    bool ReadIf();
    bool ReadFor();
    bool ReadWhile();
    bool ReadSelect();
    bool ReadCase(bool& isDefault);
    void ReadEmptyBlock();
    void ReadReturn();
    bool ReadBody(bool isLineRead);
    bool ReadCondition();
    bool ReadDeclarator(BYTE type);
    bool ReadDimension(CheckSymbol& symbol, std::string_view name);
    bool ReadElements(const CheckSymbol& symbol, std::string_view name);

    CSourceCursor& m_cursor;
    CCheckScope& m_scope;
    CCheckFindings& m_findings;
    CExpressionCheck m_expressions;
};
