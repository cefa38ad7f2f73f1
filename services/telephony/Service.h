// CService: the state of the telephony service in this process: its applications, lines and calls.
//
// There is one, for as long as the module is loaded. Any thread may call any operation; one lock
// guards all, and no callback runs under it. Where an operation says LONG, that is what the
// published function of its name answers. Pointers are not null.
//
// Unloading the module without lineShutdown gives back what is still the service's, once an opening
// in progress has ended; a call that the modem manager is kept away from keeps the module loaded.
// The window of an application is then its thread's to end: unload on the
// thread that initialised.
#pragma once

#include "services/telephony/Application.h"
#include "services/telephony/Call.h"
#include "services/telephony/HandleTable.h"
#include "services/telephony/Line.h"
#include "services/telephony/Opening.h"
#include "services/telephony/Workers.h"
#include "telephony/TapiRecords.h"

#include <condition_variable>
#include <mutex>
#include <string_view>

namespace telephonyservice {

class CService {
  public:
    CService() = default;
    CService(const CService&) = delete;
    CService& operator=(const CService&) = delete;
    ~CService();

    // Applications. The calling thread gets the events.
    LONG Initialize(LINECALLBACK callback, HLINEAPP& hLineApp, DWORD& devices);
    LONG Shutdown(HLINEAPP hLineApp);
    // 0, LINEERR_INVALAPPHANDLE or LINEERR_BADDEVICEID.
    LONG CheckDevice(HLINEAPP hLineApp, DWORD device) const;
    LONG GetDevCaps(HLINEAPP hLineApp, DWORD device, LINEDEVCAPS* caps) const;

    // Lines.
    LONG Open(HLINEAPP hLineApp, DWORD device, DWORD_PTR instance, DWORD privileges,
              DWORD mediaModes, HLINE& hLine);
    LONG Close(HLINE hLine);
    LONG GetLineDevStatus(HLINE hLine, LINEDEVSTATUS* status) const;
    // 0 or LINEERR_INVALLINEHANDLE.
    LONG CheckLine(HLINE hLine) const;

    // Calls.
    LONG MakeCall(HLINE hLine, const LINECALLPARAMS& parameters, HCALL* hCall);
    LONG Drop(HCALL hCall);
    LONG DeallocateCall(HCALL hCall);
    LONG GetCallInfo(HCALL hCall, LINECALLINFO* info) const;
    LONG GetCallStatus(HCALL hCall, LINECALLSTATUS* status) const;
    LONG GetId(HLINE hLine, HCALL hCall, DWORD select, VARSTRING* identifier,
               std::string_view deviceClass);

    // Runs the callback for each event that waits; on the application's thread.
    void Deliver(HLINEAPP hLineApp);

  private:
    // On a thread of the service, without the lock.
    void RunOpening(CCall& call, std::atomic<bool>& isEnding);

    // With the lock.
    void FinishOpening(CCall& call, LONG result, DeviceUse& use);
    // Gives the device back: it is free when this returns. Without the lock for a while.
    void Free(CCall& call, std::unique_lock<std::mutex>& lock);
    void Post(HLINE hLine, DWORD hDevice, DWORD message, DWORD_PTR parameter1, DWORD_PTR parameter2,
              DWORD_PTR parameter3 = 0);
    void PostState(const CCall& call, DWORD state);
    void PostEnd(const CCall& call);
    std::vector<HCALL> FindActiveCalls(HLINE hLine) const;
    LONG FindCallFor(HLINE hLine, HCALL hCall, DWORD select, std::shared_ptr<CCall>& call) const;
    DWORD NextRequest();

    mutable std::mutex m_mutex;
    std::condition_variable m_threadDone; // an opening, or the keeping of a hold, has ended
    CHandleTable<CApplication> m_applications;
    CHandleTable<CLine> m_lines;
    CHandleTable<CCall> m_calls;
    DWORD m_dwLastRequest = 0;
    CWorkers m_workers;
};

// The one service.
CService& Service();

} // namespace telephonyservice
