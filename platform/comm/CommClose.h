// Closing a device that does not take its output.
#pragma once

#include "platform/objects/Descriptor.h"

namespace platform {

// Closes the descriptor. The kernel waits up to half a minute for the output of a tty; drivers of
// USB adapters have no way to discard what they hold already, so a device that takes nothing makes
// them wait all that time. Here the wait is ended after a few hundredths of a second.
//
// Any thread may call this. It uses the signal of platform/objects/InterruptSignal.h, which then
// reaches the calling thread alone and does nothing.
void CloseWithoutWaiting(CDescriptor& descriptor);

} // namespace platform
