// What needs neither devices nor the program: names from files and properties, and records.
#include "services/telephony/InterfaceNames.h"
#include "services/telephony/NamesFile.h"
#include "services/telephony/Records.h"
#include "services/telephony/UniqueNames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

using namespace telephonyservice;

namespace {

std::vector<std::string> NamesOf(const std::vector<LineDevice>& devices) {
    std::vector<std::string> names;
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
    const std::string content = "\xEF\xBB\xBF# comment\r\n"
                                "\n"
                                "Work phone = /dev/serial/by-id/a=b\r\n"
                                "no device\n"
                                " = /dev/ttyUSB0\n"
                                "Com5 modem=/dev/ttyUSB0\n"
                                "/dev/x = /dev/ttyUSB0\n"
                                "relative = dev/ttyUSB0\n"
                                "bell\a = /dev/ttyUSB0\n"
                                "late control \xC2\x9B = /dev/ttyUSB0\n"
                                "turned \xE2\x80\xAEround = /dev/ttyUSB0\n"
                                "half \xC3 = /dev/ttyUSB0\n"
                                "path = /dev/tty\x1bUSB0\n" +
                                std::string(MAX_NAME + 1, 'n') +
                                "=/dev/ttyUSB0\n"
                                "long = /" +
                                std::string(5000, 'p') +
                                "\n"
                                "\tT\xC3\xA9l\xC3\xA9phone\t=\t/dev/pts/3 ";
    std::vector<NamesFileFault> faults;
    const std::vector<LineDevice> modems = ParseNamesFile(content, faults);
    EXPECT_EQ(modems, (std::vector<LineDevice>{{"Work phone", "/dev/serial/by-id/a=b", true},
                                               {"T\xC3\xA9l\xC3\xA9phone", "/dev/pts/3", true}}));
    std::vector<unsigned> lines;
    for (const NamesFileFault& fault : faults)
        lines.push_back(fault.line);
    EXPECT_EQ(lines, (std::vector<unsigned>{4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}));
}

TEST(NamesFile, IsBounded) {
    std::string content;
    for (std::size_t line = 0; line < MAX_NAMED_MODEMS + 5; ++line)
        content += "a = /b\n";
    std::vector<NamesFileFault> faults;
    EXPECT_EQ(ParseNamesFile(content, faults).size(), MAX_NAMED_MODEMS);
    EXPECT_EQ(faults.size(), 1U);
    EXPECT_TRUE(ParseNamesFile(std::string(MAX_NAMES_FILE, '\0'), faults).empty());
}

TEST(InterfaceNames, AreMakerAndModelAsFarAsKnown) {
    struct Row {
        const char *maker, *model, *encodedMaker, *encodedModel, *name;
    };
    const Row rows[] = {
        {"Acme", "M1", "x", "y", "Acme M1"},
        {"Acme", "ACME M1", "", "", "ACME M1"},
        {"", "", "Big\\x20Co.\\x20", "Model\\x2fA\\x0", "Big Co. Model/A\\x0"},
        {"", "", "", "\\x1b[31mRed\\xff", "?[31mRed?"},
        {"Acme", "", "", "", "Acme"},
        {"", "", "", "", "Serial modem"},
        {"Compal", "HSPA", "", "", "Modem Compal HSPA"},
    };
    for (const Row& row : rows) {
        SerialInterface serial = MakeInterface("/sys/1-2:1.0");
        serial.maker = row.maker;
        serial.model = row.model;
        serial.encodedMaker = row.encodedMaker;
        serial.encodedModel = row.encodedModel;
        EXPECT_EQ(NameInterfaces({serial})[0].name, row.name);
    }
    SerialInterface serial = MakeInterface("/sys/1-2:1.0");
    serial.maker = std::string(1000, 'M');
    serial.model = std::string(1000, 'N');
    serial.role = std::string(1000, 'R');
    SerialInterface other = MakeInterface("/sys/1-2:1.1");
    EXPECT_LE(NameInterfaces({serial, other})[0].name.size(), MAX_NAME);
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
    EXPECT_EQ(
        NamesOf(NameInterfaces(interfaces)),
        (std::vector<std::string>{"Acme M1 (modem)", "Acme M1 (diagnostics)",
                                  "Acme M1 (Voice?line)", "Acme M1 (interface 31)", "Acme M1"}));
}

TEST(InterfaceNames, TellWhoTakesCommands) {
    struct Row {
        std::set<std::string> tags;
        const char* acmProtocol;
        bool takesCommands;
    };
    const Row rows[] = {
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
    for (const Row& row : rows) {
        SerialInterface serial = MakeInterface("/sys/1-2:1.0");
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
    EXPECT_EQ(NamesOf(devices), (std::vector<std::string>{"a", "b", "a 3", "a 2", "a 4", "a 2 2"}));
}

// Each size from too small to more than enough: what is needed is always the same, what does not
// fit is absent, and nothing is written behind the size that was told.
TEST(Records, AreFilledAsFarAsTheyFit) {
    const LineDevice device{"Modem", "/dev/ttyUSB0", true};
    constexpr std::size_t kNameEnd = sizeof(LINEDEVCAPS) + sizeof("Modem");
    constexpr std::size_t kNeeded = sizeof(LINEDEVCAPS) + 8 + sizeof("/dev/ttyUSB0");
    for (DWORD total = 0; total < kNeeded + 8; ++total) {
        alignas(LINEDEVCAPS) char bytes[512];
        std::memset(bytes, 0x55, sizeof bytes);
        auto* const caps = reinterpret_cast<LINEDEVCAPS*>(bytes);
        caps->dwTotalSize = total;
        const LONG result = FillDevCaps(device, caps);
        const DWORD touched = std::max<DWORD>(total, sizeof(DWORD));
        EXPECT_TRUE(std::all_of(bytes + touched, std::end(bytes), [](char c) { return c == 0x55; }))
            << total;
        if (total < sizeof(LINEDEVCAPS)) {
            EXPECT_EQ(result, LINEERR_STRUCTURETOOSMALL);
            continue;
        }
        EXPECT_EQ(result, 0);
        EXPECT_EQ(caps->dwTotalSize, total);
        EXPECT_EQ(caps->dwNeededSize, kNeeded);
        EXPECT_LE(caps->dwUsedSize, total);
        EXPECT_EQ(caps->dwLineNameSize, total >= kNameEnd ? sizeof("Modem") : 0);
        const bool hasPath = total >= kNeeded;
        EXPECT_EQ(caps->dwDevSpecificSize, hasPath ? sizeof("/dev/ttyUSB0") : 0) << total;
        if (hasPath) {
            EXPECT_STREQ(bytes + caps->dwLineNameOffset, "Modem");
            EXPECT_STREQ(bytes + caps->dwDevSpecificOffset, "/dev/ttyUSB0");
        }
    }
}

} // namespace
