// A command file run (-A): the lines of a text file are sent as AT commands, one by one.
//
// Runs on the session's thread until the last line is answered, the device is gone, or a file
// fails. The keyboard is not read meanwhile; when the console has been given back, the run carries
// on and what it would show is dropped, but for failures, which then go to standard error.
#pragma once

#include <string>

class CTermConsole;
class CTermModem;

// Sends the file's lines, each with a CR added; empty lines and lines that begin with ';' are left
// out. Each line and its answer is shown on the console and, when g_strOutputFile is set, written
// to that file. Failures are told to the user and end the run.
void RunCommandFile(CTermModem& modem, CTermConsole& console, const std::string& fileName,
                    const std::string& deviceName);
