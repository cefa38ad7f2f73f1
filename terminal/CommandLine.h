// The command line: the port, the baud rate and the three file settings.
//
// Read once by main, on the main thread, before the session starts.
#pragma once

#include <string>

// The file settings of the program; empty when the switch was not given. Set by ParseCommandLine,
// read by the session.
extern std::string g_strCommandFile; // -A
extern std::string g_strOutputFile;  // -O
extern std::string g_strScriptFile;  // -S

struct CommandLine {
    bool wantsUsage = false; // the first argument is "-?", "/?", or "--check" without its one file
    std::string checkedFile; // the one behind "--check"; empty when the first one is another
    std::string port;        // the first argument as typed; empty when there is none
    int baudRate = 0;        // -B; 0 when absent or no number
};

// Reads the arguments as main gets them. Never fails: what is no switch, and what is an unknown
// one, is ignored; of a switch given twice the later one counts; a switch's letter counts in either
// case. File names keep the case as typed; "~/" at the front of one is the home folder.
CommandLine ParseCommandLine(int argumentCount, const char* const* arguments);

// The usage text, with its line ends.
const char* GetUsageText();
