#include "telephony/TapiLibrary.h"

BOOL CVTapiLibrary::Load() {
    if (m_hModule)
        return TRUE;
    const HMODULE loaded = LoadLibraryA("TAPI32.DLL");
    if (!loaded)
        return FALSE;
    HMODULE former = nullptr;
    if (!m_hModule.compare_exchange_strong(former, loaded)) {
        // Another thread was faster; one load is enough.
        FreeLibrary(loaded);
        return TRUE;
    }
    const auto low = static_cast<BOOL>(reinterpret_cast<DWORD_PTR>(loaded));
    return low != 0 ? low : TRUE;
}

void CVTapiLibrary::Unload() {
    if (const HMODULE loaded = m_hModule.exchange(nullptr))
        FreeLibrary(loaded);
}

LONG CVTapiLibrary::Find(LPCSTR szName, FARPROC& address) {
    if (!Load())
        return E_TAPI_NOLIBRARY;
    address = GetProcAddress(m_hModule, szName);
    return address ? 0 : E_TAPI_FAILED;
}
