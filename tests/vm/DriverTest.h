// What the tests of a port on a real driver share: the port's fixture, with a cable for its device.
#pragma once

#include "tests/serial/SerialFixture.h"
#include "tests/vm/Cable.h"

class CDriverTest : public CSerialTest, public testing::WithParamInterface<Cable> {
  protected:
    // A second is meant where something must not be held up; under emulation on a busy machine it
    // gets longer. What must not happen takes longer still: the drivers wait 30 seconds for their
    // output.
    static constexpr DWORD kGuard = 8000; // milliseconds

    CDriverTest() : CSerialTest(CPseudoTerminal(GetParam().device, GetParam().farEnd)) {}

    // The open port, for the platform's own calls.
    HANDLE Port() const { return m_wait->GetReceiveHandle(); }
    void ExpectHeard(const std::string& bytes) { EXPECT_EQ(m_device.Hear(bytes.size()), bytes); }
    // Closes; must not wait for the device, and leaves no thread but those of the test.
    void ExpectClosing(std::size_t threads) {
        const DWORD start = GetTickCount();
        m_serial->Close();
        EXPECT_LT(GetTickCount() - start, kGuard);
        AwaitThreads(threads);
    }
};
