// What a check finds in scripts that are wrong. That it finds nothing in those that run is seen
// with each of the cases (ScriptCasesTest.cpp).
#include "script/ScriptCheck.h"

#include <gtest/gtest.h>

namespace {

std::string FindingsIn(const std::string& script) {
    const CScriptCheck check(script);
    std::string findings;
    for (const auto& [line, text] : check.Findings())
        findings += std::to_string(line) + ' ' + text + '\n';
    return findings;
}

// The lines of main's body, the first of which is line 2.
std::string FindingsInMain(std::string lines) {
    for (std::size_t at = lines.find('\n'); at != std::string::npos; at = lines.find('\n', at + 2))
        lines.insert(at, "\r");
    return FindingsIn("FUNCTION main()\r\n" + lines + "\r\nENDFUNCTION\r\n");
}

TEST(ScriptCheck, FindsEachErrorByItsLine) {
    const std::pair<std::string, std::string> cases[] = {
        {"x = 1\nSendString(y$\nIF 0 THEN\nz(1)\nENDIF\nWait(1",
         "2 Undefined variable or function x\n3 Missing )\n3 Undefined variable or function y$\n"
         "5 Undefined variable or function z\n7 Missing )\n"},
        {"INTEGER n, n\nSTRING s\nn = = 3 )(\nn = 12ab\nn = \"\\q\" + \"\nb\\xG1\"\nn = ;",
         "2 Duplicate symbol n\n3 String variable need to end with $ .. s\n4 Out of place =\n"
         "5 Unrecognized character 12ab\n6 Unexpected escape sequence\n7 Out of place G\n"
         "8 Unrecognized character ;\n9 Out of place end of the block\n"},
        {"INTEGER n\nSELECT n\nn = 2\nCASE 1\nn = \"a\" + 1\nENDSELECT",
         "4 Out of place n (before the first CASE)\n6 Syntax Error\n"},
        {"INTEGER n\nIF n THEN\nELSE IF 1 THEN\nm = 1\nENDIF\nIF n THEN n = 1\nENDIF",
         "4 Out of place IF (ELSEIF is one word)\n5 Undefined variable or function m\n"
         "7 Out of place n\n"},
        {"IF 1 THEN\nWHILE 1\nNEXT\nFOR n = 1 TO 2",
         "2 Mismatch: IF ... ENDIF\n3 Mismatch: WHILE ... WEND\n4 Mismatch: FOR ... NEXT\n"
         "5 Mismatch: FOR ... NEXT\n"},
        {"INTEGER n, a[3], @r\nSTRING s$, t$[2] = (\"\", \"\", \"\")\nn[1] = s$[1]\na[0] = a[4]\n"
         "s$ = t$\nn + 1 = @n\nn(1)\n5 = n\nMax = 1\nr = &5\n@r = @(a + 1)\nn = @a[1]",
         "3 Maximum elements exceeded for array t$\n4 Subscript on non-array\n4 Syntax Error\n"
         "5 Dimension out of bound for array\n6 Syntax Error\n7 Pointer error\n7 Syntax Error\n"
         "8 Syntax Error\n9 Out of place 5\n10 Syntax Error\n11 Syntax Error\n13 Pointer error\n"},
        {"main(1)\nWait()\nWait(\"1\")\nSendString(5)\nSendString(1, 2)\nSendString(\"\", 2, 3)",
         "2 Number of actual and formal parameters mismatched\n"
         "3 Number of actual and formal parameters mismatched\n4 Syntax Error\n5 Syntax Error\n"
         "6 Syntax Error\n"},
        {std::string(5000, '('), "2 Not enough memory\n"},
    };
    for (const auto& [lines, expected] : cases)
        EXPECT_EQ(FindingsInMain(lines), expected) << lines.substr(0, 80);
}

TEST(ScriptCheck, FindsWhatIsWrongOutsideOfFunctions) {
    EXPECT_EQ(FindingsIn("INTEGER a = f()\r\nx = 1\r\nFUNCTION f(n)\r\nENDFUNCTION' no end"),
              "1 Missing function main()\n1 Undefined variable or function f\n"
              "2 Out of place x (outside of all functions)\n3 Undeclared function parameter n\n"
              "4 Unexpected end of file\n");
    EXPECT_EQ(FindingsIn("FUNCTION main()\nx = 1\nENDFUNCTION\n"),
              "1 Unrecognized character LF without CR at the end of the line\n"
              "2 Undefined variable or function x\n");
}

} // namespace
