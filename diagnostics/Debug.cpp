// One lock is around everything, so that a module sees one thread at a time. Only the mark that
// there is no module is read without it: without one, which is the rule, a trace costs that look.
#include "diagnostics/Debug.h"

#include "platform/DebugOutput.h"

#include <algorithm>
#include <cstring>

CVDebug::CVDebug(LPCSTR szModuleName) {
    StoreModuleName(szModuleName);
}

CVDebug::~CVDebug() {
    Unload();
}

HRESULT CVDebug::SetModuleName(LPCSTR szModuleName) {
    const CLock lock(m_CritSec);
    StoreModuleName(szModuleName);
    if (m_pModule)
        return m_pModule->SetModuleName(m_szModuleName);
    return m_bLoadAttempted ? 0 : Load();
}

BOOL CVDebug::Print(DWORD dwLevel, LPCSTR szFormat, va_list arguments) {
    if (m_bGivenUp.load(std::memory_order_relaxed))
        return FALSE;
    const CLock lock(m_CritSec);
    if (!m_pModule && (m_bLoadAttempted || !Load()))
        return FALSE;
    wvsprintfA(m_szBuffer, sizeof(m_szBuffer), szFormat, arguments);
    return m_pModule->Output(m_szBuffer, dwLevel) == 0;
}

BOOL CVDebug::Load() {
    const CLock lock(m_CritSec);
    m_bLoadAttempted = TRUE;
    if (m_pModule)
        return TRUE;
    if (ConnectModule()) {
        m_bGivenUp = false;
        return TRUE;
    }
    Unload();
    return FALSE;
}

void CVDebug::Unload() {
    const CLock lock(m_CritSec);
    if (m_pModule)
        m_pModule->Release();
    m_pModule = nullptr;
    if (m_hModule)
        FreeLibrary(m_hModule);
    m_hModule = nullptr;
    m_bGivenUp = m_bLoadAttempted != FALSE;
}

// Goes as far as it can; what a failure leaves behind is Unload's.
bool CVDebug::ConnectModule() {
    m_hModule = LoadLibraryA("VXDebug.dll");
    if (!m_hModule)
        return false;
    const auto getInterface =
        reinterpret_cast<DLLGETINTERFACE>(GetProcAddress(m_hModule, "DllGetInterface"));
    if (!getInterface)
        return false;
    void* module = nullptr;
    const HRESULT status = getInterface(IID_IDebugModule, &module);
    m_pModule = static_cast<IDebugModule*>(module);
    return status >= 0 && m_pModule && m_pModule->SetModuleName(m_szModuleName) >= 0;
}

void CVDebug::StoreModuleName(LPCSTR szModuleName) {
    const char* const name = szModuleName ? szModuleName : "Unknown Module";
    const std::size_t length = strnlen(name, sizeof(m_szModuleName) - 1);
    std::copy_n(name, length, m_szModuleName);
    m_szModuleName[length] = '\0';
}
