// Message boxes as sessions.txt cannot tell them, and what a process leaves behind that has taken
// its console over.
#include "console/Console.h"
#include "console/MessageBox.h"
#include "tests/endtoend/SessionTest.h"
#include "tests/platform/TestHandle.h"

#include <csignal>

namespace {

// ---- The work of a process in the program's place.

void TakeOver() {
    SetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), 0);
    SetConsoleTitleA("title");
    DWORD count = 0;
    WriteConsoleA(GetStdHandle(STD_OUTPUT_HANDLE), "ready", 5, &count, nullptr);
    WaitForSingleObject(GetStdHandle(STD_INPUT_HANDLE), 1); // lets it out
}

[[gnu::noinline]] int Recurse(int depth) {
    volatile char room[1024];
    room[0] = static_cast<char>(depth & 1);
    return depth < 0 ? 0 : Recurse(depth + 1) + room[0];
}

void OverflowStack() {
    TakeOver();
    Recurse(0);
}

void Exit() {
    TakeOver();
    std::exit(3);
}

// Has a handler, but never waits again.
void Hang() {
    SetConsoleCtrlHandler([](DWORD) { return TRUE; }, TRUE);
    TakeOver();
    dprintf(STDOUT_FILENO, "hung");
    for (;;)
        pause();
}

// Shows boxes while nobody has the console: one on this thread, two of others at once. A thread
// that has not taken the console over has none.
void RunThreads() {
    auto show = [] { MessageBoxA(nullptr, "from a thread", "One", MB_OK); };
    auto showToo = [] { MessageBoxA(nullptr, "from another", "Two", MB_OK); };
    dprintf(STDOUT_FILENO, "before");
    dprintf(STDOUT_FILENO, " after %d", MessageBoxA(nullptr, nullptr, nullptr, MB_OK));
    DWORD mode = 0;
    GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode);
    TakeOver();
    INPUT_RECORD record{};
    DWORD count = 0;
    while (record.Event.KeyEvent.uChar.AsciiChar != 'x')
        ReadConsoleInputA(GetStdHandle(STD_INPUT_HANDLE), &record, 1, &count);
    AwaitEnd(StartThread(show));
    SetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), mode);
    const CTestHandle first = StartThread(show);
    const CTestHandle second = StartThread(showToo);
    AwaitEnd(first);
    AwaitEnd(second);
}

// ---- The user.

class BoxTest : public CSessionTest {
  protected:
    BoxTest() { m_pump.Add(m_error); }

    // Runs a script, or the work.
    void Do(const std::string& statements, void (*work)() = nullptr, int input = -1,
            int output = -1) {
        if (work)
            m_work = [work] {
                unsetenv("TMUX");
                setenv("TERM", "xterm", 1);
                work();
            };
        else
            m_work = nullptr;
        m_terminal.GetReceived().clear();
        const std::string script = "FUNCTION main()\r\n" + statements + "\r\nENDFUNCTION\r\n";
        StartWith({m_device.GetPath(), "-S:" + m_folder.Write("script", script)}, input, output,
                  m_error.GetWriter());
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
    Result IsOver(int exit = 0) {
        const Result ended = EndsWith(exit);
        return ended ? GivesTerminalBack() : ended;
    }
    int CountOf(std::string_view text) {
        const std::string& output = m_terminal.GetOutput();
        int count = 0;
        for (std::size_t at = 0; (at = output.find(text, at)) != std::string::npos; ++at)
            ++count;
        return count;
    }
    // How often the alternate screen was entered, which has been left as often.
    int TimesShown() {
        EXPECT_EQ(CountOf("\x1b[?1049h"), CountOf("\x1b[?1049l"));
        return CountOf("\x1b[?1049h");
    }

    CCollector m_error;
};

constexpr char kBox[] = "MessageBox(\"It works.\", \"Oh\")";

} // namespace

TEST_F(BoxTest, BelongsToOneThreadAtATime) {
    const auto seen = [&](const char* text) { return Screen().FindRow(text) >= 0; };
    Type("x\r");             // keeps, while nobody has the console
    ASSERT_TRUE(Shows("x")); // echoed
    Do("", RunThreads);
    ASSERT_TRUE(ShowsBox() && seen("  Error"));
    EXPECT_EQ(m_terminal.GetLine().GetSettings().c_lflag & (ICANON | ECHO), 0U);
    Type("\r");
    ASSERT_TRUE(Fulfils("a report", [&] { return m_error.GetText() == "One\nfrom a thread\n"; }));
    ASSERT_TRUE(ShowsBox());
    const bool isFirst = seen("from a thread");
    EXPECT_NE(isFirst, seen("from another"));
    Type("\r");
    ASSERT_TRUE(Shows(isFirst ? "from another" : "from a thread") && ShowsBox());
    Type("\r");
    ASSERT_TRUE(IsOver(CProcess::kWorkDone) && Shows("before after 1"));
    EXPECT_EQ(TimesShown(), 3);
}

// Whatever ends the process: the first screen and the title from before are there.
TEST_F(BoxTest, LeavesTheTerminalSane) {
    const struct {
        void (*work)(); // null: the program shows a box
        const char* shown;
        int signal;
    } ends[] = {
        {nullptr, "[ OK ]", SIGSEGV}, {nullptr, "[ OK ]", SIGUSR1}, {nullptr, "[ OK ]", SIGHUP},
        {nullptr, "[ OK ]", SIGTERM}, {OverflowStack, "ready", 0},  {Exit, "ready", 0},
        {Hang, "hung", SIGTERM},
    };
    for (const auto& end : ends) {
        SCOPED_TRACE(std::string(end.shown) + " " + std::to_string(end.signal));
        Do(kBox, end.work);
        ASSERT_TRUE(Fulfils(end.shown, [&] { return CountOf(end.shown) != 0; }));
        do // more than once for who does not answer
            m_program->Kill(end.signal);
        while (!m_pump.RunUntil([this] { return m_program->HasEnded(); }, std::chrono::seconds(1)));
        EXPECT_NE(m_program->GetExit(), end.work ? CProcess::kWorkDone : 0);
        ASSERT_TRUE(GivesTerminalBack() && HidesBox() && (end.work || Shows("baud")));
        ASSERT_TRUE(Fulfils("the title back", [this] { return CountOf("\x1b[23;0t") == 1; }));
        EXPECT_EQ(TimesShown(), end.work ? 0 : 1);
    }
}

TEST_F(BoxTest, IsThereAgainAfterAStop) {
    const auto isStopped = [this] { return m_program->IsStopped(); };
    Do(kBox);
    ASSERT_TRUE(ShowsBox());
    m_program->Kill(SIGTSTP);
    ASSERT_TRUE(HidesBox() && Shows("baud") && Fulfils("the stop", isStopped));
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
    Type("\r");
    EXPECT_TRUE(IsOver());
}

TEST_F(BoxTest, EndsWithTheInput) {
    Do("", [] {
        signal(SIGHUP, SIG_IGN);
        MessageBoxA(nullptr, "", nullptr, MB_OK);
    });
    ASSERT_TRUE(ShowsBox());
    m_terminal.CloseWindow();
    EXPECT_TRUE(EndsWith(CProcess::kWorkDone));
}

// Without a terminal for the keys, and without one for the text.
TEST_F(BoxTest, IsToldOnStandardErrorWithoutATerminal) {
    const CDescriptor null(open("/dev/null", O_RDWR | O_CLOEXEC));
    std::string reports;
    for (const bool hasKeys : {false, true}) {
        Do("MessageBox(\"one\\r\\ntwo\x1b[2J\xF0\", \"Cap\")\r\nBeep()", nullptr,
           hasKeys ? -1 : null.Get(), hasKeys ? null.Get() : -1);
        ASSERT_TRUE(IsOver());
        reports += "i Cap\none\ntwo\u2190[2J\u2261\n";
        EXPECT_TRUE(Fulfils("the reports", [&] { return m_error.GetText() == reports; }));
        EXPECT_EQ(Screen().GetBells(), 1);
    }
}
