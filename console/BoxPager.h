// A message box on a terminal without an alternate screen: plain lines below the text that is
// there, a screenful at a time.
//
// Used by the thread that has the console; ends with its keys.
#pragma once

#include "console/BoxKeys.h"
#include "console/BoxLayout.h"

namespace platform {

class CBoxPager {
  public:
    CBoxPager(CConsoleSession& session, CBoxKeys& keys)
        : m_output(session.Output()), m_keys(keys) {}

    // Shows the lines until they are confirmed. KnowsColumn: the cursor's column is known, which it
    // is not when others have used the terminal.
    void Run(const BoxContent& content, bool knowsColumn);

  private:
    void GoBelow(bool knowsColumn);
    bool Confirm(const char* prompt);
    void Write(const std::string& text);

    CConsoleOutput& m_output;
    CBoxKeys& m_keys;
};

// Lines that say the same without a box, each ended by the given text: sign, caption, text.
std::string LinesOf(const BoxContent& content, const char* lineEnd);

} // namespace platform
