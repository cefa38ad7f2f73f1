// What the device sends, as the user sees it.
#include "tests/endtoend/SessionTest.h"

#include <random>
#include <utf8proc.h>

using CDeviceOutputTest = CSessionTest;

namespace {

// Where a control function that is none of those the program itself uses, or invalid UTF-8, begins;
// npos when there is none.
std::size_t FindHostileByte(const std::string& output) {
    const std::string_view own = "\a\b\t\n\r\x1B";
    for (std::size_t place = 0; place < output.size();) {
        utf8proc_int32_t character = 0;
        const utf8proc_ssize_t length =
            utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(&output[place]),
                             static_cast<utf8proc_ssize_t>(output.size() - place), &character);
        const bool isControl = character < 0x20 || (character >= 0x7F && character < 0xA0);
        if (length < 1 || (isControl && own.find(output[place]) == own.npos))
            return place;
        place += static_cast<std::size_t>(length);
    }
    return std::string::npos;
}

} // namespace

TEST_F(CDeviceOutputTest, LetsNoByteActOnTheTerminal) {
    StartInteractive();
    std::string hostile;
    for (int byte = 0; byte < 256; ++byte)
        hostile += static_cast<char>(byte);
    for (int control = 0x80; control < 0xA0; ++control)
        hostile += {'\xC2', static_cast<char>(control)};
    // Titles, questions, other modes and character sets, strings, broken UTF-8.
    hostile += "\x1B]0;stolen\x07\x1B]2;stolen\x1B\\\x9D\x32;stolen\x9C\xC2\x9D\x32;stolen\x07";
    hostile += "\x1BP$q\"p\x1B\\\x1B[c\x1B[>c\x1B[5n\x9B\x36n\xC2\x9B\x36n\x1BZ\x1B[21t";
    hostile += "\x1B[?1049h\x1B[?1000h\x1B[?5h\x1B[?25l\x1B[4h\x1B[!p\x1B(0\x1B#8\x1BN\x0E";
    hostile += "\x1B\x63\x1B^pm\x1B\\\x1B_apc\x1B\\";
    hostile += "\xE2\x82\xF4\x90\x80\x80\xED\xA0\x80\xC0\x9B\xF0\x80\x80\x9B";
    std::mt19937 random(1);
    for (int index = 0; index < 200000; ++index)
        hostile += static_cast<char>(random());
    m_device.Send(hostile + "!\x1B[m\x1B[2J\x1B[H\x01\x0F\x1B*\x7Fsane");

    ASSERT_TRUE(ShowsInRow(0, "\u263A\u263C\u2190*\u2302sane"));
    EXPECT_EQ(Screen().GetTitle(), "Corvane - " + m_device.GetPath());
    EXPECT_EQ(FindHostileByte(m_terminal.GetOutput()), std::string::npos);
}

TEST_F(CDeviceOutputTest, StaysResponsiveUnderAnyStream) {
    StartInteractive();
    m_device.Send(std::string(10 << 20, '\x1B') + "[2J\x1B[Hafter the escapes");
    ASSERT_TRUE(ShowsInRow(0, "after the escapes"));
    // Without blanks: at the end a row with nothing but one would pass for an empty one.
    m_device.SendEndlessly("no-line-end-");
    ASSERT_TRUE(m_pump.RunUntil([this] { return m_device.GetSentCount() > (11 << 20); }));
    Type("key");
    ASSERT_TRUE(DeviceGets("key"));
}

TEST_F(CDeviceOutputTest, LosesNothingOnATerminalThatHoldsBack) {
    constexpr int kLines = 20000;
    StartInteractive();
    m_terminal.SetReading(false);
    m_device.Send(MakeLines(kLines) + "the end");
    // The terminal takes no more, and yet keys reach the device.
    ASSERT_TRUE(Fulfils("a stop", [this] {
        const std::size_t sent = m_device.GetSentCount();
        m_pump.RunFor(std::chrono::milliseconds(500));
        return sent == m_device.GetSentCount();
    }));
    Type("keys\r");
    ASSERT_TRUE(DeviceGets("keys\r"));

    m_terminal.SetReading(true);
    ASSERT_TRUE(Shows("the end"));
    ExpectLines(kLines);
}
