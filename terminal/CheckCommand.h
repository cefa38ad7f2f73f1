// What "--check" does: reads a script and prints what is wrong with it. Needs no device and takes
// no terminal; used from main, on the main thread.
#pragma once

#include <string>

// Prints each finding on standard output as "FILE:LINE: text". The program's exit code: 0 when
// there is none, else 1, also when the file cannot be read, which standard error is told.
int CheckScriptFile(const std::string& path);
