#include "services/telephony/SystemLog.h"

#include "services/telephony/PlainText.h"

#include <syslog.h>

namespace telephonyservice {
namespace {

// A line that the log's daemons take whole.
constexpr std::size_t MAX_LINE = 900;

} // namespace

void WriteWarning(const std::string& text) {
    syslog(LOG_USER | LOG_WARNING, "%s", MakePlainText(text, MAX_LINE).c_str());
}

} // namespace telephonyservice
