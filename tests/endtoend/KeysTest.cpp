// What the user types and pastes, as the device gets it.
#include "tests/endtoend/SessionTest.h"

using CKeysTest = CSessionTest;

TEST_F(CKeysTest, ReachTheDeviceAsItsSequences) {
    std::vector<std::pair<std::string, std::string>> keys = {
        {"\x1BOA", "\x1B[A"},  {"\x1BOD", "\x1B[D"}, {"\x1BOH", "\x1B[H"},  {"\x1BOF", "\x1B[F"},
        {"\x1B[2~", "\x1B[L"}, {"\x1B[3~", "\x7F"},  {"\x1B[5~", "\x1B[I"}, {"\x1B[6~", "\x1B[G"},
        {"\x7F", "\x08"},      {"\x1Bx", "x"},       {"\x1B[18~!", "!"},
    };
    for (const char* asTyped :
         {"\x1B[A", "\x1B[B", "\x1B[C", "\x1B[D", "\x1B[H", "\x1B[F", "\x1BOP", "\x1BOQ", "\x1BOR",
          "\x1BOS", "\x01\x02\x03\x04\x0F\x11", "\x08\t\n\r\x13\x16\x1A", "AT+CSQ", "\xE9",
          "\u00E9\u6F22\U0001F642"})
        keys.emplace_back(asTyped, asTyped);
    StartInteractive();
    std::string typed;
    std::string sent;
    for (const auto& [key, sequence] : keys) {
        Type(key);
        EXPECT_TRUE(DeviceGets(sequence)) << ::testing::PrintToString(key);
        typed += key;
        sent += sequence;
    }
    // All of them at once, as a fast typist or a paste would have them.
    Type(typed);
    EXPECT_TRUE(DeviceGets(sent));

    // Nothing follows a lone ESC, so it is one.
    for (const char* key : {"\x1B", "["}) {
        Type(key);
        EXPECT_TRUE(DeviceGets(key));
    }
    // One key is one answer.
    for (const char* key : {"\u6F22.", "\x1B\u00E9.", "\x1Bx."}) {
        Type(std::string(kF6) + key);
        EXPECT_TRUE(DeviceGets(".")) << key;
    }
}

TEST_F(CKeysTest, PasteOnASlowDeviceStillGoesOutAfterTheEnd) {
    StartInteractive();
    m_device.SetReadLimit(512);
    const std::string paste = MakeLines(20000, " \u00E9\u6F22\xF0\x9F\x99\x82\r");
    Type(paste + kAltF4);
    ASSERT_TRUE(DeviceGets(paste));
    EXPECT_TRUE(Ends());
}

TEST_F(CKeysTest, ADumbTerminalGetsPlainText) {
    m_environment["TERM"] = "dumb";
    StartInteractive();
    m_device.Send("\x1B[2J\x1B[1;31mred\x1B[m\r\nplain\x1B");
    ASSERT_TRUE(Shows("plain"));
    Type("keys");
    EXPECT_TRUE(DeviceGets("keys"));
    Type(kCtrlBackslash);
    EXPECT_TRUE(Ends());
    EXPECT_EQ(m_terminal.GetOutput().find('\x1B'), std::string::npos);
}
