// The lines of the service.
#include "services/telephony/RecordFiller.h"
#include "services/telephony/Records.h"
#include "services/telephony/Service.h"

namespace telephonyservice {
namespace {

constexpr DWORD kAllPrivileges = LINECALLPRIVILEGE_MONITOR | LINECALLPRIVILEGE_OWNER;

bool IsPrivilegeSelection(DWORD privileges) {
    if (privileges == LINECALLPRIVILEGE_NONE)
        return true;
    return privileges != 0 && (privileges & ~kAllPrivileges) == 0;
}

} // namespace

LONG CService::Open(HLINEAPP hLineApp, DWORD device, DWORD_PTR instance, DWORD privileges,
                    DWORD mediaModes, HLINE& hLine) {
    const std::lock_guard lock(m_mutex);
    const auto application = m_applications.Find(hLineApp);
    if (!application)
        return LINEERR_INVALAPPHANDLE;
    const LineDevice* const found = application->FindDevice(device);
    if (found == nullptr)
        return LINEERR_BADDEVICEID;
    if (!IsPrivilegeSelection(privileges))
        return LINEERR_INVALPRIVSELECT;
    const bool isOwner = (privileges & LINECALLPRIVILEGE_OWNER) != 0;
    if (isOwner && (mediaModes == 0 || (mediaModes & ~MediaModesOf(*found)) != 0))
        return LINEERR_INVALMEDIAMODE;
    const HLINE handle = m_lines.Add(
        std::make_shared<CLine>(CLine{hLineApp, device, *found, instance, privileges, mediaModes}));
    if (handle == 0)
        return LINEERR_RESOURCEUNAVAIL;
    hLine = handle;
    return 0;
}

LONG CService::Close(HLINE hLine) {
    std::unique_lock lock(m_mutex);
    const auto line = m_lines.Remove(hLine);
    if (!line)
        return LINEERR_INVALLINEHANDLE;
    if (const auto application = m_applications.Find(line->m_hLineApp))
        application->Forget(hLine);
    for (const HCALL hCall :
         m_calls.FindAll([&](const CCall& call) { return call.m_hLine == hLine; })) {
        if (const auto call = m_calls.Remove(hCall))
            Free(*call, lock);
    }
    lock.unlock();
    m_workers.Reap();
    return 0;
}

LONG CService::CheckLine(HLINE hLine) const {
    const std::lock_guard lock(m_mutex);
    return m_lines.Find(hLine) ? 0 : LINEERR_INVALLINEHANDLE;
}

LONG CService::GetLineDevStatus(HLINE hLine, LINEDEVSTATUS* status) const {
    const std::lock_guard lock(m_mutex);
    const auto line = m_lines.Find(hLine);
    if (!line)
        return LINEERR_INVALLINEHANDLE;
    const CRecordFiller filler(status);
    if (!filler.HasRoom())
        return LINEERR_STRUCTURETOOSMALL;
    const auto isSameDevice = [&](const CLine& other) {
        return other.m_device.devicePath == line->m_device.devicePath;
    };
    for (const HLINE open : m_lines.FindAll(isSameDevice)) {
        ++status->dwNumOpens;
        status->dwOpenMediaModes |= m_lines.Find(open)->m_dwMediaModes;
        status->dwNumActiveCalls += static_cast<DWORD>(FindActiveCalls(open).size());
    }
    status->dwLineFeatures = status->dwNumActiveCalls == 0 ? LINEFEATURE_MAKECALL : 0;
    return 0;
}

} // namespace telephonyservice
