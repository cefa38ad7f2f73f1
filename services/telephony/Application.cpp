#include "services/telephony/Application.h"

#include "services/telephony/DeviceList.h"

#include <algorithm>

namespace telephonyservice {

CApplication::CApplication(LINECALLBACK callback, CMessageWindow::Delivery delivery)
    : m_callback(callback), m_window(delivery), m_devices(ListLineDevices()) {}

const LineDevice* CApplication::FindDevice(DWORD number) const {
    return number < m_devices.size() ? &m_devices[number] : nullptr;
}

void CApplication::Post(HLINEAPP hLineApp, const LineEvent& event) {
    m_events.push_back(event);
    m_window.Post(hLineApp);
}

bool CApplication::TakeEvent(LineEvent& event) {
    if (m_events.empty())
        return false;
    event = m_events.front();
    m_events.pop_front();
    return true;
}

void CApplication::Forget(HLINE hLine) {
    m_events.erase(std::remove_if(m_events.begin(), m_events.end(),
                                  [&](const LineEvent& event) { return event.hLine == hLine; }),
                   m_events.end());
}

} // namespace telephonyservice
