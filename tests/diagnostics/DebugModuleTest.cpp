// Debug modules that do, that are not there, and that load and do not do.
#include "diagnostics/ModuleTrace.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

// The module that is found, by how it fails; and what has happened to it.
struct Module {
    bool isThere = true;
    bool hasExport = true;
    bool hasInterface = true;
    HRESULT status = S_OK;
    HRESULT nameStatus = S_OK;
} s_module;
std::string s_log;

class CModule final : public IDebugModule {
  public:
    HRESULT QueryInterface(const IID&, void**) override { return E_NOINTERFACE; }
    ULONG AddRef() override { return 2; }
    ULONG Release() override {
        s_log += "release\n";
        return 0;
    }
    HRESULT SetModuleName(LPCSTR szModuleName) override {
        s_log += std::string("name ") + szModuleName + '\n';
        return s_module.nameStatus;
    }
    HRESULT Output(LPCSTR szText, DWORD dwLevel) override {
        s_log += "output " + std::to_string(dwLevel) + ' ' + szText + '\n';
        return szText[0] == '!' ? 1 : S_OK;
    }
} s_interface;

HRESULT GetInterface(const IID& riid, void** ppvInterface) {
    s_log += riid == IID_IDebugModule ? "interface\n" : "unknown interface\n";
    *ppvInterface = s_module.hasInterface ? static_cast<IDebugModule*>(&s_interface) : nullptr;
    return s_module.status;
}

} // namespace

// In place of the platform's.
HMODULE LoadLibraryA(LPCSTR lpLibFileName) {
    s_log += std::string(lpLibFileName) + '\n';
    return s_module.isThere ? &s_module : nullptr;
}
FARPROC GetProcAddress(HMODULE, LPCSTR lpProcName) {
    const bool isKnown = s_module.hasExport && std::string(lpProcName) == "DllGetInterface";
    return isKnown ? reinterpret_cast<FARPROC>(&GetInterface) : nullptr;
}
BOOL FreeLibrary(HMODULE hLibModule) {
    s_log += hLibModule == &s_module ? "unload\n" : "unload of another\n";
    return TRUE;
}

TEST(DebugModule, IsLoadedByTheFirstUseAndGivenUpWhenItDoesNotDo) {
    DebugSetModuleName(std::string(64, 'n').c_str());
    EXPECT_TRUE(DebugTrace("one %s", "a"));
    EXPECT_TRUE(DebugError("two %#08lx", 0x80000048UL));
    EXPECT_FALSE(DebugError("!"));
    EXPECT_TRUE(DebugTrace("%s", std::string(5000, 't').c_str()));
    g_AppDebug.Unload();
    EXPECT_FALSE(DebugTrace("text"));
    EXPECT_EQ(std::exchange(s_log, {}),
              "VXDebug.dll\ninterface\nname " + std::string(63, 'n') +
                  "\noutput 8 one a\noutput 1 two 0x80000048\noutput 1 !\noutput 8 " +
                  std::string(511, 't') + "\nrelease\nunload\n");

    // After one attempt, with nothing left behind.
    const std::pair<Module, const char*> rows[] = {
        {{.isThere = false}, ""},
        {{.hasExport = false}, "unload\n"},
        {{.hasInterface = false}, "interface\nunload\n"},
        {{.status = E_OUTOFMEMORY}, "interface\nrelease\nunload\n"},
        {{.nameStatus = E_INVALIDARG}, "interface\nname test\nrelease\nunload\n"},
    };
    for (const auto& [module, log] : rows) {
        s_module = module;
        CVDebug debug(nullptr);
        EXPECT_FALSE(debug.SetModuleName("test") || debug.SetModuleName("again")) << log;
        EXPECT_EQ(std::exchange(s_log, {}), std::string("VXDebug.dll\n") + log);
    }
}
