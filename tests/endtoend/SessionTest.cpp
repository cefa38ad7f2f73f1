#include "tests/endtoend/SessionTest.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

using ::testing::AssertionFailure;
using ::testing::AssertionSuccess;

namespace {

// What a shell would print next; in the terminal's default colours.
constexpr char kPrompt[] = "prompt>";

std::string Quote(std::string_view bytes) {
    return ::testing::PrintToString(std::string(bytes.substr(0, 300)));
}

} // namespace

CSessionTest::CSessionTest() {
    m_streams.fill(m_terminal.GetLine().GetSlave());
    m_pump.Add(m_terminal);
    m_pump.Add(m_device);
    m_environment = {{"TERM", "xterm-256color"}, {"LANG", "C.UTF-8"}};
    for (const char* name : {"PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"})
        if (const char* value = std::getenv(name))
            m_environment[name] = value;
}

void CSessionTest::TearDown() {
    if (!m_program || m_program->HasEnded() || HasFailure())
        return;
    Type(kAltF4);
    EXPECT_TRUE(Ends());
}

ProcessOptions CSessionTest::Options(const std::string& program, const Words& arguments) const {
    ProcessOptions options;
    options.arguments = arguments;
    options.arguments.insert(options.arguments.begin(), program);
    for (const auto& [name, value] : m_environment)
        options.environment.push_back(name + '=' + value);
    return options;
}

void CSessionTest::StartWith(const Words& arguments, int input, int output, int error) {
    m_device.GetReceived().clear();
    m_terminalBefore = m_terminal.GetLine().GetSettings();
    m_deviceBefore = m_device.GetLine().GetSettings();
    ProcessOptions options = Options(WIRELET, arguments);
    options.input = input >= 0 ? input : m_streams[0];
    options.output = output >= 0 ? output : m_streams[1];
    options.error = error >= 0 ? error : m_streams[2];
    options.terminal = m_terminal.GetLine().GetPath();
    options.work = m_work;
    if (m_program) {
        m_pump.Remove(*m_program);
        // A terminal controls one session at a time.
        m_program.reset();
        // What the session before has left must not pass for this one's output.
        Screen().Feed("\x1B[2J\x1B[H");
    }
    m_program = std::make_unique<CProcess>(options);
    m_pump.Add(*m_program);
}

void CSessionTest::Start(Words options) {
    options.insert(options.begin(), m_device.GetPath());
    StartWith(options);
}

void CSessionTest::StartInteractive(const Words& options) {
    Start(options);
    // A device that was plugged in again may still have something of before.
    std::string& received = m_device.GetReceived();
    ASSERT_TRUE(Fulfils("the initialisation", [&] { return received.ends_with("ATE1V1\r"); }));
    received.clear();
}

void CSessionTest::StartCommands(std::string_view commands) {
    Start({"-A:" + m_folder.Write("commands", commands), "-O:" + m_capture});
}

void CSessionTest::StartScript(const std::string& statements) {
    const std::string script = "FUNCTION main()\r\n" + statements + "\r\nENDFUNCTION\r\n";
    Start({"-S:" + m_folder.Write("script", script), "-O:" + m_capture});
}

void CSessionTest::ConnectModem(const Words& options) {
    m_modem.emplace(m_pump, options);
    m_modemEnd.emplace(m_modem->GetPath(), m_modem->GetPath());
    m_modemEnd->JoinTo(m_device);
    m_pump.Add(*m_modemEnd);
}

CSessionTest::Outcome CSessionTest::Run(const Words& arguments, const std::string& input,
                                        const std::string& program) {
    CCollector output;
    CCollector error;
    ProcessOptions options = Options(program, arguments);
    const CDescriptor file(open(m_folder.Write("input", input).c_str(), O_RDONLY | O_CLOEXEC));
    options.input = file.Get();
    options.output = output.GetWriter();
    options.error = error.GetWriter();
    CProcess process(options);
    output.CloseWriter();
    error.CloseWriter();
    const std::initializer_list<IPollable*> parts = {&process, &output, &error};
    for (IPollable* part : parts)
        m_pump.Add(*part);
    EXPECT_TRUE(Fulfils("the other program's end", [&] {
        return process.HasEnded() && output.HasEnded() && error.HasEnded();
    }));
    for (IPollable* part : parts)
        m_pump.Remove(*part);
    return {process.GetExit(), output.GetText(), error.GetText()};
}

CSessionTest::Result CSessionTest::Fulfils(const char* what, const std::function<bool()>& condition,
                                           std::chrono::milliseconds patience) {
    if (m_pump.RunUntil(condition, patience))
        return AssertionSuccess();
    return AssertionFailure() << "waited in vain: " << what << "; the screen shows\n"
                              << Screen().GetText() << "\nthe device has "
                              << Quote(m_device.GetReceived());
}

CSessionTest::Result CSessionTest::Shows(std::string_view text) {
    return Fulfils(std::string(text).c_str(), [&] { return Screen().FindRow(text) >= 0; });
}

CSessionTest::Result CSessionTest::ShowsInRow(int row, const std::string& text) {
    return Fulfils(text.c_str(), [&] { return Screen().GetRow(row) == text; });
}

// However slow the device is, as long as something comes.
CSessionTest::Result CSessionTest::DeviceGets(const std::string& bytes) {
    std::string& received = m_device.GetReceived();
    for (std::size_t before = 0; (before = received.size()) < bytes.size();)
        if (!m_pump.RunUntil([&] { return received.size() != before; }))
            return Fulfils("bytes for the device", [] { return false; }, {}) << Quote(bytes);
    const Result same = IsSame(received.substr(0, bytes.size()), bytes);
    received.erase(0, bytes.size());
    return same;
}

CSessionTest::Result CSessionTest::GivesTerminalBack() {
    return Fulfils("the terminal given back",
                   [this] { return m_terminal.GetLine().GetSettings() == m_terminalBefore; });
}

CSessionTest::Result CSessionTest::IsSame(const std::string& actual, const std::string& expected) {
    const auto [one, other] =
        std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
    if (one == actual.end() && other == expected.end())
        return AssertionSuccess();
    const auto place = static_cast<std::size_t>(one - actual.begin());
    return AssertionFailure() << "from byte " << place << " on it is "
                              << Quote(actual.substr(place)) << ", not "
                              << Quote(expected.substr(place));
}

std::string CSessionTest::Decode(const std::string& log) {
    std::string bytes;
    char last = 0;
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);) {
        const char direction = line.starts_with("[PC ==>     ]  [") ? '>' : '<';
        if (!line.ends_with(" ]\r") || (direction == '<' && !line.starts_with("[  <== Phone]  [")))
            return bytes + "no line of a log: " + line;
        if (direction != last)
            bytes += last = direction;
        std::istringstream numbers(line.substr(line.rfind('[') + 1));
        for (int value = 0; numbers >> std::hex >> value;)
            bytes += static_cast<char>(value);
    }
    return bytes;
}

std::string CSessionTest::MakeLines(int count, std::string_view end) {
    std::string lines;
    for (int line = 0; line < count; ++line)
        lines += ("line " + std::to_string(line)).append(end);
    return lines;
}

void CSessionTest::ExpectLines(int count) {
    const std::vector<std::string>& scrollback = Screen().GetScrollback();
    auto row = std::find(scrollback.begin(), scrollback.end(), "line 0");
    int line = 0;
    for (; row != scrollback.end(); ++row)
        ASSERT_EQ(*row, "line " + std::to_string(line++));
    EXPECT_EQ(line, count + 1 - CTerminal::kRows);
}

CSessionTest::Result CSessionTest::EndsWith(int exit, std::chrono::milliseconds patience) {
    const Result ended = Fulfils(
        "the end", [this] { return m_program->HasEnded(); }, patience);
    if (!ended || m_program->GetExit() == exit)
        return ended;
    return AssertionFailure() << "ended with " << m_program->GetExit() << "; the screen shows\n"
                              << Screen().GetText();
}

CSessionTest::Result CSessionTest::Ends(int exit) {
    const Result ended = EndsWith(exit);
    if (!ended || m_terminal.GetDescriptor() < 0)
        return ended;
    const Result shown = ShowsPrompt();
    return shown ? IsSane() : shown;
}

CSessionTest::Result CSessionTest::EndsAsGone() {
    if (const Result ended = EndsWith(0, kSoon); !ended)
        return ended;
    const std::string message = "The device " + m_device.GetPath() + " is gone";
    const auto isTold = [&] { return m_terminal.GetOutput().find(message) != std::string::npos; };
    const Result told = Fulfils(message.c_str(), isTold);
    return told ? GivesTerminalBack() : told;
}

// The prompt goes the same way as the program's output did, so once it is there all of that is.
CSessionTest::Result CSessionTest::ShowsPrompt() {
    m_terminal.SetReading(true);
    static_cast<void>(!write(m_terminal.GetLine().GetSlave(), kPrompt, sizeof(kPrompt) - 1));
    return Fulfils("the prompt", [this] { return m_terminal.GetOutput().ends_with(kPrompt); });
}

CSessionTest::Result CSessionTest::IsSane() {
    CScreen& screen = Screen();
    const std::string text = screen.GetText();
    const VTermScreenCell cell = screen.GetCell(screen.GetCursor().row, 0);
    const std::vector<std::string>& oddities = screen.GetOddities();
    const auto titles = std::count(oddities.begin(), oddities.end(), "CSI t");
    // Who crashes cannot put the device's settings back, and goes to the last row.
    const bool isCrash = m_program->GetExit() < 0;
    const bool isDeviceAsBefore = isCrash || m_device.GetDescriptor() < 0 ||
                                  m_device.GetLine().GetSettings() == m_deviceBefore;
    const std::pair<bool, const char*> demands[] = {
        {m_terminal.GetLine().GetSettings() == m_terminalBefore,
         "the terminal's settings as before"},
        {isDeviceAsBefore, "the device's settings as before"},
        {text == kPrompt || text.ends_with(std::string("\n") + kPrompt),
         "the cursor below the text"},
        {isCrash || !text.ends_with(std::string("\n\n") + kPrompt),
         "the cursor right below the text"},
        {IndexOf(cell.fg) == -1 && IndexOf(cell.bg) == -1, "the prompt in the default colours"},
        {!cell.attrs.bold && !cell.attrs.reverse, "the prompt in plain letters"},
        {screen.IsCursorVisible(), "a cursor to be seen"},
        {screen.GetReplies().empty(), "a terminal that was asked nothing"},
        {titles == std::ssize(oddities), "no control functions but those of the title"},
    };
    for (const auto& [isMet, demand] : demands)
        if (!isMet)
            return AssertionFailure() << "not so: " << demand << "; the screen shows\n"
                                      << text << "\n"
                                      << ::testing::PrintToString(oddities);
    return AssertionSuccess();
}
