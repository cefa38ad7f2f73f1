// What the user is told about a port that did not open.
#include "tests/comm/TestPort.h"
#include "tests/support/PseudoTerminal.h"

#include <sys/stat.h>

namespace {

using platform::ExplainPortOpenFailure;

TEST(CommExplain, TellsWhyAPortCannotBeOpened) {
    const struct {
        std::string name;
        bool isTried;
        DWORD error;
        const char* beginning;
    } rows[] = {
        {"/tmp", true, ERROR_ACCESS_DENIED, "/tmp: is a directory, not a serial device"},
        {"My Modem", true, ERROR_FILE_NOT_FOUND,
         "\"My Modem\": no port and no known modem; a serial device is named by its full path, "
         "such as /dev/ttyUSB0"},
        // A control function in 7 and in 8 bits, a change of direction, half a character.
        {"a\x1b[2J\xc2\x9b\xc3\xa9\x9bJ\u202Eb\xe2\x82", true, ERROR_FILE_NOT_FOUND,
         "\"a?[2J??\xc3\xa9?J???b??\": "},
        {"COM40", false, ERROR_FILE_NOT_FOUND, "COM40 (/dev/ttyS39): "},
        {"/dev/ttyUSB0", false, ERROR_DEVICE_NOT_CONNECTED,
         "/dev/ttyUSB0: was unplugged or has no hardware behind it"},
    };
    for (const auto& row : rows) {
        if (row.isTried) {
            EXPECT_EQ(OpenPort(row.name), INVALID_HANDLE_VALUE) << row.name;
            EXPECT_EQ(GetLastError(), row.error) << row.name;
        }
        const std::string why = ExplainPortOpenFailure(row.name.c_str(), row.error);
        EXPECT_TRUE(why.starts_with(row.beginning)) << why;
    }
}

// As this process here.
TEST(CommExplain, WhoProvidesADeviceIsNotWhoUsesIt) {
    const CPseudoTerminal device;
    EXPECT_EQ(ExplainPortOpenFailure(device.GetPath().c_str(), ERROR_ACCESS_DENIED),
              device.GetPath() + ": in use by another process; end it, or choose another device");
}

TEST(CommExplain, MissingPermission) {
    const CPseudoTerminal device;
    const std::string& path = device.GetPath();
    constexpr uid_t kNobody = 65534;
    constexpr gid_t kSomeGroup = 5;
    // Root of a user namespace may not have one.
    if (chown(path.c_str(), 0, kSomeGroup) != 0)
        GTEST_SKIP() << "only root can give a device to another group";
    ASSERT_EQ(chmod(path.c_str(), 0660), 0);
    ASSERT_EQ(seteuid(kNobody), 0);
    EXPECT_EQ(OpenPort(path), INVALID_HANDLE_VALUE);
    const DWORD error = GetLastError();
    const std::string why = ExplainPortOpenFailure(path.c_str(), error);
    ASSERT_EQ(seteuid(0), 0);
    EXPECT_EQ(error, ERROR_ACCESS_DENIED);
    EXPECT_NE(why.find(": permission denied; it belongs to the group "), std::string::npos) << why;
    EXPECT_NE(why.find("'sudo adduser "), std::string::npos) << why;
}

} // namespace
