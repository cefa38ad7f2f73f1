// Plays sound files with a player of the desktop. No state; any thread may call this.
#pragma once

#include "platform/Types.h"

namespace platform {

// See sndPlaySoundA.
BOOL PlaySoundFile(LPCSTR path);

} // namespace platform
