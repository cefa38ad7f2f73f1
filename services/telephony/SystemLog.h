// Where the service tells the administrator what no result can say. Any thread may call.
#pragma once

#include <string>

namespace telephonyservice {

// One line of the system's log, as a warning. Control characters show as '?'.
void WriteWarning(const std::string& text);

} // namespace telephonyservice
