// The console for as long as the user is shown something: taken over, if it is not, and given back
// afterwards. One such visit at a time: another thread's waits for its end.
//
// A local object of the thread that makes the visit.
#pragma once

#include "console/ConsoleSession.h"

namespace platform {

class CConsoleVisit {
  public:
    explicit CConsoleVisit(CConsoleSession& session);
    CConsoleVisit(const CConsoleVisit&) = delete;
    CConsoleVisit& operator=(const CConsoleVisit&) = delete;
    ~CConsoleVisit();

    // FALSE: this thread does not have the console. Another one has taken it over, or this thread's
    // own visit called somebody who makes another, or TerminateThread has ended the thread.
    explicit operator bool() const { return m_bHasConsole; }
    // The console was not taken over before.
    bool HasTakenOver() const { return m_bTakesOver; }

  private:
    CConsoleSession& m_session;
    bool m_bHasTurn = false;
    bool m_bHasConsole = false;
    bool m_bTakesOver = false;
};

} // namespace platform
