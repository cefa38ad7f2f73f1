#include "tools/AnswerQueue.h"

#include <algorithm>
#include <array>

namespace modemsim {
namespace {

constexpr std::string_view kPatternPeriod =
    "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz-.";

// Longer than any single write to a pseudo-terminal takes.
constexpr std::size_t kPatternLength = 16384;

// A text segment that reached this size is not appended to, so that a queue which never runs quite
// empty still gives its sent bytes back.
constexpr std::size_t kSegmentLimit = 16384;

constexpr std::array<char, kPatternLength> MakePattern() {
    std::array<char, kPatternLength> bytes{};
    for (std::size_t place = 0; place < kPatternLength; ++place)
        bytes[place] = kPatternPeriod[place % kPatternPeriod.size()];
    return bytes;
}

constexpr std::array<char, kPatternLength> kPattern = MakePattern();

} // namespace

std::string_view PatternAt(std::uint64_t position) {
    return std::string_view(kPattern.data(), kPattern.size())
        .substr(static_cast<std::size_t>(position % kPatternPeriod.size()));
}

CAnswerQueue::Segment& CAnswerQueue::Tail() {
    const bool usable = !m_listSegments.empty() && m_listSegments.back().run == 0 &&
                        m_listSegments.back().text.size() < kSegmentLimit &&
                        m_listSegments.back().notBefore == m_tHold;
    if (!usable)
        m_listSegments.push_back({m_tHold, {}});
    return m_listSegments.back();
}

void CAnswerQueue::Append(std::string_view bytes) {
    if (bytes.empty())
        return;
    Tail().text.append(bytes);
    m_nSize += bytes.size();
}

void CAnswerQueue::AppendPattern(std::uint64_t count) {
    if (count == 0)
        return;
    m_listSegments.push_back({m_tHold, {}, count});
    m_nSize += count;
}

void CAnswerQueue::HoldUntil(TimeMs time) {
    m_tHold = std::max(m_tHold, time);
}

void CAnswerQueue::Clear() {
    m_listSegments.clear();
    m_nSize = 0;
    m_tHold = std::numeric_limits<TimeMs>::min();
}

std::string_view CAnswerQueue::Ready(TimeMs now) const {
    if (m_listSegments.empty() || m_listSegments.front().notBefore > now)
        return {};
    const Segment& head = m_listSegments.front();
    if (head.run == 0)
        return std::string_view(head.text).substr(static_cast<std::size_t>(head.sent));
    const std::string_view bytes = PatternAt(head.sent);
    const std::uint64_t count = std::min<std::uint64_t>(bytes.size(), head.run - head.sent);
    return bytes.substr(0, static_cast<std::size_t>(count));
}

void CAnswerQueue::Consume(std::size_t count) {
    if (m_listSegments.empty())
        return;
    Segment& head = m_listSegments.front();
    const std::uint64_t length = head.run == 0 ? head.text.size() : head.run;
    const std::uint64_t taken = std::min<std::uint64_t>(count, length - head.sent);
    head.sent += taken;
    m_nSize -= taken;
    if (head.sent == length)
        m_listSegments.pop_front();
}

std::optional<TimeMs> CAnswerQueue::Deadline(TimeMs now) const {
    if (!m_listSegments.empty() && m_listSegments.front().notBefore > now)
        return m_listSegments.front().notBefore;
    if (Holds(now))
        return m_tHold;
    return std::nullopt;
}

} // namespace modemsim
