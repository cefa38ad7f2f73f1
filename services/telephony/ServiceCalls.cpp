// The calls of the service. A call's device is opened, and its hold kept, by a thread of its own,
// which is told to end by the call's cancellation and tells of its end by the call's state. Whoever
// gives a device back awaits that, so the device is free when he returns.
#include "services/telephony/RecordFiller.h"
#include "services/telephony/Records.h"
#include "services/telephony/Service.h"

#include <algorithm>
#include <new>
#include <strings.h>

namespace telephonyservice {
namespace {

constexpr std::string_view kModemClass = "comm/datamodem";
constexpr std::string_view kPortNameClass = "comm/datamodem/portname";

// The states that a call's owner is told of.
constexpr DWORD kCallStates =
    LINECALLSTATE_CONNECTED | LINECALLSTATE_DISCONNECTED | LINECALLSTATE_IDLE;

bool IsClass(std::string_view name, std::string_view known) {
    return name.size() == known.size() && strncasecmp(name.data(), known.data(), known.size()) == 0;
}

DWORD_PTR AsParameter(LONG result) {
    return static_cast<DWORD>(result);
}

} // namespace

std::vector<HCALL> CService::FindActiveCalls(HLINE hLine) const {
    return m_calls.FindAll(
        [&](const CCall& call) { return call.m_hLine == hLine && call.IsActive(); });
}

LONG CService::MakeCall(HLINE hLine, const LINECALLPARAMS& parameters, HCALL* hCall) {
    m_workers.Reap();
    const std::lock_guard lock(m_mutex);
    const auto line = m_lines.Find(hLine);
    if (!line)
        return LINEERR_INVALLINEHANDLE;
    if (parameters.dwMediaMode == 0 ||
        (parameters.dwMediaMode & ~MediaModesOf(line->m_device)) != 0)
        return LINEERR_INVALMEDIAMODE;
    if (!FindActiveCalls(hLine).empty())
        return LINEERR_CALLUNAVAIL;
    const auto call = std::make_shared<CCall>(hLine, line->m_device, parameters);
    call->m_hCall = m_calls.Add(call);
    if (call->m_hCall == 0)
        return LINEERR_RESOURCEUNAVAIL;
    call->m_dwRequest = NextRequest();
    if (!m_workers.Start(
            [this, call](std::atomic<bool>& isEnding) { RunOpening(*call, isEnding); })) {
        m_calls.Remove(call->m_hCall);
        return LINEERR_RESOURCEUNAVAIL;
    }
    *hCall = call->m_hCall;
    return static_cast<LONG>(call->m_dwRequest);
}

void CService::RunOpening(CCall& call, std::atomic<bool>& isEnding) {
    DeviceUse use;
    LONG result = LINEERR_NOMEM;
    try {
        result = OpenDevice(call.m_device, call.m_cancellation, use);
    } catch (const std::bad_alloc&) {
        use.GiveBack();
    }
    std::unique_lock lock(m_mutex);
    if (call.m_cancellation.IsCancelled()) {
        // Who waits for the end of the opening finds the device free.
        lock.unlock();
        use.GiveBack();
        lock.lock();
        result = LINEERR_OPERATIONFAILED;
    }
    call.m_bHeld = result == 0 && use.hold.CanBeLost();
    isEnding = !call.m_bHeld;
    FinishOpening(call, result, use);
    if (!call.m_bHeld)
        return;
    lock.unlock();
    use.hold.Keep(call.m_cancellation);
    use.hold.Release();
    lock.lock();
    isEnding = true;
    call.m_bHeld = false;
    m_threadDone.notify_all();
}

void CService::FinishOpening(CCall& call, LONG result, DeviceUse& use) {
    const bool isOpen = result == 0;
    call.m_state = isOpen ? ECallState::Connected : ECallState::Idle;
    call.m_port = std::move(use.port);
    call.m_hPort = call.m_port;
    m_threadDone.notify_all();
    Post(call.m_hLine, 0, LINE_REPLY, call.m_dwRequest, AsParameter(result));
    if (isOpen)
        PostState(call, LINECALLSTATE_CONNECTED);
    else if (call.m_cancellation.IsCancelled())
        PostEnd(call);
    else
        m_calls.Remove(call.m_hCall);
}

void CService::PostState(const CCall& call, DWORD state) {
    const DWORD privilege = state == LINECALLSTATE_CONNECTED ? LINECALLPRIVILEGE_OWNER : 0;
    Post(call.m_hLine, call.m_hCall, LINE_CALLSTATE, state, 0, privilege);
}

void CService::PostEnd(const CCall& call) {
    PostState(call, LINECALLSTATE_DISCONNECTED);
    PostState(call, LINECALLSTATE_IDLE);
}

void CService::Free(CCall& call, std::unique_lock<std::mutex>& lock) {
    // Before the modem manager gets the modem back.
    if (CUniqueHandle port = std::move(call.m_port); port != nullptr) {
        lock.unlock();
        port.Reset();
        lock.lock();
    }
    call.m_cancellation.Cancel();
    m_threadDone.wait(lock, [&] { return call.m_state != ECallState::Opening && !call.m_bHeld; });
}

LONG CService::Drop(HCALL hCall) {
    std::unique_lock lock(m_mutex);
    const auto call = m_calls.Find(hCall);
    if (!call)
        return LINEERR_INVALCALLHANDLE;
    const DWORD request = NextRequest();
    Post(call->m_hLine, 0, LINE_REPLY, request, 0);
    if (call->m_state == ECallState::Opening) {
        // The thread that opens tells of the end.
        call->m_cancellation.Cancel();
    } else if (call->m_state == ECallState::Connected) {
        call->m_state = ECallState::Idle;
        PostEnd(*call);
        Free(*call, lock);
    }
    return static_cast<LONG>(request);
}

LONG CService::DeallocateCall(HCALL hCall) {
    const std::lock_guard lock(m_mutex);
    const auto call = m_calls.Find(hCall);
    if (!call)
        return LINEERR_INVALCALLHANDLE;
    if (call->IsActive())
        return LINEERR_INVALCALLSTATE;
    m_calls.Remove(hCall);
    return 0;
}

LONG CService::GetCallInfo(HCALL hCall, LINECALLINFO* info) const {
    const std::lock_guard lock(m_mutex);
    const auto call = m_calls.Find(hCall);
    const auto line = call ? m_lines.Find(call->m_hLine) : nullptr;
    if (!line)
        return LINEERR_INVALCALLHANDLE;
    const CRecordFiller filler(info);
    if (!filler.HasRoom())
        return LINEERR_STRUCTURETOOSMALL;
    info->hLine = call->m_hLine;
    info->dwLineDeviceID = line->m_dwDevice;
    info->dwBearerMode = call->m_parameters.dwBearerMode;
    info->dwMediaMode = call->m_parameters.dwMediaMode;
    info->dwCallID = hCall;
    info->dwCallParamFlags = call->m_parameters.dwCallParamFlags;
    info->dwCallStates = kCallStates;
    info->DialParams = call->m_parameters.DialParams;
    info->dwOrigin = LINECALLORIGIN_OUTBOUND;
    info->dwReason = LINECALLREASON_DIRECT;
    info->dwNumOwners = 1;
    return 0;
}

LONG CService::GetCallStatus(HCALL hCall, LINECALLSTATUS* status) const {
    const std::lock_guard lock(m_mutex);
    const auto call = m_calls.Find(hCall);
    if (!call)
        return LINEERR_INVALCALLHANDLE;
    const CRecordFiller filler(status);
    if (!filler.HasRoom())
        return LINEERR_STRUCTURETOOSMALL;
    status->dwCallState = call->GetState();
    status->dwCallPrivilege = LINECALLPRIVILEGE_OWNER;
    status->dwCallFeatures = call->IsActive() ? LINECALLFEATURE_DROP : 0;
    return 0;
}

LONG CService::FindCallFor(HLINE hLine, HCALL hCall, DWORD select,
                           std::shared_ptr<CCall>& call) const {
    switch (select) {
    case LINECALLSELECT_CALL:
        call = m_calls.Find(hCall);
        return call ? 0 : LINEERR_INVALCALLHANDLE;
    case LINECALLSELECT_LINE:
    case LINECALLSELECT_ADDRESS: {
        if (!m_lines.Find(hLine))
            return LINEERR_INVALLINEHANDLE;
        // Of a line without a call there is none.
        const std::vector<HCALL> calls = FindActiveCalls(hLine);
        call = calls.empty() ? nullptr : m_calls.Find(calls.front());
        return 0;
    }
    default:
        return LINEERR_INVALCALLSELECT;
    }
}

LONG CService::GetId(HLINE hLine, HCALL hCall, DWORD select, VARSTRING* identifier,
                     std::string_view deviceClass) {
    m_workers.Reap();
    const std::lock_guard lock(m_mutex);
    std::shared_ptr<CCall> call;
    const LONG result = FindCallFor(hLine, hCall, select, call);
    if (result != 0)
        return result;
    if (IsClass(deviceClass, kPortNameClass)) {
        if (call)
            return FillPortName(call->m_device, identifier);
        const auto line = m_lines.Find(hLine);
        return line ? FillPortName(line->m_device, identifier) : LINEERR_INVALLINEHANDLE;
    }
    if (!IsClass(deviceClass, kModemClass))
        return LINEERR_INVALDEVICECLASS;
    if (!call || call->m_state != ECallState::Connected)
        return LINEERR_INVALCALLSTATE;
    bool isHandedOver = false;
    const LONG filled = FillPortHandle(call->m_device, call->m_hPort, identifier, isHandedOver);
    if (isHandedOver)
        call->m_port.Detach();
    return filled;
}

} // namespace telephonyservice
