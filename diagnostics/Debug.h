// CVDebug: a stream of leveled texts to the optional debug module.
//
// The module is loaded by the first Print or SetModuleName, in one single attempt; when that fails,
// the object has given up for good and drops every text. The object owns its interface of the
// module and its load of the library, and gives both back when it goes. Any thread may call any
// operation; they exclude each other, except that an object that has given up takes no lock.
#pragma once

#include "common/CriticalSection.h"
#include "diagnostics/DebugModule.h"
#include "platform/Module.h"

#include <atomic>
#include <cstdarg>

class CVDebug {
  public:
    // The name as for SetModuleName. Loads nothing.
    explicit CVDebug(LPCSTR szModuleName);
    ~CVDebug();
    CVDebug(const CVDebug&) = delete;
    CVDebug& operator=(const CVDebug&) = delete;

    // The name of the texts that follow, cut to 63 characters; null is "Unknown Module". Returns
    // the module's status; without a module 0, or what Load returned when this made the load
    // attempt.
    HRESULT SetModuleName(LPCSTR szModuleName);

    // Formats printf-style, cut to 511 characters, and outputs. TRUE when the module took the text.
    BOOL Print(DWORD dwLevel, LPCSTR szFormat, va_list arguments)
        __attribute__((format(printf, 3, 0)));

    // Loads the module, whether or not that was tried before. TRUE when it is there and knows the
    // name.
    BOOL Load();

    // Gives the module back; it is not loaded again of itself.
    void Unload();

  private:
    bool ConnectModule();
    void StoreModuleName(LPCSTR szModuleName);

    char m_szBuffer[512] = {};
    char m_szModuleName[64] = {};
    BOOL m_bLoadAttempted = FALSE;
    IDebugModule* m_pModule = nullptr;
    HMODULE m_hModule = nullptr;
    // The one member that is read without the lock: a load was attempted and there is no module.
    std::atomic<bool> m_bGivenUp = false;
    CCriticalSection m_CritSec;
};
