// The names of the modems that the telephony service knows. Used from the main thread.
#pragma once

#include "platform/Types.h"

#include <string>
#include <vector>

using ModemNames = std::vector<std::string>;

// Makes the list anew, in the service's order, names cut to 259 bytes. FALSE when there is no
// telephony service; the list is then empty.
BOOL EnumerateModems(ModemNames& names);
