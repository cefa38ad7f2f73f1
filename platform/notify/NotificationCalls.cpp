// The published calls that tell the user something.
#include "platform/Notification.h"

#include "platform/Error.h"
#include "platform/notify/SoundPlayer.h"

using namespace platform;

BOOL sndPlaySoundA(LPCSTR lpszSound, UINT) {
    return lpszSound != nullptr ? PlaySoundFile(lpszSound) : FailWith(ERROR_INVALID_PARAMETER);
}
