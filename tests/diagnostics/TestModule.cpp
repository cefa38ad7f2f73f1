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
        return S_OK;
    }
    HRESULT Output(LPCSTR szText, DWORD dwLevel) override {
        Log("output " + std::to_string(dwLevel) + ' ' + szText);
        return szText[0] == '!' ? 1 : S_OK;
    }
} g_module;

} // namespace

extern "C" HRESULT DllGetInterface(const IID& riid, void** ppvInterface) {
    Log(riid == IID_IDebugModule ? "interface" : "unknown interface");
    *ppvInterface = static_cast<IDebugModule*>(&g_module);
    return S_OK;
}
