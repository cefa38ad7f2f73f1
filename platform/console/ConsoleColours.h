// The text attribute that is wanted and the one that the terminal has. The terminal is told only
// when something is about to be drawn with another one. Used by the thread that has taken the
// console over.
#pragma once

#include "platform/console/ConsoleGather.h"

#include <cstdint>

namespace platform {

class CConsoleColours {
  public:
    // The terminal's own default colours.
    static constexpr std::uint8_t DEFAULT = 0x07;

    explicit CConsoleColours(CConsoleGather& gather) : m_gather(gather) {}

    std::uint8_t Wanted() const { return m_byWanted; }
    void Want(std::uint8_t attribute) { m_byWanted = attribute; }
    // The terminal has the wanted attribute.
    bool IsEasy() const { return m_nTerminal == m_byWanted; }

    // Gives the terminal the wanted attribute, or a given one; at most 16 bytes.
    void Sync() { Sync(m_byWanted); }
    void Sync(std::uint8_t attribute);
    // The same if the backgrounds differ: a terminal that scrolls fills the new row with its own.
    void SyncBackground();

    // Somebody else has used the terminal.
    void Forget() { m_nTerminal = UNKNOWN; }
    // The terminal has its default colours, unless it has brought back those that it had.
    void NoteReset() { m_nTerminal = m_nTerminal == DEFAULT ? DEFAULT : UNKNOWN; }

  private:
    static constexpr int UNKNOWN = -1;

    CConsoleGather& m_gather;
    std::uint8_t m_byWanted = DEFAULT;
    int m_nTerminal = DEFAULT;
};

} // namespace platform
