#include "platform/objects/DescriptorWait.h"

#include "platform/objects/WaitLoop.h"

namespace platform {
namespace {

// The two descriptors of WaitForDescriptor as objects of one wait. The second one comes first and
// only takes note: when both show something at once, both are reported.
class CSecondDescriptor final : public CHandleObject {
  public:
    explicit CSecondDescriptor(int descriptor) : m_descriptor(descriptor) {}
    int WaitDescriptor() const override { return m_descriptor; }
    bool TryAcquire(short events) override {
        m_bShown = events != 0;
        return false;
    }
    bool IsShown() const { return m_bShown; }

  private:
    const int m_descriptor;
    bool m_bShown = false;
};

class CFirstDescriptor final : public CHandleObject {
  public:
    CFirstDescriptor(int descriptor, short events, const CSecondDescriptor& second)
        : m_descriptor(descriptor), m_wanted(events), m_second(second) {}
    int WaitDescriptor() const override { return m_descriptor; }
    short WaitEvents() const override { return m_wanted; }
    bool TryAcquire(short events) override {
        m_shown = events | (m_second.IsShown() ? POLLPRI : 0);
        return m_shown != 0;
    }
    int Shown() const { return m_shown; }

  private:
    const int m_descriptor;
    const short m_wanted;
    const CSecondDescriptor& m_second;
    int m_shown = 0;
};

} // namespace

int WaitForDescriptor(int descriptor, short events, DWORD milliseconds, int descriptor2) {
    CSecondDescriptor second(descriptor2);
    CFirstDescriptor first(descriptor, events, second);
    CHandleObject* const objects[] = {&second, &first};
    const DWORD result = CWaitLoop(objects, 2, milliseconds).Run();
    return result == WAIT_FAILED ? -1 : first.Shown();
}

} // namespace platform
