// Message boxes and beeps, in a process of its own on a terminal of its own whose user sees and
// types.
#include "platform/Console.h"
#include "platform/Notification.h"
#include "tests/platform/TestHandle.h"
#include "tests/support/Collector.h"
#include "tests/support/Process.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/Pump.h"
#include "tests/support/Screen.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

constexpr int COLUMNS = 80;
constexpr int ROWS = 24;

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

// Draws a screen, its cursor behind a full row, and does what keys say until the input or the
// console ends.
void RunConsole() {
    TakeOver();
    DWORD count = 0;
    FillConsoleOutputCharacterA(g_hOutput, ' ', COLUMNS * ROWS, {0, 0}, &count);
    FillConsoleOutputAttribute(g_hOutput, 0x07, COLUMNS * ROWS, {0, 0}, &count);
    SetConsoleCursorPosition(g_hOutput, {0, 0});
    Say("plain\r\n");
    SetConsoleTextAttribute(g_hOutput, 0x1E);
    Say("ready" + std::string(COLUMNS - 5, '.'));
    DWORD mode = 0;
    INPUT_RECORD record{};
    while (mode == 0 && ReadConsoleInputA(g_hInput, &record, 1, &count)) {
        const char key = record.EventType == KEY_EVENT ? record.Event.KeyEvent.uChar.AsciiChar : 0;
        if (key == 'm')
            Say(std::to_string(
                MessageBoxA(nullptr, "It does not work.", "Oh", MB_ICONEXCLAMATION)));
        else if (key == 'l')
            MessageBoxA(nullptr, LongText().c_str(), nullptr, MB_ICONINFORMATION);
        else if (key == 'b')
            MessageBeep(MB_OK);
        else if (record.EventType == KEY_EVENT)
            Say("<" + std::to_string(key) + ">");
        GetConsoleMode(g_hInput, &mode);
    }
    Say("over;");
}

void RunWithHandler() {
    SetConsoleCtrlHandler(OnControlEvent, TRUE);
    RunConsole();
}

// ---- The user.

class CUser : public IPollable {
  public:
    CUser() { Resize(COLUMNS, ROWS); }

    void Resize(int columns, int rows) {
        screen.Resize(rows, columns);
        line.SetSize(rows, columns);
    }
    int GetDescriptor() const override { return line.GetMaster(); }
    short GetEvents() const override {
        return static_cast<short>(typed.IsEmpty() ? POLLIN : POLLIN | POLLOUT);
    }
    void OnReady(short events) override {
        if ((events & POLLOUT) != 0)
            line.Write(typed);
        if ((events & POLLIN) == 0)
            return;
        const std::string bytes = line.Read(4096);
        screen.Feed(bytes);
        output += bytes;
    }

    CPseudoTerminal line;
    CScreen screen{ROWS, COLUMNS};
    CByteQueue typed;
    std::string output;
};

class BoxTest : public ::testing::Test {
  protected:
    void Start(std::function<void()> work, const char* terminalType = "xterm") {
        StartOn(user.line.GetSlave(), user.line.GetSlave(), std::move(work), terminalType);
    }
    void StartOn(int input, int output, std::function<void()> work,
                 const char* terminalType = "xterm") {
        ProcessOptions options;
        options.input = input;
        options.output = output;
        options.error = error.GetWriter();
        options.terminal = user.line.GetPath();
        options.work = [terminalType, run = std::move(work)] {
            unsetenv("TMUX");
            setenv("TERM", terminalType, 1);
            run();
        };
        process = std::make_unique<CProcess>(options);
        error.CloseWriter();
        pump.Add(user);
        pump.Add(error);
        pump.Add(*process);
    }

    void Type(std::string_view bytes) { user.typed.Append(bytes); }
    bool Waits(const std::function<bool()>& condition) {
        const bool came = pump.RunUntil(condition);
        EXPECT_TRUE(came) << user.screen.GetText();
        return came;
    }
    bool Shows(std::string_view text) {
        return Waits([&] { return user.screen.FindRow(text) >= 0; });
    }
    bool ShowsBox() {
        return Shows("[ OK ]") && Waits([&] { return CharacterAtCursor() == 'O'; });
    }
    bool HidesBox() {
        return Waits([&] { return user.screen.FindRow("[ OK ]") < 0; });
    }
    bool Ends(int exit = CProcess::kWorkDone) {
        const bool ended = Waits([&] { return process->HasEnded() && error.HasEnded(); });
        EXPECT_EQ(process->GetExit(), exit);
        EXPECT_TRUE(user.line.GetSettings() == found);
        return ended;
    }
    int TimesEntered() const { return CountOf("\x1b[?1049h"); }
    int TimesLeft() const { return CountOf("\x1b[?1049l"); }

    std::uint32_t CharacterAtCursor() const {
        const VTermPos cursor = user.screen.GetCursor();
        return user.screen.GetCell(cursor.row, cursor.col).chars[0];
    }
    // Everything that can be seen.
    std::string Sight() const {
        std::string all;
        for (int cell = 0; cell < COLUMNS * ROWS; ++cell) {
            const VTermScreenCell seen = user.screen.GetCell(cell / COLUMNS, cell % COLUMNS);
            all.append(reinterpret_cast<const char*>(seen.chars), sizeof seen.chars);
            for (const VTermColor& colour : {seen.fg, seen.bg})
                all += std::to_string(colour.type) + ':' + std::to_string(colour.indexed.idx) + ';';
            all += seen.attrs.reverse ? 'R' : ' ';
        }
        const VTermPos cursor = user.screen.GetCursor();
        return all + std::to_string(cursor.row) + ',' + std::to_string(cursor.col);
    }

    CPump pump;
    CUser user;
    CCollector error;
    termios found = user.line.GetSettings();
    std::unique_ptr<CProcess> process;

  private:
    int CountOf(std::string_view sequence) const {
        int count = 0;
        for (std::size_t at = 0; (at = user.output.find(sequence, at)) != std::string::npos; ++at)
            ++count;
        return count;
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
        EXPECT_EQ(user.screen.FindRow("plain"), -1);
        EXPECT_GE(user.screen.FindRow("  ! It does not work."), 0);
        EXPECT_LT(user.screen.FindRow(" Oh"), user.screen.FindRow("! It"));
        EXPECT_TRUE(user.screen.IsCursorVisible());
        Type(key);
        results += '1';
        ASSERT_TRUE(HidesBox() && Waits([&] { return user.screen.GetRow(2) == results; }));
    }
    const VTermScreenCell full = user.screen.GetCell(1, COLUMNS - 1);
    const VTermScreenCell result = user.screen.GetCell(2, 2);
    EXPECT_EQ(result.fg.indexed.idx, full.fg.indexed.idx);
    EXPECT_EQ(result.bg.indexed.idx, full.bg.indexed.idx);
    EXPECT_EQ(TimesEntered(), 4);
    process->Kill(SIGTERM);
    ASSERT_TRUE(Ends(-SIGTERM));
    EXPECT_EQ(TimesLeft(), 4) << "a box that is closed is not left once more";
}

TEST_F(BoxTest, OtherKeysScrollAndWhatWasTypedBeforeIsKept) {
    Start(RunConsole);
    ASSERT_TRUE(Shows("ready"));
    Type("lx\r");
    ASSERT_TRUE(Shows("Lines 1-19 of 60"));
    EXPECT_GE(user.screen.FindRow("i first line"), 0);
    Type("a\x03\x1a\x1b[25~\x1b[6~");
    ASSERT_TRUE(Shows("Lines 20-38 of 60"));
    EXPECT_EQ(user.screen.FindRow("first line"), -1);
    Type("\x1b[A\x1b[A");
    ASSERT_TRUE(Shows("Lines 18-36 of 60"));
    Type("\x1b[F\x1b[B");
    ASSERT_TRUE(Shows("line 60") && Shows("Lines 42-60 of 60"));
    Type("\x1b[H\x1b[5~");
    ASSERT_TRUE(Shows("Lines 1-19 of 60"));
    Type("\ry");
    ASSERT_TRUE(HidesBox());
    ASSERT_TRUE(Shows("<120><13><121>"));
}

TEST_F(BoxTest, FollowsTheWindow) {
    Start(RunConsole);
    ASSERT_TRUE(Shows("ready"));
    Type("l");
    ASSERT_TRUE(Shows("Lines 1-19 of 60"));
    user.Resize(30, 6);
    ASSERT_TRUE(Shows("1-4 of 60") && ShowsBox());
    user.Resize(COLUMNS, ROWS);
    ASSERT_TRUE(Shows("Lines 1-19 of 60") && ShowsBox());
    Type("\r");
    ASSERT_TRUE(HidesBox() && Shows("ready"));
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
    EXPECT_EQ(user.line.GetSettings().c_lflag & (ICANON | ECHO), 0U);
    Type("\r");
    ASSERT_TRUE(HidesBox() && Shows("before after 1"));
    ASSERT_TRUE(Ends());
    EXPECT_EQ(TimesLeft(), 1);
}

class BoxEventTest : public BoxTest, public ::testing::WithParamInterface<int> {};

TEST_P(BoxEventTest, ClosesIt) {
    const int signal = GetParam();
    Start(RunWithHandler);
    ASSERT_TRUE(Shows("ready"));
    Type("m");
    ASSERT_TRUE(ShowsBox());
    if (signal == SIGQUIT)
        Type("\x1c");
    else
        process->Kill(signal);
    const DWORD event = signal == SIGHUP    ? CTRL_CLOSE_EVENT
                        : signal == SIGTERM ? CTRL_SHUTDOWN_EVENT
                                            : CTRL_BREAK_EVENT;
    ASSERT_TRUE(HidesBox() && Shows("event " + std::to_string(event) + ";"));
    ASSERT_TRUE(Shows("ready") && Shows("over;"));
    ASSERT_TRUE(Ends());
    EXPECT_EQ(error.GetText(), "Error\nfrom the handler\n");
    EXPECT_EQ(TimesLeft(), 1);
}

INSTANTIATE_TEST_SUITE_P(All, BoxEventTest, ::testing::Values(SIGHUP, SIGTERM, SIGQUIT));

class BoxEndTest : public BoxTest, public ::testing::WithParamInterface<int> {};

TEST_P(BoxEndTest, LeavesTheFirstScreen) {
    Start(RunConsole);
    ASSERT_TRUE(Shows("ready"));
    Type("m");
    ASSERT_TRUE(ShowsBox());
    process->Kill(GetParam());
    ASSERT_TRUE(Waits([&] { return process->HasEnded(); }));
    ASSERT_TRUE(HidesBox() && Shows("ready"));
    EXPECT_NE(process->GetExit(), CProcess::kWorkDone);
    EXPECT_TRUE(user.line.GetSettings() == found);
    EXPECT_EQ(user.screen.GetCursor().row, ROWS - 1);
}

INSTANTIATE_TEST_SUITE_P(All, BoxEndTest, ::testing::Values(SIGSEGV, SIGTERM, SIGUSR1));

TEST_F(BoxTest, IsThereAgainAfterAStop) {
    Start(RunConsole);
    ASSERT_TRUE(Shows("ready"));
    Type("m");
    ASSERT_TRUE(ShowsBox());
    process->Kill(SIGTSTP);
    ASSERT_TRUE(HidesBox() && Shows("ready"));
    ASSERT_TRUE(Waits([&] { return process->IsStopped(); }));
    EXPECT_TRUE(user.line.GetSettings() == found);
    process->Kill(SIGCONT);
    ASSERT_TRUE(ShowsBox());
    // Stopped without being asked; somebody writes over the box.
    process->Kill(SIGSTOP);
    ASSERT_TRUE(Waits([&] { return process->IsStopped(); }));
    user.screen.Feed("\x1b[H\x1b[J$ fg");
    process->Kill(SIGCONT);
    ASSERT_TRUE(ShowsBox());
    EXPECT_EQ(user.screen.FindRow("$ fg"), -1);
    Type("\r");
    ASSERT_TRUE(HidesBox() && Shows("ready"));
}

TEST_F(BoxTest, EndsWithTheInput) {
    Start([] {
        signal(SIGHUP, SIG_IGN);
        RunConsole();
    });
    ASSERT_TRUE(Shows("ready"));
    Type("m");
    ASSERT_TRUE(ShowsBox());
    user.line.CloseMaster();
    ASSERT_TRUE(pump.RunUntil([&] { return process->HasEnded(); }));
    EXPECT_EQ(process->GetExit(), CProcess::kWorkDone);
}

class PoorTerminalTest : public BoxTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(PoorTerminalTest, ShowsPlainLines) {
    Start(RunConsole, GetParam().c_str());
    ASSERT_TRUE(Shows("ready"));
    user.output.clear();
    Type("m");
    ASSERT_TRUE(Shows("! Oh") && Shows("It does not work.") && Shows("[ OK ] Enter"));
    EXPECT_GE(user.screen.FindRow("ready"), 0);
    Type("q\r");
    ASSERT_TRUE(Waits([&] { return user.output.find("Esc\r\n") != std::string::npos; }));
    Type("l");
    ASSERT_TRUE(Shows("line 22") && Shows("[ More ]"));
    Type(" ");
    ASSERT_TRUE(Shows("line 45"));
    Type("\r");
    ASSERT_TRUE(Shows("line 60") && Shows("[ OK ]"));
    Type("\rz");
    ASSERT_TRUE(Shows("<122>"));
    EXPECT_EQ(user.output.find("1049"), std::string::npos);
    process->Kill(SIGTERM);
    ASSERT_TRUE(Ends(-SIGTERM));
}

INSTANTIATE_TEST_SUITE_P(All, PoorTerminalTest,
                         ::testing::Values("linux", "dumb", "screen", "no-such-terminal"));

// Without one for the keys, and without one for the text.
class NoTerminalTest : public BoxTest, public ::testing::WithParamInterface<bool> {};

TEST_P(NoTerminalTest, ReportsOnStandardError) {
    CCollector output;
    pump.Add(output);
    const int input = GetParam() ? user.line.GetSlave() : -1;
    StartOn(input, GetParam() ? output.GetWriter() : user.line.GetSlave(), [] {
        if (MessageBoxA(nullptr, "one\r\ntwo\x1b[2J\xFF", "Cap", MB_ICONINFORMATION) == IDOK)
            MessageBoxA(nullptr, nullptr, nullptr, MB_OK);
        MessageBeep(MB_OK);
    });
    output.CloseWriter();
    ASSERT_TRUE(Ends() && Waits([&] { return output.HasEnded(); }));
    EXPECT_EQ(error.GetText(), "i Cap\none\ntwo\xE2\x86\x90[2J\xEF\xBF\xBD\nError\n\n");
    EXPECT_EQ(output.GetText(), "");
    EXPECT_EQ(user.output, GetParam() ? "" : "\a");
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
    const auto seen = [&](const char* text) { return user.screen.FindRow(text) >= 0; };
    ASSERT_TRUE(ShowsBox());
    EXPECT_EQ(error.GetText(), "One\nfrom a thread\n");
    const bool isFirst = seen("from a thread");
    EXPECT_NE(isFirst, seen("from another"));
    Type("\r");
    ASSERT_TRUE(Shows(isFirst ? "from another" : "from a thread") && ShowsBox());
    Type("\r");
    ASSERT_TRUE(Ends());
    EXPECT_EQ(TimesEntered(), 2);
}

TEST_F(BoxTest, TheBellRingsInItsPlace) {
    Start(RunConsole);
    ASSERT_TRUE(Shows("ready"));
    Type("abc");
    ASSERT_TRUE(Shows("<97><99>"));
    EXPECT_NE(user.output.find("<97>\a<99>"), std::string::npos);
    EXPECT_EQ(user.screen.GetBells(), 1);
}
