// The terminal's alternate screen: a second screen without a scrollback, for what is shown over the
// text for a while. What the first one shows, its cursor and its colours are the terminal's to keep
// meanwhile and come back when it is left.
//
// Part of the console's output; used by the thread that has taken the console over. A terminal
// whose user has switched the alternate screen off in its settings ignores the way there; nothing
// tells.
#pragma once

#include "console/ConsoleColours.h"
#include "console/ConsoleCursor.h"

namespace platform {

class CConsoleAlternate {
  public:
    CConsoleAlternate(CConsoleGather& gather, CConsoleCursor& cursor, CConsoleColours& colours)
        : m_gather(gather), m_cursor(cursor), m_colours(colours) {}

    // The terminal's type (TERM), which must stay valid; null: none.
    void Use(const char* terminalType) { m_terminalType = terminalType; }

    // The room of a unit without the longest of everything that goes with a row: to its place,
    // reversed and back, the rest erased.
    static constexpr std::size_t kMostText =
        CConsoleGather::kUnit - sizeof "\x1b[32767;32767H\x1b[7m\x1b[0m\x1b[K";

    // What leaves the alternate screen; null when the terminal's terminfo entry has none.
    const char* LeavingSequence();

    // Goes to an alternate screen that shows anything, its cursor anywhere. FALSE when there is
    // none, and when output is gone or the console was given back while it waited for room.
    bool Enter();
    // True until it is left, which may happen while a wait serves the console.
    bool IsEntered() const { return m_bEntered; }
    // Blanks the screen, places the cursor, and draws a text (at most kMostText bytes of glyphs)
    // from a cell on, reversed or with the rest of the row erased; cells are counted from 0. FALSE,
    // and nothing drawn, when the alternate screen was left or output is gone.
    bool Clear();
    bool PlaceCursor(int row, int column);
    bool Draw(int row, int column, std::string_view text, bool reversed);
    // Never waits in a way that serves the console; a terminal that makes no progress for two
    // seconds loses what was gathered. Without effect when it is not entered.
    void Leave();

  private:
    struct Way;
    static const Way kWays[];

    const Way* FindWay();
    static const Way* WayOf(std::string_view terminalType);
    bool EnsureRoom() { return m_bEntered && m_gather.EnsureRoom() && m_bEntered; }

    CConsoleGather& m_gather;
    CConsoleCursor& m_cursor;
    CConsoleColours& m_colours;
    const char* m_terminalType = nullptr;
    const Way* m_way = nullptr;
    bool m_bLookedUp = false;
    bool m_bEntered = false;
};

} // namespace platform
