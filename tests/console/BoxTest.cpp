// Message boxes and beeps, and what a process leaves behind that has taken its console over.
#include "console/Console.h"
#include "console/MessageBox.h"
#include "tests/console/ConsoleTest.h"
#include "tests/platform/TestHandle.h"

#include <csignal>
#include <cstdio>
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

std::string LongText() {
    std::string text = "first line";
    for (int line = 2; line <= 60; ++line)
        text += "\r\nline " + std::to_string(line);
    return text;
}

// Overflows the stack.
[[gnu::noinline]] int Recurse(int depth) {
    volatile char room[1024];
    room[0] = static_cast<char>(depth & 1);
    return depth < 0 ? 0 : Recurse(depth + 1) + room[0];
}

// What keys do; others are told.
const std::map<char, void (*)()> ACTIONS = {
    {'m',
     [] {
         Say(std::to_string(MessageBoxA(nullptr, "It does not work.", "Oh", MB_ICONEXCLAMATION)));
     }},
    {'l', [] { MessageBoxA(nullptr, LongText().c_str(), nullptr, MB_ICONINFORMATION); }},
    {'b', [] { MessageBeep(MB_OK); }},
    // Ways to end.
    {'A',
     [] {
         void* const page = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
         *static_cast<volatile int*>(page) = 1;
     }},
    {'R', [] { Recurse(0); }},
    {'S',
     [] {
         SetConsoleCtrlHandler(OnControlEvent, FALSE);
         raise(SIGTERM);
     }},
    {'E', [] { std::exit(3); }},
    // Never waits again, but for this output to go out.
    {'W',
     [] {
         Say("never");
         WaitForSingleObject(g_hInput, 1);
         for (;;)
             pause();
     }},
};

void Act(char key) {
    const auto action = ACTIONS.find(key);
    if (action != ACTIONS.end())
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

// ---- The user.

class BoxTest : public CConsoleTest {
  protected:
    bool Opens(std::function<void()> work) {
        Start(std::move(work));
        const bool isReady = Shows("ready");
        Type("m");
        return isReady && ShowsBox();
    }
    bool ShowsBox() {
        return Shows("[ OK ]") && Waits([&] {
                   const VTermPos cursor = screen.GetCursor();
                   return screen.GetCell(cursor.row, cursor.col).chars[0] == 'O';
               });
    }
    bool HidesBox() {
        return Waits([&] { return screen.FindRow("[ OK ]") < 0; });
    }
    int CountOf(std::string_view sequence) {
        int count = 0;
        for (std::size_t at = 0; (at = user.GetOutput().find(sequence, at)) != std::string::npos;
             ++at)
            ++count;
        return count;
    }
    int TimesEntered() { return CountOf("\x1b[?1049h"); }
    int TimesLeft() { return CountOf("\x1b[?1049l"); }

    // Everything that can be seen.
    std::string Sight() const {
        std::string all;
        for (int cell = 0; cell < kColumns * kRows; ++cell) {
            const VTermScreenCell seen = screen.GetCell(cell / kColumns, cell % kColumns);
            all.append(reinterpret_cast<const char*>(seen.chars), sizeof seen.chars);
            for (const VTermColor& colour : {seen.fg, seen.bg})
                all += std::to_string(colour.type) + ':' + std::to_string(colour.indexed.idx) + ';';
            all += seen.attrs.reverse ? 'R' : ' ';
        }
        const VTermPos cursor = screen.GetCursor();
        return all + std::to_string(cursor.row) + ',' + std::to_string(cursor.col);
    }
};

} // namespace

TEST_F(BoxTest, IsShownOverTheScreenUntilAKeyClosesIt) {
    Start(RunConsole);
    ASSERT_TRUE(Shows("ready"));
    const std::string before = Sight();
    Type("l");
    ASSERT_TRUE(ShowsBox());
    Type("\r");
    ASSERT_TRUE(Waits([&] { return Sight() == before; }));

    std::string results; // behind the full row: its wrap is still pending
    for (const char* const key : {"\r", " ", "\x1b"}) {
        Type("m");
        ASSERT_TRUE(ShowsBox());
        EXPECT_EQ(screen.FindRow("plain"), -1);
        EXPECT_GE(screen.FindRow("  ! It does not work."), 0);
        EXPECT_LT(screen.FindRow(" Oh"), screen.FindRow("! It"));
        EXPECT_TRUE(screen.IsCursorVisible());
        Type(key);
        results += '1';
        ASSERT_TRUE(HidesBox() && Waits([&] { return screen.GetRow(2) == results; }));
    }
    const VTermScreenCell full = screen.GetCell(1, kColumns - 1);
    const VTermScreenCell result = screen.GetCell(2, 2);
    EXPECT_EQ(result.fg.indexed.idx, full.fg.indexed.idx);
    EXPECT_EQ(result.bg.indexed.idx, full.bg.indexed.idx);
    EXPECT_EQ(TimesEntered(), 4);
    process->Kill(SIGTERM);
    ASSERT_TRUE(EndsWith(-SIGTERM));
    EXPECT_EQ(TimesLeft(), 4) << "a box that is closed is not left once more";
}

TEST_F(BoxTest, OtherKeysScrollAndWhatWasTypedBeforeIsKept) {
    Start(RunConsole);
    ASSERT_TRUE(Shows("ready"));
    Type("lx\r");
    ASSERT_TRUE(Shows("Lines 1-19 of 60"));
    EXPECT_GE(screen.FindRow("i first line"), 0);
    Type("a\x03\x1a\x1b[25~\x1b[6~");
    ASSERT_TRUE(Shows("Lines 20-38 of 60"));
    EXPECT_EQ(screen.FindRow("first line"), -1);
    Type("\x1b[A\x1b[A");
    ASSERT_TRUE(Shows("Lines 18-36 of 60"));
    Type("\x1b[F\x1b[B");
    ASSERT_TRUE(Shows("line 60") && Shows("Lines 42-60 of 60"));
    Type("\x1b[H\x1b[5~");
    ASSERT_TRUE(Shows("Lines 1-19 of 60"));
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
        user.Resize(window.rows, window.columns);
        ASSERT_TRUE(Shows(window.note) && ShowsBox());
    }
    Type("\ry");
    ASSERT_TRUE(HidesBox() && Shows("ready"));
    ASSERT_TRUE(Shows("<120><13><121>"));
    // The bell rings in its place.
    Type("abc");
    ASSERT_TRUE(Shows("<97><99>"));
    EXPECT_NE(user.GetOutput().find("<97>\a<99>"), std::string::npos);
    EXPECT_EQ(screen.GetBells(), 1);
}

TEST_F(BoxTest, TakesAConsoleThatNobodyHas) {
    Type("x\r"); // nobody's either
    user.OnReady(POLLOUT);
    Start([] {
        std::printf("before");
        std::fflush(stdout);
        std::printf(" after %d", MessageBoxA(nullptr, nullptr, nullptr, MB_OK));
        std::fflush(stdout);
        TakeOver();
        INPUT_RECORD record{};
        DWORD count = 0;
        while (ReadConsoleInputA(g_hInput, &record, 1, &count) &&
               record.Event.KeyEvent.uChar.AsciiChar != 'x')
            continue;
        GiveBack();
    });
    ASSERT_TRUE(ShowsBox() && Shows("  Error"));
    EXPECT_EQ(line.GetSettings().c_lflag & (ICANON | ECHO), 0U);
    Type("\r");
    ASSERT_TRUE(HidesBox() && Shows("before after 1"));
    ASSERT_TRUE(EndsWith(CProcess::kWorkDone));
    EXPECT_EQ(TimesLeft(), 1);
}

class BoxEventTest : public BoxTest, public ::testing::WithParamInterface<int> {};

TEST_P(BoxEventTest, ClosesIt) {
    const int signal = GetParam();
    ASSERT_TRUE(Opens(RunWithHandler));
    if (signal == SIGQUIT)
        Type("\x1c");
    else
        process->Kill(signal);
    const DWORD event = signal == SIGHUP    ? CTRL_CLOSE_EVENT
                        : signal == SIGTERM ? CTRL_SHUTDOWN_EVENT
                                            : CTRL_BREAK_EVENT;
    ASSERT_TRUE(HidesBox() && Shows("event " + std::to_string(event) + ";"));
    ASSERT_TRUE(Shows("ready") && Shows("over;"));
    ASSERT_TRUE(EndsWith(CProcess::kWorkDone));
    EXPECT_EQ(error.GetText(), "Error\nfrom the handler\n");
    EXPECT_EQ(TimesLeft(), 1);
}

INSTANTIATE_TEST_SUITE_P(All, BoxEventTest, ::testing::Values(SIGHUP, SIGTERM, SIGQUIT));

class BoxEndTest : public BoxTest, public ::testing::WithParamInterface<int> {};

TEST_P(BoxEndTest, LeavesTheFirstScreen) {
    ASSERT_TRUE(Opens(RunConsole));
    process->Kill(GetParam());
    ASSERT_TRUE(Ends() && HidesBox() && Shows("ready"));
    EXPECT_NE(process->GetExit(), CProcess::kWorkDone);
    EXPECT_EQ(screen.GetCursor().row, kRows - 1);
}

INSTANTIATE_TEST_SUITE_P(All, BoxEndTest, ::testing::Values(SIGSEGV, SIGTERM, SIGUSR1));

class ProcessEndTest : public BoxTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(ProcessEndTest, LeavesTheTerminalSane) {
    Start(RunWithHandler);
    ASSERT_TRUE(Shows("ready"));
    Type(GetParam());
    ASSERT_TRUE(Ends());
    EXPECT_NE(process->GetExit(), CProcess::kWorkDone);
    const std::string& text = user.GetOutput();
    ASSERT_TRUE(Waits([&] { return text.find("\x1b[23;0t") != std::string::npos; }))
        << "the title from before";
    EXPECT_LT(text.find("ready"), text.rfind("\x1b[0m"));
}

INSTANTIATE_TEST_SUITE_P(All, ProcessEndTest, ::testing::Values("A", "R", "S", "E"));

TEST_F(BoxTest, AThreadThatNeverWaitsIsEnded) {
    Start(RunWithHandler);
    ASSERT_TRUE(Shows("ready"));
    Type("W");
    ASSERT_TRUE(Shows("never"));
    do
        process->Kill(SIGTERM);
    while (!pump.RunUntil([this] { return process->HasEnded(); }, std::chrono::seconds(1)));
    EXPECT_TRUE(EndsWith(-SIGTERM));
}

TEST_F(BoxTest, IsThereAgainAfterAStop) {
    ASSERT_TRUE(Opens(RunConsole));
    process->Kill(SIGTSTP);
    ASSERT_TRUE(HidesBox() && Shows("ready"));
    ASSERT_TRUE(Waits([&] { return process->IsStopped(); }));
    EXPECT_TRUE(line.GetSettings() == found);
    process->Kill(SIGCONT);
    ASSERT_TRUE(ShowsBox());
    // Stopped without being asked; somebody writes over the box.
    process->Kill(SIGSTOP);
    ASSERT_TRUE(Waits([&] { return process->IsStopped(); }));
    screen.Feed("\x1b[H\x1b[J$ fg");
    process->Kill(SIGCONT);
    ASSERT_TRUE(ShowsBox());
    EXPECT_EQ(screen.FindRow("$ fg"), -1);
    Type("\r");
    ASSERT_TRUE(HidesBox() && Shows("ready"));
}

TEST_F(BoxTest, EndsWithTheInput) {
    ASSERT_TRUE(Opens([] {
        signal(SIGHUP, SIG_IGN);
        RunConsole();
    }));
    user.CloseWindow();
    ASSERT_TRUE(pump.RunUntil([&] { return process->HasEnded(); }));
    EXPECT_EQ(process->GetExit(), CProcess::kWorkDone);
}

class PoorTerminalTest : public BoxTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(PoorTerminalTest, ShowsPlainLines) {
    Start(RunConsole, GetParam().c_str());
    ASSERT_TRUE(Shows("ready"));
    Type("m");
    ASSERT_TRUE(Shows("! Oh") && Shows("It does not work.") && Shows("[ OK ] Enter"));
    EXPECT_GE(screen.FindRow("ready"), 0);
    Type("q\r");
    ASSERT_TRUE(Waits([&] { return user.GetOutput().find("Esc\r\n") != std::string::npos; }));
    Type("l");
    ASSERT_TRUE(Shows("line 22") && Shows("[ More ]"));
    Type(" ");
    ASSERT_TRUE(Shows("line 45"));
    Type("\r");
    ASSERT_TRUE(Shows("line 60") && Shows("[ OK ]"));
    Type("\rz");
    ASSERT_TRUE(Shows("<122>"));
    EXPECT_EQ(user.GetOutput().find("1049"), std::string::npos);
    process->Kill(SIGTERM);
    ASSERT_TRUE(EndsWith(-SIGTERM));
}

INSTANTIATE_TEST_SUITE_P(All, PoorTerminalTest,
                         ::testing::Values("linux", "dumb", "screen", "no-such-terminal"));

// Without one for the keys, and without one for the text.
class NoTerminalTest : public BoxTest, public ::testing::WithParamInterface<bool> {};

TEST_P(NoTerminalTest, ReportsOnStandardError) {
    CCollector output;
    pump.Add(output);
    const int input = GetParam() ? line.GetSlave() : -1;
    StartOn(input, GetParam() ? output.GetWriter() : line.GetSlave(), [] {
        if (MessageBoxA(nullptr, "one\r\ntwo\x1b[2J\xF0", "Cap", MB_ICONINFORMATION) == IDOK)
            MessageBoxA(nullptr, nullptr, nullptr, MB_OK);
        MessageBeep(MB_OK);
    });
    output.CloseWriter();
    ASSERT_TRUE(EndsWith(CProcess::kWorkDone) && Waits([&] { return output.HasEnded(); }));
    EXPECT_EQ(error.GetText(), "i Cap\none\ntwo\u2190[2J\u2261\nError\n\n");
    EXPECT_EQ(output.GetText(), "");
    EXPECT_EQ(user.GetOutput(), GetParam() ? "" : "\a");
}

INSTANTIATE_TEST_SUITE_P(All, NoTerminalTest, ::testing::Bool());

TEST_F(BoxTest, BelongsToOneThreadAtATime) {
    Start([] {
        auto show = [] { MessageBoxA(nullptr, "from a thread", "One", MB_OK); };
        auto showToo = [] { MessageBoxA(nullptr, "from another", "Two", MB_OK); };
        TakeOver();
        const CTestHandle refused = StartThread(show);
        AwaitEnd(refused);
        GiveBack();
        const CTestHandle first = StartThread(show);
        const CTestHandle second = StartThread(showToo);
        AwaitEnd(first);
        AwaitEnd(second);
    });
    const auto seen = [&](const char* text) { return screen.FindRow(text) >= 0; };
    ASSERT_TRUE(ShowsBox());
    ASSERT_TRUE(Waits([&] { return error.GetText() == "One\nfrom a thread\n"; }));
    const bool isFirst = seen("from a thread");
    EXPECT_NE(isFirst, seen("from another"));
    Type("\r");
    ASSERT_TRUE(Shows(isFirst ? "from another" : "from a thread") && ShowsBox());
    Type("\r");
    ASSERT_TRUE(EndsWith(CProcess::kWorkDone));
    EXPECT_EQ(TimesEntered(), 2);
}
