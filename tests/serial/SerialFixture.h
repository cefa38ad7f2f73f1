// What the tests of the serial port share: a closed port, a device, and the reports.
#pragma once

#include "CORE/VXSerial/Lib/ISerial.h"
#include "CORE/VXSerial/Lib/ISerialWait.h"
#include "common/InterfacePtr.h"
#include "platform/Clock.h"
#include "tests/comm/TestPort.h"
#include "tests/diagnostics/ReportLog.h"
#include "tests/support/PseudoTerminal.h"

#include <filesystem>
#include <set>
#include <thread>

using Texts = std::vector<std::string>;

class CSerialTest : public testing::Test {
  protected:
    explicit CSerialTest(CPseudoTerminal device = {}) : m_device(std::move(device)) {
        EXPECT_EQ(CreateSerial(m_serial.Receive(), nullptr), S_OK);
        m_wait = m_serial.Query<ISerialWait>(IID_ISerialWait);
    }

    void Open() { ASSERT_TRUE(m_serial->Open(m_device.GetPath().c_str())); }

    // Waits until the port has had that many bytes; fewer once the device is gone.
    std::string Read(DWORD count) {
        std::string bytes(count, '\0');
        DWORD taken = 0;
        while (taken < count && !m_wait->IsDeviceGone() &&
               WaitForSingleObject(m_wait->GetReceiveHandle(), kPatience) == WAIT_OBJECT_0)
            taken += m_serial->Read(bytes.data() + taken, count - taken);
        bytes.resize(taken);
        return bytes;
    }

    DWORD Write(const std::string& bytes) {
        return m_serial->Write(bytes.data(), static_cast<DWORD>(bytes.size()));
    }

    DWORD Free() { return m_serial->GetQueueInfo(_QUE_TXFREE); }

    // Writes until the device, which reads nothing, holds everything up and the transmit buffer is
    // full.
    void Block() {
        do {
            Write(s_pattern.substr(0, Free()));
        } while (WaitForSingleObject(m_wait->GetProgressEvent(), 300) == WAIT_OBJECT_0);
        EXPECT_EQ(Free(), 0u);
    }

    // What the process has in this folder of its own and had not before: descriptors or threads.
    using Entries = std::set<std::string>;
    static Entries EntriesOf(const char* folder, const Entries& before = {}) {
        Entries entries;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (!before.contains(entry.path()))
                entries.insert(entry.path());
        return entries;
    }
    // Waits until the port has that many threads: each vanishes a little after it has ended.
    void AwaitThreads(std::size_t count) {
        while (EntriesOf("/proc/self/task", m_threads).size() != count)
            Sleep(1);
    }

    // The reports since the last call.
    Texts Reports() { return m_log.Take(); }

    // Bytes that show where they belong.
    inline static const std::string s_pattern = [] {
        std::string pattern(1 << 20, '\0');
        unsigned value = 1;
        for (char& byte : pattern) {
            value = value * 1103515245 + 12345;
            byte = static_cast<char>(value >> 16);
        }
        return pattern;
    }();
    // Those of the sanitizers begin with the first thread of ours.
    const Entries m_threads = [] {
        std::thread([] {}).join();
        return EntriesOf("/proc/self/task");
    }();
    CReportLog m_log;
    CPseudoTerminal m_device;
    CInterfacePtr<ISerial> m_serial;
    CInterfacePtr<ISerialWait> m_wait;
};
