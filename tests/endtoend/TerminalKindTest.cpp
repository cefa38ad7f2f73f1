// Terminals of other kinds: their keys are recognised, and one that can do nothing gets plain text.
#include "tests/endtoend/SessionTest.h"

struct TerminalKind {
    const char* name;
    const char* f5;
    const char* altF4;
    const char* keys; // Up, Delete, F1, Home
};

std::ostream& operator<<(std::ostream& stream, const TerminalKind& kind) {
    return stream << kind.name;
}

class CTerminalKindTest : public CSessionTest,
                          public ::testing::WithParamInterface<TerminalKind> {};

TEST_P(CTerminalKindTest, KeysAreRecognised) {
    const TerminalKind& kind = GetParam();
    SetVariable("TERM", kind.name);
    StartInteractive();
    Type(kind.keys);
    EXPECT_TRUE(DeviceGets("\x1B[A\x7F\x1BOP\x1B[H"));
    Type(kind.f5);
    ASSERT_TRUE(Shows("Baud Rate:"));
    Type("2");
    ASSERT_TRUE(Shows("Setting 57600 baud"));
    m_device.Send("\x1B[10;10H\x1B[1;31mhere\x1B[m");
    ASSERT_TRUE(ShowsInRow(9, "         here"));
    Type(kind.altF4);
    EXPECT_TRUE(Ends());
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, CTerminalKindTest,
    ::testing::Values(
        TerminalKind{"linux", "\x1B[[E", "\x1B\x1B[[D", "\x1B[A\x1B[3~\x1B[[A\x1B[1~"},
        TerminalKind{"screen-256color", "\x1B[15~", "\x1B[1;3S", "\x1BOA\x1B[3~\x1BOP\x1B[1~"},
        TerminalKind{"tmux-256color", "\x1B[15~", "\x1B[1;3S", "\x1B[A\x1B[3~\x1BOP\x1B[1~"},
        TerminalKind{"rxvt-unicode-256color", "\x1B[15~", "\x1B\x1B[14~",
                     "\x1B[A\x1B[3~\x1B[11~\x1B[7~"},
        TerminalKind{"no-such-kind", "\x1B[15~", "\x1B[1;3S", "\x1B[A\x1B[3~\x1BOP\x1B[H"}),
    [](const auto& row) {
        std::string name = row.param.name;
        std::erase(name, '-');
        return name;
    });

using CDumbTerminalTest = CSessionTest;

TEST_F(CDumbTerminalTest, GetsPlainText) {
    SetVariable("TERM", "dumb");
    StartInteractive();
    m_device.Send("\x1B[2J\x1B[1;31mred\x1B[m\r\nplain\x1B");
    ASSERT_TRUE(Shows("plain"));
    Type("keys");
    EXPECT_TRUE(DeviceGets("keys"));
    Type(kCtrlBackslash);
    EXPECT_TRUE(Ends());
    EXPECT_EQ(m_terminal.GetOutput().find('\x1B'), std::string::npos);
}
