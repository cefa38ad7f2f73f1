#include "services/telephony/Notice.h"

#include "platform/notify/ModuleNotice.h"
#include "services/telephony/PlainText.h"

namespace telephonyservice {
namespace {

// A line that the log's daemons take whole.
constexpr std::size_t kLongestLine = 900;

void Tell(platform::ENotice kind, const std::string& text) {
    platform::GiveNotice(kind, MakePlainText(text, kLongestLine).c_str());
}

} // namespace

void TellFault(const std::string& text) {
    Tell(platform::ENotice::Fault, text);
}

void TellNews(const std::string& text) {
    Tell(platform::ENotice::News, text);
}

} // namespace telephonyservice
