// What the user types and pastes, as the device gets it.
#include "tests/endtoend/SessionTest.h"

using CKeysTest = CSessionTest;

TEST_F(CKeysTest, ReachTheDeviceAsItsSequences) {
    StartInteractive();
    const struct {
        const char* typed;
        const char* sent;
    } keys[] = {
        {"\x1B[A", "\x1B[A"},  {"\x1B[B", "\x1B[B"},
        {"\x1B[C", "\x1B[C"},  {"\x1B[D", "\x1B[D"},
        {"\x1BOA", "\x1B[A"},  {"\x1BOD", "\x1B[D"},
        {"\x1B[H", "\x1B[H"},  {"\x1B[F", "\x1B[F"},
        {"\x1BOH", "\x1B[H"},  {"\x1BOF", "\x1B[F"},
        {"\x1B[2~", "\x1B[L"}, {"\x1B[3~", "\x7F"},
        {"\x1B[5~", "\x1B[I"}, {"\x1B[6~", "\x1B[G"},
        {"\x1BOP", "\x1BOP"},  {"\x1BOQ", "\x1BOQ"},
        {"\x1BOR", "\x1BOR"},  {"\x1BOS", "\x1BOS"},
        {"\x03", "\x03"},      {"\x1A", "\x1A"},
        {"\x13", "\x13"},      {"\x11", "\x11"},
        {"\x04", "\x04"},      {"\x16", "\x16"},
        {"\x0F", "\x0F"},      {"\x08", "\x08"},
        {"\x7F", "\x7F"},      {"\t", "\t"},
        {"\n", "\n"},          {"\r", "\r"},
        {"AT+CSQ", "AT+CSQ"},  {"\u00E9", "\u00E9"},
        {"\u6F22", "\u6F22"},  {"\xF0\x9F\x99\x82", "\xF0\x9F\x99\x82"},
        {"\xE9", "\xE9"},      {"\x1Bx", "\x1Bx"},
    };
    std::string typed;
    std::string sent;
    for (const auto& key : keys) {
        Type(key.typed);
        EXPECT_TRUE(DeviceGets(key.sent)) << ::testing::PrintToString(std::string(key.typed));
        typed += key.typed;
        sent += key.sent;
    }
    // All of them at once, as a fast typist or a paste would have them.
    Type(typed);
    EXPECT_TRUE(DeviceGets(sent));

    // Nothing follows a lone ESC, so it is one.
    Type("\x1B");
    EXPECT_TRUE(DeviceGets("\x1B"));
    Type("[");
    EXPECT_TRUE(DeviceGets("["));
}

TEST_F(CKeysTest, PasteIsExactOnADeviceThatEchoes) {
    constexpr int kLines = 40000;
    const std::string paste = MakeLines(kLines) + "\x03the end";
    StartInteractive();
    m_device.SetEcho(true);
    Type(paste);
    ASSERT_TRUE(DeviceGets(paste));
    ASSERT_TRUE(Shows("\u2665the end"));
    ExpectLines(kLines);
}

TEST_F(CKeysTest, PasteOnASlowDeviceStillGoesOutAfterTheEnd) {
    StartInteractive();
    m_device.SetReadLimit(512);
    const std::string paste = MakeLines(20000, " \u00E9\u6F22\xF0\x9F\x99\x82\r");
    Type(paste + kAltF4);
    ASSERT_TRUE(DeviceGets(paste));
    EXPECT_TRUE(Ends());
}

// The keys of terminals of other kinds; one that can do nothing gets plain text.
TEST_F(CKeysTest, AreKnownOnEveryKindOfTerminal) {
    const struct {
        const char* name;
        const char* f5;
        const char* altF4;
        const char* keys; // Up, Delete, F1, Home
    } kinds[] = {
        {"linux", "\x1B[[E", "\x1B\x1B[[D", "\x1B[A\x1B[3~\x1B[[A\x1B[1~"},
        {"screen-256color", kF5, kAltF4, "\x1BOA\x1B[3~\x1BOP\x1B[1~"},
        {"tmux-256color", kF5, kAltF4, "\x1B[A\x1B[3~\x1BOP\x1B[1~"},
        {"rxvt-unicode-256color", kF5, "\x1B\x1B[14~", "\x1B[A\x1B[3~\x1B[11~\x1B[7~"},
        {"no-such-kind", kF5, kAltF4, "\x1B[A\x1B[3~\x1BOP\x1B[H"},
    };
    for (const auto& kind : kinds) {
        SCOPED_TRACE(kind.name);
        SetVariable("TERM", kind.name);
        StartInteractive();
        // The device may hear of the program before the terminal does.
        ASSERT_TRUE(Fulfils("a new screen", [this] {
            return Screen().GetText().find("57600") == std::string::npos;
        }));
        Type(kind.keys);
        EXPECT_TRUE(DeviceGets("\x1B[A\x7F\x1BOP\x1B[H"));
        Type(kind.f5);
        ASSERT_TRUE(Shows("Baud Rate:"));
        Type("2");
        ASSERT_TRUE(Shows("Setting 57600 baud"));
        m_device.Send("\x1B[10;10H\x1B[1;31mhere\x1B[m");
        ASSERT_TRUE(ShowsInRow(9, "         here"));
        Type(kind.altF4);
        ASSERT_TRUE(Ends());
    }
}

TEST_F(CKeysTest, ADumbTerminalGetsPlainText) {
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
