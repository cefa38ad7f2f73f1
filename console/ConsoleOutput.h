// The console's screen: text, cursor, colours, fills, the title and the alternate screen, and how
// all of that leaves for the terminal. On an output that is no terminal, text goes out plain, and
// everything else has no effect.
//
// One object lives as long as the process; it is used by the thread that has taken the console
// over. As a handle object it is signalled while less than 64 KiB wait for the terminal. Before
// Begin and after End each write goes out at once and blocks.
#pragma once

#include "console/Console.h"
#include "console/ConsoleAlternate.h"
#include "console/ConsoleColours.h"
#include "console/ConsoleCursor.h"
#include "console/ConsoleFill.h"
#include "console/ConsoleText.h"
#include "console/ConsoleTitle.h"
#include "platform/objects/HandleObject.h"

namespace platform {

class CConsoleOutput final : public CHandleObject {
  public:
    CConsoleOutput() = default;

    // Takes the descriptor of standard output, the terminal's type (TERM; null: unknown) and the
    // character set of the user's locale, and decides between terminal and plain text.
    void Use(int descriptor, const char* terminalType,
             const CCharacterSet& set = CCharacterSet::OfLocale());
    bool IsTerminal() const { return m_bTerminal; }

    // Begin gathers; End lets out what was gathered, gives up after 2 s without progress, and
    // leaves the terminal with its own colours and title and the cursor below the text.
    void Begin();
    void End();
    // Leaves the terminal as End does while the process is stopped; Resume goes on afterwards and
    // returns as FollowSize.
    void Suspend();
    bool Resume();

    // FALSE once output is gone.
    bool Write(const std::uint8_t* bytes, std::size_t count);
    void SetAttribute(WORD attribute);
    void SetTitle(std::string_view title);
    bool IsTitleChanged() const { return m_title.IsChanged(); }
    // FALSE for a position outside of the window.
    bool SetPosition(COORD position);
    void GetInfo(CONSOLE_SCREEN_BUFFER_INFO& info);
    // Fill returns the number of cells that lie in the window, -1 for a start outside of it;
    // ColourFill FALSE for other cells than those filled last.
    int Fill(char character, DWORD length, COORD start);
    bool ColourFill(WORD attribute, DWORD length, COORD start);
    // Rings the terminal's bell, also in the middle of a character; without a terminal nothing.
    void Ring();
    // Moves to the first column of the row below all text.
    void GoBelow();
    // The terminal's size, 80 by 25 where it tells none.
    COORD ReadSize() const;

    // The screen that is shown in place of this one for a while; on it there is only what is put
    // there. Leaving the terminal in any way, End included, leaves it first.
    CConsoleAlternate& Alternate() { return m_alternate; }
    // As Alternate().Enter(), from a terminal that has all that was written before.
    bool EnterAlternate();

    // Looks at the terminal's size; whether it has changed.
    bool FollowSize();

    // For the thread's waits: what still has to go out.
    bool HasWork() const;
    void LetOut();
    bool IsAllOut() const { return m_gather.Count() == 0; }
    bool IsStalled() const { return m_gather.IsStalled(); }
    // Some of what was written was given up.
    bool IsLost() const { return m_bLost; }
    void ContinueAfterStall();
    int WaitDescriptor() const override;
    short WaitEvents() const override { return POLLOUT; }
    bool IsReady() const override;
    bool TryAcquire(short events) override;

    // How long a terminal may take nothing before what is gathered for it is given up: two seconds,
    // one when the program is to end.
    static int MostMillisecondsWithoutProgress();

  private:
    struct Cells {
        int first;
        int count;
    };

    Cells CellsFrom(COORD start, DWORD length) const;
    bool IsInWindow(COORD position) const;
    // On the alternate screen the terminal's cursor is not this screen's.
    bool NeedsSync() const { return m_cursor.NeedsSync() && !m_alternate.IsEntered(); }
    bool LeaveTerminal();

    bool m_bTerminal = false;
    bool m_bTitle = false;
    bool m_bLost = false;
    bool m_bDirect = true; // nothing is gathered
    CConsoleGather m_gather;
    CConsoleCursor m_cursor{m_gather};
    CConsoleColours m_colours{m_gather};
    CConsoleFill m_fill{m_gather, m_cursor, m_colours};
    CConsoleText m_text{m_gather, m_cursor, m_colours, m_fill};
    CConsoleTitle m_title{m_gather};
    CConsoleAlternate m_alternate{m_gather, m_cursor, m_colours};
};

} // namespace platform
