// Output that is no terminal: plain text.
#include "console/ConsoleOutput.h"
#include "platform/objects/Descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

using namespace platform;

namespace {

bool Write(CConsoleOutput& output, std::string_view text) {
    return output.Write(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

// What comes of a text, written in pieces of this size, in a file or a socket. Pipes have tests of
// the program.
std::string Plain(std::string_view text, CDescriptor writer, int reader, std::size_t step,
                  const char* set) {
    const CCharacterSet characters(set);
    CConsoleOutput output;
    output.Use(writer.Get(), "xterm", characters);
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
    char got[100] = {};
    EXPECT_GT(read(reader, got, sizeof got), 0);
    return got;
}

} // namespace

TEST(ConsolePlain, TextWithoutASequence) {
    const struct {
        std::string_view written;
        std::string_view expected;
        const char* set = "UTF-8";
    } cases[] = {
        {"\r\nOK\r\n", "\nOK\n"},
        {"10%\r20%\r\r\nend\r", "10%\r20%\nend\r"},
        {"a\n\nb\rc", "a\n\nb\rc"},
        {"a\tb\bc\a", "a\tb\bc\a"},
        {"\x1b[31mred\x7F", "\u2190[31mred\u2302"},
        {"caf\u00E9\xE2\x82", "caf\u00E9\u0393\u00E9"},
        {"\x9Bm\r\u00E9\r\a", "\u00A2m\r\u00E9\r\a"},
        {"\u00DB\u6F22e\u0301\u202E\x9B\x01|", "\xDB?e??\xA2?|", "ISO-8859-1"},
        {"\u0416\u2264\u00A0", "\xF6??", "KOI8-R"}, // it has them as 98 and 9A
        {"\u00DB", "\u00DB", "ANSI_X3.4-1968"},     // what no terminal reads
    };
    for (const auto& text : cases) {
        const std::string expected = "<" + std::string(text.expected);
        const CDescriptor file(open("/tmp", O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
        EXPECT_EQ(Plain(text.written, CDescriptor(dup(file.Get())), file.Get(), 1, text.set),
                  expected);
        int ends[2] = {-1, -1};
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
        const CDescriptor socket(ends[0]);
        EXPECT_EQ(Plain(text.written, CDescriptor(ends[1]), socket.Get(), 2, text.set), expected);
    }
}
