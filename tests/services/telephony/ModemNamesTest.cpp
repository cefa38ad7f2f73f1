// What needs neither devices nor the program: names from files and properties, and records.
#include "services/telephony/InterfaceNames.h"
#include "services/telephony/NamesFile.h"
#include "services/telephony/Records.h"
#include "telephony/TapiRecord.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

using namespace telephonyservice;

namespace {

TEST(NamesFile, TakesWhatIsUnderstoodAndTellsTheRest) {
    const std::string bad =
        "no device\n = /dev/x\nCom5 modem=/dev/x\n/dev/x = /dev/x\nat \\\\.\\COM5=/\n"
        "relative = dev/x\nbell\a = /dev/x\nC1 \xC2\x9B = /\nturned \xE2\x80\xAEround = /dev/x\n"
        "half \xC3 = /dev\nx = /dev/\x1bx\n" +
        std::string(kLongestName + 1, 'n') + "=/dev/x\nlong = /" + std::string(5000, 'p') + '\n';
    const std::string start = "\xEF\xBB\xBF# comment\r\n\nWork phone = /dev/serial/by-id/a=b\r\n";
    std::vector<NamesFileFault> faults;
    EXPECT_EQ(ParseNamesFile(start + bad + "\tT\xC3\xA9l\xC3\xA9phone\t=\t/dev/pts/3 ", faults),
              (std::vector<LineDevice>{{"Work phone", "/dev/serial/by-id/a=b", true},
                                       {"T\xC3\xA9l\xC3\xA9phone", "/dev/pts/3", true}}));
    unsigned line = 3;
    for (const NamesFileFault& fault : faults)
        EXPECT_EQ(fault.line, ++line) << fault.reason;
    EXPECT_EQ(line, 3 + std::ranges::count(bad, '\n'));

    faults.clear();
    std::string content;
    for (std::size_t count = 0; count < kMostNamedModems + 5; ++count)
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
    SerialInterface serial;
    serial.model = "M1";
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
    EXPECT_LE(NameInterfaces({serial, serial})[0].name.size(), kLongestName);
}

TEST(InterfaceNames, TellWhoTakesCommands) {
    const struct {
        std::set<std::string> tags;
        const char* acmProtocol;
        bool takesCommands;
    } rows[] = {
        {{}, "06", true},
        {{}, "00", false},
        {{}, "1x", false},
        {{"ID_MM_PORT_TYPE_AT_SECONDARY"}, "ff", true},
        {{"ID_MM_PORT_TYPE_GPS"}, "01", false},
        {{"ID_MM_DEVICE_IGNORE", "ID_MM_PORT_TYPE_AT_PRIMARY"}, "", false},
        {{"ID_MM_CANDIDATE"}, "", true},
    };
    SerialInterface serial;
    for (const auto& row : rows) {
        serial.tags = row.tags;
        serial.acmProtocol = row.acmProtocol;
        EXPECT_EQ(NameInterfaces({serial})[0].isDataModem, row.takesCommands)
            << row.acmProtocol << testing::PrintToString(row.tags);
    }
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
