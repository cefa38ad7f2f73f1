// The keys of a message box, and what else ends it or makes it be drawn again.
//
// Exists while a box is shown, on the thread that has the console: what was typed before is not the
// box's, and is there again for whoever reads keys afterwards, together with what the box did not
// take and with the events that came meanwhile.
#pragma once

#include "console/ConsoleSession.h"

namespace platform {

enum class BoxKey {
    None,
    Accept, // Enter, Space
    Cancel, // Esc
    Up,
    Down,
    PageUp,
    PageDown,
    Home,
    End,
    Redraw, // the window has another size, or shows something else since the process was stopped
    Closed, // a control event, the end of the input, the thread's end
};

class CBoxKeys {
  public:
    explicit CBoxKeys(CConsoleSession& session);
    CBoxKeys(const CBoxKeys&) = delete;
    CBoxKeys& operator=(const CBoxKeys&) = delete;
    ~CBoxKeys();

    // Waits for the next one, never None.
    BoxKey Next();

  private:
    BoxKey KeyOf(const INPUT_RECORD& record);
    static BoxKey KeyOf(const KEY_EVENT_RECORD& key);

    CConsoleSession& m_session;
    WORD m_wEvents = 0; // types of the events that came meanwhile
};

} // namespace platform
