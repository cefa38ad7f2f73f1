// A line that a program has open. Owned by the service, and guarded by its lock.
#pragma once

#include "services/telephony/LineDevice.h"
#include "telephony/TapiTypes.h"

namespace telephonyservice {

struct CLine {
    const HLINEAPP m_hLineApp;
    const DWORD m_dwDevice;
    const LineDevice m_device;
    const DWORD_PTR m_dwInstance;
    const DWORD m_dwPrivileges;
    const DWORD m_dwMediaModes;
};

} // namespace telephonyservice
