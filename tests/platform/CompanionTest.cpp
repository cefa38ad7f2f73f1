#include "platform/Clock.h"
#include "platform/objects/Descriptor.h"
#include "platform/objects/WaitCompanion.h"
#include "tests/platform/TestHandle.h"

#include <gtest/gtest.h>
#include <sys/eventfd.h>

namespace {

// Stands for the console: output that its terminal does not take, and a source of control events.
class CFakeCompanion final : public platform::IWaitCompanion {
  public:
    CFakeCompanion() { platform::SetWaitCompanion(this); }
    ~CFakeCompanion() { platform::SetWaitCompanion(nullptr); }

    bool HasWork() const override { return true; }
    void DoWork() override { ++m_nWorked; }
    int Watch(pollfd* descriptors) override {
        *descriptors = {m_control.Get(), POLLIN, 0};
        return 1;
    }
    void Serve(const pollfd*, int count) override {
        EXPECT_EQ(count, 1);
        eventfd_t value = 0;
        m_nServed += eventfd_read(m_control.Get(), &value) == 0;
    }

    int m_nWorked = 0;
    int m_nServed = 0;
    platform::CDescriptor m_control{eventfd(1, EFD_CLOEXEC | EFD_NONBLOCK)};
};

} // namespace

// A terminal that holds the output back: the wait blocks with work left, and is not a loop.
TEST(Companion, WorksOnceAndOnlyBeforeAWaitBlocks) {
    CFakeCompanion companion;
    const CTestHandle ready = MakeEvent(true, true);
    const CTestHandle silent = MakeEvent(true, false);
    const HANDLE handles[] = {silent, ready};
    EXPECT_EQ(WaitForMultipleObjects(2, handles, FALSE, INFINITE), WAIT_OBJECT_0 + 1);
    EXPECT_EQ(companion.m_nServed, 1) << "served in waits that need not block, too";
    eventfd_write(companion.m_control.Get(), 1);
    EXPECT_EQ(WaitForSingleObject(silent, 0), WAIT_TIMEOUT);
    EXPECT_EQ(companion.m_nServed, 2);
    EXPECT_EQ(companion.m_nWorked, 0);
    EXPECT_EQ(WaitForSingleObject(silent, 30), WAIT_TIMEOUT);
    EXPECT_EQ(companion.m_nWorked, 1);
    Sleep(1);
    EXPECT_EQ(companion.m_nWorked, 2);
}
