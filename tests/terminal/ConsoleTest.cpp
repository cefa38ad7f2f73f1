#include "terminal/AnsiConsole.h"

#include "modem/Modem.h"
#include "platform/Wait.h"
#include "tests/modem/SubstituteSerial.h"
#include "tests/terminal/UserTerminal.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <vector>

namespace {

using Cell = std::pair<int, int>; // column, row

// Long enough for a lone ESC to be told from a sequence on a busy machine.
constexpr DWORD kPatience = 10000;

class CTestConsole final : public CAnsiConsole {
  public:
    CTestConsole() { m_pModem = nullptr; }

    BOOL OnKey(DWORD key, BYTE*) override {
        m_keys.push_back(static_cast<WORD>(key & 0xFFFF));
        return FALSE;
    }
    void Show(std::string_view bytes) {
        for (const char byte : bytes)
            PutChar(static_cast<BYTE>(byte));
    }
    Cell Cursor() {
        Cell cell;
        GetCursor(cell.first, cell.second);
        return cell;
    }
    // The characters among the given number of input events; fewer when the console is given back.
    std::string ReadKeys(std::size_t events) {
        std::string characters;
        for (; events > 0 && m_bActive && WaitForInput(kPatience); --events) {
            BYTE character = 0;
            if (ReadKey(&character))
                characters += static_cast<char>(character);
        }
        return characters;
    }
    std::vector<WORD> m_keys;
};

BOOL IsSignalled(HANDLE event) {
    return WaitForSingleObject(event, 0) == WAIT_OBJECT_0;
}

TEST(Console, DoesNothingBeforeItIsTakenOver) {
    CTestConsole console;
    BYTE character = 'x';
    EXPECT_FALSE(console.ReadKey(&character));
    EXPECT_FALSE(console.WriteText("text", 4));
    EXPECT_FALSE(console.WaitForInput(0));
    console.SetColors(14, 1);
    console.ClearScreen();
    console.CursorForward(1);
    EXPECT_EQ(console.Cursor(), Cell(0, 0));
    console.Restore();
    EXPECT_EQ(g_pActiveConsole, nullptr);
}

TEST(Console, DeliversCharactersAndSpecialKeys) {
    std::string characters;
    std::vector<WORD> keys;
    {
        CUserTerminal user;
        CTestConsole console;
        console.Attach(nullptr);
        user.Type("\x03"
                  "a\x1B[A\xC3\xA4\x1A\x11\r\x1BOS\x7F");
        characters = console.ReadKeys(10);
        keys = console.m_keys;
    }
    EXPECT_EQ(characters, "\x03"
                          "a\xC3\xA4\x1A\x11\r\x7F");
    EXPECT_EQ(keys, (std::vector<WORD>{0x26, 0x73}));
}

TEST(Console, IsGivenBackByAltF4) {
    BOOL wasActive = FALSE;
    BOOL isActive = TRUE;
    BOOL wasReleased = TRUE;
    BOOL isReleased = FALSE;
    BOOL written = TRUE;
    std::size_t keys = 1;
    {
        CUserTerminal user;
        CTestConsole console;
        console.Attach(nullptr);
        wasActive = console.m_bActive;
        wasReleased = IsSignalled(console.GetReleaseEvent());
        user.Type("\x1B[1;3S");
        console.ReadKeys(1);
        isActive = console.m_bActive;
        isReleased = IsSignalled(console.GetReleaseEvent());
        written = console.WriteText("text", 4);
        keys = console.m_keys.size();
    }
    EXPECT_TRUE(wasActive);
    EXPECT_FALSE(isActive);
    EXPECT_FALSE(wasReleased);
    EXPECT_TRUE(isReleased);
    EXPECT_FALSE(written);
    EXPECT_EQ(keys, 0U);
}

TEST(Console, IsGivenBackByControlEvents) {
    for (const int signal : {SIGQUIT, SIGHUP, SIGTERM}) {
        BOOL isActive = TRUE;
        BOOL isReleased = FALSE;
        {
            CUserTerminal user;
            CTestConsole console;
            console.Attach(nullptr);
            std::raise(signal);
            // An event that the former signal left may come first.
            console.ReadKeys(2);
            isActive = console.m_bActive;
            isReleased = IsSignalled(console.GetReleaseEvent());
        }
        EXPECT_FALSE(isActive) << signal;
        EXPECT_TRUE(isReleased) << signal;
        EXPECT_EQ(g_pActiveConsole, nullptr);
    }
}

TEST(Console, MovesTheCursor) {
    struct Move {
        const char* bytes;
        Cell cell;
    };
    const std::vector<Move> moves = {
        {"\x1B[Habc\x1B[5D", {0, 0}},        {"\x1B[Habcdef\x1B[2D", {4, 0}},
        {"\x1B[H\x1B[70C\x1B[70C", {79, 0}}, {"\x1B[4;11H", {10, 3}},
        {"\x1B[99;99H", {79, 23}},           {"\x1B[5;5H\x1B[0;0H", {4, 4}},
        {"\x1B[5;5H\x1B[-9C", {4, 4}},       {"\x1B[7;8H\x1B[s\x1B[H\x1B[u", {7, 6}},
        {"\x1B[3;5H\x1B[2E", {0, 4}},        {"\x1B[3;5H\x1B[2J", {4, 2}},
        {"\x1B[3;5H\x1B[2K", {4, 2}},
    };
    std::vector<Cell> cells;
    {
        CUserTerminal user;
        CTestConsole console;
        console.Attach(nullptr);
        for (const Move& move : moves) {
            console.Show(move.bytes);
            cells.push_back(console.Cursor());
            user.TakeOutput();
        }
        console.SetCursorPosition(-1000000, 1000000);
        console.CursorBack(-2147483647 - 1);
        console.CursorForward(2147483647);
        console.CursorForward(-2147483647);
        cells.push_back(console.Cursor());
    }
    for (std::size_t index = 0; index < moves.size(); ++index)
        EXPECT_EQ(cells[index], moves[index].cell) << moves[index].bytes;
    EXPECT_EQ(cells.back(), Cell(79, 2));
}

TEST(Console, ReportsWhereTheCursorIs) {
    CSubstituteSerial serial;
    serial.m_bOpen = TRUE;
    class CModem : public CVModem {
      public:
        explicit CModem(ISerial* channel) { m_pSerial.Reset(channel); }
    };
    {
        CModem modem(&serial);
        CUserTerminal user;
        CTestConsole console;
        console.Attach(&modem);
        console.Show("\x1B[4;11H\x1B[6n");
    }
    EXPECT_EQ(serial.m_calls, std::vector<std::string>{"write \x1B[4;11R"});
}

} // namespace
