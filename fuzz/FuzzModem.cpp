#include "fuzz/FuzzModem.h"

#include "fuzz/FuzzPlatform.h"

#include <algorithm>
#include <cstring>

namespace {

// Answers up to this length are taken from the bytes as they are; a longer one, in steps of a
// kilobyte and in one step to the longest that there is, repeats the bytes that are left.
constexpr DWORD kPlainAnswer = 190;
constexpr DWORD kLongestMark = 255;
constexpr std::size_t kStep = 1024;

// A run that asks for long answers again and again tries nothing new.
constexpr std::size_t kMostRepeated = CFinalResult::MAX_RESPONSE + 256 * kStep;

} // namespace

CFuzzModem::CFuzzModem(std::span<const BYTE> bytes)
    : m_rest(bytes), m_vanishes(!bytes.empty() && bytes.back() == 0xFF) {}

BYTE CFuzzModem::Take() {
    if (m_rest.empty())
        return 0;
    const BYTE byte = m_rest.front();
    m_rest = m_rest.subspan(1);
    return byte;
}

// The first byte tells the result, the second one how long the answer is.
BOOL CFuzzModem::GetResponse(DWORD& code, std::string& response, DWORD) {
    const BYTE result = Take();
    const BYTE mark = Take();
    code = result % 3 == 0 ? RESULT_OK : result % 3 == 1 ? RESULT_ERROR : RESULT_NO_RESPONSE;
    if (mark <= kPlainAnswer || m_rest.empty()) {
        const std::size_t length = std::min<std::size_t>(mark, m_rest.size());
        response.assign(reinterpret_cast<const char*>(m_rest.data()), length);
        m_rest = m_rest.subspan(length);
        return code != RESULT_NO_RESPONSE;
    }
    const std::size_t wanted =
        mark == kLongestMark ? CFinalResult::MAX_RESPONSE : (mark - kPlainAnswer) * kStep;
    const std::size_t length = std::min(wanted, kMostRepeated - m_repeated);
    m_repeated += length;
    response.clear();
    while (response.size() < length)
        response.append(reinterpret_cast<const char*>(m_rest.data()),
                        std::min<std::size_t>(m_rest.size(), length - response.size()));
    return code != RESULT_NO_RESPONSE;
}

// A device that is asked not to try does not.
BOOL CFuzzModem::SendCommandGetResponse(LPCSTR command, DWORD& code, std::string& response) {
    if (m_nRetry <= 0)
        return FALSE;
    SendCommand(command);
    return GetResponse(code, response, m_dwTimeout);
}

BOOL CFuzzModem::Write(LPCVOID, DWORD) {
    return !IsDeviceGone();
}

BOOL CFuzzModem::SendString(LPCSTR text) {
    return Write(text, static_cast<DWORD>(std::strlen(text)));
}

BOOL CFuzzModem::Read(LPVOID buffer, DWORD capacity, DWORD& count) {
    count = std::min(capacity, static_cast<DWORD>(m_rest.size()));
    std::ranges::copy(m_rest.first(count), static_cast<BYTE*>(buffer));
    m_rest = m_rest.subspan(count);
    return count != 0;
}

BOOL CFuzzModem::GetBaudRate(DWORD& baudRate) {
    baudRate = 0x01010101u * Take();
    return baudRate != 0;
}

BOOL CFuzzModem::WaitForBytes(const CDeadline& deadline) {
    if (!m_rest.empty())
        return TRUE;
    fuzz::PassTime(deadline.Remaining());
    return FALSE;
}
