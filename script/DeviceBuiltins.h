// The built-in functions that work on the device. See BuiltinTable.h.
//
// They block the script's thread: for the answers to all attempts, until the bytes are taken, until
// the deadline; and no longer than the device is there. When it is gone afterwards the run ends.
#pragma once

#include "script/BuiltinTable.h"

namespace builtins {

// The baud rate; 0 when the device cannot tell.
ScriptWord GetBaudRate(CVScript& script, const BuiltinArguments& arguments);

// Ends a call: drops DTR and RTS for 100 ms. 0.
ScriptWord Hangup(CVScript& script, const BuiltinArguments& arguments);

// Command: the result code of the exchange; RESULT_NO_RESPONSE also when nothing was sent, the
// number of attempts being 0 or less.
ScriptWord SendCommand(CVScript& script, const BuiltinArguments& arguments);

// Command: the response of the exchange, or what there is of it.
ScriptWord SendCommandGetString(CVScript& script, const BuiltinArguments& arguments);

// Path: 1; 0 when the file cannot be read.
ScriptWord SendFile(CVScript& script, const BuiltinArguments& arguments);

// Text: 0.
ScriptWord SendString(CVScript& script, const BuiltinArguments& arguments);

// Rate: 1, or 0 when the device refuses it. -1 keeps the rate.
ScriptWord SetBaudRate(CVScript& script, const BuiltinArguments& arguments);

// Attempts: 1.
ScriptWord SetRetry(CVScript& script, const BuiltinArguments& arguments);

// Milliseconds, a negative number being 0: 1.
ScriptWord SetTimeout(CVScript& script, const BuiltinArguments& arguments);

// Text, milliseconds, a negative number being 0: 1 when the device has sent the text in time, else
// 0. Everything up to the text is read and gone, nothing behind it. NULs do not count. An empty
// text has come with any byte.
ScriptWord WaitForString(CVScript& script, const BuiltinArguments& arguments);

} // namespace builtins
