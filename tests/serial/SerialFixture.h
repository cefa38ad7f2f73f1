// What the tests of the serial port share: a closed port, a device, and the reports.
#pragma once

#include "CORE/VXSerial/Lib/ISerial.h"
#include "CORE/VXSerial/Lib/ISerialWait.h"
#include "common/InterfacePtr.h"
#include "platform/Clock.h"
#include "platform/Wait.h"
#include "tests/diagnostics/ReportLog.h"
#include "tests/serial/Pty.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <string>

using Texts = std::vector<std::string>;

class CSerialTest : public testing::Test {
  protected:
    CSerialTest() {
        EXPECT_EQ(CreateSerial(m_serial.Receive(), nullptr), S_OK);
        m_wait = m_serial.Query<ISerialWait>(IID_ISerialWait);
    }

    void Open() { ASSERT_TRUE(m_serial->Open(m_pty.Path())); }

    // Waits until Read has something; empty once the device is gone.
    std::string ReadSome(DWORD most) {
        std::string bytes(most, '\0');
        DWORD count = 0;
        while (count == 0 && !m_wait->IsDeviceGone() &&
               WaitForSingleObject(m_wait->GetReceiveHandle(), 20000) == WAIT_OBJECT_0)
            count = m_serial->Read(bytes.data(), most);
        bytes.resize(count);
        return bytes;
    }

    std::string Read(std::size_t count) {
        std::string bytes;
        while (bytes.size() < count) {
            const std::string some = ReadSome(static_cast<DWORD>(count - bytes.size()));
            if (some.empty())
                break;
            bytes += some;
        }
        return bytes;
    }

    DWORD Write(const std::string& bytes) {
        return m_serial->Write(bytes.data(), static_cast<DWORD>(bytes.size()));
    }

    DWORD Free() { return m_serial->GetQueueInfo(_QUE_TXFREE); }

    // Writes until the device, which reads nothing, holds everything up and the transmit buffer is
    // full; returns what was written.
    std::string Block() {
        std::string written;
        do {
            const std::string bytes = Pattern(Free(), written.size());
            EXPECT_EQ(Write(bytes), bytes.size());
            written += bytes;
        } while (WaitForSingleObject(m_wait->GetProgressEvent(), 300) == WAIT_OBJECT_0);
        EXPECT_EQ(Free(), 0u);
        return written;
    }

    // Bytes of which no two pieces are alike.
    static std::string Pattern(std::size_t count, std::size_t begin = 0) {
        std::string bytes(count, '\0');
        for (std::size_t i = 0; i < count; ++i)
            bytes[i] = static_cast<char>((begin + i) * 2654435761u >> 24);
        return bytes;
    }

    static std::size_t EntriesOf(const char* folder) {
        const std::filesystem::directory_iterator entries(folder);
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }
    // Gives a thread that has ended the time to vanish.
    static std::size_t SettledEntriesOf(const char* folder, std::size_t expected) {
        for (int i = 0; i < 2000 && EntriesOf(folder) > expected; ++i)
            Sleep(10);
        return EntriesOf(folder);
    }

    // The reports since the last call, with the numbers of lines left out.
    Texts Reports() {
        Texts texts = m_log.Take();
        for (std::string& text : texts) {
            const std::size_t line = text.find("\tLine: ");
            if (line != std::string::npos)
                text.erase(line, text.find('\n', line) + 1 - line);
        }
        return texts;
    }

    static std::string Assert(const char* expression, const char* file = "Serial") {
        return std::string("Assert!\n\tFile: ") + file + "\n\tExp: " + expression + '\n';
    }
    static std::string Verify(const char* expression) {
        return std::string("Verify Failed!\n\tFile: Serial\n\tExp: ") + expression + '\n';
    }

    CReportLog m_log;
    CPty m_pty;
    CInterfacePtr<ISerial> m_serial;
    CInterfacePtr<ISerialWait> m_wait;
};
