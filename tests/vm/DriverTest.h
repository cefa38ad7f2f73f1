// What the tests of a port on a real driver share: the port's fixture, with a cable for its device.
#pragma once

#include "tests/serial/SerialFixture.h"
#include "tests/vm/Cable.h"

#include <chrono>

class CDriverTest : public CSerialTest, public testing::WithParamInterface<Cable> {
  protected:
    // A second is meant where something must not be held up; under emulation on a busy machine it
    // gets longer. What must not happen takes longer still: the drivers wait 30 seconds for their
    // output.
    static constexpr std::chrono::seconds kGuard{8};

    CDriverTest() : CSerialTest(CTestDevice(GetParam().device, GetParam().farEnd)) {}

    // The open port, for the platform's own calls.
    HANDLE Port() const { return m_wait->GetReceiveHandle(); }
    // The device gets exactly this.
    void ExpectHeard(const std::string& bytes) { EXPECT_EQ(m_device.Hear(bytes.size()), bytes); }
    void ExpectSilence() const {
        pollfd polled = {m_device.Get(), POLLIN, 0};
        EXPECT_EQ(poll(&polled, 1, 0), 0);
    }
    // Closes; must not wait for the device, and leaves no thread that was not there.
    void ExpectClosing(const Entries& threads) {
        const auto start = std::chrono::steady_clock::now();
        m_serial->Close();
        EXPECT_LT(std::chrono::steady_clock::now() - start, kGuard);
        EXPECT_EQ(Threads(threads), Entries());
    }
    static Entries Threads(const Entries& before = {}) {
        return EntriesOf("/proc/self/task", before);
    }
};
