// Debug modules for the tests: one that works and, by definitions of its build, those that do not.
// What happens to a module is told to the test program, from any thread.
#include "diagnostics/DebugModule.h"

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

// Offered by the test program.
extern "C" void NoteDebugModule(const char* text);

namespace {

void Log(const std::string& text) {
    NoteDebugModule(text.c_str());
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

extern "C" __attribute__((visibility("default"))) HRESULT MODULE_EXPORT(const IID& riid,
                                                                        void** ppvInterface) {
    Log(riid == IID_IDebugModule ? "interface" : "unknown interface");
    *ppvInterface = static_cast<IDebugModule*>(MODULE_INTERFACE);
    return MODULE_STATUS;
}
