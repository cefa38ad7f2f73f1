// The life of an object, and what its wrappers have in common. The count of objects decides who
// takes the services down; it changes under the lock under which they come up, so that none is
// taken down that a new object is just about to use.
#include "telephony/Tapi.h"

#include "diagnostics/ModuleTrace.h"
#include "telephony/TapiService.h"

#include <new>

namespace {

constexpr DWORD kReplyTimeout = 2000; // milliseconds

CTapiInstances s_instances;

} // namespace

HRESULT CreateTapi(ITapi** lppTapi, IUnknown* pUnkOuter) {
    if (!lppTapi)
        return E_INVALIDARG;
    *lppTapi = new (std::nothrow) CVTapi(pUnkOuter);
    return *lppTapi ? S_OK : E_OUTOFMEMORY;
}

CVTapi::CVTapi(IUnknown* pUnkOuter)
    : CVComponent(pUnkOuter), CVDelegated<ITapi>(ControllingObject()) {
    g_TapiDebug.SetModuleName("VXTapi");
    s_instances.Add(*this);
    const CLock lock(g_TapiLock);
    InterlockedIncrement(&g_lTapiObjects);
}

CVTapi::~CVTapi() {
    s_instances.Remove(*this);
    const CLock lock(g_TapiLock);
    if (g_lTapiObjects == 1) {
        MPhoneShutdown();
        MLineShutdown();
        g_TapiLibrary.Unload();
    } else {
        MLineClose();
        MPhoneClose();
    }
    InterlockedDecrement(&g_lTapiObjects);
}

BOOL CVTapi::LoadTapi() {
    const CLock lock(g_TapiLock);
    return g_TapiLibrary.Load();
}

void* CVTapi::FindInterface(const IID& riid) {
    return riid == IID_ITapi ? static_cast<ITapi*>(this) : nullptr;
}

CVTapi* CVTapi::FindObject(DWORD_PTR dwInstance) {
    return static_cast<CVTapi*>(s_instances.Find(dwInstance));
}

LONG CVTapi::Provide(const TapiOperation& operation) {
    LONG status = 0;
    switch (operation.need) {
    case ETapiNeed::Nothing:
        return 0;
    case ETapiNeed::Call:
        return m_hCall ? 0 : ReportMissing(operation, "No current call handle", E_TAPI_NOCALL);
    case ETapiNeed::Line:
        return m_hLine ? 0 : ReportMissing(operation, "No valid line handle", E_TAPI_NOLINE);
    case ETapiNeed::Phone:
        return m_hPhone ? 0 : ReportMissing(operation, "No valid phone handle", E_TAPI_NOPHONE);
    case ETapiNeed::LineService:
        status = MLineInitialize();
        break;
    case ETapiNeed::PhoneService:
        status = MPhoneInitialize();
        break;
    }
    return status != 0 ? ReportInitializeFailed(operation, status) : 0;
}

LONG CVTapi::Await(const TapiOperation& operation, LONG lRequestID) {
    const auto dwRequestID = static_cast<DWORD>(lRequestID);
    return CheckWait(operation, operation.need == ETapiNeed::Phone
                                    ? MPhoneWaitForReply(dwRequestID, kReplyTimeout)
                                    : MLineWaitForReply(dwRequestID, kReplyTimeout));
}
