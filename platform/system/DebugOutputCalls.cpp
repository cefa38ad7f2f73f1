#include "platform/DebugOutput.h"

#include "platform/Error.h"
#include "platform/system/SystemLog.h"

#include <atomic>
#include <cerrno>
#include <cstdio>

namespace platform {
namespace {

std::atomic<DebugListener> g_listener = nullptr;

// A report is often written between a failing call and the look at its error.
class CErrorsKept {
  public:
    CErrorsKept() : m_nErrno(errno), m_dwLastError(GetLastError()) {}
    CErrorsKept(const CErrorsKept&) = delete;
    CErrorsKept& operator=(const CErrorsKept&) = delete;
    ~CErrorsKept() {
        errno = m_nErrno;
        SetLastError(m_dwLastError);
    }

  private:
    const int m_nErrno;
    const DWORD m_dwLastError;
};

} // namespace

void SetDebugListener(DebugListener listener) {
    g_listener = listener;
}

} // namespace platform

void OutputDebugStringA(LPCSTR lpOutputString) {
    if (lpOutputString == nullptr)
        return;
    const platform::CErrorsKept errorsKept;
    if (const platform::DebugListener listener = platform::g_listener)
        listener(lpOutputString);
    else
        platform::SystemLog().Write(platform::LogSeverity::Debug, lpOutputString);
}

int wvsprintfA(char* lpOutput, std::size_t nBufferSize, LPCSTR lpFormat, va_list arguments) {
    if (lpOutput == nullptr || nBufferSize == 0)
        return 0;
    lpOutput[0] = '\0';
    if (lpFormat == nullptr)
        return 0;
    const int length = vsnprintf(lpOutput, nBufferSize, lpFormat, arguments);
    if (length < 0) {
        lpOutput[0] = '\0';
        return 0;
    }
    const auto whole = static_cast<std::size_t>(length);
    return whole < nBufferSize ? length : static_cast<int>(nBufferSize - 1);
}
