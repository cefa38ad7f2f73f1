// CExpressionCheck: reads expressions of a script without evaluating them and reports what is wrong
// whenever they are evaluated.
//
// Lives for one check, on one thread. A variable may hold a number or a text, whatever it was
// declared as; so only the kinds of literals, results of operators and built-ins are certain.
#pragma once

#include "platform/Types.h"
#include "script/CheckFindings.h"
#include "script/CheckScope.h"
#include "script/ScriptValue.h"
#include "script/SourceCursor.h"

#include <optional>
#include <string>

// What is known of a value, as in a ScriptValue.
struct CheckValue {
    enum class Kind : BYTE { Unknown, Number, Text };

    Kind kind = Kind::Unknown;
    std::optional<std::int32_t> constant;
    const CheckSymbol* symbol = nullptr; // the name that the location is
    BYTE size = kSizeWord;
    BYTE depth = 0;
    bool isArray = false;
    bool isLocation = false;
    bool isKnown = true; // false behind an error: anything fits

    void BecomePlain(Kind newKind) {
        const bool wasKnown = isKnown;
        *this = {};
        isKnown = wasKnown;
        kind = newKind;
    }
};

class CExpressionCheck {
  public:
    CExpressionCheck(CSourceCursor& cursor, const CCheckScope& scope, CCheckFindings& findings)
        : m_cursor(cursor), m_scope(scope), m_findings(findings) {}

    // Reads an expression. False when it cannot be understood any further, after a finding; the
    // rest of the line is then of no use.
    bool Check(CheckValue& value);
    // The same for one whose place is needed.
    bool CheckPlace(CheckValue& value);

    // Consumes a code; false after a finding when another one follows.
    bool Expect(BYTE code);
    // Reports a token that stands where it must not.
    void ReportOutOfPlace(const SourceToken& token, std::string_view remark = {});

    // The levels of brackets, blocks and operators; shared with the statements. False after a
    // finding: the engine does not go so deep.
    bool Enter();
    void Leave() { --m_nDepth; }

  private:
    bool ReadAssignment(CheckValue& value);
    bool ReadOperators(CheckValue& left, BYTE level);
    bool ReadUnary(CheckValue& value);
    bool ReadPrefixed(CheckValue& value, BYTE code);
    bool ReadOperand(CheckValue& value, const SourceToken& token);
    void ReadName(CheckValue& value, const SourceToken& token);
    void Dereference(CheckValue& value, DWORD line);
    bool ReadCall(CheckValue& value);
    bool ReadArguments(std::vector<CheckValue>& arguments);
    void CheckCall(CheckValue& value, const std::vector<CheckValue>& arguments, DWORD line);
    void CheckBuiltin(const BuiltinEntry& entry, const std::vector<CheckValue>& arguments,
                      DWORD line);
    bool ReadSubscript(CheckValue& value);
    void Apply(CheckValue& left, BYTE operation, const CheckValue& right, DWORD line);
    static void Load(CheckValue& value);

    CSourceCursor& m_cursor;
    const CCheckScope& m_scope;
    CCheckFindings& m_findings;
    std::size_t m_nLocationAt = 0; // of an "@" that begins an argument, the position behind
    DWORD m_nDepth = 0;
};
