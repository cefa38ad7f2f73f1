// The debug-output stream, and the formatter of the diagnostics.
//
// The stream is the system log (platform/system/SystemLog.h) at the level debug. With no log daemon
// the text goes nowhere, and one that takes nothing does not stop the program. Any thread may call
// these; the last error of the thread is left alone.
#pragma once

#include "platform/Types.h"

#include <cstdarg>

// Writes one text, whole, to the stream. A null text writes nothing. Cannot fail.
void OutputDebugStringA(LPCSTR lpOutputString);

// Formats printf-style into a buffer of nBufferSize characters, NUL included; a longer text is cut.
// Control characters are kept. Returns the characters stored, without the NUL; 0 when the format
// cannot be carried out (the buffer is then empty).
int wvsprintfA(char* lpOutput, std::size_t nBufferSize, LPCSTR lpFormat, va_list arguments)
    __attribute__((format(printf, 3, 0)));

namespace platform {

// A listener that takes the place of the system log, for tests. Called on the writing threads, also
// by several at a time; null gives the stream back to the system log.
using DebugListener = void (*)(LPCSTR text);
void SetDebugListener(DebugListener listener);

} // namespace platform
