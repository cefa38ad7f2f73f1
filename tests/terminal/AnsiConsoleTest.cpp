#include "terminal/AnsiConsole.h"

#include "modem/Modem.h"
#include "tests/modem/SubstituteSerial.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using std::string_view_literals::operator""sv;

// A modem on a substitute channel, which records what is sent.
class CTestModem : public CVModem {
  public:
    CTestModem() { TakeSerial(&m_serial); }
    ~CTestModem() override { TakeSerial(nullptr); }
    CSubstituteSerial m_serial;
};

// A screen that records what is done to it and has no console.
class CRecordingScreen final : public CAnsiConsole {
  public:
    explicit CRecordingScreen(CVModem* modem = nullptr) { m_pModem = modem; }

    void InsertChar() override { Record("InsertChar"); }
    void CursorUp(int count) override { Record("CursorUp", {count}); }
    void CursorDown(int count) override { Record("CursorDown", {count}); }
    void CursorForward(int count) override { Record("CursorForward", {count}); }
    void CursorBack(int count) override { Record("CursorBack", {count}); }
    void SetCursorPosition(int row, int column) override {
        Record("SetCursorPosition", {row, column});
    }
    void EraseToScreenStart() override { Record("EraseToScreenStart"); }
    void ClearScreen() override { Record("ClearScreen"); }
    void EraseToLineEnd() override { Record("EraseToLineEnd"); }
    void EraseToScreenEnd() override { Record("EraseToScreenEnd"); }
    void EraseToLineStart() override { Record("EraseToLineStart"); }
    void DeleteLine() override { Record("DeleteLine"); }
    void InsertLine() override { Record("InsertLine"); }
    void DeleteChar() override { Record("DeleteChar"); }
    void ScrollUp(int count) override { Record("ScrollUp", {count}); }
    void ScrollDown(int count) override { Record("ScrollDown", {count}); }
    void SetScrollRegion(int top, int left, int bottom, int right) override {
        Record("SetScrollRegion", {top, left, bottom, right});
    }
    void SetColors(int foreground, int background) override {
        CAnsiConsole::SetColors(foreground, background);
        Record("SetColors", {foreground, background});
    }
    void SetAttributeFlags(WORD flags) override {
        CAnsiConsole::SetAttributeFlags(flags);
        Record("SetAttributeFlags", {flags});
    }
    void PutChar(BYTE character) override {
        CAnsiConsole::PutChar(character);
        if (!m_bInEscape && character == '\n')
            Record("line feed");
    }

    // What it does with these bytes, in words.
    std::string Feed(std::string_view bytes) {
        m_calls.clear();
        for (const char byte : bytes)
            PutChar(static_cast<BYTE>(byte));
        return m_calls;
    }

    BOOL IsCollecting() const { return m_bInEscape; }
    BYTE GetAttribute() const { return m_byAttribute; }

  private:
    void Record(std::string_view call, std::initializer_list<int> numbers = {}) {
        (m_calls += m_calls.empty() ? "" : ", ") += call;
        for (const int number : numbers)
            m_calls += " " + std::to_string(number);
    }
    std::string m_calls;
};

struct Effect {
    std::string_view calls;
    std::vector<std::string_view> sequences;
};

const Effect kEffects[] = {
    {"InsertChar", {"\x1B[@"}},
    {"CursorUp 1", {"\x1B[A"}},
    {"CursorDown 5", {"\x1B[5B"}},
    {"CursorForward 12", {"\x1B[12C"}},
    {"CursorBack 0", {"\x1B[0D"}},
    {"line feed, line feed, line feed", {"\x1B[3E"}},
    {"SetCursorPosition 4 9", {"\x1B[5;10H", "\x1B[5;10f"}},
    {"SetCursorPosition 4 0", {"\x1B[5F", "\x1B[;5H"}},
    {"SetCursorPosition 0 0", {"\x1B[H", "\x1B[f", "\x1B[u"}},
    {"SetCursorPosition 6 7", {"\x1B[;;7;;8;9H"}},
    {"SetCursorPosition -1 -1", {"\x1B[0;0H"}},
    {"EraseToScreenEnd", {"\x1B[J", "\x1B[0J", "\x1B[;2J"}},
    {"EraseToScreenStart", {"\x1B[1J"}},
    {"ClearScreen", {"\x1B[2J", "\x1B[29J", "\x1B[U"}},
    {"EraseToLineEnd", {"\x1B[K"}},
    {"EraseToLineStart", {"\x1B[1K"}},
    {"SetCursorPosition 0 0, EraseToLineEnd, SetCursorPosition 0 0", {"\x1B[2K"}},
    {"InsertLine", {"\x1B[9L"}},
    {"DeleteLine", {"\x1B[M"}},
    {"DeleteChar", {"\x1B[P"}},
    {"ScrollUp 1", {"\x1B[7S"}},
    {"ScrollDown 1", {"\x1B[7T"}},
    {"SetScrollRegion 1 0 23 0", {"\x1B[r"}},
    {"SetScrollRegion 2 0 19 0", {"\x1B[3;20r"}},
    {"SetScrollRegion 1 0 24 0", {"\x1B[1;25r"}},
    {"SetScrollRegion 4 0 24 0", {"\x1B[5;1r"}},
    {"", {"\x1B[0E", "\x1B[-5E", "\x1B[Z", "\x1B[s", "\x1B[5;26r", "\x1B[9;9r", "\x1B[9;4r"}},
    {"", {"\x1B[6n"}}, // no modem
    // A value of three characters is as good as none, and ends the list it stands in.
    {"CursorForward 1", {"\x1B[100C", "\x1B[005C"}},
    {"CursorUp 1", {"\x1B[5;3A"}},
    {"CursorUp 5", {"\x1B[5;A"}},
    {"CursorUp 0", {"\x1B[;5A"}},
    {"SetCursorPosition 0 0", {"\x1B[100;5H"}},
    {"SetCursorPosition 4 0", {"\x1B[5;100H"}},
    // Whatever stands among the parameters is text for the decimal conversion.
    {"CursorForward 0", {"\x1B[?5C"}},
    {"CursorForward -3", {"\x1B[-3C"}},
    {"CursorForward 3", {"\x1B[+3C", "\x1B[ 3C"}},
    {"CursorForward 4", {"\x1B[4\0C"sv}},
    {"CursorUp 0", {"\x1B[[A"}},
    {"", {"\x1B[3xC", "\x1B[\0m"sv}},
    // An ESC begins anew, '!' abandons.
    {"CursorForward 3", {"\x1B[12\x1B[3C"}},
    {"CursorUp 1", {"\x1B\x1B[A"}},
    {"CursorDown 1", {"\x1B[!p\x1B[B"}},
    {"", {"\x1B[12!C", "\x1B[?25h", "\x1BH"}},
};

TEST(AnsiConsole, ActsOnSequences) {
    for (const Effect& effect : kEffects)
        for (const std::string_view sequence : effect.sequences) {
            CRecordingScreen screen;
            EXPECT_EQ(screen.Feed(sequence), effect.calls) << sequence;
            EXPECT_FALSE(screen.IsCollecting()) << sequence;
        }
}

struct Rendition {
    BYTE attribute;
    WORD flags;
    std::vector<std::string_view> sequences;
};

const Rendition kRenditions[] = {
    {0x07,
     0,
     {"\x1B[1;33;44m\x1B[0m", "\x1B[1;33;44m\x1B[m", "\x1B[;m", "\x1B[031m", "\x1B[31;x42m"}},
    {0x07, 0, {"\x1B[2;3;9;22;27;38;39;48;49;90;97m"}},
    {0x04, 0, {"\x1B[31m", "\x1B[;31m", "\x1B[31;100;42m"}},
    {0x24, 0, {"\x1B[31;;42m"}},
    {0x62, 0, {"\x1B[32;43m"}},
    {0x51, 0, {"\x1B[34;45m"}},
    {0x73, 0, {"\x1B[36;47m"}},
    {0x40, 0, {"\x1B[30;41m"}},
    {0x37, 0, {"\x1B[37;46m"}},
    {0x0C, ATTR_BOLD, {"\x1B[1;31m", "\x1B[31;1m"}},
    {0x1E, ATTR_BOLD, {"\x1B[1;33;44m"}},
    {0x0F, ATTR_BOLD, {"\x1B[1m\x1B[1m"}},
    {0x07, ATTR_UNDERLINE | ATTR_BLINK, {"\x1B[4;5m"}},
    {0x07, ATTR_BLINK | ATTR_CONCEALED, {"\x1B[6;8m"}},
    {0x61, ATTR_REVERSE, {"\x1B[33;44;7m"}},
    {0x07, ATTR_REVERSE, {"\x1B[7;7m"}},
    {0x78, ATTR_BOLD | ATTR_REVERSE, {"\x1B[1;7m"}},
    {0x79, ATTR_BOLD | ATTR_REVERSE, {"\x1B[1;44;7m"}},
};

TEST(AnsiConsole, SelectsColours) {
    for (const Rendition& rendition : kRenditions)
        for (const std::string_view sequence : rendition.sequences) {
            CRecordingScreen screen;
            screen.Feed(sequence);
            EXPECT_EQ(screen.GetAttribute(), rendition.attribute) << sequence;
            EXPECT_EQ(screen.GetAttributeFlags(), rendition.flags) << sequence;
        }
    CRecordingScreen screen;
    EXPECT_EQ(screen.Feed("\x1B[1;31m"),
              "SetColors 15 0, SetAttributeFlags 1, SetColors 12 0, SetAttributeFlags 1");
    EXPECT_EQ(screen.Feed("\x1B[m"), "SetColors 7 0, SetAttributeFlags 0");
}

TEST(AnsiConsole, DropsAnOverlongSequence) {
    for (const std::size_t parameters : {253U, 254U, 255U, 299U}) {
        CRecordingScreen screen;
        const std::string beginning = "\x1B[" + std::string(parameters, '1');
        const bool fits = parameters < 254;
        EXPECT_EQ(screen.Feed(beginning + "C"), fits ? "CursorForward 1" : "");
        EXPECT_FALSE(screen.IsCollecting());
        EXPECT_EQ(screen.Feed("\x1B[2C"), "CursorForward 2");
    }
}

TEST(AnsiConsole, ReportsTheCursorWhenThereIsRoom) {
    CTestModem modem;
    CRecordingScreen screen(&modem);
    screen.Feed("\x1B[6n\x1B[5n\x1B[n\x1B[66n");
    EXPECT_EQ(modem.m_serial.m_calls,
              (std::vector<std::string>{"write \x1B[1;1R", "write \x1B[1;1R"}));
    modem.m_serial.m_dwRoom = 5;
    screen.Feed("\x1B[6n");
    EXPECT_EQ(modem.m_serial.m_calls.size(), 2U);
    modem.m_serial.m_dwRoom = 6;
    screen.Feed("\x1B[6n");
    EXPECT_EQ(modem.m_serial.m_calls.size(), 3U);
}

// Bytes that look like sequences often enough to reach every branch.
TEST(AnsiConsole, OutlivesAnyBytes) {
    constexpr std::string_view likely = "\x1B\x1B\x1B[[[[;;;0123456789?!@ABCEHJKmnrsufF\n\0"sv;
    std::mt19937 random(20261);
    CTestModem modem;
    CRecordingScreen screen(&modem);
    std::string bytes(4096, '\0');
    for (int round = 0; round < 50; ++round) {
        for (char& byte : bytes)
            byte = random() % 4 == 0 ? static_cast<char>(random() & 0xFF)
                                     : likely[random() % likely.size()];
        screen.Feed(bytes);
        EXPECT_EQ(screen.Feed("\x1B[3C"), "CursorForward 3");
        EXPECT_FALSE(screen.IsCollecting());
    }
    screen.Feed(std::string(1000000, '\x1B'));
    EXPECT_EQ(screen.Feed("[3C"), "CursorForward 3");
}

} // namespace
