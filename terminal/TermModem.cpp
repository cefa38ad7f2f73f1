#include "terminal/TermModem.h"

#include "CORE/VXSerial/Lib/ISerial.h"
#include "platform/Clock.h"
#include "platform/Wait.h"

#include <array>
#include <string_view>

namespace {

constexpr DWORD kAttemptTime = 10000;
constexpr int kAttempts = 3;
constexpr DWORD kGatherSize = 1024;

bool HoldsFinalResult(std::string_view text) {
    return text.find(kFinalOk) != text.npos || text.find(kFinalError) != text.npos;
}

} // namespace

BOOL CTermModem::SendLineWaitFinal(const std::string& command, std::string& response) {
    response.clear();
    return Exchange(GetPacingDelay(), command.c_str(), kAttempts,
                    [&] { return WaitForFinalResult(response, kAttemptTime); });
}

BOOL CTermModem::WaitForFinalResult(std::string& response, DWORD timeAllowed) {
    if (!m_pSerial)
        return FALSE;

    const platform::CDeadline deadline(timeAllowed);
    std::array<char, kGatherSize> gathered;
    DWORD count = 0;
    do {
        const DWORD arrived = m_pSerial->Read(gathered.data() + count, kGatherSize - 1 - count);
        if (arrived == 0)
            continue;
        count += arrived;
        gathered[count] = '\0';
        response = gathered.data();
        m_dwLastResponse = GetTickCount();
        if (HoldsFinalResult(response))
            return TRUE;
        if (count == kGatherSize - 1) {
            // Nothing can be read any more, so bytes that wait must not end the wait.
            WaitWithoutReading(deadline);
            return FALSE;
        }
    } while (WaitForBytes(deadline));
    return FALSE;
}
