// What sequences do to the screen. Where they begin and end is the parser's, and its test's.
#include "terminal/AnsiConsole.h"

#include "tests/modem/SubstituteSerial.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using std::string_view_literals::operator""sv;

// A screen without a console that records what is done to it, and what its device is sent.
class CRecordingScreen final : public CAnsiConsole {
  public:
    CRecordingScreen() { m_pModem = &m_modem; }

    void InsertChar() override { Record("InsertChar"); }
    void CursorUp(int count) override { Record("CursorUp", {count}); }
    void CursorDown(int count) override { Record("CursorDown", {count}); }
    void CursorForward(int count) override { Record("CursorForward", {count}); }
    void CursorBack(int count) override { Record("CursorBack", {count}); }
    void SetCursorPosition(int row, int column) override { Record("Position", {row, column}); }
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
        Record("Region", {top, left, bottom, right});
    }
    void SetColors(int foreground, int background) override {
        CAnsiConsole::SetColors(foreground, background);
        Record("Colors", {foreground, background});
    }
    void SetAttributeFlags(WORD flags) override {
        CAnsiConsole::SetAttributeFlags(flags);
        Record("Flags", {flags});
    }
    void PutChar(BYTE character) override {
        CAnsiConsole::PutChar(character);
        Record("PutChar", {character});
    }

    // What it does with these bytes, in words.
    std::string Feed(std::string_view bytes, std::size_t pieceSize = 1) {
        m_calls.clear();
        m_serial.m_calls.clear();
        for (; !bytes.empty(); bytes.remove_prefix(std::min(pieceSize, bytes.size())))
            PutText(
                {reinterpret_cast<const BYTE*>(bytes.data()), std::min(pieceSize, bytes.size())});
        for (const std::string& call : m_serial.m_calls)
            Record(call);
        return m_calls;
    }

    using CAnsiConsole::m_bInEscape;
    using CAnsiConsole::m_byAttribute;
    using CAnsiConsole::m_pModem;
    CSubstituteSerial m_serial;

  private:
    void Record(std::string_view call, std::initializer_list<int> numbers = {}) {
        (m_calls += m_calls.empty() ? "" : ", ") += call;
        for (const int number : numbers)
            m_calls += " " + std::to_string(number);
    }
    CTestModem m_modem{&m_serial};
    std::string m_calls;
};

const std::pair<std::string_view, std::vector<std::string_view>> kEffects[] = {
    {"InsertChar", {"\x1B[@"}},
    {"CursorUp 1", {"\x1B[A"}},
    {"CursorDown 5", {"\x1B[5B"}},
    {"CursorForward 12", {"\x1B[12C"}},
    {"CursorBack 0", {"\x1B[0D"}},
    {"PutChar 10, PutChar 10, PutChar 10", {"\x1B[3E"}},
    {"Position 4 9", {"\x1B[5;10H", "\x1B[5;10f"}},
    {"Position 4 0", {"\x1B[5F", "\x1B[;5H"}},
    {"Position 0 0", {"\x1B[H", "\x1B[f", "\x1B[u"}},
    {"Position 6 7", {"\x1B[;;7;;8;9H"}},
    {"Position -1 -1", {"\x1B[0;0H"}},
    {"EraseToScreenEnd", {"\x1B[J", "\x1B[0J", "\x1B[;2J"}},
    {"EraseToScreenStart", {"\x1B[1J"}},
    {"ClearScreen", {"\x1B[2J", "\x1B[29J", "\x1B[U"}},
    {"EraseToLineEnd", {"\x1B[K"}},
    {"EraseToLineStart", {"\x1B[1K"}},
    {"Position 0 0, EraseToLineEnd, Position 0 0", {"\x1B[2K"}},
    {"InsertLine", {"\x1B[9L"}},
    {"DeleteLine", {"\x1B[M"}},
    {"DeleteChar", {"\x1B[P"}},
    {"ScrollUp 1", {"\x1B[7S"}},
    {"ScrollDown 1", {"\x1B[7T"}},
    {"Region 1 0 23 0", {"\x1B[r"}},
    {"Region 2 0 19 0", {"\x1B[3;20r"}},
    {"Region 1 0 24 0", {"\x1B[1;25r"}},
    {"Region 4 0 24 0", {"\x1B[5;1r"}},
    {"write \x1B[1;1R", {"\x1B[6n", "\x1B[66n"}},
    {"", {"\x1B[0E", "\x1B[-5E", "\x1B[Z", "\x1B[s", "\x1B[5;26r", "\x1B[9;9r", "\x1B[9;4r"}},
    {"", {"\x1B[5n", "\x1B[n", "\x1B[?25h", "\x1B[V", "\x1B[x", "\x1B[z"}},
    // A value of three characters is as good as none, and ends the list it stands in.
    {"CursorForward 1", {"\x1B[100C", "\x1B[005C"}},
    {"CursorUp 1", {"\x1B[5;3A"}},
    {"CursorUp 5", {"\x1B[5;A"}},
    {"CursorUp 0", {"\x1B[;5A"}},
    {"Position 0 0", {"\x1B[100;5H"}},
    {"Position 4 0", {"\x1B[5;100H"}},
    // Whatever stands among the parameters is text for the decimal conversion.
    {"CursorForward 0", {"\x1B[?5C"}},
    {"CursorForward -3", {"\x1B[-3C"}},
    {"CursorForward 3", {"\x1B[+3C", "\x1B[ 3C"}},
    {"CursorForward 4", {"\x1B[4\0C"sv}},
    {"CursorUp 0", {"\x1B[[A"}},
    {"", {"\x1B[3xC", "\x1B[\0m"sv}},
    {"Colors 15 0, Flags 1, Colors 12 0, Flags 1", {"\x1B[1;31m"}},
    {"Colors 7 0, Flags 0", {"\x1B[m"}},
};

TEST(AnsiConsole, ActsOnSequences) {
    for (const auto& [calls, sequences] : kEffects)
        for (const std::string_view sequence : sequences)
            EXPECT_EQ(CRecordingScreen().Feed(sequence), calls) << sequence;
}

struct Rendition {
    BYTE attribute;
    WORD flags;
    std::vector<std::string_view> sequences;
};

const Rendition kRenditions[] = {
    {0x07, 0, {"\x1B[1;33;44m\x1B[0m", "\x1B[1;33;44m\x1B[m", "\x1B[;m", "\x1B[031m"}},
    {0x07, 0, {"\x1B[31;x42m", "\x1B[2;3;9;22;27;38;39;48;49;90;97m"}},
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
            EXPECT_EQ(screen.m_byAttribute, rendition.attribute) << sequence;
            EXPECT_EQ(screen.GetAttributeFlags(), rendition.flags) << sequence;
        }
}

TEST(AnsiConsole, ReportsTheCursorWhereThereIsRoom) {
    CRecordingScreen screen;
    screen.m_serial.m_dwRoom = 5;
    EXPECT_EQ(screen.Feed("\x1B[6n"), "");
    screen.m_serial.m_dwRoom = 6;
    EXPECT_EQ(screen.Feed("\x1B[6n"), "write \x1B[1;1R");
    screen.m_pModem = nullptr;
    EXPECT_EQ(screen.Feed("\x1B[6n"), "");
}

// Bytes that look like sequences often enough to reach every branch.
TEST(AnsiConsole, OutlivesAnyBytesInAnyPieces) {
    constexpr std::string_view likely = "\x1B\x1B\x1B[[[[;;;0123456789?!@ABCEHJKmnrsufF\n\0"sv;
    std::mt19937 random(20261);
    CRecordingScreen byBytes;
    CRecordingScreen byPieces;
    std::string bytes(4096, '\0');
    for (int round = 0; round < 50; ++round) {
        for (char& byte : bytes)
            byte = random() % 4 == 0 ? static_cast<char>(random() & 0xFF)
                                     : likely[random() % likely.size()];
        EXPECT_EQ(byPieces.Feed(bytes, 1 + random() % 500), byBytes.Feed(bytes));
        EXPECT_EQ(byBytes.Feed("\x1B[3C"), "CursorForward 3");
        EXPECT_FALSE(byBytes.m_bInEscape);
    }
    byBytes.Feed(std::string(1000000, '\x1B'));
    EXPECT_EQ(byBytes.Feed("[3C"), "CursorForward 3");
}

} // namespace
