// The text attribute that is wanted and the one that the terminal has. The terminal is told only
// when something is about to be drawn with another one. Used by the thread that has taken the
// console over.
#pragma once

#include "console/ConsoleGather.h"

#include "platform/Types.h"

namespace platform {

class CConsoleColours {
  public:
    // The terminal's own default colours.
    static constexpr WORD kDefault = 0x07;
    // Blanks of this attribute are those that an erasure leaves.
    static bool HasOwnBackground(int attribute);

    explicit CConsoleColours(CConsoleGather& gather) : m_gather(gather) {}

    WORD Wanted() const { return m_wWanted; }
    void Want(WORD attribute) { m_wWanted = Normal(attribute); }
    // The attribute with only those bits beside the colours that tell something.
    static WORD Normal(WORD attribute);
    // The terminal has the wanted attribute.
    bool AreSet() const { return m_nTerminal == m_wWanted; }

    // Gives the terminal the wanted attribute, or a given normal one; at most 17 bytes.
    void Sync() { Sync(m_wWanted); }
    void Sync(int attribute);
    // The same if the backgrounds differ: a terminal that scrolls fills the new row with its own.
    void SyncBackground();

    // Somebody else has used the terminal.
    void Forget() { m_nTerminal = kUnknown; }
    // The terminal has its default colours, unless it has brought back those that it had.
    void NoteReset() { m_nTerminal = m_nTerminal == kDefault ? kDefault : kUnknown; }

  private:
    static constexpr int kUnknown = -1;

    CConsoleGather& m_gather;
    WORD m_wWanted = kDefault;
    int m_nTerminal = kDefault;
};

} // namespace platform
