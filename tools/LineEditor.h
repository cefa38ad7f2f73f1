// Assembles command lines from single bytes as a modem does: waits for AT, takes everything up to
// the S3 character, lets the S5 character (or DEL) take the last byte back, repeats the last line
// on A/ and echoes. Bytes before AT are skipped and cost no memory.
//
// Owned by CModemSimulator, one thread at a time; total for any bytes.
#pragma once

#include "tools/ModemSettings.h"

#include <string>

namespace modemsim {

class CLineEditor {
  public:
    enum class EEvent {
        None,
        Line,   // Line() is to be executed, for the first time or again
        TooLong // a line was longer than lineLimit; it is gone
    };

    static constexpr std::size_t kLineLimit = 512;

    // Takes one byte; appends what is to be echoed.
    EEvent Feed(char byte, const ModemSettings& settings, std::string& echo);

    // The last whole line, without AT and the line's end.
    const std::string& Line() const { return m_strLast; }

    // Forgets the line being entered, not the last one.
    void Clear();

  private:
    enum class EState { Start, Skipping, Prefix, Body };

    EEvent FinishLine();
    EEvent TakeByte(char byte);
    void TakeBack(std::string& echo, bool echoOn);

    EState m_eState = EState::Start;
    bool m_bPrefixFirst = false; // the A stands first in its line: only then "A/" repeats
    bool m_bTooLong = false;
    std::string m_strBody;
    std::string m_strLast;
};

} // namespace modemsim
