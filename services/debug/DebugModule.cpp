// The debug module: what the program tells of its doings, on the record (see CDebugLog).
//
// Each request for the interface makes an object of its own, with its own name and its own log, so
// that the module has nothing that is one for the process: whoever has released his interface can
// unload it. Any thread may call any operation. No exception leaves the module.

#include "diagnostics/DebugModule.h"

#include "services/debug/DebugLog.h"

#include <atomic>
#include <mutex>
#include <new>
#include <string>

namespace debugmodule {
namespace {

// The answer to a message that is lost.
constexpr HRESULT kLost = 1;

class CDebugModule final : public IDebugModule {
  public:
    HRESULT QueryInterface(const IID& riid, void** ppvObject) override {
        if (ppvObject == nullptr)
            return E_INVALIDARG;
        const bool isKnown = riid == IID_IUnknown || riid == IID_IDebugModule;
        *ppvObject = isKnown ? static_cast<IDebugModule*>(this) : nullptr;
        if (!isKnown)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return ++m_references; }
    ULONG Release() override {
        const ULONG left = --m_references;
        if (left == 0)
            delete this;
        return left;
    }

    HRESULT SetModuleName(LPCSTR szModuleName) override {
        return Guard([&] {
            if (szModuleName == nullptr)
                return E_INVALIDARG;
            const std::lock_guard lock(m_mutex);
            m_strName = szModuleName;
            return S_OK;
        });
    }
    HRESULT Output(LPCSTR szText, DWORD dwLevel) override {
        return Guard([&] {
            if (szText == nullptr)
                return E_INVALIDARG;
            return m_log.Write(GetName(), szText, dwLevel) ? S_OK : kLost;
        });
    }

  private:
    // Destroyed by Release alone.
    ~CDebugModule() = default;

    template <class Operation> static HRESULT Guard(const Operation& operation) {
        try {
            return operation();
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        }
    }

    std::string GetName() {
        const std::lock_guard lock(m_mutex);
        return m_strName;
    }

    std::atomic<ULONG> m_references = 0;
    const CDebugLog m_log;
    std::mutex m_mutex;
    std::string m_strName;
};

} // namespace
} // namespace debugmodule

// Stores the interface with one reference; E_NOINTERFACE for any identifier but those two.
extern "C" HRESULT DllGetInterface(const IID& riid, void** ppvInterface) {
    if (ppvInterface == nullptr)
        return E_INVALIDARG;
    *ppvInterface = nullptr;
    auto* const module = new (std::nothrow) debugmodule::CDebugModule;
    if (module == nullptr)
        return E_OUTOFMEMORY;
    module->AddRef();
    const HRESULT status = module->QueryInterface(riid, ppvInterface);
    module->Release();
    return status;
}
