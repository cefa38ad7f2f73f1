// The console's screen: turns written bytes into what the terminal draws, and keeps the cursor, the
// colours, fills and the title on the way. Nothing that is written reaches the terminal as a
// control function. On an output that is no terminal, text goes out plain.
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
#include "console/ConsoleTitle.h"
#include "platform/terminal/Utf8.h"

#include <atomic>

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
    // Leaves the terminal as End does while the process is stopped; Resume goes on afterwards.
    void Suspend();
    void Resume();

    // The short way of a single byte: FALSE, and nothing done, when it does not go that way.
    bool WriteEasy(std::uint8_t byte) {
        if (byte - 0x20U >= 0x5FU || m_nEasy == 0)
            return false;
        --m_nEasy;
        m_gather.Put(byte);
        m_cursor.Advance(1);
        return true;
    }
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
    void ReadSize(int& columns, int& rows) const;

    // The screen that is shown in place of this one for a while; on it there is only what is put
    // there. Leaving the terminal in any way, End included, leaves it first.
    CConsoleAlternate& Alternate() { return m_alternate; }
    // As Alternate().Enter(), from a terminal that has all that was written before.
    bool EnterAlternate();

    // The terminal has changed its size; the only operation that a signal handler may call.
    void NoteSizeChange() { m_bSizeChanged.store(true, std::memory_order_relaxed); }
    // Looks at the new size, if there is one. Returns whether the size has changed since the last
    // call; output notices a change by itself meanwhile.
    bool TakeSizeChange();

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
    enum Obstacle : unsigned {
        SEQUENCE = 1,    // a UTF-8 sequence is in progress
        FILL = 2,        // a fill is remembered
        HELD_RETURN = 4, // plain text: a CR that may belong to a CR LF
        DIRECT = 8,      // nothing is gathered
    };

    std::size_t EasyRoom() const;
    // Everything that touches the screen, but for Write, ends the short way.
    void EndEasy() { m_nEasy = 0; }
    // Writes printable characters from the front as far as they need nothing else; returns where it
    // stopped.
    const std::uint8_t* WriteRun(const std::uint8_t* bytes, const std::uint8_t* end);
    bool WriteByte(std::uint8_t byte);
    void WriteControl(std::uint8_t byte);
    void WritePlainControl(std::uint8_t byte);
    void WriteCharacter();
    void DrawBroken();
    void Draw(std::string_view character, int width);
    void DrawTab();
    void LineFeed();
    // What was left undecided is decided: another kind of output comes.
    void EndSequence();
    void EndFill();
    void EndHeldReturn();
    bool EnsureRoom() { return m_gather.HasRoom() || m_gather.MakeRoom(); }
    // On the alternate screen the terminal's cursor is not this screen's.
    bool NeedsSync() const { return m_cursor.NeedsSync() && !m_alternate.IsEntered(); }
    void FollowSize();
    bool LeaveTerminal();

    std::atomic<bool> m_bSizeChanged = false;
    bool m_bTerminal = false;
    bool m_bTitle = false;
    bool m_bLost = false;
    bool m_bSizeNews = false;
    unsigned m_dwObstacles = DIRECT;
    // How many printable characters need nothing but their byte in the buffer and the next column.
    std::size_t m_nEasy = 0;
    CConsoleGather m_gather;
    CConsoleCursor m_cursor{m_gather};
    CConsoleColours m_colours{m_gather};
    CConsoleFill m_fill{m_gather, m_cursor, m_colours};
    CConsoleTitle m_title{m_gather};
    CConsoleAlternate m_alternate{m_gather, m_cursor, m_colours};
    CUtf8Decoder m_decoder;
};

} // namespace platform
