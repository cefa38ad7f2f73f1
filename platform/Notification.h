// Playing a sound for the user. Any thread may call this. (A message box and a beep are the
// console's: console/MessageBox.h.)
#pragma once

#include "platform/Types.h"

inline constexpr UINT SND_ASYNC = 0x0001;

// Starts to play a sound file and returns at once, whatever fuSound says: with the first of
// pw-play, paplay and aplay that is in one of PATH's folders (those given from the root on). TRUE
// once the player runs; it is on its own then, so that what it makes of the file is not known.
// FALSE with ERROR_INVALID_PARAMETER (null), ERROR_FILE_NOT_FOUND (no regular file is there) or
// ERROR_MOD_NOT_FOUND (there is no player, or none could be started).
BOOL sndPlaySoundA(LPCSTR lpszSound, UINT fuSound);
