#include "services/telephony/Call.h"

namespace telephonyservice {

DWORD CCall::GetState() const {
    switch (m_state) {
    case ECallState::Opening:
        return LINECALLSTATE_PROCEEDING;
    case ECallState::Connected:
        return LINECALLSTATE_CONNECTED;
    case ECallState::Idle:
        break;
    }
    return LINECALLSTATE_IDLE;
}

} // namespace telephonyservice
