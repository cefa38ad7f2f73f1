// The debug module of the tests: the texts that it is given, one after the other, from any thread.
#include "diagnostics/DebugModule.h"
#include "tests/telephony/FakeTapi.h"

#include <mutex>

namespace {

std::mutex s_mutex;

class CModule final : public IDebugModule {
  public:
    HRESULT QueryInterface(const IID&, void** ppvObject) override {
        *ppvObject = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return 2; }
    ULONG Release() override { return 1; }
    HRESULT SetModuleName(LPCSTR) override { return S_OK; }
    HRESULT Output(LPCSTR szText, DWORD dwLevel) override {
        const std::lock_guard lock(s_mutex);
        FakeTapi()->trace.push_back(std::to_string(dwLevel) + ' ' + szText);
        return S_OK;
    }
} s_module;

} // namespace

extern "C" __attribute__((visibility("default"))) HRESULT DllGetInterface(const IID&,
                                                                          void** ppvInterface) {
    *ppvInterface = static_cast<IDebugModule*>(&s_module);
    return S_OK;
}
