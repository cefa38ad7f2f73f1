// What the tests of a port on a real driver share.
#pragma once

#include "CORE/VXSerial/Lib/ISerial.h"
#include "CORE/VXSerial/Lib/ISerialWait.h"
#include "common/InterfacePtr.h"
#include "platform/Comm.h"
#include "tests/diagnostics/ReportLog.h"
#include "tests/vm/Cable.h"
#include "tests/vm/FarEnd.h"

#include <filesystem>

class CSerialTest : public testing::TestWithParam<Cable> {
  protected:
    CSerialTest() {
        EXPECT_EQ(CreateSerial(m_serial.Receive(), nullptr), S_OK);
        m_pump.Add(m_farEnd);
    }

    void Open() { ASSERT_TRUE(m_serial->Open(GetParam().device)); }
    // The open port, for the platform's own calls.
    HANDLE Port() const { return m_serial.Query<ISerialWait>(IID_ISerialWait)->GetReceiveHandle(); }
    DWORD Write(const std::string& bytes) {
        return m_serial->Write(bytes.data(), static_cast<DWORD>(bytes.size()));
    }
    // Reads until that many bytes have come.
    std::string Read(std::size_t count) {
        std::string bytes;
        char some[4096];
        m_pump.RunUntil([&] {
            bytes.append(some, m_serial->Read(some, sizeof some));
            return bytes.size() >= count;
        });
        return bytes;
    }
    // Whether exactly these bytes come, since the last time; waits for them.
    testing::AssertionResult FarEndGets(const std::string& bytes) {
        m_pump.RunUntil([&] { return m_farEnd.GetReceived().size() >= bytes.size(); });
        const std::string received = std::exchange(m_farEnd.GetReceived(), {});
        return received == bytes ? testing::AssertionSuccess()
                                 : testing::AssertionFailure()
                                       << received.size()
                                       << " bytes came: " << received.substr(0, 200);
    }

    static auto CountThreads() {
        return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
    }
    // Closes; must not wait for the device, and leaves no thread.
    void ExpectClosing(std::ptrdiff_t threadsBefore) {
        const auto start = std::chrono::steady_clock::now();
        m_serial->Close();
        EXPECT_LT(std::chrono::steady_clock::now() - start, GUARD);
        EXPECT_EQ(CountThreads(), threadsBefore);
    }

    CReportLog m_log;
    CPump m_pump;
    CDevice m_farEnd = OpenFarEnd(GetParam().farEnd);
    CInterfacePtr<ISerial> m_serial;
};
