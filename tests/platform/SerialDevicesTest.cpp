// The list of serial devices, and the registry that is made of it.
#include "platform/comm/SerialDevices.h"
#include "platform/Error.h"
#include "platform/Registry.h"
#include "platform/objects/HandleTable.h"
#include "platform/system/ModemKey.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

TEST(SerialDevices, AreThoseWithHardwareAndNoConsoles) {
    const struct {
        const char* name;
        bool hasDevice;
        const char* type = "";
        const char* console = "";
    } rows[] = {
        {"ttyS0", true, "4\n", "N\n"},
        {"ttyS1", true, "0\n", "N\n"}, // probed, nothing found
        {"ttyS3", true, "4", "Y"},     // the kernel's own console
        {"ttyS11", true, "16"},
        {"ttyAMA0", true, "32", "N"},
        {"ttyUSB10", true},
        {"ttyUSB9", true},
        {"tty7", false},
        {"hvc0", true},
    };
    const CTempFolder sysfs;
    for (const auto& [name, hasDevice, type, console] : rows) {
        const std::string folder = name;
        std::filesystem::create_directories(sysfs.GetPath(folder + (hasDevice ? "/device" : "")));
        sysfs.Write(folder + "/type", type);
        sysfs.Write(folder + "/console", console);
    }
    std::vector<std::string> ports;
    for (const platform::SerialDevice& device : platform::ListSerialDevices(sysfs.GetPath("")))
        ports.push_back(device.GetPortName());
    EXPECT_EQ(ports, (std::vector<std::string>{"/dev/ttyAMA0", "COM1", "COM12", "/dev/ttyUSB9",
                                               "/dev/ttyUSB10"}));
    EXPECT_TRUE(platform::ListSerialDevices(sysfs.GetPath("none")).empty());
}

TEST(Registry, TellsAModemsDeviceWithinTheBuffers) {
    const HKEY key = reinterpret_cast<HKEY>(
        platform::RegisterHandle(std::make_shared<platform::CModemKey>("/dev")));
    char name[11];
    BYTE data[5];
    const auto tell = [&](DWORD index, DWORD nameSize, DWORD dataSize) {
        return RegEnumValueA(key, index, name, &nameSize, nullptr, nullptr, data, &dataSize);
    };
    EXPECT_EQ(tell(0, 10, 5), static_cast<LONG>(ERROR_MORE_DATA));
    EXPECT_EQ(tell(0, 11, 4), static_cast<LONG>(ERROR_MORE_DATA));
    EXPECT_EQ(tell(0, 11, 5), 0);
    EXPECT_STREQ(name, "AttachedTo");
    EXPECT_STREQ(reinterpret_cast<char*>(data), "/dev");
    EXPECT_EQ(tell(1, 11, 5), static_cast<LONG>(ERROR_NO_MORE_ITEMS));
    EXPECT_EQ(RegCloseKey(key), 0);
}

} // namespace
