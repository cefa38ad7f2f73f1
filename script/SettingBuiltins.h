// The built-in functions for what the engine keeps for its host, and for what no device here tells.
// See BuiltinTable.h.
#pragma once

#include "script/BuiltinTable.h"

namespace builtins {

// The name of the access point, as the host has set it.
ScriptWord GetAPN(CVScript& script, const BuiltinArguments& arguments);

// An empty text.
ScriptWord GetPhoneModel(CVScript& script, const BuiltinArguments& arguments);
ScriptWord GetPhoneManufacturer(CVScript& script, const BuiltinArguments& arguments);

// Text: 1.
ScriptWord SetDialString(CVScript& script, const BuiltinArguments& arguments);
ScriptWord SetUserName(CVScript& script, const BuiltinArguments& arguments);
ScriptWord SetPassword(CVScript& script, const BuiltinArguments& arguments);

} // namespace builtins
