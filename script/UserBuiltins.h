// The built-in functions for the user and for the passing of time. See BuiltinTable.h.
#pragma once

#include "script/BuiltinTable.h"

namespace builtins {

// 0.
ScriptWord Beep(CVScript& script, const BuiltinArguments& arguments);

// Text, caption: blocks until the user has closed the box; the box's result.
ScriptWord MessageBox(CVScript& script, const BuiltinArguments& arguments);

// Path: starts the sound, if there is something to play it with, and returns 1; 0 when there is no
// such file.
ScriptWord PlaySound(CVScript& script, const BuiltinArguments& arguments);

// Milliseconds, a negative number being 0: 1. Dispatches the thread's messages meanwhile, at least
// one if there is one. Ends at once when the device is gone; then the run ends.
ScriptWord Wait(CVScript& script, const BuiltinArguments& arguments);

} // namespace builtins
