// Scripts that cannot stand in a file of cases: odd bytes, and sizes at and beyond the limits.
#include "platform/Message.h"
#include "tests/script/ScriptRun.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

namespace {

std::string Repeat(int count, const std::string& text) {
    std::string repeated;
    for (int index = 0; index < count; ++index)
        repeated += text;
    return repeated;
}

std::string Main(const std::string& statements) {
    return "FUNCTION main()\r\n" + statements + "\r\nENDFUNCTION\r\n";
}

std::string Report(const std::string& text) {
    return "report " + text + "\n";
}

std::string RunText(const std::string& script) {
    const CTempFolder folder;
    return CScriptRun().Run(folder.Write("odd.scr", script));
}

const std::string kInvalid = "result 3003\n";
const std::string kEndOfFile = Report("Unexpected end of file \\r\\n") + kInvalid;
const std::string kTooLong = Report("Token buffer overflow \\r\\n");
const std::string kTooDeep = Report("Not enough memory \\r\\n");

TEST(OddScripts, Bytes) {
    const std::string empty = Main("");
    const std::string sends = Main("SendString(\"sent\")");
    const std::pair<std::string, std::string> cases[] = {
        {"FUNCTION main()\nENDFUNCTION\n",
         Report("On line: 1\\nUnrecognized character\\n\\n") + kInvalid},
        {"' one\n' two\nINTEGER x\n",
         Report("On line: 3\\nUnrecognized character\\n\\n") + kInvalid},
        {"FUNCTION main()\r#SendString(\"sent\")\r#ENDFUNCTION\r", "device> sent\n"},
        {sends.substr(0, sends.size() - 2), "device> sent\n"},
        {empty + "' no line end", kEndOfFile},
        {sends + "INTEGER x\r' no line end\xFF\r\n", kEndOfFile},
        {empty + "INTEGER x[1]", kEndOfFile},
        {empty + "STRING x$ = \"\\", kEndOfFile},
        {empty + "STRING x$ = \"\\x4", kEndOfFile},
        {sends + "\xFF; what follows is not read", "device> sent\n"},
        {sends + "INTEGER x\xFF", "device> sent\n"},
        {sends + "' a comment with \xFF in it\r\n", kEndOfFile},
        {sends + "STRING x$ = \"\xFF\"\r\n", kEndOfFile},
        {"INTEGER x\xE9\r\n", Report("On line: 1\\nUnrecognized character\\n\\xE9") + kInvalid},
        {"\fINTEGER x\r\n", Report("On line: 1\\nUnrecognized character\\n\\x0C") + kInvalid},
        {std::string("INTEGER \0x\r\n", 12),
         Report("On line: 1\\nUnrecognized character\\n") + kInvalid},
        {Main(std::string("SendString(\"ab\0)\")", 18)),
         "device> ab\n" + Report("On line: 2\\nOut of place\\n")},
        {"", Report("Missing function main() \\r\\n") + kInvalid},
    };
    for (const auto& [script, expected] : cases)
        EXPECT_EQ(RunText(script), expected) << script;
}

TEST(OddScripts, ReadAcrossTheBuffersEnds) {
    for (int length = 400; length < 530; ++length)
        EXPECT_EQ(
            RunText("'" + std::string(length, '-') + "\r\n" + Main("SendString(\"ab\\x63\")'")),
            "device> abc\n");
}

TEST(OddScripts, LineEnds) {
    const CTempFolder folder;
    for (const char* script : {"INTEGER x\r\nINTEGER y\n", "INTEGER ;\n"}) {
        CScriptRun run;
        run.Run(folder.Write("odd.scr", script));
        EXPECT_EQ(run.Engine().HasUnixLineEnds(), script[8] == 'x') << script;
    }
    EXPECT_EQ(CScriptRun().Run("/nowhere/\xFF.scr"),
              Report("Error opening script file /nowhere/\\xFF.scr\\r\\n") + "result 3001\n");
}

std::string Globals(int count) {
    std::string list = "INTEGER a";
    for (int index = 1; index < count; ++index)
        list += ",a" + std::to_string(index);
    return list + "\r\n" + Main("SendString(\"sent\")");
}

// Deeper than the engine goes is an error, and what is far but not too far works.
TEST(OddScripts, Sizes) {
    const std::string more = "ELSEIF f(x) = 1 THEN\r\nSendString(\"wrong\")\r\n";
    const std::string chain = "IF x = 1 THEN\r\nSendString(\"first\")\r\n" + Repeat(300, more) +
                              "ELSEIF x = 2 THEN\r\nSendString(\"last\")\r\nELSE\r\n"
                              "SendString(\"else\")\r\nENDIF\r\n";
    const std::string countsDown = "FUNCTION f(INTEGER n)\r\nIF n THEN\r\nRETURN f(n - 1) + 1\r\n"
                                   "ENDIF\r\nRETURN 0\r\nENDFUNCTION\r\n";
    const std::string farEnd = "FUNCTION f(INTEGER n)\r\nIF n THEN\r\nRETURN n + 1\r\nELSE\r\n" +
                               Repeat(2000, "n = n + 3\r\n") +
                               "ENDIF\r\nRETURN n\r\nENDFUNCTION\r\n";
    const auto send = [](const std::string& expression) {
        return Main("INTEGER x = 1\r\nSendString(String(" + expression + "))");
    };
    const std::pair<std::string, std::string> cases[] = {
        {send(Repeat(100, "(") + "7" + Repeat(100, ")")), "device> 7\n"},
        {send(Repeat(200, "1 - ") + "1"), "device> 1\n"},
        {countsDown + send("f(100)"), "device> 100\n"},
        {countsDown + send("f(-1)"), kTooDeep},
        {farEnd + send("f(1) + f(0) + f(5)"), "device> 6008\n"},
        {countsDown + Main("INTEGER x = 1\r\n" + chain + "x = 2\r\n" + chain + "x = 3\r\n" + chain),
         "device> first\ndevice> last\ndevice> else\n"},
        {send("StringLength(\"" + std::string(50'000, 'x') + "\")"), "device> 50000\n"},
        {send("StringLength(\"" + std::string(70'000, 'x') + "\")"), kTooLong + kInvalid},
        {Main("'" + std::string(70'000, 'x') + "\r\nSendString(\"sent\")"), "device> sent\n"},
        {"INTEGER " + std::string(70'000, 'x'), kTooLong + kInvalid},
        {Main(Repeat(30'000, "x(")), kTooLong + kInvalid},
        {Main("INTEGER a[15000]"), kTooLong},
        {Main("STRING a$[221] = (\"x\"" + Repeat(220, ",\"x\"") + ")\r\nSendString(a$[221])"),
         "device> x\n"},
        {Globals(5056 - 33 - 1), "device> sent\n"},
        {Globals(5056 - 33), Report("Symbol table overflow \\r\\n") + kInvalid},
    };
    for (const auto& [script, expected] : cases)
        EXPECT_EQ(RunText(script), expected) << script.substr(0, 80);
    for (const char* level : {"(", "x - ", "-", "x = ", "Max(1, "})
        EXPECT_EQ(RunText(send(Repeat(5000, level) + "1" + Repeat(5000, ")"))), kTooDeep) << level;
}

TEST(OddScripts, TheOwnerIsToldHowLoadingWent) {
    const CTempFolder folder;
    const WNDCLASSA windowClass = {DefWindowProcA, "owner"};
    RegisterClassA(&windowClass);
    const HWND owner =
        CreateWindowExA(0, "owner", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    std::string told;
    for (const std::string& path : {folder.GetPath("missing"), folder.Write("invalid.scr", "x"),
                                    folder.Write("fails.scr", Main("x = 1"))}) {
        CScriptRun modem;
        CVScript(owner).Run(path.c_str(), &modem);
        for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);)
            told += std::to_string(message.message == WM_SCRIPTLOAD) + ' ' +
                    std::to_string(message.wParam) + ' ' + std::to_string(message.lParam) + '\n';
    }
    EXPECT_EQ(told, "1 1 3001\n1 1 3003\n1 0 0\n");
    DestroyWindow(owner);
}

TEST(OddScripts, ACodeThatIsNone) {
    EXPECT_EQ(ErrorText(3099), "Unknown Error 3099");
}

TEST(OddScripts, ABudgetEndsWhatHasNoEnd) {
    const CTempFolder folder;
    for (const char* statements :
         {"WHILE 1\r\nWEND", "FOR x = 1 TO 2 STEP 0\r\nNEXT",
          "WHILE x = 0\r\nIF x THEN\r\nENDIF\r\nWEND", "FOR x = 1 TO 2147483647\r\nNEXT x"}) {
        CScriptRun run;
        run.Engine().SetStatementBudget(10'000);
        EXPECT_EQ(run.Run(folder.Write("endless.scr", "INTEGER x\r\n" + Main(statements))), "");
    }
}

} // namespace
