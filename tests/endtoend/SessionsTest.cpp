// The sessions of sessions.txt and gone.txt: what user, device and screen say to each other, step
// by step.
#include "tests/endtoend/SessionTest.h"
#include "tests/support/Unescape.h"

#include <iterator>
#include <sstream>

namespace {

struct Session {
    std::string name;
    std::vector<std::pair<std::string, std::string>> steps;
};

std::vector<Session> ReadSessions(const std::string& path) {
    std::vector<Session> sessions;
    std::istringstream lines(ReadWholeFile(path));
    for (std::string line; std::getline(lines, line);) {
        const std::string verb = line.substr(0, line.find(' '));
        const std::string rest = line.substr(std::min(line.size(), verb.size() + 1));
        if (verb == "session")
            sessions.push_back({rest, {}});
        else if (!verb.empty() && verb != "#")
            sessions.back().steps.emplace_back(verb, rest);
    }
    return sessions;
}

} // namespace

class CSessionsTest : public CSessionTest, public ::testing::WithParamInterface<Session> {
  protected:
    using Text = const std::string&;

    // Unescaped, and with the paths that are meant.
    std::string Complete(std::string text) {
        const std::pair<std::string, std::string> names[] = {
            {"DEVICE", m_device.GetPath()},
            {"TERMINAL", m_terminal.GetLine().GetPath()},
            {"LOG", m_capture}};
        for (const auto& [name, path] : names)
            if (const std::size_t at = text.find(name); at != std::string::npos)
                text.replace(at, name.size(), path);
        return Unescape(text);
    }
    // The numbers at the beginning, which a blank parts from what follows.
    static std::vector<int> Numbers(Text text) {
        std::istringstream words(text);
        return {std::istream_iterator<int>(words), {}};
    }
    static std::string Behind(char mark, Text text) { return text.substr(text.find(mark) + 1); }
    Result HasColours(const std::vector<int>& numbers) {
        const VTermScreenCell cell = Screen().GetCell(numbers[0], numbers[1]);
        const std::vector<int> colours = {numbers[0], numbers[1], IndexOf(cell.fg),
                                          IndexOf(cell.bg)};
        return Result(colours == numbers) << ::testing::PrintToString(colours);
    }
    void Run(Text text) {
        std::istringstream words(text);
        StartWith({std::istream_iterator<std::string>(words), {}});
    }
    void Send(Text text) {
        m_device.Send(text);
        m_pump.RunUntil([this] { return m_device.IsAllSent(); });
    }
    // A pseudo-terminal that closes takes with it what was not read yet.
    Result IsTaken() {
        return Fulfils("all read", [this] {
            m_pump.RunFor(std::chrono::milliseconds(500));
            return m_device.GetLine().CountUnread() == 0;
        });
    }
    bool HasWritten(Text text) { return m_terminal.GetOutput().find(text) != std::string::npos; }

    std::map<std::string, std::function<void(Text)>> m_actions = {
        {"with",
         [this](Text text) { m_environment[text.substr(0, text.find('='))] = Behind('=', text); }},
        {"run", [this](Text text) { Run(text); }},
        {"commands", [this](Text text) { StartCommands(text); }},
        {"script", [this](Text text) { StartScript(text); }},
        {"type", [this](Text text) { Type(text); }},
        {"send", [this](Text text) { Send(text); }},
        {"size", [this](Text text) { m_terminal.Resize(Numbers(text)[0], Numbers(text)[1]); }},
        {"unplug", [this](Text) { m_device.Vanish(); }},
        {"kill", [this](Text text) { m_program->Kill(Numbers(text)[0]); }},
    };
    std::map<std::string, std::function<Result(Text)>> m_demands = {
        {"gets", [this](Text text) { return DeviceGets(text); }},
        {"nothing", [this](Text) { return IsSame(m_device.GetReceived(), ""); }},
        {"shows", [this](Text text) { return Shows(text); }},
        {"hides", [this](Text text) { return Result(Screen().FindRow(text) < 0); }},
        {"row", [this](Text text) { return ShowsInRow(std::stoi(text), Behind(' ', text)); }},
        {"colour", [this](Text text) { return HasColours(Numbers(text)); }},
        {"title", [this](Text text) { return IsSame(Screen().GetTitle(), text); }},
        {"rings",
         [this](Text) { return Fulfils("bell", [&] { return Screen().GetBells() == 1; }); }},
        {"written",
         [this](Text text) { return Fulfils("output", [&] { return HasWritten(text); }); }},
        {"unwritten", [this](Text text) { return Result(!HasWritten(text)); }},
        {"taken", [this](Text) { return IsTaken(); }},
        {"eaten", [this](Text) { return Result(m_terminal.GetLine().CountUnread() == 0); }},
        {"captured", [this](Text text) { return IsSame(ReadWholeFile(m_capture), text); }},
        {"logged", [this](Text text) { return IsSame(Decode(ReadWholeFile(m_capture)), text); }},
        {"freed", [this](Text) { return GivesTerminalBack(); }},
        {"gone", [this](Text) { return EndsAsGone(); }},
        {"ends", [this](Text text) { return Ends(std::stoi(text)); }},
        {"over", [this](Text text) { return EndsWith(std::stoi(text)); }},
    };
};

TEST_P(CSessionsTest, GoesAsTheFileSays) {
    for (const auto& [verb, text] : GetParam().steps) {
        if (const auto action = m_actions.find(verb); action != m_actions.end())
            action->second(Complete(text));
        else
            ASSERT_TRUE(m_demands.at(verb)(Complete(text))) << verb << ' ' << text;
    }
}

std::string GetName(const ::testing::TestParamInfo<Session>& session) {
    return session.param.name;
}
INSTANTIATE_TEST_SUITE_P(Gone, CSessionsTest,
                         ::testing::ValuesIn(ReadSessions(WIRELET_SESSIONS "/gone.txt")), GetName);
INSTANTIATE_TEST_SUITE_P(Of, CSessionsTest,
                         ::testing::ValuesIn(ReadSessions(WIRELET_SESSIONS "/sessions.txt")),
                         GetName);
