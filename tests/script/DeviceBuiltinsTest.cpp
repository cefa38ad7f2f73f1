// Small scripts on a substitute device: where a built-in must wait, stop waiting, or leave
// something alone.
#include "platform/Message.h"
#include "script/Script.h"
#include "tests/modem/SubstituteSerial.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace {

class CDeviceBuiltins : public testing::Test {
  protected:
    CDeviceBuiltins() { m_modem.Open("port"); }

    // Runs statements, one a line, with the path as a text p$ and what they sent to the device as
    // the result.
    std::string Run(const std::string& statements, const std::string& path = {}) {
        const std::string text = "STRING p$ = \"" + path + "\"\r\nFUNCTION main()\r\n" +
                                 statements + "\r\nENDFUNCTION\r\n";
        m_serial.m_calls.clear();
        CVScript script;
        EXPECT_EQ(script.Run(m_folder.Write("script", text).c_str(), &m_modem), 0u);
        m_bDeviceGone = script.IsDeviceGone();
        std::string sent;
        for (const std::string& call : m_serial.m_calls)
            if (call.starts_with("write "))
                sent += call.substr(6);
        return sent;
    }

    std::string WaitFor(const std::string& text, int milliseconds) {
        return Run("SendString(String(WaitForString(\"" + text + "\", " +
                   std::to_string(milliseconds) + ")))");
    }

    CTempFolder m_folder;
    CSubstituteSerial m_serial{CSubstituteSerial::Kind::Waitable};
    CTestModem m_modem{&m_serial};
    bool m_bDeviceGone = false;
};

TEST_F(CDeviceBuiltins, WaitForStringLeavesWhatComesBehindTheText) {
    m_serial.m_reads = {std::string("O\r\nOO\0Kre", 9), "st"};
    EXPECT_EQ(WaitFor("OK", 60000), "1");
    EXPECT_EQ(WaitFor("rest", 60000), "1");
}

TEST_F(CDeviceBuiltins, WaitForStringBlocksUntilBytesOrTheDeadline) {
    std::thread device([this] {
        Sleep(50);
        m_serial.Arrive("O");
        Sleep(50);
        m_serial.Arrive("K");
    });
    EXPECT_EQ(WaitFor("OK", 60000), "1");
    device.join();
    EXPECT_LE(m_serial.m_nReads, 5);
    EXPECT_EQ(WaitFor("OK", 50), "0");
    m_serial.m_endlessRead = "x";
    EXPECT_EQ(WaitFor("OK", 50) + WaitFor("x", -1), "00");
    EXPECT_FALSE(m_bDeviceGone);
}

CSubstituteSerial* s_serial = nullptr;
int s_dispatched = 0;

LRESULT CountMessage(HWND, UINT, WPARAM, LPARAM) {
    if (++s_dispatched == 4)
        s_serial->Vanish();
    return 0;
}

TEST_F(CDeviceBuiltins, WaitDispatchesMessagesUntilTheDeviceVanishes) {
    s_serial = &m_serial;
    s_dispatched = 0;
    const WNDCLASSA windowClass = {CountMessage, "counting"};
    RegisterClassA(&windowClass);
    const HWND window =
        CreateWindowExA(0, "counting", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr);
    PostMessageA(window, WM_APP, 0, 0);
    Run("Wait(-5)");
    EXPECT_EQ(s_dispatched, 1);
    EXPECT_FALSE(m_bDeviceGone);
    std::thread poster([window] {
        for (int count = 0; count < 3; ++count) {
            Sleep(20);
            PostMessageA(window, WM_APP, 0, 0);
        }
    });
    EXPECT_EQ(Run("Wait(60000)\r\nSendString(\"x\")"), "");
    poster.join();
    EXPECT_EQ(s_dispatched, 4);
    EXPECT_TRUE(m_bDeviceGone);
    DestroyWindow(window);
}

TEST_F(CDeviceBuiltins, SettingsOutOfRange) {
    EXPECT_EQ(Run("SendString(String(SetBaudRate(-1)))\r\n"
                  "SendString(String(SetBaudRate(9600)))"),
              "11");
    EXPECT_EQ(m_serial.m_calls,
              (std::vector<std::string>{"format -1", "write 1", "format 9600", "write 1"}));
    EXPECT_EQ(Run("SetRetry(-1)\r\nSendString(String(SendCommand(\"AT\\r\")))\r\n"
                  "SendString(SendCommandGetString(\"AT\\r\"))"),
              "100");
    EXPECT_EQ(Run("SendString(String(GetBaudRate()))"), "0");
}

TEST_F(CDeviceBuiltins, WhatWasSentLeavesBeforeACommand) {
    Run("SetRetry(1)\r\nSetTimeout(0)\r\nSendString(\"A\")\r\n"
        "SendCommand(\"B\")\r\nSendCommand(\"C\")");
    EXPECT_EQ(m_serial.m_calls,
              (std::vector<std::string>{"write A", "drain 2000", "flush 1", "flush 2", "write B",
                                        "flush 1", "flush 2", "write C"}));
}

TEST_F(CDeviceBuiltins, SendFileSendsPiecesUpToANul) {
    const std::string sends = "SendString(String(SendFile(p$)))";
    const std::string line(255, 'x');
    const std::string content = "a\r\n\nb" + line + '\n' + line + line + "\nab";
    const std::string nuls("\0cd\nef\n\0\ngh", 11);
    Run(sends, m_folder.Write("file", content + nuls + std::string(5000, 'y')));
    std::vector<std::string> pieces = {
        "a\r\n", "\n", 'b' + line.substr(1),        "x\n", line, line, "\n", "ab",
        "ef\n",  "",   "gh" + std::string(253, 'y')};
    pieces.insert(pieces.end(), 18, std::string(255, 'y'));
    pieces.insert(pieces.end(), {std::string(157, 'y'), "1"});
    for (std::string& piece : pieces)
        piece.insert(0, "write ");
    EXPECT_EQ(m_serial.m_calls, pieces);
    EXPECT_EQ(Run(sends, m_folder.GetPath("")) + Run(sends, m_folder.GetPath("missing")), "00");
}

TEST_F(CDeviceBuiltins, PlaySoundAsksForTheFileAlone) {
    const std::string path = std::getenv("PATH");
    setenv("PATH", "", 1); // no player
    const std::string plays = "SendString(String(PlaySound(p$)))";
    EXPECT_EQ(Run(plays, m_folder.GetPath("missing")), "0");
    EXPECT_EQ(Run(plays, m_folder.Write("sound.wav", "")), "1");
    setenv("PATH", path.c_str(), 1);
}

} // namespace
