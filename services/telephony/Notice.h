// What the service tells the user and the administrator, because no result can say it. Any thread
// may call these.
#pragma once

#include <string>

namespace telephonyservice {

// One line each. What cannot be shown in it shows as '?'.
void TellFault(const std::string& text); // what is set up wrongly
void TellNews(const std::string& text);  // what happens now

} // namespace telephonyservice
