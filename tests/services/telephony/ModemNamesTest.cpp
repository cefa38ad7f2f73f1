// What needs neither devices nor the program: names from files and properties, and records.
#include "services/telephony/InterfaceNames.h"
#include "services/telephony/NamesFile.h"
#include "services/telephony/Records.h"
#include "services/telephony/UniqueNames.h"
#include "telephony/TapiRecord.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

using namespace telephonyservice;

namespace {

using Names = std::vector<std::string>;

Names NamesOf(const std::vector<LineDevice>& devices) {
    Names names;
    for (const LineDevice& device : devices)
        names.push_back(device.name);
    return names;
}

SerialInterface MakeInterface(const std::string& sysfsPath) {
    SerialInterface serial;
    serial.sysfsPath = sysfsPath;
    serial.hardware = sysfsPath.substr(0, sysfsPath.find(':'));
    serial.devicePath = "/dev/tty";
    serial.maker = "Acme";
    serial.model = "M1";
    return serial;
}

TEST(NamesFile, TakesWhatIsUnderstoodAndTellsTheRest) {
    const std::string tooLong = std::string(kLongestName + 1, 'n');
    const Names bad = {"no device",
                       " = /dev/x",
                       "Com5 modem=/dev/x",
                       "/dev/x = /dev/x",
                       "at \\\\.\\COM5=/",
                       "relative = dev/x",
                       "bell\a = /dev/x",
                       "C1 \xC2\x9B = /",
                       "turned \xE2\x80\xAEround = /dev/x",
                       "half \xC3 = /dev",
                       "x = /dev/\x1bx",
                       tooLong + "=/dev/x",
                       "long = /" + std::string(5000, 'p')};
    std::string content = "\xEF\xBB\xBF# comment\r\n\nWork phone = /dev/serial/by-id/a=b\r\n";
    for (const std::string& line : bad)
        content += line + '\n';
    std::vector<NamesFileFault> faults;
    EXPECT_EQ(ParseNamesFile(content + "\tT\xC3\xA9l\xC3\xA9phone\t=\t/dev/pts/3 ", faults),
              (std::vector<LineDevice>{{"Work phone", "/dev/serial/by-id/a=b", true},
                                       {"T\xC3\xA9l\xC3\xA9phone", "/dev/pts/3", true}}));
    ASSERT_EQ(faults.size(), bad.size());
    EXPECT_EQ(faults.front().line, 4U);
    EXPECT_EQ(faults.back().line, 3 + bad.size());

    faults.clear();
    content.clear();
    for (std::size_t line = 0; line < kMostNamedModems + 5; ++line)
        content += "a = /b\n";
    EXPECT_EQ(ParseNamesFile(content, faults).size(), kMostNamedModems);
    EXPECT_EQ(faults.size(), 1U);
    EXPECT_TRUE(ParseNamesFile(std::string(kLongestNamesFile, '\0'), faults).empty());
}

TEST(InterfaceNames, AreMakerAndModelAsFarAsKnown) {
    const struct {
        const char *maker, *model, *encodedMaker, *encodedModel, *name;
    } rows[] = {
        {"Acme", "M1", "x", "y", "Acme M1"},
        {"Acme", "ACME M1", "", "", "ACME M1"},
        {"", "", "Big\\x20Co.\\x20", "Model\\x2fA\\x0", "Big Co. Model/A\\x0"},
        {"", "", "", "\\x1b[31mRed\\xff", "?[31mRed?"},
        {"Acme", "", "", "", "Acme"},
        {"", "", "", "", "Serial modem"},
        {"Compal", "HSPA", "", "", "Modem Compal HSPA"},
        {"", "V.90/92", "", "", "Modem V.90/92"},
    };
    SerialInterface serial = MakeInterface("/sys/1-2:1.0");
    for (serial.maker = "x"; serial.maker.size() < 100;)
        serial.maker += "\xC3\xA9";
    EXPECT_EQ(NameInterfaces({serial})[0].name,
              serial.maker.substr(0, 63) + " M1"); // no half letter
    for (const auto& row : rows) {
        serial.maker = row.maker;
        serial.model = row.model;
        serial.encodedMaker = row.encodedMaker;
        serial.encodedModel = row.encodedModel;
        EXPECT_EQ(NameInterfaces({serial})[0].name, row.name);
    }
    serial.maker = serial.role = std::string(1000, 'M');
    serial.model = std::string(1000, 'N');
    EXPECT_LE(NameInterfaces({serial, MakeInterface("/sys/1-2:1.1")})[0].name.size(), kLongestName);
}

TEST(InterfaceNames, TellTheInterfacesOfADeviceApart) {
    std::vector<SerialInterface> interfaces;
    for (const char* path :
         {"/sys/1-3:1.0", "/sys/1-2:1.3", "/sys/1-2:1.2", "/sys/1-2:1.1", "/sys/1-2:1.0"})
        interfaces.push_back(MakeInterface(path));
    interfaces[1].number = "1f";
    interfaces[2].role = "Voice\nline";
    interfaces[3].tags = {"ID_MM_PORT_TYPE_QCDM"};
    interfaces[4].tags = {"ID_MM_PORT_TYPE_AT_PRIMARY"};
    EXPECT_EQ(NamesOf(NameInterfaces(interfaces)),
              (Names{"Acme M1 (modem)", "Acme M1 (diagnostics)", "Acme M1 (Voice?line)",
                     "Acme M1 (interface 31)", "Acme M1"}));
}

TEST(InterfaceNames, TellWhoTakesCommands) {
    const struct {
        std::set<std::string> tags;
        const char* acmProtocol;
        bool takesCommands;
    } rows[] = {
        {{}, "", true},
        {{}, "01", true},
        {{}, "06", true},
        {{}, "00", false},
        {{}, "ff", false},
        {{}, "1x", false},
        {{"ID_MM_PORT_TYPE_AT_SECONDARY"}, "ff", true},
        {{"ID_MM_PORT_TYPE_GPS"}, "01", false},
        {{"ID_MM_DEVICE_IGNORE", "ID_MM_PORT_TYPE_AT_PRIMARY"}, "", false},
        {{"ID_MM_CANDIDATE"}, "", true},
    };
    SerialInterface serial = MakeInterface("/sys/1-2:1.0");
    for (const auto& row : rows) {
        serial.tags = row.tags;
        serial.acmProtocol = row.acmProtocol;
        EXPECT_EQ(NameInterfaces({serial})[0].isDataModem, row.takesCommands)
            << row.acmProtocol << testing::PrintToString(row.tags);
    }
}

TEST(UniqueNames, NumbersPassOverNamesThatThereAre) {
    std::vector<LineDevice> devices;
    for (const char* name : {"a", "b", "a", "a 2", "a", "a 2"})
        devices.push_back({name, "", true});
    MakeNamesUnique(devices);
    EXPECT_EQ(NamesOf(devices), (Names{"a", "b", "a 3", "a 2", "a 4", "a 2 2"}));
}

// Each size from too small to more than enough: what is needed is always the same, what does not
// fit is absent, and nothing is written behind the size that was told.
TEST(Records, AreFilledAsFarAsTheyFit) {
    const LineDevice device{"Modem", "/dev/ttyUSB0", true};
    constexpr DWORD kNameEnd = sizeof(LINEDEVCAPS) + sizeof "Modem";
    constexpr DWORD kNeeded = sizeof(LINEDEVCAPS) + 8 + sizeof "/dev/ttyUSB0";
    for (DWORD total = 0; total < kNeeded + 8; ++total) {
        SCOPED_TRACE(total);
        alignas(LINEDEVCAPS) char bytes[512];
        std::memset(bytes, 0x55, sizeof bytes);
        auto* const caps = reinterpret_cast<LINEDEVCAPS*>(bytes);
        caps->dwTotalSize = total;
        const bool hasRoom = total >= sizeof(LINEDEVCAPS);
        EXPECT_EQ(FillDevCaps(device, caps), hasRoom ? 0 : LINEERR_STRUCTURETOOSMALL);
        EXPECT_TRUE(std::all_of(bytes + std::max<DWORD>(total, sizeof(DWORD)), std::end(bytes),
                                [](char c) { return c == 0x55; }));
        if (!hasRoom)
            continue;
        EXPECT_EQ(caps->dwTotalSize, total);
        EXPECT_EQ(caps->dwNeededSize, kNeeded);
        EXPECT_LE(caps->dwUsedSize, total);
        EXPECT_EQ(LineNameOf(*caps).value_or("none"), total >= kNameEnd ? "Modem" : "none");
        EXPECT_EQ(DeviceTextOf(*caps).value_or("none"), total >= kNeeded ? "/dev/ttyUSB0" : "none");
    }
}

} // namespace
