// The state is in tables of shared objects, under one lock. What takes its time is done without it
// (looking for devices, calling back, awaiting a thread), and what was found before such a gap is
// looked up again behind it.
#include "services/telephony/Service.h"

#include "services/telephony/Records.h"

#include <climits>
#include <new>

namespace telephonyservice {
namespace {

CService g_service;

void DeliverEvents(DWORD hLineApp) {
    g_service.Deliver(hLineApp);
}

} // namespace

CService& Service() {
    return g_service;
}

CService::~CService() {
    const auto all = [](const auto&) { return true; };
    const std::lock_guard lock(m_mutex);
    for (const HCALL hCall : m_calls.FindAll(all)) {
        if (const auto call = m_calls.Find(hCall)) {
            call->m_port.Reset();
            call->m_cancellation.Cancel();
        }
    }
}

LONG CService::Initialize(LINECALLBACK callback, HLINEAPP& hLineApp, DWORD& devices) {
    // Without the lock: looking for the devices takes its time.
    const auto application = std::make_shared<CApplication>(callback, DeliverEvents);
    if (!application->IsReady())
        return LINEERR_RESOURCEUNAVAIL;
    const std::lock_guard lock(m_mutex);
    const HLINEAPP handle = m_applications.Add(application);
    if (handle == 0)
        return LINEERR_RESOURCEUNAVAIL;
    hLineApp = handle;
    devices = application->CountDevices();
    return 0;
}

LONG CService::Shutdown(HLINEAPP hLineApp) {
    std::shared_ptr<CApplication> application;
    std::vector<HLINE> lines;
    {
        const std::lock_guard lock(m_mutex);
        application = m_applications.Remove(hLineApp);
        if (!application)
            return LINEERR_INVALAPPHANDLE;
        lines = m_lines.FindAll([&](const CLine& line) { return line.m_hLineApp == hLineApp; });
    }
    for (const HLINE hLine : lines)
        Close(hLine);
    std::unique_lock lock(m_mutex);
    const bool isLast = m_applications.FindAll([](const auto&) { return true; }).empty();
    lock.unlock();
    if (isLast)
        m_workers.Await();
    return 0;
}

LONG CService::CheckDevice(HLINEAPP hLineApp, DWORD device) const {
    const std::lock_guard lock(m_mutex);
    const auto application = m_applications.Find(hLineApp);
    if (!application)
        return LINEERR_INVALAPPHANDLE;
    return application->FindDevice(device) != nullptr ? 0 : LINEERR_BADDEVICEID;
}

LONG CService::GetDevCaps(HLINEAPP hLineApp, DWORD device, LINEDEVCAPS* caps) const {
    const std::lock_guard lock(m_mutex);
    const auto application = m_applications.Find(hLineApp);
    if (!application)
        return LINEERR_INVALAPPHANDLE;
    const LineDevice* const found = application->FindDevice(device);
    return found != nullptr ? FillDevCaps(*found, caps) : LINEERR_BADDEVICEID;
}

void CService::Deliver(HLINEAPP hLineApp) {
    for (;;) {
        LINECALLBACK callback = nullptr;
        LineEvent event{};
        {
            const std::lock_guard lock(m_mutex);
            const auto application = m_applications.Find(hLineApp);
            if (!application || !application->TakeEvent(event))
                return;
            callback = application->GetCallback();
        }
        callback(event.hDevice, event.message, event.instance, event.parameter1, event.parameter2,
                 event.parameter3);
    }
}

void CService::Post(HLINE hLine, DWORD hDevice, DWORD message, DWORD_PTR parameter1,
                    DWORD_PTR parameter2, DWORD_PTR parameter3) {
    const auto line = m_lines.Find(hLine);
    const auto application = line ? m_applications.Find(line->m_hLineApp) : nullptr;
    if (!application)
        return;
    try {
        application->Post(line->m_hLineApp, {hLine, hDevice, message, line->m_dwInstance,
                                             parameter1, parameter2, parameter3});
    } catch (const std::bad_alloc&) {
        // Told by the time-out of whoever waits for it.
    }
}

DWORD CService::NextRequest() {
    // Read as signed, it is positive.
    m_dwLastRequest = m_dwLastRequest < INT_MAX ? m_dwLastRequest + 1 : 1;
    return m_dwLastRequest;
}

} // namespace telephonyservice
