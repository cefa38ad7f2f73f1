// The telephony module: its lines and calls, on pseudo-terminals and made-up devices.
#include "telephony/TapiService.h"
#include "platform/File.h"
#include "platform/TaskMemory.h"
#include "tests/services/telephony/TapiTest.h"
#include "tests/support/DeviceNamespace.h"
#include "tests/support/PseudoTerminal.h"

#include <filesystem>
#include <sys/stat.h>

namespace {

using Names = std::vector<std::string>;

class CTapiServiceTest : public CTapiTest {
  protected:
    void SetUp() override {
        CTapiTest::SetUp();
        if (!HasFatalFailure() && !IsSkipped())
            NameModems("One = " + m_one.GetPath() + "\nTwo = " + m_two.GetPath() + "\n");
    }
    static bool IsModuleMapped() {
        return ReadWholeFile("/proc/self/maps").find("/libtapi32.so") != std::string::npos;
    }

    CPseudoTerminal m_one;
    CPseudoTerminal m_two;
};

TEST_F(CTapiServiceTest, CanBeUnloadedInTheMiddle) {
    EXPECT_EQ(m_client->Call("One"), 0);
    // This awaits the thread that has opened.
    VARSTRING* portName = nullptr;
    EXPECT_EQ((*m_client)->LineGetID(&portName, "comm/datamodem/portname"), 0);
    const CTaskMemory<VARSTRING> owner(portName);
    EXPECT_TRUE(IsModuleMapped());
    g_TapiLibrary.Unload();
    EXPECT_FALSE(IsModuleMapped());
    Dispatch();
    Restart();
    EXPECT_EQ(m_client->Call("One"), 0);
    m_client.reset();
    EXPECT_FALSE(IsModuleMapped());
}

TEST_F(CTapiServiceTest, ListsNamedModemsAndThenTheDatabase) {
    // What stands across the end of what is read counts as little as what is behind it.
    NameModems("One = /\n" + std::string(65520, '#') + "\nCut = /dev/none\n");
    EXPECT_EQ(m_client->ListLines(), Names{"*One"});

    const std::map<std::string, std::string> stick = {{"ID_VENDOR_FROM_DATABASE", "Acme"},
                                                      {"ID_MODEL_ENC", "Stick\\x20S"}};
    auto diagnostics = stick;
    diagnostics["ID_MM_PORT_TYPE_QCDM"] = "1";
    const std::map<std::string, std::string> phone = {{"ID_MODEL_FROM_DATABASE", "One"}};
    CDeviceNamespace::SetInterfaces({
        {"ttyUSB0", "ttyUSB0", "1-2", "01", "ffffff", "", diagnostics},
        {"ttyUSB1", m_one.GetPath().substr(sizeof "/dev"), "1-2", "00", "ffffff", "AT\tport",
         stick},
        {"ttyACM0", "ttyACM0", "1-1", "00", "020201", "", phone},
        {"ttyACM1", "ttyACM1", "1-1", "1f", "0202ff", "", phone},
        {"ttyS0", "ttyS0", "", "", "", "", {}},
    });
    EXPECT_EQ(m_client->ListLines(), Names{"*One"}) << "what is plugged in later is not there yet";
    NameModems("nonsense\nOne = /dev/none\nOne = /dev/none\nOne 2 = /dev/none\n");
    EXPECT_EQ(m_client->ListLines(),
              (Names{"*One", "*One 3", "*One 2", "*One (interface 0)", "One (interface 31)",
                     "*Acme Stick S (AT?port)", "Acme Stick S (diagnostics)"}));
    EXPECT_EQ(m_client->Call("Acme Stick S (AT?port)"), 0);
}

TEST_F(CTapiServiceTest, HandsTheDeviceOver) {
    for (int turn = 0; turn < 2; ++turn) {
        m_client->told.clear();
        ASSERT_EQ(m_client->Call("One"), 0);
        const HANDLE port = m_client->GetPort();
        EXPECT_EQ(m_client->GetPort(), port);
        EXPECT_EQ((*m_client)->LineDrop(TRUE), 0);
        // The wrapper drops the call once more when it is told of the disconnection, and then has
        // none.
        EXPECT_TRUE(RunUntil([&] { return m_client->told == "reply 256 reply 16384 1 reply "; }))
            << m_client->told;
        EXPECT_EQ((*m_client)->LineDrop(FALSE), E_TAPI_NOCALL);
        EXPECT_EQ(m_client->GetPort(), nullptr);
        EXPECT_EQ(Try("One"), LINEERR_ALLOCATED) << "the port is the caller's";
        EXPECT_TRUE(CloseHandle(port));
    }
}

TEST_F(CTapiServiceTest, GivesBackWhatNobodyAskedFor) {
    CClient other;
    EXPECT_EQ(m_client->Call("One"), 0);
    EXPECT_EQ(other.Call("Two"), 0);
    EXPECT_GT((*m_client)->LineDrop(FALSE), 0);
    EXPECT_EQ(Try("One"), 0);
    EXPECT_EQ(Try("Two"), LINEERR_ALLOCATED);
    EXPECT_EQ(other->LineClose(), 0);
    EXPECT_EQ(Try("Two"), 0);
}

TEST_F(CTapiServiceTest, TellsWhyADeviceCannotBeOpened) {
    const std::string link = m_folder.GetPath("link");
    std::filesystem::create_symlink(m_two.GetPath(), link);
    NameModems("Gone = /dev/none\nFolder = /tmp\nLocked = " + m_one.GetPath() + "\nLink = " + link +
               "\n");
    EXPECT_EQ(Try("Gone"), LINEERR_NODEVICE);
    EXPECT_EQ(Try("Folder"), LINEERR_NODRIVER);

    EXPECT_EQ(chmod(m_one.GetPath().c_str(), 0), 0);
    const bool isRoot = geteuid() == 0;
    constexpr uid_t kNobody = 65534;
    EXPECT_TRUE(!isRoot || seteuid(kNobody) == 0);
    EXPECT_EQ(Try("Locked"), LINEERR_NOTOWNER);
    EXPECT_TRUE(!isRoot || seteuid(0) == 0);

    // Unplugged during the call, and gone for the next one.
    EXPECT_EQ(m_client->Call("Link"), 0);
    m_two.CloseMaster();
    EXPECT_EQ((*m_client)->LineDrop(TRUE), 0);
    EXPECT_EQ(Try("Link"), LINEERR_NODEVICE);
}

TEST_F(CTapiServiceTest, SaysNothingMoreOfAClosedLine) {
    for (int turn = 0; turn < 20; ++turn) {
        ASSERT_GT(m_client->Call("One", FALSE), 0);
        EXPECT_TRUE(turn % 2 == 0 || (*m_client)->LineDrop(FALSE) > 0);
        EXPECT_EQ((*m_client)->LineClose(), 0);
    }
    EXPECT_EQ(Try("One"), 0);
    EXPECT_EQ(m_client->told, "");
}

TEST_F(CTapiServiceTest, RefusesWhatIsNoHandleAndNoPointer) {
    CVTapiLibrary tapi;
    DWORD app = 0, phoneApp = 0, line = 0, call = 0, none = 0;
    const LINECALLBACK ignore = [](DWORD, DWORD, DWORD_PTR, DWORD_PTR, DWORD_PTR, DWORD_PTR) {};
    LINECALLPARAMS data{};
    data.dwTotalSize = sizeof data;
    data.dwBearerMode = LINEBEARERMODE_PASSTHROUGH;
    data.dwMediaMode = LINEMEDIAMODE_DATAMODEM;
    VARSTRING small{};
    small.dwTotalSize = sizeof small;
    const auto open = [&](DWORD of, DWORD device, DWORD privileges, DWORD media, DWORD* out) {
        return tapi.lineOpen(of, device, out, TAPI_API_VERSION, 0u, 0u, privileges, media, nullptr);
    };
    const auto dial = [&](DWORD on, DWORD* out, const LINECALLPARAMS* parameters) {
        return tapi.lineMakeCall(on, out, nullptr, 0u, parameters);
    };
    const auto identify = [&](DWORD known, DWORD select, LPCSTR deviceClass) {
        return tapi.lineGetID(line, 0u, known, select, &small, deviceClass);
    };
    ASSERT_EQ(tapi.lineInitialize(&app, nullptr, ignore, nullptr, &none), 0);
    const std::pair<LONG, LONG> rows[] = {
        {open(app, 0, 4, 16, &line), 0},
        {open(app + 1, 0, 4, 16, &none), LINEERR_INVALAPPHANDLE},
        {open(app, 2, 4, 16, &none), LINEERR_BADDEVICEID},
        {open(app, 0, 5, 16, &none), LINEERR_INVALPRIVSELECT},
        {open(app, 0, 4, 17, &none), LINEERR_INVALMEDIAMODE},
        {open(app, 0, 4, 16, nullptr), LINEERR_INVALPOINTER},
        {dial(line, &none, nullptr), LINEERR_INVALBEARERMODE},
        {dial(line, nullptr, &data), LINEERR_INVALPOINTER},
        {dial(line + 1, &none, &data), LINEERR_INVALLINEHANDLE},
        {identify(0, LINECALLSELECT_LINE, "comm/datamodem"), LINEERR_INVALCALLSTATE},
        {identify(0, LINECALLSELECT_LINE, "wave"), LINEERR_INVALDEVICECLASS},
        {identify(line, LINECALLSELECT_CALL, "wave"), LINEERR_INVALCALLHANDLE},
        {tapi.lineHold(1u), LINEERR_OPERATIONUNAVAIL},
        {tapi.phoneInitialize(&phoneApp, nullptr, ignore, nullptr, &none), 0},
        {tapi.phoneShutdown(phoneApp), 0},
        {dial(line, &call, &data), 1}, // the first request
        {dial(line, &none, &data), LINEERR_CALLUNAVAIL},
        {tapi.lineDeallocateCall(call), LINEERR_INVALCALLSTATE},
        // An answer that does not fit hands nothing over: the device is given back below.
        {RunUntil([&] { return identify(call, LINECALLSELECT_CALL, "comm/datamodem") == 0; }), 1},
        {small.dwNeededSize, sizeof small + sizeof(DWORD) + m_one.GetPath().size() + 1},
        {small.dwStringSize, 0},
        {tapi.lineShutdown(app), 0},
        {tapi.lineShutdown(app), LINEERR_INVALAPPHANDLE},
        {tapi.lineClose(line), LINEERR_INVALLINEHANDLE},
        {tapi.lineDrop(call, nullptr, 0u), LINEERR_INVALCALLHANDLE},
        {m_client->Call("One"), 0},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.first, row.second) << "row " << &row - rows;
}

TEST_F(CTapiServiceTest, ShutdownEndsAllAndFromAnyThread) {
    const auto check = [this](const std::function<void()>& shutDown) {
        EXPECT_EQ(m_client->Call("One"), 0);
        shutDown();
        Dispatch();
        Restart();
        EXPECT_EQ(m_client->Call("One"), 0);
        m_client.reset();
        Dispatch();
    };
    // In a process of its own, which is not rid of the module any more.
    EXPECT_EXIT(
        {
            check([this] { std::thread([this] { m_client.reset(); }).join(); });
            _exit(HasFailure());
        },
        testing::ExitedWithCode(0), "");
    check([this] { m_client.reset(); });
}

} // namespace
