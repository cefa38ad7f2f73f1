// The built-in functions for texts and numbers. See BuiltinTable.h; what they compute is in
// TextParts.h and ScriptFormat.h.
//
// A text result stands in the function's own buffer until its next call, cut at 255 characters, and
// may be made from that same buffer. Numbers that a text has no place for are no error.
#pragma once

#include "script/BuiltinTable.h"

namespace builtins {

ScriptWord Max(CVScript& script, const BuiltinArguments& arguments);
ScriptWord Min(CVScript& script, const BuiltinArguments& arguments);

// Destination, format, values: 0. Nothing is written when the values do not suit the format, which
// is reported.
ScriptWord Sprintf(CVScript& script, const BuiltinArguments& arguments);

// Number: its decimal form.
ScriptWord String(CVScript& script, const BuiltinArguments& arguments);

// Destination, source: the destination, with the source behind what it held, cut at 255 characters.
ScriptWord StringCat(CVScript& script, const BuiltinArguments& arguments);

ScriptWord StringCompare(CVScript& script, const BuiltinArguments& arguments);
ScriptWord StringCompareI(CVScript& script, const BuiltinArguments& arguments);
ScriptWord StringFind(CVScript& script, const BuiltinArguments& arguments);
ScriptWord StringLeft(CVScript& script, const BuiltinArguments& arguments);
ScriptWord StringLength(CVScript& script, const BuiltinArguments& arguments);
ScriptWord StringMid(CVScript& script, const BuiltinArguments& arguments);

// Text, count: of a text that is too long for the buffer the end is kept, not the beginning.
ScriptWord StringRight(CVScript& script, const BuiltinArguments& arguments);

ScriptWord StringToNumber(CVScript& script, const BuiltinArguments& arguments);

} // namespace builtins
