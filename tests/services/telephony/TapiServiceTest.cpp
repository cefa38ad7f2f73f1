// The telephony module: its lines and calls, on pseudo-terminals and made-up devices.
#include "platform/Comm.h"
#include "platform/Error.h"
#include "platform/File.h"
#include "tests/services/telephony/TapiModule.h"
#include "tests/support/DeviceNamespace.h"
#include "tests/support/Process.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <thread>

namespace {

class CTapiServiceTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(CDeviceNamespace::Enter()) << "needs root or user namespaces";
        CDeviceNamespace::SetInterfaces({});
        std::filesystem::create_directories(m_folder.GetPath("wirelet"));
        setenv("XDG_CONFIG_HOME", m_folder.GetPath("").c_str(), 1);
        NameModems("One = " + m_one.GetPath() + "\nTwo = " + m_two.GetPath() + "\n");
        m_module.emplace();
    }
    void NameModems(const std::string& content) { m_folder.Write("wirelet/modems.conf", content); }

    // What a new call on a new line gets.
    LONG TryDevice(const std::string& name) {
        HCALL hCall = 0;
        const HLINE hLine = m_module->OpenLine(name);
        const LONG result = m_module->MakeCall(hLine, &hCall);
        EXPECT_EQ(m_module->lineClose(hLine), 0);
        return result;
    }

    CTempFolder m_folder;
    CPseudoTerminal m_one;
    CPseudoTerminal m_two;
    std::optional<CTapiModule> m_module;
};

std::string ReadPort(HANDLE port, std::size_t count) {
    std::string received(count, '\0');
    OVERLAPPED overlapped{};
    overlapped.hEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    DWORD read = 0;
    if (!ReadFile(port, received.data(), static_cast<DWORD>(count), &read, &overlapped))
        GetOverlappedResult(port, &overlapped, &read, TRUE);
    CloseHandle(overlapped.hEvent);
    received.resize(read);
    return received;
}

bool IsModuleMapped() {
    return ReadWholeFile("/proc/self/maps").find("/libtapi32.so") != std::string::npos;
}

// First: after a shutdown from another thread the module stays.
TEST_F(CTapiServiceTest, CanBeUnloadedInTheMiddle) {
    HCALL hCall = 0;
    const HLINE hLine = m_module->OpenLine("One");
    ASSERT_EQ(m_module->MakeCall(hLine, &hCall), 0);
    VARSTRING small{};
    small.dwTotalSize = sizeof small;
    EXPECT_EQ(m_module->lineGetID(hLine, 0, hCall, LINECALLSELECT_CALL, &small, "comm/datamodem"),
              0);
    EXPECT_TRUE(IsModuleMapped());
    m_module->Unload();
    EXPECT_FALSE(IsModuleMapped());
    CTapiModule::Dispatch();
    m_module.reset();
    m_module.emplace();
    EXPECT_EQ(TryDevice("One"), 0);
    m_module.reset();
    EXPECT_FALSE(IsModuleMapped());
}

TEST_F(CTapiServiceTest, ListsNamedModemsAndThenTheDatabase) {
    const std::map<std::string, std::string> stick = {{"ID_VENDOR_FROM_DATABASE", "Acme"},
                                                      {"ID_MODEL_ENC", "Stick\\x20S"}};
    auto diagnostics = stick;
    diagnostics["ID_MM_PORT_TYPE_QCDM"] = "1";
    const std::map<std::string, std::string> phone = {{"ID_MODEL_FROM_DATABASE", "One"}};
    const std::vector<FakeInterface> plugged = {
        {"ttyUSB0", "ttyUSB0", "1-2", "01", "ffffff", "", diagnostics},
        {"ttyUSB1", "ttyUSB1", "1-2", "00", "ffffff", "AT\tport", stick},
        {"ttyACM0", "ttyACM0", "1-1", "00", "020201", "", phone},
        {"ttyACM1", "ttyACM1", "1-1", "02", "0202ff", "", phone},
        {"ttyS0", "ttyS0", "", "", "", "", {}},
    };
    NameModems("nonsense\nOne = " + m_one.GetPath() + "\nOne = " + m_two.GetPath() + "\n");
    EXPECT_EQ(m_module->ListLines(), (std::vector<std::string>{"*One", "*Two"}));
    CDeviceNamespace::SetInterfaces(plugged);
    EXPECT_EQ(m_module->ListLines(), (std::vector<std::string>{"*One", "*Two"}));
    for (int start = 0; start < 2; ++start) {
        m_module->Restart();
        EXPECT_EQ(
            m_module->ListLines(),
            (std::vector<std::string>{"*One", "*One 2", "*One (interface 0)", "One (interface 2)",
                                      "*Acme Stick S (AT?port)", "Acme Stick S (diagnostics)"}));
    }
}

TEST_F(CTapiServiceTest, OpensADeviceOfTheDatabase) {
    CDeviceNamespace::SetInterfaces(
        {{"ttyUSB0", m_one.GetPath().substr(sizeof "/dev/" - 1), "1-2"}});
    m_module->Restart();
    EXPECT_EQ(TryDevice("Serial modem"), 0);
}

TEST_F(CTapiServiceTest, HandsTheDeviceOver) {
    const HLINE hLine = m_module->OpenLine("One", 4711);
    for (int turn = 0; turn < 2; ++turn) {
        HCALL hCall = 0;
        ASSERT_EQ(m_module->MakeCall(hLine, &hCall), 0);
        HCALL second = 0;
        EXPECT_EQ(m_module->StartCall(hLine, &second), LINEERR_CALLUNAVAIL);
        EXPECT_EQ(TryDevice("One"), LINEERR_ALLOCATED);
        EXPECT_TRUE(m_module->HasEvent(hCall, LINE_CALLSTATE, LINECALLSTATE_CONNECTED));
        EXPECT_EQ(m_module->lineDeallocateCall(hCall), LINEERR_INVALCALLSTATE);

        // An answer that did not fit hands nothing over.
        VARSTRING small{};
        small.dwTotalSize = sizeof small;
        EXPECT_EQ(m_module->lineGetID(hLine, 0, 0, LINECALLSELECT_LINE, &small, "COMM/datamodem"),
                  0);
        EXPECT_EQ(small.dwNeededSize, sizeof small + sizeof(DWORD) + m_one.GetPath().size() + 1);
        EXPECT_EQ(small.dwStringSize, 0U);
        const HANDLE port = m_module->GetPort(hCall);
        EXPECT_EQ(m_module->GetPort(hCall), port);

        EXPECT_EQ(write(m_one.GetMaster(), "OK", 2), 2);
        EXPECT_EQ(ReadPort(port, 2), "OK");
        const LONG drop = m_module->lineDrop(hCall, nullptr, 0);
        EXPECT_EQ(m_module->AwaitReply(drop), 0);
        ASSERT_TRUE(m_module->RunUntil(
            [&] { return m_module->HasEvent(hCall, LINE_CALLSTATE, LINECALLSTATE_IDLE); }));
        EXPECT_EQ(m_module->GetEvents().back().instance, 4711U);
        EXPECT_TRUE(m_module->HasEvent(hCall, LINE_CALLSTATE, LINECALLSTATE_DISCONNECTED));
        // As the wrapper does when it is told of the disconnection.
        EXPECT_EQ(m_module->AwaitReply(m_module->lineDrop(hCall, nullptr, 0)), 0);
        EXPECT_EQ(m_module->GetPort(hCall), nullptr);
        EXPECT_EQ(m_module->lineDeallocateCall(hCall), 0);
        EXPECT_EQ(m_module->lineDrop(hCall, nullptr, 0), LINEERR_INVALCALLHANDLE);
        EXPECT_TRUE(CloseHandle(port)) << "the port is the caller's, and still open";
    }
}

TEST_F(CTapiServiceTest, GivesBackWhatNobodyAskedFor) {
    const HLINE hLine = m_module->OpenLine("One");
    const HLINE hOther = m_module->OpenLine("Two");
    HCALL hCall = 0;
    HCALL hOtherCall = 0;
    ASSERT_EQ(m_module->MakeCall(hLine, &hCall), 0);
    ASSERT_EQ(m_module->MakeCall(hOther, &hOtherCall), 0);
    LINEDEVSTATUS status{};
    status.dwTotalSize = sizeof status;
    EXPECT_EQ(m_module->lineGetLineDevStatus(hLine, &status), 0);
    EXPECT_EQ(status.dwNumActiveCalls, 1U);
    EXPECT_GT(m_module->lineDrop(hCall, nullptr, 0), 0);
    EXPECT_EQ(TryDevice("One"), 0);
    EXPECT_EQ(TryDevice("Two"), LINEERR_ALLOCATED);
    EXPECT_EQ(m_module->lineClose(hOther), 0);
    EXPECT_EQ(TryDevice("Two"), 0);
    EXPECT_EQ(m_module->lineDrop(hOtherCall, nullptr, 0), LINEERR_INVALCALLHANDLE);
}

TEST_F(CTapiServiceTest, TellsWhyADeviceCannotBeOpened) {
    const std::string file = m_folder.Write("file", "");
    const std::string link = m_folder.GetPath("link");
    std::filesystem::create_symlink(m_two.GetPath(), link);
    NameModems("Gone = /dev/none\nFile = " + file + "\nFolder = /tmp\nLocked = " + m_one.GetPath() +
               "\nLink = " + link + "\n");
    m_module->Restart();
    EXPECT_EQ(TryDevice("Gone"), LINEERR_NODEVICE);
    EXPECT_EQ(TryDevice("File"), LINEERR_NODRIVER);
    EXPECT_EQ(TryDevice("Folder"), LINEERR_NODRIVER);
    EXPECT_EQ(TryDevice("Link"), 0);

    EXPECT_EQ(chmod(m_one.GetPath().c_str(), 0), 0);
    const bool isRoot = geteuid() == 0;
    constexpr uid_t kNobody = 65534;
    EXPECT_TRUE(!isRoot || seteuid(kNobody) == 0);
    EXPECT_EQ(TryDevice("Locked"), LINEERR_NOTOWNER);
    EXPECT_TRUE(!isRoot || seteuid(0) == 0);

    m_two.CloseMaster();
    EXPECT_EQ(TryDevice("Link"), LINEERR_NODEVICE);
}

TEST_F(CTapiServiceTest, AnotherProgramHasTheDevice) {
    Pipe told;
    Pipe order;
    ProcessOptions options;
    options.input = order.reader.Get();
    options.output = told.writer.Get();
    options.work = [&] {
        const HANDLE port = CreateFileA(m_one.GetPath().c_str(), GENERIC_READ | GENERIC_WRITE, 0,
                                        nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
        char byte = 0;
        static_cast<void>(!write(STDOUT_FILENO, "o", 1) || !read(STDIN_FILENO, &byte, 1));
        CloseHandle(port);
        static_cast<void>(!write(STDOUT_FILENO, "c", 1));
    };
    const CProcess other(options);
    char byte = 0;
    ASSERT_EQ(read(told.reader.Get(), &byte, 1), 1);
    EXPECT_EQ(TryDevice("One"), LINEERR_ALLOCATED);
    EXPECT_EQ(write(order.writer.Get(), "c", 1), 1);
    ASSERT_EQ(read(told.reader.Get(), &byte, 1), 1);
    EXPECT_EQ(TryDevice("One"), 0);
}

TEST_F(CTapiServiceTest, OutlivesADeviceThatIsUnplugged) {
    const HLINE hLine = m_module->OpenLine("One");
    HCALL hCall = 0;
    ASSERT_EQ(m_module->MakeCall(hLine, &hCall), 0);
    const HANDLE port = m_module->GetPort(hCall);
    m_one.CloseMaster();
    EXPECT_EQ(ReadPort(port, 1), "");
    EXPECT_EQ(m_module->AwaitReply(m_module->lineDrop(hCall, nullptr, 0)), 0);
    EXPECT_EQ(m_module->lineClose(hLine), 0);
    CloseHandle(port);
}

TEST_F(CTapiServiceTest, SaysNothingMoreOfAClosedLine) {
    for (int turn = 0; turn < 20; ++turn) {
        const HLINE hLine = m_module->OpenLine("One", 1);
        HCALL hCall = 0;
        ASSERT_GT(m_module->StartCall(hLine, &hCall), 0);
        EXPECT_TRUE(turn % 2 == 0 || m_module->lineDrop(hCall, nullptr, 0) > 0);
        EXPECT_EQ(m_module->lineClose(hLine), 0);
    }
    EXPECT_EQ(TryDevice("One"), 0);
    for (const TapiEvent& event : m_module->GetEvents())
        EXPECT_EQ(event.instance, 0U);
}

TEST_F(CTapiServiceTest, RefusesWhatIsNoHandleAndNoPointer) {
    CTapiModule& tapi = *m_module;
    const HLINEAPP hLineApp = tapi.GetApplication();
    const HLINE hLine = tapi.OpenLine("One");
    HLINE hNew = 0;
    HCALL hCall = 0;
    DWORD version = 0;
    LINEEXTENSIONID extension{};
    LINECALLPARAMS voice{};
    voice.dwTotalSize = sizeof voice;
    voice.dwBearerMode = LINEBEARERMODE_VOICE;
    const auto open = [&](HLINEAPP app, DWORD device, DWORD privileges, DWORD media) {
        return tapi.lineOpen(app, device, &hNew, TAPI_API_VERSION, 0, 0, privileges, media,
                             nullptr);
    };
    EXPECT_EQ(open(hLineApp + 1, 0, 4, 16), LINEERR_INVALAPPHANDLE);
    EXPECT_EQ(open(hLineApp, 2, 4, 16), LINEERR_BADDEVICEID);
    EXPECT_EQ(open(hLineApp, 0, 5, 16), LINEERR_INVALPRIVSELECT);
    EXPECT_EQ(open(hLineApp, 0, 4, 17), LINEERR_INVALMEDIAMODE);
    EXPECT_EQ(tapi.lineOpen(hLineApp, 0, nullptr, TAPI_API_VERSION, 0, 0, 4, 16, nullptr),
              LINEERR_INVALPOINTER);
    EXPECT_EQ(tapi.lineMakeCall(hLine, &hCall, nullptr, 0, &voice), LINEERR_INVALBEARERMODE);
    EXPECT_EQ(tapi.lineMakeCall(hLine, &hCall, nullptr, 0, nullptr), LINEERR_INVALBEARERMODE);
    EXPECT_EQ(tapi.StartCall(hLine, nullptr), LINEERR_INVALPOINTER);
    EXPECT_EQ(tapi.StartCall(hLine + 1, &hCall), LINEERR_INVALLINEHANDLE);
    VARSTRING identifier{};
    identifier.dwTotalSize = sizeof identifier;
    EXPECT_EQ(tapi.lineGetID(hLine, 0, 0, LINECALLSELECT_LINE, &identifier, "comm/datamodem"),
              LINEERR_INVALCALLSTATE);
    EXPECT_EQ(tapi.lineGetID(hLine, 0, 0, LINECALLSELECT_LINE, &identifier, "wave"),
              LINEERR_INVALDEVICECLASS);
    EXPECT_EQ(tapi.lineGetID(hLine, 0, hLine, LINECALLSELECT_CALL, &identifier, "wave"),
              LINEERR_INVALCALLHANDLE);
    EXPECT_EQ(tapi.lineNegotiateAPIVersion(hLineApp, 0, 0x10003, 0x20000, &version, &extension), 0);
    EXPECT_EQ(version, TAPI_API_VERSION);
    EXPECT_EQ(tapi.lineNegotiateAPIVersion(hLineApp, 0, 0x20000, 0x20000, &version, &extension),
              LINEERR_INCOMPATIBLEAPIVERSION);
    EXPECT_EQ(tapi.lineHold(1), LINEERR_OPERATIONUNAVAIL);
    EXPECT_EQ(tapi.phoneGetGain(1, 0, nullptr), PHONEERR_OPERATIONUNAVAIL);

    HPHONEAPP hPhoneApp = 0;
    DWORD phones = 1;
    const PHONECALLBACK ignore = [](DWORD, DWORD, DWORD_PTR, DWORD_PTR, DWORD_PTR, DWORD_PTR) {};
    EXPECT_EQ(tapi.phoneInitialize(&hPhoneApp, nullptr, ignore, nullptr, &phones), 0);
    EXPECT_EQ(phones, 0U);
    EXPECT_EQ(tapi.phoneShutdown(hPhoneApp), 0);
    EXPECT_EQ(tapi.phoneShutdown(hPhoneApp), PHONEERR_INVALAPPHANDLE);
}

TEST_F(CTapiServiceTest, ShutdownEndsAllAndFromAnyThread) {
    for (int turn = 0; turn < 2; ++turn) {
        const HLINEAPP hLineApp = m_module->GetApplication();
        const HLINE hLine = m_module->OpenLine("One");
        HCALL hCall = 0;
        ASSERT_EQ(m_module->MakeCall(hLine, &hCall), 0);
        if (turn == 0)
            m_module->Shutdown();
        else
            std::thread([&] { m_module->Shutdown(); }).join();
        EXPECT_EQ(m_module->lineShutdown(hLineApp), LINEERR_INVALAPPHANDLE);
        EXPECT_EQ(m_module->lineClose(hLine), LINEERR_INVALLINEHANDLE);
        EXPECT_EQ(m_module->lineDrop(hCall, nullptr, 0), LINEERR_INVALCALLHANDLE);
        m_module->Restart();
        EXPECT_EQ(TryDevice("One"), 0);
    }
    CTapiModule::Dispatch();
    m_module->Shutdown();
    m_module->Unload();
    CTapiModule::Dispatch();
}

} // namespace
