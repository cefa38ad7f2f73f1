// Output that is no terminal, and a terminal that is slow.
#include "tests/console/ShownConsole.h"

#include <poll.h>
#include <sys/socket.h>
#include <thread>

using namespace platform;

namespace {

constexpr int kStuckMilliseconds = 45'000;

std::string ReadAll(int descriptor) {
    std::string text;
    char bytes[4096];
    ssize_t count;
    while ((count = read(descriptor, bytes, sizeof bytes)) > 0)
        text.append(bytes, static_cast<std::size_t>(count));
    return text;
}

// What comes of a text, written in pieces of this size, in a file, a pipe or a socket.
std::string Plain(std::string_view text, CDescriptor writer, int reader, std::size_t step) {
    CConsoleOutput output;
    output.Use(writer.Get(), "xterm");
    EXPECT_TRUE(Write(output, "<")); // nothing taken over: at once
    output.Begin();
    for (; !text.empty(); text.remove_prefix(std::min(step, text.size()))) {
        EXPECT_TRUE(Write(output, text.substr(0, step)));
        output.LetOut();
    }
    output.SetTitle("title");
    output.SetAttribute(0x1E);
    EXPECT_TRUE(output.SetPosition({5, 5}));
    EXPECT_GE(output.Fill(' ', 2000, {0, 0}), 0);
    EXPECT_TRUE(output.ColourFill(0x1E, 2000, {0, 0}));
    output.End();
    writer.Reset();
    lseek(reader, 0, SEEK_SET);
    return ReadAll(reader);
}

} // namespace

TEST(ConsolePlain, TextWithoutASequence) {
    const struct {
        std::string_view written;
        std::string_view expected;
    } cases[] = {
        {"\r\nOK\r\n", "\nOK\n"},
        {"10%\r20%\r\r\nend\r", "10%\r20%\nend\r"},
        {"a\n\nb\rc", "a\n\nb\rc"},
        {"a\tb\bc\a", "a\tb\bc\a"},
        {"\x1b[31mred\x7F", "\xE2\x86\x90[31mred\xE2\x8C\x82"},
        {"caf\xC3\xA9\xE2\x82", "caf\u00E9\u0393\u00E9"},
        {"\x9Bm\r\xC3\xA9\r\a", "\xC2\xA2m\r\xC3\xA9\r\a"},
    };
    for (const auto& text : cases) {
        const std::string expected = "<" + std::string(text.expected);
        Pipe pipe;
        EXPECT_EQ(Plain(text.written, std::move(pipe.writer), pipe.reader.Get(), 1), expected);
        int ends[2] = {-1, -1};
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
        const CDescriptor socket(ends[0]);
        EXPECT_EQ(Plain(text.written, CDescriptor(ends[1]), socket.Get(), 2), expected);
    }
    const std::string much(200'000, 'x');
    const CDescriptor file(open("/tmp", O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    EXPECT_EQ(Plain(much, CDescriptor(dup(file.Get())), file.Get(), much.size()), "<" + much);
}

TEST(ConsolePlain, TextIsInTheLocalesCharacterSet) {
    const struct {
        const char* set;
        std::string_view written;
        std::string_view expected;
    } cases[] = {
        {"ISO-8859-1", "\u00DB\u6F22e\u0301\u202E\x9B\x01|", "\xDB?e??\xA2?|"},
        {"KOI8-R", "\u0416\u2264\u00A0", "\xF6??"}, // it has them as 98 and 9A
        {"ANSI_X3.4-1968", "\u00DB", "\u00DB"},     // what no terminal reads
    };
    for (const auto& text : cases) {
        const Pipe pipe;
        const CCharacterSet set(text.set);
        CConsoleOutput output;
        output.Use(pipe.writer.Get(), "xterm", set);
        EXPECT_TRUE(Write(output, text.written));
        char bytes[64];
        const ssize_t count = read(pipe.reader.Get(), bytes, sizeof bytes);
        EXPECT_EQ(std::string_view(bytes, static_cast<std::size_t>(count)), text.expected);
    }
}

TEST(ConsoleSlow, WaitsForTheTerminalOnceTheBufferIsFull) {
    CShownConsole console;
    console.Clear();
    const std::string text(400'000, '\a');
    std::string got;
    std::thread reader([&] {
        pollfd arrival = {console.line.GetMaster(), POLLIN, 0};
        while (got.size() < text.size() && poll(&arrival, 1, kStuckMilliseconds) > 0)
            got += console.line.Read(1000);
    });
    EXPECT_TRUE(console.Write(text));
    console.output.End();
    reader.join();
    EXPECT_EQ(got, text);
}
