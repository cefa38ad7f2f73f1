// CApplication: one initialisation of the line service: the devices there were then, and the way to
// tell of their calls.
//
// Owned by the service, and guarded by its lock. Events wait here, and the window only says that
// there are some: those of a line that is closed meanwhile can still be taken back.
#pragma once

#include "services/telephony/LineDevice.h"
#include "services/telephony/MessageWindow.h"
#include "telephony/TapiTypes.h"

#include <deque>
#include <vector>

namespace telephonyservice {

struct LineEvent {
    HLINE hLine; // whose it is
    DWORD hDevice;
    DWORD message;
    DWORD_PTR instance;
    DWORD_PTR parameter1;
    DWORD_PTR parameter2;
    DWORD_PTR parameter3;
};

class CApplication {
  public:
    // On the thread that will get the events; see IsReady.
    CApplication(LINECALLBACK callback, CMessageWindow::Delivery delivery);

    bool IsReady() const { return m_window.IsThere(); }
    LINECALLBACK GetCallback() const { return m_callback; }

    DWORD CountDevices() const { return static_cast<DWORD>(m_devices.size()); }
    // Null for a number that is none.
    const LineDevice* FindDevice(DWORD number) const;

    // Queues an event; hLineApp is this application's handle.
    void Post(HLINEAPP hLineApp, const LineEvent& event);
    // Takes the oldest event; false when there is none.
    bool TakeEvent(LineEvent& event);
    // Forgets the events of a line.
    void Forget(HLINE hLine);

  private:
    const LINECALLBACK m_callback;
    const CMessageWindow m_window;
    const std::vector<LineDevice> m_devices;
    std::deque<LineEvent> m_events;
};

} // namespace telephonyservice
