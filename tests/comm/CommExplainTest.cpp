#include "tests/comm/TestPort.h"

#include <sys/stat.h>

namespace {

std::string WhyNot(const std::string& name, DWORD expectedError) {
    EXPECT_EQ(OpenPort(name.c_str()), INVALID_HANDLE_VALUE) << name;
    const DWORD error = GetLastError();
    EXPECT_EQ(error, expectedError) << name;
    const std::string why = platform::ExplainPortOpenFailure(name.c_str(), error);
    EXPECT_TRUE(why.starts_with(name) || why.starts_with('"')) << why;
    return why.substr(std::min(why.find(": ") + 2, why.size()));
}

} // namespace

TEST(CommExplain, WhatIsNoPort) {
    char folder[] = "/tmp/wirelet-comm-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    const std::string missing = std::string(folder) + "/file";
    EXPECT_EQ(WhyNot("/dev/null", ERROR_NOT_SUPPORTED), "is no serial device.");
    EXPECT_EQ(WhyNot(folder, ERROR_ACCESS_DENIED), "is a directory, not a serial device.");
    EXPECT_TRUE(WhyNot(missing, ERROR_FILE_NOT_FOUND).starts_with("no such device."));
    EXPECT_EQ(WhyNot("My Modem", ERROR_FILE_NOT_FOUND),
              "no port and no known modem; a serial device is named by its full path, such as "
              "/dev/ttyUSB0");
    rmdir(folder);
}

TEST(CommExplain, TextsForAnError) {
    const struct {
        const char* name;
        DWORD error;
        const char* beginning;
    } rows[] = {
        {"a\x1b[2J\xc2\x9b\xc3\xa9", ERROR_FILE_NOT_FOUND, "\"a?[2J??\xc3\xa9\": "},
        {"COM40", ERROR_FILE_NOT_FOUND, "COM40 (/dev/ttyS39): "},
        {"/dev/ttyUSB0", ERROR_DEVICE_NOT_CONNECTED,
         "/dev/ttyUSB0: was unplugged or has no hardware behind it."},
    };
    for (const auto& row : rows) {
        const std::string why = platform::ExplainPortOpenFailure(row.name, row.error);
        EXPECT_TRUE(why.starts_with(row.beginning)) << why;
    }
}

TEST(CommExplain, MissingPermission) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can give a device to another group";
    CTestDevice device;
    constexpr uid_t NOBODY = 65534;
    constexpr gid_t SOME_GROUP = 5;
    ASSERT_EQ(chown(device.Path(), 0, SOME_GROUP), 0);
    ASSERT_EQ(chmod(device.Path(), 0660), 0);
    ASSERT_EQ(seteuid(NOBODY), 0);
    const std::string forGroup = WhyNot(device.Path(), ERROR_ACCESS_DENIED);
    ASSERT_EQ(seteuid(0), 0);
    EXPECT_TRUE(forGroup.starts_with("Permission denied. It belongs to the group ")) << forGroup;
    EXPECT_NE(forGroup.find("'sudo adduser "), std::string::npos) << forGroup;
}
