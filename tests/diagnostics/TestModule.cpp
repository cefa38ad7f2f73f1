// Debug modules for the tests: one that works and, by definitions of its build, those that do not.
// What happens to a module goes into the environment variable VXDEBUG_LOG, which stays when the
// module is unloaded.
#include "diagnostics/DebugModule.h"

#include <cstdlib>
#include <string>

#ifndef MODULE_EXPORT
#define MODULE_EXPORT DllGetInterface
#endif
#ifndef MODULE_INTERFACE
#define MODULE_INTERFACE &g_module
#endif
#ifndef MODULE_STATUS
#define MODULE_STATUS S_OK
#endif
#ifndef MODULE_NAME_STATUS
#define MODULE_NAME_STATUS S_OK
#endif

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
        return MODULE_NAME_STATUS;
    }
    HRESULT Output(LPCSTR szText, DWORD dwLevel) override {
        Log("output " + std::to_string(dwLevel) + ' ' + szText);
        return szText[0] == '!' ? 1 : S_OK;
    }
} g_module;

} // namespace

extern "C" HRESULT MODULE_EXPORT(const IID& riid, void** ppvInterface) {
    Log(riid == IID_IDebugModule ? "interface" : "unknown interface");
    *ppvInterface = static_cast<IDebugModule*>(MODULE_INTERFACE);
    return MODULE_STATUS;
}
