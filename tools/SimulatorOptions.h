// The command line of wirelet-modemsim. Called once, before anything else; one thread.
#pragma once

#include "tools/SimulatorProfile.h"

#include <string>

namespace modemsim {

struct SimulatorOptions {
    enum class EPurpose { Run, Help, Version, Refuse };

    EPurpose purpose = EPurpose::Run;
    std::string problem; // why the command line is refused
    std::string link;    // empty: none
    bool once = false;
    SimulatorProfile profile;
};

SimulatorOptions ParseOptions(int argumentCount, char** arguments);

// The text of --help.
std::string HelpText();

} // namespace modemsim
