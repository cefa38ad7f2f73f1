// The telephony module: its lines and calls, on pseudo-terminals and made-up devices.
#include "platform/Comm.h"
#include "platform/File.h"
#include "tests/services/telephony/TapiModule.h"
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
        if (HasFatalFailure() || IsSkipped())
            return;
        NameModems("One = " + m_one.GetPath() + "\nTwo = " + m_two.GetPath() + "\n");
    }

    // A call on a new line.
    HCALL Call(const std::string& name) {
        m_hLine = m_module->OpenLine(name, INSTANCE);
        HCALL hCall = 0;
        EXPECT_EQ(m_module->MakeCall(m_hLine, &hCall), 0);
        return hCall;
    }
    // What a new call on a new line gets.
    LONG TryDevice(const std::string& name) {
        HCALL hCall = 0;
        const HLINE hLine = m_module->OpenLine(name);
        const LONG result = m_module->MakeCall(hLine, &hCall);
        EXPECT_EQ(m_module->lineClose(hLine), 0);
        return result;
    }

    static constexpr DWORD_PTR INSTANCE = 4711;
    CPseudoTerminal m_one;
    CPseudoTerminal m_two;
    HLINE m_hLine = 0; // the one that Call has opened
};

bool IsModuleMapped() {
    return ReadWholeFile("/proc/self/maps").find("/libtapi32.so") != std::string::npos;
}

TEST_F(CTapiServiceTest, CanBeUnloadedInTheMiddle) {
    HCALL hCall = Call("One");
    // This awaits the thread that has opened.
    EXPECT_EQ(m_module->StartCall(m_hLine, &hCall), LINEERR_CALLUNAVAIL);
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
    // What stands across the end of what is read counts as little as what is behind it.
    NameModems("One = /\n" + std::string(65520, '#') + "\nCut = /dev/none\n");
    EXPECT_EQ(m_module->ListLines(), Names{"*One"});

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
        {"ttyACM1", "ttyACM1", "1-1", "02", "0202ff", "", phone},
        {"ttyS0", "ttyS0", "", "", "", "", {}},
    });
    EXPECT_EQ(m_module->ListLines(), Names{"*One"}) << "what is plugged in later is not there yet";
    for (int start = 0; start < 2; ++start) {
        NameModems("nonsense\nOne = /dev/none\nOne = /dev/none\n");
        EXPECT_EQ(m_module->ListLines(),
                  (Names{"*One", "*One 2", "*One (interface 0)", "One (interface 2)",
                         "*Acme Stick S (AT?port)", "Acme Stick S (diagnostics)"}));
    }
    EXPECT_EQ(TryDevice("Acme Stick S (AT?port)"), 0);
}

TEST_F(CTapiServiceTest, HandsTheDeviceOver) {
    const HLINE hLine = m_module->OpenLine("One", INSTANCE);
    for (int turn = 0; turn < 2; ++turn) {
        HCALL hCall = 0;
        ASSERT_EQ(m_module->MakeCall(hLine, &hCall), 0);
        HCALL second = 0;
        EXPECT_EQ(m_module->StartCall(hLine, &second), LINEERR_CALLUNAVAIL);
        EXPECT_EQ(m_module->lineDeallocateCall(hCall), LINEERR_INVALCALLSTATE);

        // An answer that did not fit hands nothing over.
        VARSTRING small{};
        small.dwTotalSize = sizeof small;
        EXPECT_EQ(m_module->lineGetID(hLine, 0u, 0u, LINECALLSELECT_LINE, &small, "COMM/datamodem"),
                  0);
        EXPECT_EQ(small.dwNeededSize, sizeof small + sizeof(DWORD) + m_one.GetPath().size() + 1);
        EXPECT_EQ(small.dwStringSize, 0U);
        const HANDLE port = m_module->GetPort(hCall);
        EXPECT_EQ(m_module->GetPort(hCall), port);

        EXPECT_EQ(m_module->Drop(hCall), 0);
        const auto find = [&](DWORD state) {
            return m_module->FindEvent(hCall, LINE_CALLSTATE, state);
        };
        ASSERT_TRUE(m_module->RunUntil([&] { return find(LINECALLSTATE_IDLE); }));
        EXPECT_EQ(find(LINECALLSTATE_IDLE)->instance, INSTANCE);
        EXPECT_LT(find(LINECALLSTATE_CONNECTED), find(LINECALLSTATE_DISCONNECTED));
        EXPECT_LT(find(LINECALLSTATE_DISCONNECTED), find(LINECALLSTATE_IDLE));
        // As the wrapper does when it is told of the disconnection.
        EXPECT_EQ(m_module->Drop(hCall), 0);
        EXPECT_EQ(m_module->GetPort(hCall), nullptr);
        EXPECT_EQ(m_module->lineDeallocateCall(hCall), 0);
        EXPECT_EQ(m_module->Drop(hCall), LINEERR_INVALCALLHANDLE);
        EXPECT_EQ(TryDevice("One"), LINEERR_ALLOCATED) << "the port is the caller's";
        EXPECT_TRUE(CloseHandle(port));
    }
}

TEST_F(CTapiServiceTest, GivesBackWhatNobodyAskedFor) {
    const HCALL hCall = Call("One");
    LINEDEVSTATUS status{};
    status.dwTotalSize = sizeof status;
    EXPECT_EQ(m_module->lineGetLineDevStatus(m_hLine, &status), 0);
    EXPECT_EQ(status.dwNumActiveCalls, 1U);
    const HCALL hOtherCall = Call("Two");
    EXPECT_GT(m_module->lineDrop(hCall, nullptr, 0u), 0);
    EXPECT_EQ(TryDevice("One"), 0);
    EXPECT_EQ(TryDevice("Two"), LINEERR_ALLOCATED);
    EXPECT_EQ(m_module->lineClose(m_hLine), 0);
    EXPECT_EQ(TryDevice("Two"), 0);
    EXPECT_EQ(m_module->Drop(hOtherCall), LINEERR_INVALCALLHANDLE);
}

TEST_F(CTapiServiceTest, TellsWhyADeviceCannotBeOpened) {
    const std::string file = m_folder.Write("file", "");
    const std::string link = m_folder.GetPath("link");
    std::filesystem::create_symlink(m_two.GetPath(), link);
    NameModems("Gone = /dev/none\nFile = " + file + "\nFolder = /tmp\nLocked = " + m_one.GetPath() +
               "\nLink = " + link + "\n");
    EXPECT_EQ(TryDevice("Gone"), LINEERR_NODEVICE);
    EXPECT_EQ(TryDevice("File"), LINEERR_NODRIVER);
    EXPECT_EQ(TryDevice("Folder"), LINEERR_NODRIVER);

    EXPECT_EQ(chmod(m_one.GetPath().c_str(), 0), 0);
    const bool isRoot = geteuid() == 0;
    constexpr uid_t kNobody = 65534;
    EXPECT_TRUE(!isRoot || seteuid(kNobody) == 0);
    EXPECT_EQ(TryDevice("Locked"), LINEERR_NOTOWNER);
    EXPECT_TRUE(!isRoot || seteuid(0) == 0);

    // Unplugged during the call, and gone for the next one.
    const HCALL hCall = Call("Link");
    m_two.CloseMaster();
    EXPECT_EQ(m_module->Drop(hCall), 0);
    EXPECT_EQ(TryDevice("Link"), LINEERR_NODEVICE);
}

TEST_F(CTapiServiceTest, SaysNothingMoreOfAClosedLine) {
    for (int turn = 0; turn < 20; ++turn) {
        const HLINE hLine = m_module->OpenLine("One", INSTANCE);
        HCALL hCall = 0;
        ASSERT_GT(m_module->StartCall(hLine, &hCall), 0);
        EXPECT_TRUE(turn % 2 == 0 || m_module->lineDrop(hCall, nullptr, 0u) > 0);
        EXPECT_EQ(m_module->lineClose(hLine), 0);
    }
    EXPECT_EQ(TryDevice("One"), 0);
    for (const TapiEvent& event : m_module->m_events)
        EXPECT_EQ(event.instance, 0U);
}

TEST_F(CTapiServiceTest, RefusesWhatIsNoHandleAndNoPointer) {
    CTapiModule& tapi = *m_module;
    const HLINEAPP hLineApp = tapi.m_hLineApp;
    const HLINE hLine = tapi.OpenLine("One");
    HLINE hNew = 0;
    HCALL hCall = 0;
    LINECALLPARAMS voice{};
    voice.dwTotalSize = sizeof voice;
    voice.dwBearerMode = LINEBEARERMODE_VOICE;
    VARSTRING identifier{};
    identifier.dwTotalSize = sizeof identifier;
    const auto open = [&](HLINEAPP app, DWORD device, DWORD privileges, DWORD media, HLINE* out) {
        return tapi.lineOpen(app, device, out, TAPI_API_VERSION, 0u, 0u, privileges, media,
                             nullptr);
    };
    const auto call = [&](const LINECALLPARAMS* parameters) {
        return tapi.lineMakeCall(hLine, &hCall, nullptr, 0u, parameters);
    };
    const auto identify = [&](HCALL hKnown, DWORD select, LPCSTR deviceClass) {
        return tapi.lineGetID(hLine, 0u, hKnown, select, &identifier, deviceClass);
    };
    const std::pair<LONG, LONG> rows[] = {
        {open(hLineApp + 1, 0, 4, 16, &hNew), LINEERR_INVALAPPHANDLE},
        {open(hLineApp, 2, 4, 16, &hNew), LINEERR_BADDEVICEID},
        {open(hLineApp, 0, 5, 16, &hNew), LINEERR_INVALPRIVSELECT},
        {open(hLineApp, 0, 4, 17, &hNew), LINEERR_INVALMEDIAMODE},
        {open(hLineApp, 0, 4, 16, nullptr), LINEERR_INVALPOINTER},
        {call(&voice), LINEERR_INVALBEARERMODE},
        {call(nullptr), LINEERR_INVALBEARERMODE},
        {tapi.StartCall(hLine, nullptr), LINEERR_INVALPOINTER},
        {tapi.StartCall(hLine + 1, &hCall), LINEERR_INVALLINEHANDLE},
        {identify(0, LINECALLSELECT_LINE, "comm/datamodem"), LINEERR_INVALCALLSTATE},
        {identify(0, LINECALLSELECT_LINE, "wave"), LINEERR_INVALDEVICECLASS},
        {identify(hLine, LINECALLSELECT_CALL, "wave"), LINEERR_INVALCALLHANDLE},
        {tapi.lineHold(1u), LINEERR_OPERATIONUNAVAIL},
        {tapi.phoneGetGain(1u, 0u, nullptr), PHONEERR_OPERATIONUNAVAIL},
    };
    for (const auto& [result, expected] : rows)
        EXPECT_EQ(result, expected) << &rows->first - &result;

    HPHONEAPP hPhoneApp = 0;
    DWORD phones = 1;
    const PHONECALLBACK ignore = [](DWORD, DWORD, DWORD_PTR, DWORD_PTR, DWORD_PTR, DWORD_PTR) {};
    EXPECT_EQ(tapi.phoneInitialize(&hPhoneApp, nullptr, ignore, nullptr, &phones), 0);
    EXPECT_EQ(phones, 0U);
    EXPECT_EQ(tapi.phoneShutdown(hPhoneApp), 0);
    EXPECT_EQ(tapi.phoneShutdown(hPhoneApp), PHONEERR_INVALAPPHANDLE);
}

TEST_F(CTapiServiceTest, ShutdownEndsAllAndFromAnyThread) {
    const auto check = [this](const std::function<void()>& shutDown) {
        const HLINEAPP hLineApp = m_module->m_hLineApp;
        const HCALL hCall = Call("One");
        shutDown();
        EXPECT_EQ(m_module->lineShutdown(hLineApp), LINEERR_INVALAPPHANDLE);
        EXPECT_EQ(m_module->lineClose(m_hLine), LINEERR_INVALLINEHANDLE);
        EXPECT_EQ(m_module->Drop(hCall), LINEERR_INVALCALLHANDLE);
        m_module->Restart();
        EXPECT_EQ(TryDevice("One"), 0);
        CTapiModule::Dispatch();
        m_module->Shutdown();
        m_module->Unload();
        CTapiModule::Dispatch();
    };
    // In a process of its own, which is not rid of the module any more.
    EXPECT_EXIT(
        {
            check([this] { std::thread([this] { m_module->Shutdown(); }).join(); });
            _exit(HasFailure());
        },
        testing::ExitedWithCode(0), "");
    check([this] { m_module->Shutdown(); });
}

} // namespace
