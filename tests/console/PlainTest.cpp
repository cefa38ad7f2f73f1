// Output that is no terminal, and output that is slow or gone.
#include "tests/console/Terminal.h"

#include "platform/Wait.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace platform;

namespace {

struct Pipe {
    Pipe() {
        int ends[2] = {-1, -1};
        EXPECT_EQ(pipe(ends), 0);
        reading.Reset(ends[0]);
        writing.Reset(ends[1]);
    }
    CDescriptor reading;
    CDescriptor writing;
};

std::string ReadAll(int descriptor) {
    std::string text;
    char bytes[4096];
    ssize_t count;
    while ((count = read(descriptor, bytes, sizeof bytes)) > 0)
        text.append(bytes, static_cast<std::size_t>(count));
    return text;
}

std::string Plain(std::string_view text, bool byByte) {
    Pipe pipe;
    CConsoleOutput output;
    output.Use(pipe.writing.Get(), "xterm");
    output.Begin();
    const std::size_t step = byByte ? 1 : text.size();
    for (std::size_t from = 0; from < text.size(); from += step) {
        EXPECT_TRUE(Write(output, text.substr(from, step)));
        output.LetOut();
    }
    output.SetTitle("title");
    output.SetAttribute(0x1E);
    EXPECT_TRUE(output.SetPosition({5, 5}));
    EXPECT_TRUE(FillCells(output, 0, 0, 2000, 0x1E));
    output.End();
    pipe.writing.Reset();
    return ReadAll(pipe.reading.Get());
}

// An output whose terminal takes nothing until it is read.
struct SlowConsole : Console {
    SlowConsole() { Clear(); }
    // Reads what has been written, byte by byte if need be, up to the given number of bytes.
    std::string Read(std::size_t count) {
        std::string text;
        while (text.size() < count) {
            char bytes[4096];
            const ssize_t got =
                read(terminal.Master(), bytes, std::min(sizeof bytes, count - text.size()));
            if (got <= 0)
                break;
            text.append(bytes, static_cast<std::size_t>(got));
            output.ContinueAfterStall();
        }
        return text;
    }
};

} // namespace

TEST(ConsolePlain, TextWithoutASequence) {
    struct Case {
        std::string_view written;
        std::string_view expected;
    };
    const Case cases[] = {
        {"\r\nOK\r\n", "\nOK\n"},
        {"10%\r20%\r\r\nend\r", "10%\r20%\nend\r"},
        {"a\n\nb\rc", "a\n\nb\rc"},
        {"a\tb\bc\a", "a\tb\bc\a"},
        {"\x1b[31mred\x7F", "\xE2\x86\x90[31mred\xE2\x8C\x82"},
        {"caf\xC3\xA9\xE2\x82", "caf\xC3\xA9\xEF\xBF\xBD"},
        {"\x9B"
         "1m\r\xC3\xA9\r\a",
         "\xC2\xA2"
         "1m\r\xC3\xA9\r\a"},
    };
    for (const Case& text : cases) {
        EXPECT_EQ(Plain(text.written, false), text.expected);
        EXPECT_EQ(Plain(text.written, true), text.expected);
    }
    CConsoleOutput dumb;
    CTerminal terminal(20, 5);
    dumb.Use(terminal.Slave(), "dumb");
    EXPECT_FALSE(dumb.IsTerminal());
}

TEST(ConsolePlain, GoesToFilesAndSockets) {
    const std::string text(200'000, 'x');
    std::FILE* const file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    CConsoleOutput output;
    output.Use(fileno(file), nullptr);
    ASSERT_TRUE(Write(output, "before ")); // nothing taken over: at once
    EXPECT_EQ(lseek(fileno(file), 0, SEEK_END), 7);
    output.Begin();
    ASSERT_TRUE(Write(output, text));
    output.End();
    EXPECT_EQ(lseek(fileno(file), 0, SEEK_END), 7 + 200'000);
    std::fclose(file);

    int ends[2] = {-1, -1};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    CDescriptor reading(ends[0]);
    CDescriptor writing(ends[1]);
    CConsoleOutput toSocket;
    toSocket.Use(writing.Get(), nullptr);
    toSocket.Begin();
    ASSERT_TRUE(Write(toSocket, "one\r\n"));
    toSocket.End();
    writing.Reset();
    EXPECT_EQ(ReadAll(reading.Get()), "one\n");
}

TEST(ConsoleSlow, TakesATurnBeyondWhatGathersAndLosesNothing) {
    SlowConsole console;
    std::string expected;
    while (console.output.IsReady()) {
        const std::string row = std::to_string(expected.size()) + "\r\n";
        ASSERT_TRUE(Write(console.output, row));
        expected += row;
        ASSERT_LT(expected.size(), 1'000'000U) << "the terminal takes everything";
    }
    EXPECT_TRUE(console.output.IsStalled());
    EXPECT_FALSE(console.output.HasWork());
    const std::string turn(16 * 1024, '\a');
    ASSERT_TRUE(Write(console.output, turn)); // must not block
    expected += turn;
    EXPECT_EQ(console.Read(expected.size()), expected);
    EXPECT_TRUE(console.output.IsReady());
    EXPECT_FALSE(console.output.IsStalled());
}

TEST(ConsoleSlow, WaitsForTheTerminalOnceTheBufferIsFull) {
    SlowConsole console;
    const std::string text(400'000, '\a');
    const pid_t reader = fork();
    if (reader == 0) {
        std::string got;
        char bytes[1000];
        while (got.size() < text.size()) {
            const ssize_t count = read(console.terminal.Master(), bytes, sizeof bytes);
            if (count <= 0)
                _exit(1);
            got.append(bytes, static_cast<std::size_t>(count));
        }
        _exit(got == text ? 0 : 2);
    }
    EXPECT_TRUE(Write(console.output, text));
    console.output.End();
    int status = 0;
    ASSERT_EQ(waitpid(reader, &status, 0), reader);
    EXPECT_EQ(status, 0);
}

TEST(ConsoleGone, WritesFailAndNothingHangs) {
    signal(SIGPIPE, SIG_IGN);
    Pipe pipe;
    CConsoleOutput output;
    output.Use(pipe.writing.Get(), nullptr);
    output.Begin();
    ASSERT_TRUE(Write(output, "a"));
    pipe.reading.Reset();
    output.LetOut();
    EXPECT_FALSE(Write(output, "b"));
    EXPECT_FALSE(Write(output, std::string(300'000, 'c')));
    EXPECT_TRUE(output.IsReady());
    EXPECT_FALSE(output.HasWork());
    output.End();

    CDescriptor full(open("/dev/full", O_WRONLY | O_CLOEXEC));
    CConsoleOutput toFull;
    toFull.Use(full.Get(), nullptr);
    toFull.Begin();
    EXPECT_FALSE(Write(toFull, std::string(300'000, 'c')));
    toFull.End();
}
