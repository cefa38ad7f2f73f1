// What a module that was loaded at run time has to tell the user: the screen is the program's.
//
// Each notice also goes to the system log, as a warning. Any thread may call these.
#pragma once

#include "platform/Types.h"

namespace platform {

enum class ENotice {
    Fault, // something is set up wrongly; of use where the user misses it
    News,  // happens now
};

// For modules: tells one line, as it is. Nothing is kept for a listener that comes later.
void GiveNotice(ENotice kind, LPCSTR text);

// For the program: takes the notices from now on, on the threads that give them. Null: nobody does.
using NoticeListener = void (*)(ENotice kind, LPCSTR text);
void SetNoticeListener(NoticeListener listener);

} // namespace platform
