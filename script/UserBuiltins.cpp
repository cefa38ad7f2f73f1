#include "script/UserBuiltins.h"

#include "console/MessageBox.h"
#include "modem/Modem.h"
#include "platform/Clock.h"
#include "platform/Error.h"
#include "platform/Message.h"
#include "platform/Notification.h"
#include "script/BuiltinSupport.h"

namespace builtins {
namespace {

constexpr UINT kSimpleBeep = 0xFFFFFFFF;

bool DispatchOneMessage() {
    MSG message;
    if (!PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
        return false;
    TranslateMessage(&message);
    DispatchMessageA(&message);
    return true;
}

// Blocks until there is a message. False when there is nothing more to wait for: the deadline is
// reached, or the device is gone.
bool WaitForMessage(const platform::CDeadline& deadline, HANDLE hangup) {
    const DWORD handles = hangup != nullptr ? 1 : 0;
    const DWORD result =
        MsgWaitForMultipleObjects(handles, &hangup, FALSE, deadline.Remaining(), QS_ALLINPUT);
    if (result == WAIT_OBJECT_0 + handles)
        return true;
    // Without the means to wait for messages the time passes all the same.
    if (result == WAIT_FAILED)
        Sleep(deadline.Remaining());
    return false;
}

void WaitPumping(DWORD milliseconds, HANDLE hangup) {
    const platform::CDeadline deadline(milliseconds);
    do {
        if (!DispatchOneMessage() && !WaitForMessage(deadline, hangup))
            return;
    } while (deadline.Remaining() != 0);
}

} // namespace

ScriptWord Beep(CVScript&, const BuiltinArguments&) {
    MessageBeep(kSimpleBeep);
    return {};
}

ScriptWord MessageBox(CVScript& script, const BuiltinArguments& arguments) {
    std::string text;
    std::string caption;
    if (!TakeText(script, arguments[0], text) || !TakeText(script, arguments[1], caption))
        return {};
    const int answer =
        MessageBoxA(nullptr, text.c_str(), caption.c_str(), MB_ICONINFORMATION | MB_OK);
    script.EndIfOver();
    return ScriptWord::Integer(answer);
}

ScriptWord PlaySound(CVScript& script, const BuiltinArguments& arguments) {
    std::string path;
    if (!TakeText(script, arguments[0], path))
        return {};
    // A machine without a player is not the script's business: the file is there.
    const bool isThere =
        sndPlaySoundA(path.c_str(), SND_ASYNC) || GetLastError() != ERROR_FILE_NOT_FOUND;
    return ScriptWord::Integer(isThere ? 1 : 0);
}

ScriptWord Wait(CVScript& script, const BuiltinArguments& arguments) {
    WaitPumping(MillisecondsOf(arguments[0]), script.Host().GetHangupHandle());
    script.EndIfOver();
    return ScriptWord::Integer(1);
}

} // namespace builtins
