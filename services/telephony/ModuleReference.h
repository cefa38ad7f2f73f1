// The module's holds on itself. Any thread may call.
#pragma once

namespace telephonyservice {

// Loads the module once more, so that unloading it leaves it in place; with forGood, for the rest
// of the process. False when that fails.
bool HoldModule(bool forGood);

// Gives one such load back. The caller's caller must have the module loaded too.
void ReleaseModule();

} // namespace telephonyservice
