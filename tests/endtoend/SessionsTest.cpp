// The sessions of the files of texts: what user, device and screen say to each other, step by step;
// sessions.txt has the words. And of blocked.txt: wherever the program waits, it ends in order when
// it is asked to, and soon.
#include "tests/endtoend/SessionTest.h"
#include "tests/support/Unescape.h"

#include <iterator>
#include <sstream>
#include <sys/ioctl.h>
#include <sys/stat.h>

namespace {

struct Session {
    std::string name;
    std::vector<std::pair<std::string, std::string>> steps;
};

std::vector<Session> ReadSessions(std::initializer_list<std::string> files) {
    std::vector<Session> sessions;
    std::string text;
    for (const std::string& file : files)
        text += ReadWholeFile(WIRELET_SESSIONS "/" + file + ".txt");
    std::istringstream lines(text);
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

    void Go() {
        for (const auto& [verb, text] : GetParam().steps) {
            if (const auto action = m_actions.find(verb); action != m_actions.end())
                action->second(Complete(text));
            else
                ASSERT_TRUE(m_demands.at(verb)(Complete(text))) << verb << ' ' << text;
        }
    }
    // Unescaped, and with the paths that are meant.
    std::string Complete(std::string text) {
        const std::pair<std::string, std::string> names[] = {
            {"DEVICE", m_device.GetPath()},
            {"TERMINAL", m_terminal.GetLine().GetPath()},
            {"LOG", m_capture},
            {"FILE", m_folder.GetPath("file")},
            {"EXAMPLES", WIRELET_SESSIONS "/../../examples"},
            {"MUCH", std::string(300000, 'm')},
            {"LINES", MakeLines(20000, " \u00E9\u6F22\U0001F642\r\n")}};
        for (const auto& [name, meant] : names)
            for (std::size_t at = 0; (at = text.find(name, at)) != text.npos; at += meant.size())
                text.replace(at, name.size(), meant);
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
    // The speed of the device's line, and whether it has hardware flow control.
    Result HasLine(const std::vector<int>& numbers) {
        // A termios2: its header does not go with <termios.h>, which tells no speed but the named.
        std::array<unsigned, 11> settings{};
        ioctl(m_device.GetLine().GetSlave(), _IOR('T', 0x2A, settings), settings.data());
        const std::vector<int> line = {static_cast<int>(settings[10]),
                                       (settings[2] & CRTSCTS) != 0};
        return Result(line == numbers) << ::testing::PrintToString(line);
    }
    static Words Split(Text text) {
        std::istringstream words(text);
        return {std::istream_iterator<std::string>(words), {}};
    }
    void Redirect(std::size_t stream, Text path) {
        m_files.at(stream).Reset(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
        m_streams.at(stream) = m_files.at(stream).Get();
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
    // For so long there is nothing, once what was begun is done: on a busy machine that takes a
    // while.
    Result IsIdle(int seconds) {
#ifdef __SANITIZE_THREAD__
        seconds = 0; // the thread sanitizer's own thread wakes up all the time
#endif
        return Fulfils("idleness", [&] {
            const std::string before = m_program->GetActivity();
            m_pump.RunFor(std::chrono::seconds(seconds));
            return !before.empty() && (seconds == 0 || m_program->GetActivity() == before);
        });
    }
    Result Logs(Text text) {
        Result same = IsSame("", text);
        m_pump.RunUntil(
            [&] { return bool(same = IsSame(Decode(ReadWholeFile(m_capture)), text)); });
        return same;
    }
    bool IsTerminalRaw() {
        return (m_terminal.GetLine().GetSettings().c_lflag & (ICANON | ECHO)) == 0;
    }
    bool HasWritten(Text text) {
        return m_terminal.GetOutput().find(text) != std::string::npos;
    }
    bool IsOnlyOnce(Text text) {
        const std::string& output = m_terminal.GetOutput();
        return output.find(text) == output.rfind(text);
    }

    std::array<CDescriptor, 2> m_files; // in place of the terminal
    std::map<std::string, std::function<void(Text)>> m_actions = {
        {"with",
         [this](Text text) { m_environment[text.substr(0, text.find('='))] = Behind('=', text); }},
        {"modem", [this](Text text) { ConnectModem(Split(text)); }},
        {"file", [this](Text text) { m_folder.Write("file", text); }},
        {"fifo", [this](Text) { mkfifo(m_capture.c_str(), 0600); }},
        {"from", [this](Text text) { Redirect(0, text); }},
        {"to", [this](Text text) { Redirect(1, text); }},
        {"run", [this](Text text) { StartWith(Split(text)); }},
        {"commands", [this](Text text) { StartCommands(text); }},
        {"script", [this](Text text) { StartScript(text); }},
        {"type", [this](Text text) { Type(text); }},
        {"send", [this](Text text) { Send(text); }},
        {"stream", [this](Text text) { m_device.SendEndlessly(text); }},
        {"takes", [this](Text text) { m_device.SetReadLimit(std::stoul(text)); }},
        {"reads", [this](Text text) { m_terminal.SetReading(text == "on"); }},
        {"size", [this](Text text) { m_terminal.Resize(Numbers(text)[0], Numbers(text)[1]); }},
        {"unplug", [this](Text) { m_device.Vanish(); }},
        {"close", [this](Text) { m_terminal.CloseWindow(); }},
        {"restore", [this](Text) { m_terminal.GetLine().ApplySettings(m_terminalBefore); }},
        {"kill", [this](Text text) { m_program->Kill(Numbers(text)[0]); }},
    };
    std::map<std::string, std::function<Result(Text)>> m_demands = {
        {"gets", [this](Text text) { return DeviceGets(text); }},
        {"nothing", [this](Text) { return IsSame(m_device.GetReceived(), ""); }},
        {"shows", [this](Text text) { return Shows(text); }},
        {"hides", [this](Text text) { return Result(Screen().FindRow(text) < 0); }},
        {"row", [this](Text text) { return ShowsInRow(std::stoi(text), Behind(' ', text)); }},
        {"colour", [this](Text text) { return HasColours(Numbers(text)); }},
        {"line", [this](Text text) { return HasLine(Numbers(text)); }},
        {"title", [this](Text text) { return IsSame(Screen().GetTitle(), text); }},
        {"rings",
         [this](Text) { return Fulfils("bell", [&] { return Screen().GetBells() == 1; }); }},
        {"written",
         [this](Text text) { return Fulfils("output", [&] { return HasWritten(text); }); }},
        {"once", [this](Text text) { return Result(IsOnlyOnce(text)); }},
        {"unwritten", [this](Text text) { return Result(!HasWritten(text)); }},
        {"taken", [this](Text) { return IsTaken(); }},
        {"eaten", [this](Text) { return Result(m_terminal.GetLine().CountUnread() == 0); }},
        {"captured", [this](Text text) { return IsSame(ReadWholeFile(m_capture), text); }},
        {"logged", [this](Text text) { return Logs(text); }},
        {"idle", [this](Text text) { return IsIdle(std::stoi(text)); }},
        {"raw", [this](Text) { return Fulfils("raw", [&] { return IsTerminalRaw(); }); }},
        {"stopped",
         [this](Text) { return Fulfils("stop", [&] { return m_program->IsStopped(); }); }},
        {"freed", [this](Text) { return GivesTerminalBack(); }},
        {"gone", [this](Text) { return EndsAsGone(); }},
        {"ends", [this](Text text) { return Ends(std::stoi(text)); }},
        {"over", [this](Text text) { return EndsWith(std::stoi(text)); }},
    };
};

class CBlockedTest : public CSessionsTest {
  protected:
    // Starts the program and lets it get to its place.
    void StartAndBlock() {
        m_device = CDevice();
        m_terminal.SetReading(true);
        m_terminal.GetReceived().clear();
        Go();
        const bool isPiped{m_files[0]};
        ASSERT_TRUE(Fulfils("the start", [&] { return isPiped || HasWritten("19200 baud"); }));
        m_pump.RunFor(std::chrono::milliseconds(500));
        ASSERT_FALSE(m_program->HasEnded());
    }

    void ExpectEnd(int signal) {
        m_program->Kill(signal);
        EXPECT_TRUE(EndsWith(IsRun() ? -signal : 0, kSoon));
        EXPECT_TRUE(m_device.GetLine().GetSettings() == m_deviceBefore);
        EXPECT_TRUE(GivesTerminalBack());
    }

    // Of a script or a command file.
    static bool IsRun() { return !GetParam().name.starts_with("Terminal"); }
};

TEST_P(CSessionsTest, GoesAsTheFileSays) {
    Go();
}

TEST_P(CBlockedTest, EndsInOrder) {
    StartAndBlock();
    ExpectEnd(SIGHUP);
    if (!IsRun())
        return;
    // The first only gives the terminal back, if there is one.
    StartAndBlock();
    m_program->Kill(SIGQUIT);
    ASSERT_TRUE(GivesTerminalBack());
    m_pump.RunFor(std::chrono::milliseconds(200));
    ExpectEnd(SIGTERM);
    Redirect(0, "/dev/null");
    Redirect(1, "/dev/null");
    const Pipe unread;
    m_streams[2] = unread.writer.Get();
    StartAndBlock();
    ExpectEnd(SIGQUIT);
}

std::string GetName(const ::testing::TestParamInfo<Session>& session) {
    return session.param.name;
}
INSTANTIATE_TEST_SUITE_P(Gone, CSessionsTest, ::testing::ValuesIn(ReadSessions({"gone"})), GetName);
// There are none in tests/vm.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(CBlockedTest);
INSTANTIATE_TEST_SUITE_P(Of, CBlockedTest, ::testing::ValuesIn(ReadSessions({"blocked"})), GetName);
INSTANTIATE_TEST_SUITE_P(
    Of, CSessionsTest, ::testing::ValuesIn(ReadSessions({"sessions", "boxes", "ends", "examples"})),
    GetName);
