#include "platform/objects/DescriptorWait.h"

#include "platform/objects/WaitLoop.h"

namespace platform {
namespace {

// A descriptor as an object of a wait. One with another beside it ends the wait for both; the
// other, which comes first, only takes note: when both show something at once, both are reported.
class CWatchedDescriptor final : public CHandleObject {
  public:
    CWatchedDescriptor(int descriptor, short events, const CWatchedDescriptor* beside)
        : m_descriptor(descriptor), m_wanted(events), m_beside(beside) {}
    int WaitDescriptor() const override { return m_descriptor; }
    short WaitEvents() const override { return m_wanted; }
    bool TryAcquire(short events) override {
        m_shown = events;
        return m_beside != nullptr && (m_shown != 0 || m_beside->m_shown != 0);
    }
    int Shown() const { return m_shown; }

  private:
    const int m_descriptor;
    const short m_wanted;
    const CWatchedDescriptor* const m_beside;
    short m_shown = 0;
};

} // namespace

int WaitForDescriptor(int descriptor, short events, DWORD milliseconds, int descriptor2) {
    CWatchedDescriptor second(descriptor2, POLLIN, nullptr);
    CWatchedDescriptor first(descriptor, events, &second);
    CHandleObject* const objects[] = {&second, &first};
    const DWORD result = CWaitLoop(objects, 2, milliseconds).Run();
    return result == WAIT_FAILED ? -1 : first.Shown() | (second.Shown() != 0 ? POLLPRI : 0);
}

} // namespace platform
