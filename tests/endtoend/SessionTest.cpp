#include "tests/endtoend/SessionTest.h"

#include <algorithm>
#include <cstdlib>

using ::testing::AssertionFailure;
using ::testing::AssertionSuccess;

namespace {

// What a shell would print next; in the terminal's default colours.
constexpr char kPrompt[] = "prompt>";

std::string Quote(std::string_view bytes) {
    return ::testing::PrintToString(std::string(bytes));
}

} // namespace

CSessionTest::CSessionTest() {
    m_pump.Add(m_terminal);
    m_pump.Add(m_device);
    SetVariable("TERM", "xterm-256color");
    SetVariable("LANG", "C.UTF-8");
    for (const char* name : {"PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"})
        if (const char* value = std::getenv(name))
            SetVariable(name, value);
}

void CSessionTest::SetVariable(const std::string& name, const std::string& value) {
    std::erase_if(m_environment,
                  [&](const std::string& entry) { return entry.starts_with(name + '='); });
    m_environment.push_back(name + '=' + value);
}

void CSessionTest::TearDown() {
    if (!m_program || m_program->HasEnded() || HasFailure())
        return;
    Type(kAltF4);
    EXPECT_TRUE(Ends());
}

void CSessionTest::Start(const std::string& device, const std::vector<std::string>& options) {
    std::vector<std::string> arguments = {device};
    arguments.insert(arguments.end(), options.begin(), options.end());
    StartWith(-1, -1, -1, arguments);
}

void CSessionTest::StartWith(int input, int output, int error,
                             const std::vector<std::string>& arguments) {
    m_device.GetReceived().clear();
    m_terminalBefore = m_terminal.GetLine().GetSettings();
    m_deviceBefore = m_device.GetLine().GetSettings();
    const auto orTerminal = [this](int descriptor) {
        return descriptor >= 0 ? descriptor : m_terminal.GetLine().GetSlave();
    };

    ProcessOptions process;
    process.arguments = {WIRELET};
    process.arguments.insert(process.arguments.end(), arguments.begin(), arguments.end());
    process.environment = m_environment;
    process.input = orTerminal(input);
    process.output = orTerminal(output);
    process.error = orTerminal(error);
    process.terminal = m_terminal.GetLine().GetPath();
    if (m_program) {
        m_pump.Remove(*m_program);
        // A terminal controls one session at a time.
        m_program.reset();
        // What the session before has left must not pass for this one's output.
        Screen().Feed("\x1B[2J\x1B[H");
    }
    m_program = std::make_unique<CProcess>(process);
    m_pump.Add(*m_program);
}

void CSessionTest::StartInteractive() {
    Start(m_device.GetPath());
    ASSERT_TRUE(Shows("Setting 19200 baud"));
    ASSERT_TRUE(DeviceGets("ATE1V1\r"));
}

CSessionTest::Result CSessionTest::Fulfils(const char* what,
                                           const std::function<bool()>& condition) {
    if (m_pump.RunUntil(condition))
        return AssertionSuccess();
    return AssertionFailure() << "waited in vain: " << what << "; the screen shows\n"
                              << Screen().GetText() << "\nthe device has "
                              << Quote(m_device.GetReceived().substr(0, 300));
}

CSessionTest::Result CSessionTest::Shows(std::string_view text) {
    return Fulfils(std::string(text).c_str(), [&] { return Screen().FindRow(text) >= 0; });
}

CSessionTest::Result CSessionTest::ShowsInRow(int row, const std::string& text) {
    return Fulfils(text.c_str(), [&] { return Screen().GetRow(row) == text; });
}

CSessionTest::Result CSessionTest::DeviceGets(const std::string& bytes) {
    std::string& received = m_device.GetReceived();
    if (!m_pump.RunUntil([&] { return received.size() >= bytes.size(); }))
        return Fulfils("bytes for the device", [] { return false; }) << Quote(bytes);
    const auto [expected, actual] = std::mismatch(bytes.begin(), bytes.end(), received.begin());
    if (expected != bytes.end()) {
        const auto place = static_cast<std::size_t>(expected - bytes.begin());
        return AssertionFailure() << "byte " << place
                                  << " for the device: " << Quote(bytes.substr(place, 60))
                                  << " came as " << Quote(received.substr(place, 60));
    }
    received.erase(0, bytes.size());
    return AssertionSuccess();
}

CSessionTest::Result CSessionTest::GivesTerminalBack() {
    return Fulfils("the terminal given back",
                   [this] { return m_terminal.GetLine().GetSettings() == m_terminalBefore; });
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

CSessionTest::Result CSessionTest::EndsWith(int exit) {
    if (const Result ended = Fulfils("the end", [this] { return m_program->HasEnded(); }); !ended)
        return ended;
    if (m_program->GetExit() == exit)
        return AssertionSuccess();
    return AssertionFailure() << "ended with " << m_program->GetExit() << "; the screen shows\n"
                              << Screen().GetText();
}

CSessionTest::Result CSessionTest::Ends(int exit) {
    if (const Result ended = EndsWith(exit); !ended)
        return ended;
    if (m_terminal.GetDescriptor() < 0)
        return AssertionSuccess();
    if (const Result shown = ShowsPrompt(); !shown)
        return shown;
    return IsSane();
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
