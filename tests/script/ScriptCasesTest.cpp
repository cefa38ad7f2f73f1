// Runs the scripts under cases/ and compares what the device and the user get to see with the
// .expect file beside each.
//
// A .scr file is one script, or several: a line "'=== name" begins another one, and what stands
// before the first of these lines is added at the end of each, so that it moves no line numbers.
// The .expect file is divided likewise by lines "=== name". Empty lines and lines that begin with
// "#" do not count in it; the lines of the device are what it has to say as well.
#include "script/ScriptCheck.h"
#include "tests/script/ScriptRun.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace {

using Parts = std::vector<std::pair<std::string, std::string>>; // names and texts

Parts Divide(const std::string& content, std::string_view marker) {
    Parts parts = {{}};
    std::istringstream lines(content);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(marker))
            parts.push_back({line.substr(marker.size(), line.find('\r') - marker.size()), {}});
        else
            parts.back().second += line + '\n';
    }
    return parts;
}

struct Expectation {
    std::string record;
    std::deque<std::string> inputs;
};

Expectation Read(const std::string& text) {
    Expectation expectation;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line.starts_with('#'))
            continue;
        if (CScriptRun::IsInput(line))
            expectation.inputs.push_back(line);
        expectation.record += line + '\n';
    }
    return expectation;
}

std::vector<std::string> FindScripts() {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(WIRELET_SCRIPT_CASES))
        if (entry.path().extension() == ".scr")
            paths.push_back(entry.path().string());
    std::ranges::sort(paths);
    return paths;
}

std::string NameOf(const testing::TestParamInfo<std::string>& info) {
    const std::filesystem::path path(info.param);
    return path.parent_path().filename().string() + '_' + path.stem().string();
}

class ScriptCases : public testing::TestWithParam<std::string> {};

TEST_P(ScriptCases, DoWhatIsExpected) {
    const CTempFolder folder;
    const std::string content = ReadWholeFile(GetParam());
    ASSERT_EQ(std::ranges::count(content, '\n'), std::ranges::count(content, '\r'))
        << "the script has lost its line ends";
    Parts scripts = Divide(content, "'=== ");
    Parts expected = Divide(
        ReadWholeFile(std::filesystem::path(GetParam()).replace_extension(".expect")), "=== ");
    ASSERT_EQ(scripts.size(), expected.size());
    const bool isDivided = scripts.size() > 1;
    const std::string shared = isDivided ? scripts.front().second : "";
    for (std::size_t index = isDivided ? 1 : 0; index < scripts.size(); ++index) {
        const auto& [name, text] = scripts[index];
        SCOPED_TRACE(name);
        EXPECT_EQ(name, expected[index].first);
        const Expectation expectation = Read(expected[index].second);
        const std::string script = text + shared;
        EXPECT_EQ(CScriptRun(expectation.inputs).Run(folder.Write("case.scr", script)),
                  expectation.record);
        // What runs is clean, but for what is not reached in these.
        const bool isReached = !name.starts_with("not ") && !name.ends_with("may be wrong") &&
                               name != "a statement before the first CASE";
        const bool isClean = CScriptCheck(script).Findings().empty();
        EXPECT_TRUE(isClean || !isReached ||
                    expectation.record.find("report") != std::string::npos);
    }
}

INSTANTIATE_TEST_SUITE_P(, ScriptCases, testing::ValuesIn(FindScripts()), NameOf);

} // namespace
