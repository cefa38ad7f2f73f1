// A call: the device handed over, unconnected, for as long as the call lasts.
//
//   Opening       a thread of the service opens the device; it stays while there is a hold to keep
//   Connected     the device is open, for whoever asks for its handle
//   Idle          dropped; only the handle is left, until it is deallocated
//
// Owned by the service and shared with the thread that opens; all but the cancellation is guarded
// by the service's lock.
#pragma once

#include "common/UniqueHandle.h"
#include "services/telephony/Cancellation.h"
#include "services/telephony/LineDevice.h"
#include "telephony/TapiRecords.h"

namespace telephonyservice {

enum class ECallState { Opening, Connected, Idle };

struct CCall {
    CCall(HLINE hLine, const LineDevice& device, const LINECALLPARAMS& parameters)
        : m_hLine(hLine), m_device(device), m_parameters(parameters) {}

    bool IsActive() const { return m_state != ECallState::Idle; }
    // LINECALLSTATE_
    DWORD GetState() const;

    const HLINE m_hLine;
    const LineDevice m_device;
    const LINECALLPARAMS m_parameters; // the fixed part
    HCALL m_hCall = 0;
    DWORD m_dwRequest = 0; // of lineMakeCall
    ECallState m_state = ECallState::Opening;
    CUniqueHandle m_port;
    HANDLE m_hPort = nullptr; // the port's number, also when its owner is somebody else now
    bool m_bHeld = false;     // the thread that has opened keeps the modem manager away
    CCancellation m_cancellation;
};

} // namespace telephonyservice
