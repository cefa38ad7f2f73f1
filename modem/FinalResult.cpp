// A marker is complete with the newest bytes, so only these and what may be its beginning are
// searched: a long answer costs the same for each of its reads.
#include "modem/FinalResult.h"

#include "common/Ascii.h"

#include <algorithm>

namespace {

constexpr std::string_view kLineEnd = "\r\n";

// Of text that has been searched, only this much can be the beginning of a marker that is still to
// be completed.
constexpr std::size_t kLongestBeginning = kFinalCmeError.size() - 1;
static_assert(kFinalCmsError.size() == kFinalCmeError.size());
static_assert(kFinalError.size() < kFinalCmeError.size());
static_assert(kFinalOk.size() < kFinalCmeError.size());

void Trim(std::string& text) {
    text.erase(text.find_last_not_of(kWhiteSpace) + 1);
    text.erase(0, text.find_first_not_of(kWhiteSpace));
}

} // namespace

CFinalResult::CFinalResult(std::string& response) : m_strResponse(response) {
    m_strResponse.clear();
}

CFinalResult::Verdict CFinalResult::Append(std::string_view bytes) {
    Gather(bytes.substr(0, bytes.find('\0')));
    const Verdict verdict = Judge();
    if (m_strWindow.size() > kLongestBeginning)
        m_strWindow.erase(0, m_strWindow.size() - kLongestBeginning);
    return verdict;
}

void CFinalResult::Gather(std::string_view bytes) {
    m_strWindow.append(bytes);
    m_nTextLength += bytes.size();
    m_strResponse.append(bytes.substr(0, kMaxResponse - m_strResponse.size()));
}

CFinalResult::Verdict CFinalResult::Judge() {
    const std::size_t ok = m_strWindow.find(kFinalOk);
    if (ok != std::string::npos)
        return ConcludeOk(ok);
    if (m_strWindow.find(kFinalError) != std::string::npos) {
        m_strResponse.clear();
        return Verdict::Error;
    }
    CutBehind(kFinalCmeError, m_bCmeSeen);
    CutBehind(kFinalCmsError, m_bCmsSeen);
    return ConcludeExtendedError();
}

CFinalResult::Verdict CFinalResult::ConcludeOk(std::size_t position) {
    const std::size_t windowStart = m_nTextLength - m_strWindow.size();
    m_strResponse.resize(std::min(m_strResponse.size(), windowStart + position));
    Trim(m_strResponse);
    return Verdict::Ok;
}

CFinalResult::Verdict CFinalResult::ConcludeExtendedError() {
    if (!m_bCmeSeen && !m_bCmsSeen)
        return Verdict::None;
    if (m_strWindow.find(kLineEnd) == std::string::npos)
        return Verdict::None;
    Trim(m_strResponse);
    return m_bCmeSeen ? Verdict::CmeError : Verdict::CmsError;
}

// A marker that is found now was completed by the newest bytes, so the window holds everything that
// follows it.
void CFinalResult::CutBehind(std::string_view marker, bool& seen) {
    if (seen)
        return;
    const std::size_t position = m_strWindow.find(marker);
    if (position == std::string::npos)
        return;
    seen = true;
    m_strWindow.erase(0, position + marker.size());
    m_nTextLength = m_strWindow.size();
    m_strResponse.assign(m_strWindow, 0, kMaxResponse);
}
