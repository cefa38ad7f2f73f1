#include "platform/DebugOutput.h"

#include "platform/Error.h"

#include <syslog.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <mutex>

namespace platform {
namespace {

std::atomic<DebugListener> g_listener = nullptr;

std::mutex& ListenerMutex() {
    static std::mutex& mutex = *new std::mutex; // outlives every thread that still writes
    return mutex;
}

// Nothing happens before the first text: the log's connection is made when it is sent. No LOG_CONS
// and no LOG_PERROR, because the console is the user's.
void WriteToSystemLog(LPCSTR text) {
    static const bool isNamed = (openlog("wirelet", 0, LOG_USER), true);
    if (isNamed)
        syslog(LOG_USER | LOG_DEBUG, "%s", text);
}

bool WriteToListener(LPCSTR text) {
    if (g_listener.load(std::memory_order_acquire) == nullptr)
        return false;
    const std::lock_guard lock(ListenerMutex());
    const DebugListener listener = g_listener.load(std::memory_order_acquire);
    if (listener == nullptr)
        return false;
    listener(text);
    return true;
}

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
    const std::lock_guard lock(ListenerMutex());
    g_listener.store(listener, std::memory_order_release);
}

} // namespace platform

void OutputDebugStringA(LPCSTR lpOutputString) {
    if (lpOutputString == nullptr)
        return;
    const platform::CErrorsKept errorsKept;
    if (!platform::WriteToListener(lpOutputString))
        platform::WriteToSystemLog(lpOutputString);
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
