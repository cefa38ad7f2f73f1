// The modems that administrator and user have named. Any thread may call.
#pragma once

#include "services/telephony/LineDevice.h"

#include <vector>

namespace telephonyservice {

// Those of /etc/wirelet/modems.conf, then those of wirelet/modems.conf in $XDG_CONFIG_HOME, or in
// ~/.config without it. A file that is not there is an empty one; what is wrong with a file is
// told as faults, the first of each file one by one.
std::vector<LineDevice> ReadNamedModems();

} // namespace telephonyservice
