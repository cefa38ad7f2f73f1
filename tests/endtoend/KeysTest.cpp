// What the user types and pastes, as the device gets it.
#include "tests/endtoend/SessionTest.h"

#include <algorithm>
#include <random>

class CKeysTest : public CSessionTest {
  protected:
    // Printable text with line ends and UTF-8 mixed in.
    static std::string MakePaste(std::size_t size) {
        std::mt19937 random(7);
        std::string paste;
        while (paste.size() < size) {
            const auto value = random() % 1000;
            if (value < 20)
                paste += '\r';
            else if (value < 30)
                paste += "\u00E9\u6F22\xF0\x9F\x99\x82";
            else
                paste += static_cast<char>(' ' + value % 95);
        }
        return paste;
    }
};

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
    Type(kAltF4);
    EXPECT_TRUE(Ends());
}

TEST_F(CKeysTest, PasteIsExactOnASlowDevice) {
    const std::string paste = MakePaste(1 << 20);
    StartInteractive();
    m_device.SetReadLimit(2048);
    Type(paste);
    ASSERT_TRUE(DeviceGets(paste));
    Type(kAltF4);
    EXPECT_TRUE(Ends());
}

TEST_F(CKeysTest, PasteIsExactOnADeviceThatEchoes) {
    const std::string paste = MakePaste(1 << 20) + "\x03the echo's end";
    StartInteractive();
    m_device.SetEcho(true);
    Type(paste);
    ASSERT_TRUE(DeviceGets(paste));
    ASSERT_TRUE(Shows("\u2665the echo's end"));
    Type(kAltF4);
    EXPECT_TRUE(Ends());
}

TEST_F(CKeysTest, PasteIsExactInACall) {
    CSimulator modem(m_pump, {"--dial-time", "1"});
    Start(modem.GetPath());
    ASSERT_TRUE(Shows("OK"));
    Type("ATD5551\r");
    ASSERT_TRUE(Shows("CONNECT"));
    // The far end echoes each line; a number tells them apart.
    std::string lines;
    for (int line = 0; line < 10000; ++line)
        lines += "line " + std::to_string(line) + " of the call\r\n";
    Type(lines + "the end");
    ASSERT_TRUE(Shows("the end"));
    const std::vector<std::string>& scrollback = Screen().GetScrollback();
    auto row = std::find(scrollback.begin(), scrollback.end(), "line 0 of the call");
    int line = 0;
    for (; row != scrollback.end(); ++row)
        ASSERT_EQ(*row, "line " + std::to_string(line++) + " of the call");
    EXPECT_EQ(line, 10001 - CTerminal::kRows);
    Type(kAltF4);
    EXPECT_TRUE(Ends());
}

TEST_F(CKeysTest, WhatWasTypedBeforeTheEndStillGoesOut) {
    StartInteractive();
    m_device.SetReadLimit(512);
    const std::string paste = MakePaste(100000);
    Type(paste + kAltF4);
    ASSERT_TRUE(DeviceGets(paste));
    EXPECT_TRUE(Ends());
}
