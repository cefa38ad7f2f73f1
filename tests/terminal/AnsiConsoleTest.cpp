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

    // The same with these sequences, which are written without their beginning, with blanks
    // between.
    std::string FeedSequences(std::string_view sequences) {
        std::string bytes = "\x1B[";
        for (const char byte : sequences)
            bytes += byte == ' ' ? "\x1B[" : std::string(1, byte);
        return Feed(bytes);
    }

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

TEST(AnsiConsole, ActsOnSequences) {
    const std::pair<std::string_view, std::string_view> rows[] = {
        {"@ A 5B 12C 0D", "InsertChar, CursorUp 1, CursorDown 5, CursorForward 12, CursorBack 0"},
        {"3E 0E -5E", "PutChar 10, PutChar 10, PutChar 10"},
        {"5;10H 5;10f 5F H f",
         "Position 4 9, Position 4 9, Position 4 0, Position 0 0, Position 0 0"},
        {";5H ;;7;;8;9H 0;0H s u", "Position 4 0, Position 6 7, Position -1 -1, Position 0 0"},
        {"J 0J ;2J", "EraseToScreenEnd, EraseToScreenEnd, EraseToScreenEnd"},
        {"1J 2J 29J U", "EraseToScreenStart, ClearScreen, ClearScreen, ClearScreen"},
        {"K 1K", "EraseToLineEnd, EraseToLineStart"},
        {"2K", "Position 0 0, EraseToLineEnd, Position 0 0"},
        {"9L M P 7S 7T", "InsertLine, DeleteLine, DeleteChar, ScrollUp 1, ScrollDown 1"},
        {"r 3;20r 1;25r", "Region 1 0 23 0, Region 2 0 19 0, Region 1 0 24 0"},
        {"5;1r 5;26r 9;9r 9;4r", "Region 4 0 24 0"},
        {"6n 66n 5n n", "write \x1B[1;1R, write \x1B[1;1R"},
        {"Z ?25h V x z 3xC", ""},
        // A value of three characters is as good as none, and ends the list it stands in.
        {"100C 005C 5;3A", "CursorForward 1, CursorForward 1, CursorUp 1"},
        {"5;A ;5A", "CursorUp 5, CursorUp 0"},
        // Whatever stands among the parameters is text for the decimal conversion.
        {"?5C -3C +3C", "CursorForward 0, CursorForward -3, CursorForward 3"},
        {"\t3C 4\0C [A \0m"sv, "CursorForward 3, CursorForward 4, CursorUp 0"},
        {"1;31m", "Colors 15 0, Flags 1, Colors 12 0, Flags 1"},
        {"m", "Colors 7 0, Flags 0"},
    };
    for (const auto& [sequences, calls] : rows)
        EXPECT_EQ(CRecordingScreen().FeedSequences(sequences), calls) << sequences;
}

TEST(AnsiConsole, SelectsColours) {
    const struct {
        BYTE attribute;
        int flags;
        std::vector<std::string_view> sequences;
    } rows[] = {
        {0x07, 0, {"1;33;44m 0m", "1;33;44m m", ";m", "031m", "31;x42m"}},
        {0x07, 0, {"2;3;9;22;27;38;39;48;49;90;97m"}},
        {0x04, 0, {"31m", ";31m", "31;100;42m"}},
        {0x62, 0, {"32;43m"}},
        {0x51, 0, {"34;45m"}},
        {0x40, 0, {"30;41m"}},
        {0x37, 0, {"37;46m"}},
        {0x0C, ATTR_BOLD, {"1;31m", "31;1m"}},
        {0x1E, ATTR_BOLD, {"1;33;44m"}},
        {0x07, ATTR_UNDERLINE | ATTR_BLINK, {"4;5m"}},
        {0x07, ATTR_BLINK | ATTR_CONCEALED, {"6;8m"}},
        {0x61, ATTR_REVERSE, {"33;44;7m"}},
        {0x79, ATTR_BOLD | ATTR_REVERSE, {"1;44;7m"}},
    };
    for (const auto& row : rows)
        for (const std::string_view sequences : row.sequences) {
            CRecordingScreen screen;
            screen.FeedSequences(sequences);
            EXPECT_EQ(screen.m_byAttribute, row.attribute) << sequences;
            EXPECT_EQ(screen.GetAttributeFlags(), row.flags) << sequences;
        }
}

TEST(AnsiConsole, ReportsTheCursorWhereThereIsRoom) {
    CRecordingScreen screen;
    for (const DWORD room : {5, 6}) {
        screen.m_serial.m_dwRoom = room;
        EXPECT_EQ(screen.Feed("\x1B[6n"), room < 6 ? "" : "write \x1B[1;1R");
    }
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
    }
    byBytes.Feed(std::string(1000000, '\x1B'));
    EXPECT_EQ(byBytes.Feed("[3C"), "CursorForward 3");
}

} // namespace
