#include "tools/EscapeDetector.h"

namespace modemsim {
namespace {

constexpr int kSequenceLength = 3;

} // namespace

void CEscapeDetector::Start(TimeMs now) {
    m_nCount = 0;
    m_tLast = now;
}

void CEscapeDetector::Take(bool escape, TimeMs guard, TimeMs now) {
    const TimeMs gap = now - m_tLast;
    m_tLast = now;
    const bool begins = m_nCount == 0 && gap >= guard;
    const bool continues =
        m_nCount > 0 && m_nCount < kSequenceLength && (guard == 0 || gap < guard);
    m_nCount = escape && (begins || continues) ? m_nCount + 1 : 0;
}

std::size_t CEscapeDetector::Feed(std::string_view bytes, char escape, TimeMs guard, TimeMs now) {
    if (bytes.find(escape) == std::string_view::npos) {
        Start(now);
        return bytes.size();
    }
    std::size_t taken = 0;
    while (taken < bytes.size()) {
        Take(bytes[taken++] == escape, guard, now);
        if (guard == 0 && m_nCount == kSequenceLength)
            break;
    }
    return taken;
}

std::optional<TimeMs> CEscapeDetector::Deadline(TimeMs guard) const {
    if (m_nCount < kSequenceLength)
        return std::nullopt;
    return m_tLast + guard;
}

bool CEscapeDetector::Escaped(TimeMs guard, TimeMs now) const {
    const std::optional<TimeMs> due = Deadline(guard);
    return due && now >= *due;
}

} // namespace modemsim
