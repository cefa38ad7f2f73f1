// Message boxes and beeps, and what a process leaves behind that has taken its console over.
#include "console/Console.h"
#include "console/MessageBox.h"
#include "tests/endtoend/SessionTest.h"
#include "tests/platform/TestHandle.h"

#include <csignal>
#include <map>
#include <sys/mman.h>

namespace {

constexpr int kColumns = CTerminal::kColumns;
constexpr int kRows = CTerminal::kRows;

// ---- The work of the process under test.

HANDLE g_hInput;
HANDLE g_hOutput;
DWORD g_dwMode;

void Say(std::string_view text) {
    WriteConsoleA(g_hOutput, text.data(), static_cast<DWORD>(text.size()), nullptr, nullptr);
}

void TakeOver() {
    g_hInput = GetStdHandle(STD_INPUT_HANDLE);
    g_hOutput = GetStdHandle(STD_OUTPUT_HANDLE);
    GetConsoleMode(g_hInput, &g_dwMode);
    SetConsoleMode(g_hInput, 0);
}

void GiveBack() {
    SetConsoleMode(g_hInput, g_dwMode);
}

BOOL OnControlEvent(DWORD event) {
    Say("event " + std::to_string(event) + ";");
    GiveBack();
    MessageBoxA(nullptr, "from the handler", nullptr, MB_OK);
    return TRUE;
}

void ShowLongText() {
    std::string text = "first line";
    for (int line = 2; line <= 60; ++line)
        text += "\r\nline " + std::to_string(line);
    MessageBoxA(nullptr, text.c_str(), nullptr, MB_ICONINFORMATION);
}

void Fault() {
    void* const page = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    *static_cast<volatile int*>(page) = 1;
}

// Overflows the stack.
[[gnu::noinline]] int Recurse(int depth) {
    volatile char room[1024];
    room[0] = static_cast<char>(depth & 1);
    return depth < 0 ? 0 : Recurse(depth + 1) + room[0];
}

// Never waits again.
void Hang() {
    dprintf(STDOUT_FILENO, "hung");
    for (;;)
        pause();
}

// What keys do; others are told.
void Act(char key) {
    static const std::map<char, void (*)()> kActions = {
        {'m',
         [] { Say(std::to_string(MessageBoxA(nullptr, "It fails.", "Oh", MB_ICONEXCLAMATION))); }},
        {'l', ShowLongText},
        {'b', [] { MessageBeep(MB_OK); }},
        {'A', Fault},
        {'R', [] { Recurse(0); }},
        {'E', [] { std::exit(3); }},
        {'W', Hang},
    };
    const auto action = kActions.find(key);
    if (action != kActions.end())
        action->second();
    else
        Say("<" + std::to_string(key) + ">");
}

// Draws a screen, its cursor behind a full row, and does what keys say until the input or the
// console ends.
void RunConsole() {
    TakeOver();
    DWORD count = 0;
    FillConsoleOutputCharacterA(g_hOutput, ' ', kColumns * kRows, {0, 0}, &count);
    FillConsoleOutputAttribute(g_hOutput, 0x07, kColumns * kRows, {0, 0}, &count);
    SetConsoleCursorPosition(g_hOutput, {0, 0});
    Say("plain\r\n");
    SetConsoleTitleA("title");
    SetConsoleTextAttribute(g_hOutput, 0x1E);
    Say("ready" + std::string(kColumns - 5, '.'));
    DWORD mode = 0;
    INPUT_RECORD record{};
    while (mode == 0 && ReadConsoleInputA(g_hInput, &record, 1, &count)) {
        if (record.EventType == KEY_EVENT)
            Act(record.Event.KeyEvent.uChar.AsciiChar);
        GetConsoleMode(g_hInput, &mode);
    }
    Say("over;");
}

void RunWithHandler() {
    SetConsoleCtrlHandler(OnControlEvent, TRUE);
    RunConsole();
}

// Shows boxes while nobody has the console: one on this thread, two of others at once. A thread
// that has not taken the console over has none.
void RunThreads() {
    auto show = [] { MessageBoxA(nullptr, "from a thread", "One", MB_OK); };
    auto showToo = [] { MessageBoxA(nullptr, "from another", "Two", MB_OK); };
    dprintf(STDOUT_FILENO, "before");
    dprintf(STDOUT_FILENO, " after %d", MessageBoxA(nullptr, nullptr, nullptr, MB_OK));
    TakeOver();
    INPUT_RECORD record{};
    DWORD count = 0;
    while (record.Event.KeyEvent.uChar.AsciiChar != 'x')
        ReadConsoleInputA(g_hInput, &record, 1, &count);
    AwaitEnd(StartThread(show));
    GiveBack();
    const CTestHandle first = StartThread(show);
    const CTestHandle second = StartThread(showToo);
    AwaitEnd(first);
    AwaitEnd(second);
}

// ---- The user.

class BoxTest : public CSessionTest {
  protected:
    BoxTest() { m_pump.Add(m_error); }

    void Do(void (*work)(), const char* type = "xterm", int input = -1, int output = -1) {
        m_work = [=] {
            unsetenv("TMUX");
            setenv("TERM", type, 1);
            work();
        };
        m_terminal.GetReceived().clear();
        StartWith({}, input, output, m_error.GetWriter());
    }
    Result Opens(void (*work)()) {
        Do(work);
        Type("m");
        return ShowsBox();
    }
    Result ShowsBox() {
        return Fulfils("a box", [this] {
            const VTermPos cursor = Screen().GetCursor();
            return Screen().FindRow("[ OK ]") >= 0 &&
                   Screen().GetCell(cursor.row, cursor.col).chars[0] == 'O';
        });
    }
    Result HidesBox() {
        return Fulfils("no box", [this] { return Screen().FindRow("[ OK ]") < 0; });
    }
    Result IsOver(int exit = CProcess::kWorkDone) {
        const Result ended = EndsWith(exit);
        return ended ? GivesTerminalBack() : ended;
    }
    int CountOf(std::string_view sequence) {
        const std::string& output = m_terminal.GetOutput();
        int count = 0;
        for (std::size_t at = 0; (at = output.find(sequence, at)) != std::string::npos; ++at)
            ++count;
        return count;
    }
    int TimesEntered() { return CountOf("\x1b[?1049h"); }
    int TimesLeft() { return CountOf("\x1b[?1049l"); }

    // Everything that can be seen.
    std::string Sight() {
        const VTermPos cursor = Screen().GetCursor();
        std::string all = Screen().GetText() + std::to_string(cursor.row * kColumns + cursor.col);
        for (int cell = 0; cell < kColumns * kRows; ++cell) {
            const VTermScreenCell seen = Screen().GetCell(cell / kColumns, cell % kColumns);
            all += std::to_string(IndexOf(seen.fg)) + std::to_string(IndexOf(seen.bg)) +
                   (seen.attrs.reverse ? 'R' : ' ');
        }
        return all;
    }

    CCollector m_error;
};

} // namespace

TEST_F(BoxTest, IsShownOverTheScreenUntilAKeyClosesIt) {
    Do(RunConsole);
    ASSERT_TRUE(Shows("ready"));
    const std::string before = Sight();
    Type("l");
    ASSERT_TRUE(ShowsBox());
    Type("\r");
    ASSERT_TRUE(Fulfils("the screen from before", [&] { return Sight() == before; }));

    std::string results; // behind the full row: its wrap is still pending
    for (const char* const key : {"\r", " ", "\x1b"}) {
        Type("m");
        ASSERT_TRUE(ShowsBox());
        EXPECT_EQ(Screen().FindRow("plain"), -1);
        EXPECT_GE(Screen().FindRow("  ! It fails."), 0);
        EXPECT_LT(Screen().FindRow(" Oh"), Screen().FindRow("! It"));
        EXPECT_TRUE(Screen().IsCursorVisible());
        Type(key);
        results += '1';
        ASSERT_TRUE(HidesBox() && ShowsInRow(2, results));
    }
    const VTermScreenCell full = Screen().GetCell(1, kColumns - 1);
    const VTermScreenCell result = Screen().GetCell(2, 2);
    EXPECT_EQ(IndexOf(result.fg), IndexOf(full.fg));
    EXPECT_EQ(IndexOf(result.bg), IndexOf(full.bg));
    EXPECT_EQ(TimesEntered(), 4);
    m_program->Kill(SIGTERM);
    ASSERT_TRUE(IsOver(-SIGTERM));
    EXPECT_EQ(TimesLeft(), 4) << "a box that is closed is not left once more";
}

TEST_F(BoxTest, OtherKeysScrollAndWhatWasTypedBeforeIsKept) {
    Do(RunConsole);
    ASSERT_TRUE(Shows("ready"));
    const std::pair<const char*, const char*> steps[] = {
        {"lx\r", "Lines 1-19 of 60"},          {"a\x03\x1a\x1b[25~\x1b[6~", "Lines 20-38 of 60"},
        {"\x1b[A\x1b[A", "Lines 18-36 of 60"}, {"\x1b[F\x1b[B", "Lines 42-60 of 60"},
        {"\x1b[H\x1b[5~", "Lines 1-19 of 60"},
    };
    for (const auto& [keys, note] : steps) {
        Type(keys);
        ASSERT_TRUE(Shows(note));
        EXPECT_EQ(Screen().FindRow("i first line") >= 0,
                  std::string_view(note).starts_with("Lines 1-"));
    }
    const struct {
        int rows;
        int columns;
        const char* note;
    } windows[] = {
        {10, 40, "[ OK ] 1-8 of 60, Up/Down"},
        {5, 18, "[ OK ] 1-3/60"},
        {5, 24, "[ OK ] 1-3/60 Up/Dn"},
        {kRows, kColumns, "Lines 1-19 of 60: Up, Down, PageUp, PageDown"},
    };
    for (const auto& window : windows) {
        m_terminal.Resize(window.rows, window.columns);
        ASSERT_TRUE(Shows(window.note) && ShowsBox());
    }
    Type("\ryabc"); // the bell rings in its place
    ASSERT_TRUE(HidesBox() && Shows("<120><13><121><97><99>"));
    EXPECT_EQ(CountOf("<97>\a<99>"), 1);
    EXPECT_EQ(Screen().GetBells(), 1);
    m_program->Kill(SIGTERM);
    EXPECT_TRUE(IsOver(-SIGTERM));
}

TEST_F(BoxTest, BelongsToOneThreadAtATime) {
    const auto seen = [&](const char* text) { return Screen().FindRow(text) >= 0; };
    Type("x\r"); // keeps, while nobody has the console
    m_terminal.OnReady(POLLOUT);
    Do(RunThreads);
    ASSERT_TRUE(ShowsBox() && Shows("  Error"));
    EXPECT_EQ(m_terminal.GetLine().GetSettings().c_lflag & (ICANON | ECHO), 0U);
    Type("\r");
    ASSERT_TRUE(Shows("before after 1"));
    ASSERT_TRUE(Fulfils("a report", [&] { return m_error.GetText() == "One\nfrom a thread\n"; }));
    ASSERT_TRUE(ShowsBox());
    const bool isFirst = seen("from a thread");
    EXPECT_NE(isFirst, seen("from another"));
    Type("\r");
    ASSERT_TRUE(Shows(isFirst ? "from another" : "from a thread") && ShowsBox());
    Type("\r");
    ASSERT_TRUE(IsOver());
    EXPECT_EQ(TimesEntered(), 3);
    EXPECT_EQ(TimesLeft(), 3);
}

TEST_F(BoxTest, AControlEventClosesIt) {
    const std::pair<int, int> events[] = {
        {SIGHUP, CTRL_CLOSE_EVENT}, {SIGTERM, CTRL_SHUTDOWN_EVENT}, {SIGQUIT, CTRL_BREAK_EVENT}};
    std::string reports;
    for (const auto& [signal, event] : events) {
        ASSERT_TRUE(Opens(RunWithHandler));
        m_program->Kill(signal);
        ASSERT_TRUE(HidesBox() && Shows("event " + std::to_string(event) + ";"));
        ASSERT_TRUE(Shows("ready") && Shows("over;") && IsOver());
        reports += "Error\nfrom the handler\n";
        EXPECT_TRUE(Fulfils("a report", [&] { return m_error.GetText() == reports; }));
        EXPECT_EQ(TimesLeft(), 1);
    }
}

// Whatever ends the process: the first screen and the title from before are there.
TEST_F(BoxTest, LeavesTheTerminalSane) {
    const struct {
        void (*work)();
        const char* typed;
        const char* shown;
        int signal;
    } ends[] = {
        {RunConsole, "m", "[ OK ]", SIGSEGV},    {RunConsole, "m", "[ OK ]", SIGTERM},
        {RunConsole, "m", "[ OK ]", SIGUSR1},    {RunWithHandler, "A", "ready", 0},
        {RunWithHandler, "R", "ready", 0},       {RunWithHandler, "E", "ready", 0},
        {RunWithHandler, "W", "hung", SIGTERM},
    };
    for (const auto& end : ends) {
        Do(end.work);
        ASSERT_TRUE(Shows("ready"));
        Type(end.typed);
        ASSERT_TRUE(Shows(end.shown));
        do // more than once for who does not answer
            m_program->Kill(end.signal);
        while (!m_pump.RunUntil([this] { return m_program->HasEnded(); }, std::chrono::seconds(1)));
        EXPECT_NE(m_program->GetExit(), CProcess::kWorkDone) << end.typed;
        ASSERT_TRUE(GivesTerminalBack() && HidesBox() && Shows("ready"));
        ASSERT_TRUE(Fulfils("the title back", [this] { return CountOf("\x1b[23;0t") == 1; }));
        EXPECT_LT(m_terminal.GetOutput().find("ready"), m_terminal.GetOutput().rfind("\x1b[0m"));
        EXPECT_EQ(Screen().GetCursor().row, *end.typed == 'E' ? 2 : kRows - 1) << end.typed;
    }
}

TEST_F(BoxTest, IsThereAgainAfterAStop) {
    const auto isStopped = [this] { return m_program->IsStopped(); };
    ASSERT_TRUE(Opens(RunConsole));
    m_program->Kill(SIGTSTP);
    ASSERT_TRUE(HidesBox() && Shows("ready") && Fulfils("the stop", isStopped));
    EXPECT_TRUE(GivesTerminalBack());
    m_program->Kill(SIGCONT);
    ASSERT_TRUE(ShowsBox());
    // Stopped without being asked; somebody writes over the box.
    m_program->Kill(SIGSTOP);
    ASSERT_TRUE(Fulfils("the stop", isStopped));
    Screen().Feed("\x1b[H\x1b[J$ fg");
    m_program->Kill(SIGCONT);
    ASSERT_TRUE(ShowsBox());
    EXPECT_EQ(Screen().FindRow("$ fg"), -1);
    m_program->Kill(SIGTERM);
    EXPECT_TRUE(IsOver(-SIGTERM));
}

TEST_F(BoxTest, EndsWithTheInput) {
    ASSERT_TRUE(Opens([] {
        signal(SIGHUP, SIG_IGN);
        RunConsole();
    }));
    m_terminal.CloseWindow();
    EXPECT_TRUE(EndsWith(CProcess::kWorkDone));
}

TEST_F(BoxTest, IsPlainLinesOnAPoorTerminal) {
    const std::pair<const char*, std::vector<const char*>> steps[] = {
        {"m", {"ready", "! Oh", "It fails.", "[ OK ] Enter"}},
        {"q\r", {"Esc\r\n"}},
        {"l", {"line 22", "[ More ]"}},
        {" ", {"line 45"}},
        {"\r", {"line 60", "[ OK ]"}},
        {"\rz", {"<122>"}},
    };
    for (const char* type : {"linux", "dumb", "screen", "no-such-terminal"}) {
        Do(RunConsole, type);
        for (const auto& [keys, shown] : steps) {
            Type(keys);
            for (const char* const text : shown)
                ASSERT_TRUE(Fulfils(text, [&] { return CountOf(text) != 0; })) << type;
        }
        EXPECT_EQ(CountOf("1049"), 0);
        m_program->Kill(SIGTERM);
        ASSERT_TRUE(IsOver(-SIGTERM));
    }
}

// Without a terminal for the keys, and without one for the text.
TEST_F(BoxTest, IsToldOnStandardErrorWithoutATerminal) {
    const CDescriptor null(open("/dev/null", O_RDWR | O_CLOEXEC));
    const std::string report = "i Cap\none\ntwo\u2190[2J\u2261\nError\n\n";
    std::string reports;
    for (const bool hasKeys : {false, true}) {
        CCollector output;
        m_pump.Add(output);
        Do(
            [] {
                if (MessageBoxA(nullptr, "one\r\ntwo\x1b[2J\xF0", "Cap", MB_ICONINFORMATION) ==
                    IDOK)
                    MessageBoxA(nullptr, nullptr, nullptr, MB_OK);
                MessageBeep(MB_OK);
            },
            "xterm", hasKeys ? -1 : null.Get(), hasKeys ? output.GetWriter() : -1);
        output.CloseWriter();
        ASSERT_TRUE(IsOver() && Fulfils("the output", [&] { return output.HasEnded(); }));
        reports += report;
        EXPECT_TRUE(Fulfils("the reports", [&] { return m_error.GetText() == reports; }));
        EXPECT_EQ(output.GetText(), "");
        EXPECT_EQ(m_terminal.GetOutput(), hasKeys ? "" : "\a");
        m_pump.Remove(output);
    }
}
