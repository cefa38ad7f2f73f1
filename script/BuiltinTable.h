// The functions that every script has: what stands between a script and the device, the user and
// texts.
//
// The table is constant; handlers run on the script's thread. The engine has checked the arguments
// against the row before it calls: that there are enough, and that a text stands where one is
// needed and none where an integer is. A handler reads those it needs. A handler returns its
// result; one whose memory operation the door refused has reported that first
// (CVScript::ReportError).
#pragma once

#include "platform/Types.h"
#include "script/ScriptValue.h"

#include <array>

class CVScript;

// The arguments of one call, in order.
struct BuiltinArguments {
    const ScriptWord* words;
    DWORD count;

    const ScriptWord& operator[](DWORD index) const { return words[index]; }
};

using BuiltinHandler = ScriptWord (*)(CVScript& script, const BuiltinArguments& arguments);

struct BuiltinEntry {
    LPCSTR name;
    BuiltinHandler handler;
    // One letter for each argument that must be there: 't' a text, 'i' an integer.
    LPCSTR arguments;
    char result; // likewise
};

inline constexpr DWORD kBuiltinCount = 33;

// In the order of registration, ended by a row with no name and no handler.
extern const std::array<BuiltinEntry, kBuiltinCount + 1> g_Builtins;
