// A debug module for the tests. What happens to it goes into the environment variable VXDEBUG_LOG,
// which stays when the module is unloaded.
#include "diagnostics/DebugModule.h"

#include <cstdlib>
#include <string>

namespace {

void Log(const std::string& text) {
    const char* const former = std::getenv("VXDEBUG_LOG");
    setenv("VXDEBUG_LOG", ((former ? former : "") + text + '\n').c_str(), 1);
}

struct SLoad {
    SLoad() { Log("load"); }
    ~SLoad() { Log("unload"); }
} g_load;

class CModule final : public IDebugModule {
  public:
    HRESULT QueryInterface(const IID&, void** ppvObject) override {
        *ppvObject = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return 2; }
    ULONG Release() override {
        Log("release");
        return 0;
    }
    HRESULT SetModuleName(LPCSTR szModuleName) override {
        Log("name " + std::string(szModuleName));
#ifdef MODULE_REFUSES_NAME
        return E_INVALIDARG;
#else
        return std::string(szModuleName) == "seven" ? 7 : S_OK;
#endif
    }
    HRESULT Output(LPCSTR szText, DWORD dwLevel) override {
        Log("output " + std::to_string(dwLevel) + ' ' + szText);
        return szText[0] == '!' ? 1 : S_OK;
    }
} g_module;

} // namespace

#ifndef MODULE_WITHOUT_EXPORT
extern "C" HRESULT DllGetInterface(const IID& riid, void** ppvInterface) {
    Log(riid == IID_IDebugModule ? "interface" : "unknown interface");
#ifdef MODULE_FAILS
    *ppvInterface = nullptr;
    return E_OUTOFMEMORY;
#else
    *ppvInterface = static_cast<IDebugModule*>(&g_module);
    return S_OK;
#endif
}
#endif
