// The end of the program's work, asked for from outside: by a signal, or by the closing of the
// window that it runs in.
//
// One state of the process, which stays once it is there; any thread may call these. A thread heeds
// it as far as it says so with CEndGrace: it is then woken from whatever it waits for in this
// layer.
#pragma once

#include "platform/Types.h"

namespace platform {

// Asks for the end. Safe in a signal handler. Where the console heeds signals for it (EndOnSignals
// of console/Console.h), a process that is still there a little less than three seconds later is
// ended by the signal that asked, with the terminal rescued, if there was such a signal.
void RequestEnd();

bool IsEndRequested();

// While one lives, the calling thread's waits fail with ERROR_OPERATION_ABORTED from so many
// milliseconds after the end was asked for on; INFINITE: never, as without one. Signals that come
// once the console is given back leave no grace. Made and destroyed by the thread itself.
class CEndGrace {
  public:
    explicit CEndGrace(DWORD milliseconds);
    CEndGrace(const CEndGrace&) = delete;
    CEndGrace& operator=(const CEndGrace&) = delete;
    ~CEndGrace();

  private:
    const DWORD m_dwFormer;
};

} // namespace platform
