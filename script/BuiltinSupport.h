// What the built-in functions share: taking a text argument over, and leaving a text result where a
// script finds it.
#pragma once

#include "script/Script.h"

#include <string>
#include <string_view>

namespace builtins {

inline constexpr std::size_t kMaxResultLength = CResultBuffers::kBufferSize - 1;

// Copies the text of an argument. False after a report: the text stands nowhere, and what the
// function is there for must not be done.
bool TakeText(CVScript& script, const ScriptWord& argument, std::string& text);

// The time that an argument tells; none for a negative number.
DWORD MillisecondsOf(const ScriptWord& argument);

// Puts a text, cut at 259 characters, into a result buffer, which it may itself stand in. The
// result is the text from the given position on.
ScriptWord KeepResult(CVScript& script, EResultBuffer buffer, std::string_view text,
                      std::size_t position = 0);

} // namespace builtins
