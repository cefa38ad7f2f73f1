// Runs the scripts under cases/ and compares what the device and the user get to see with what
// stands beside the lines, in the order of the lines:
//
//   show(3)  ' expect: sent by SendString ' expect: report On line: 7\nSyntax Error\n
//
// What begins with the word of no other event (ScriptRun.h) is sent; what the device has to say is
// told in the same way. A line "'=== name" begins another script, and says what is expected of one
// that does not load; what stands before the first of these lines is added at the end of each, so
// that it moves no line numbers.
#include "script/ScriptCheck.h"
#include "tests/script/ScriptRun.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace {

constexpr std::string_view kMarker = "'=== ";
constexpr std::string_view kExpect = " ' expect: ";
constexpr std::string_view kEvents[] = {"report ",  "result ", "command> ", "answer ", "device< ",
                                        "timeout ", "retry ",  "format ",   "dtr ",    "box ",
                                        "sound ",   "beep",    "gone"};

struct Case {
    std::string name;
    std::string script;
    std::string record; // that is expected
    std::deque<std::string> inputs;
};

// Takes what is expected at a line.
void Expect(std::string_view line, Case& script) {
    for (std::size_t at = line.find(kExpect); at != std::string_view::npos;) {
        line.remove_prefix(at + kExpect.size());
        at = line.find(kExpect);
        std::string event(line.substr(0, std::min(at, line.find('\r'))));
        const auto begins = [&](std::string_view kind) { return event.starts_with(kind); };
        if (CScriptRun::IsInput(event))
            script.inputs.push_back(event);
        else if (std::ranges::none_of(kEvents, begins))
            event.insert(0, event.empty() ? "device>" : "device> ");
        script.record += event + '\n';
    }
}

std::vector<Case> ReadCases(const std::string& content) {
    std::vector<Case> cases(1);
    std::istringstream lines(content);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(kMarker)) {
            const std::size_t end = std::min(line.find(kExpect), line.find('\r'));
            cases.push_back({line.substr(kMarker.size(), end - kMarker.size()), {}, {}, {}});
        } else {
            cases.back().script += line + '\n';
        }
        Expect(line, cases.back());
    }
    if (cases.size() > 1) {
        const std::string shared = cases.front().script;
        cases.erase(cases.begin());
        for (Case& script : cases)
            script.script += shared;
    }
    return cases;
}

// What runs is clean, but for what is not reached in these.
bool IsCleanIfReached(const Case& script) {
    return script.record.find("report") != std::string::npos || script.name.starts_with("not ") ||
           script.name.ends_with("may be wrong") ||
           script.name == "a statement before the first CASE" ||
           CScriptCheck(script.script).Findings().empty();
}

TEST(ScriptCases, DoWhatIsExpected) {
    const CTempFolder folder;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(WIRELET_SCRIPT_CASES)) {
        if (entry.path().extension() != ".scr")
            continue;
        const std::string content = ReadWholeFile(entry.path());
        EXPECT_EQ(std::ranges::count(content, '\n'), std::ranges::count(content, '\r'))
            << entry.path() << " has lost its line ends";
        for (const Case& script : ReadCases(content)) {
            SCOPED_TRACE(entry.path().string() + ": " + script.name);
            CScriptRun run(script.inputs);
            EXPECT_EQ(run.Run(folder.Write("case.scr", script.script)), script.record);
            EXPECT_TRUE(IsCleanIfReached(script));
        }
    }
}

} // namespace
