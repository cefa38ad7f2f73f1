// The list of serial devices, and the registry that is made of it.

#include "platform/SerialDevices.h"
#include "platform/Error.h"
#include "platform/Registry.h"
#include "platform/RegistryKey.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

class CSysfs {
  public:
    void Add(const std::string& name, bool hasDevice, const char* type, const char* console) {
        const std::filesystem::path folder = m_folder.GetPath(name);
        std::filesystem::create_directories(hasDevice ? folder / "device" : folder);
        if (type != nullptr)
            std::ofstream(folder / "type") << type << "\n";
        if (console != nullptr)
            std::ofstream(folder / "console") << console << "\n";
    }
    std::string GetPath() const { return m_folder.GetPath(""); }

  private:
    CTempFolder m_folder;
};

TEST(SerialDevices, AreThoseWithHardwareAndNoConsoles) {
    CSysfs sysfs;
    sysfs.Add("ttyS0", true, "4", "N");
    sysfs.Add("ttyS1", true, "0", "N"); // probed, nothing found
    sysfs.Add("ttyS3", true, "4", "Y"); // the kernel's own console
    sysfs.Add("ttyS11", true, "16", nullptr);
    sysfs.Add("ttyAMA0", true, "32", "N");
    sysfs.Add("ttyUSB10", true, nullptr, nullptr);
    sysfs.Add("ttyUSB9", true, nullptr, nullptr);
    sysfs.Add("ttyACM0", true, nullptr, nullptr);
    sysfs.Add("tty7", false, nullptr, nullptr);
    sysfs.Add("ptmx", false, nullptr, nullptr);
    sysfs.Add("hvc0", true, nullptr, nullptr);
    std::vector<std::string> ports;
    for (const platform::SerialDevice& device : platform::ListSerialDevices(sysfs.GetPath()))
        ports.push_back(device.GetPortName());
    EXPECT_EQ(ports, (std::vector<std::string>{"/dev/ttyACM0", "/dev/ttyAMA0", "COM1", "COM12",
                                               "/dev/ttyUSB9", "/dev/ttyUSB10"}));
    EXPECT_TRUE(platform::ListSerialDevices(sysfs.GetPath() + "none").empty());
}

TEST(Registry, OpensWhatThereIsAndRefusesTheRest) {
    const struct {
        const char* path;
        LONG status;
    } rows[] = {
        {"HARDWARE\\DEVICEMAP", 0},
        {"hardware\\devicemap", 0},
        {"System\\CurrentControlSet\\Control\\Class\\{4D36E96D-E325-11CE-BFC1-08002BE10318}", 0},
        {"System\\CurrentControlSet\\Control\\Class\\{4D36E96D-E325-11CE-BFC1-08002BE10318}\\1",
         static_cast<LONG>(ERROR_FILE_NOT_FOUND)},
        {"HARDWARE\\DEVICEMAP\\", static_cast<LONG>(ERROR_FILE_NOT_FOUND)},
        {"HARD", static_cast<LONG>(ERROR_FILE_NOT_FOUND)},
    };
    for (const auto& row : rows) {
        HKEY key = nullptr;
        EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, row.path, 0, KEY_READ, &key), row.status)
            << row.path;
        EXPECT_EQ(key != nullptr, row.status == 0);
        if (key != nullptr) {
            EXPECT_EQ(RegCloseKey(key), 0);
            EXPECT_EQ(RegCloseKey(key), static_cast<LONG>(ERROR_INVALID_HANDLE));
        }
    }
}

TEST(Registry, TellsValuesWithinTheBuffers) {
    const HKEY key = reinterpret_cast<HKEY>(
        platform::RegisterHandle(std::make_shared<platform::CRegistryKeyObject>(
            "", platform::RegistryValues{{"name", "COM3"}})));
    char name[5];
    BYTE data[5];
    const auto tell = [&](DWORD index, DWORD nameSize, DWORD dataSize) {
        return RegEnumValueA(key, index, name, &nameSize, nullptr, nullptr, data, &dataSize);
    };
    EXPECT_EQ(tell(0, 4, 5), static_cast<LONG>(ERROR_MORE_DATA));
    EXPECT_EQ(tell(0, 5, 4), static_cast<LONG>(ERROR_MORE_DATA));
    EXPECT_EQ(tell(0, 5, 5), 0);
    EXPECT_STREQ(name, "name");
    EXPECT_STREQ(reinterpret_cast<char*>(data), "COM3");
    EXPECT_EQ(tell(1, 5, 5), static_cast<LONG>(ERROR_NO_MORE_ITEMS));
    EXPECT_EQ(RegCloseKey(key), 0);
}

} // namespace
