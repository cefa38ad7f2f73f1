#include "platform/comm/CommIntake.h"

#include "platform/comm/CommPort.h"
#include "platform/objects/HandleTable.h"
#include "platform/objects/WaitLoop.h"

#include <memory>

namespace platform {
namespace {

// Never ends the wait that it takes part in, only serves the port meanwhile.
class CIntake final : public CHandleObject {
  public:
    explicit CIntake(CCommPort& port) : m_port(port) {}

    int WaitDescriptor() const override { return m_bTakes ? m_port.Driver().Descriptor() : -1; }
    bool TryAcquire(short events) override {
        if (events == 0 || !m_bTakes)
            return false;
        const CCommPort::Intake intake = m_port.TakeIn();
        m_bDiscarded = m_bDiscarded || intake == CCommPort::Intake::Discarded;
        m_bTakes = intake != CCommPort::Intake::Ended && intake != CCommPort::Intake::Held;
        return false;
    }
    bool IsDiscarded() const { return m_bDiscarded; }

  private:
    CCommPort& m_port;
    bool m_bTakes = true;
    bool m_bDiscarded = false;
};

} // namespace

DWORD WaitWhileReceiving(HANDLE hObject, HANDLE hPort, BOOL* lpDiscarded) {
    *lpDiscarded = FALSE;
    const auto port = std::dynamic_pointer_cast<CCommPort>(FindHandle(hPort));
    const auto object = FindHandle(hObject);
    if (!port || !object || (object->WaitDescriptor() < 0 && !object->IsReady()))
        return WaitForSingleObject(hObject, INFINITE);

    CIntake intake(*port);
    CHandleObject* const objects[] = {object.get(), &intake};
    // Only a closed object ends the wait: the port has no part in its result.
    const HANDLE handles[] = {hObject, hObject};
    const DWORD result = CWaitLoop(objects, 2, INFINITE, handles).Run();
    *lpDiscarded = intake.IsDiscarded();
    return result;
}

} // namespace platform
