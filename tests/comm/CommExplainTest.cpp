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

TEST(CommExplain, PathsThatAreNoPorts) {
    char folder[] = "/tmp/wirelet-comm-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    const std::string file = std::string(folder) + "/file";
    close(open(file.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
    EXPECT_EQ(WhyNot(file, ERROR_NOT_SUPPORTED), "is no serial device.");
    EXPECT_EQ(WhyNot("/dev/null", ERROR_NOT_SUPPORTED), "is no serial device.");
    EXPECT_EQ(WhyNot(folder, ERROR_ACCESS_DENIED), "is a directory, not a serial device.");
    unlink(file.c_str());
    EXPECT_TRUE(WhyNot(file, ERROR_FILE_NOT_FOUND).starts_with("no such device."));
    EXPECT_TRUE(WhyNot(file + "/x", ERROR_FILE_NOT_FOUND).starts_with("no such device."));
    rmdir(folder);
}

TEST(CommExplain, NamesThatAreNoPaths) {
    EXPECT_EQ(WhyNot("My Modem", ERROR_FILE_NOT_FOUND),
              "no port and no known modem; a serial device is named by its path, such as "
              "/dev/ttyUSB0");
    EXPECT_EQ(platform::ExplainPortOpenFailure("a\x1b[2J\xc2\x9b\xc3\xa9", ERROR_FILE_NOT_FOUND)
                  .substr(0, 13),
              "\"a?[2J??\xc3\xa9\": ");
    EXPECT_EQ(platform::ExplainPortOpenFailure("COM40", ERROR_FILE_NOT_FOUND).substr(0, 21),
              "COM40 (/dev/ttyS39): ");
    EXPECT_EQ(platform::ExplainPortOpenFailure("/dev/ttyUSB0", ERROR_DEVICE_NOT_CONNECTED),
              "/dev/ttyUSB0: was unplugged or has no hardware behind it.");
}

TEST(CommExplain, OtherEndIsGone) {
    CTestDevice device;
    const platform::CDescriptor keeper(open(device.Path(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    const std::string path = device.Path();
    device.Close();
    // The node is gone with its device, or left without one.
    EXPECT_EQ(OpenPort(path.c_str()), INVALID_HANDLE_VALUE);
    EXPECT_TRUE(GetLastError() == ERROR_DEVICE_NOT_CONNECTED ||
                GetLastError() == ERROR_FILE_NOT_FOUND);
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
    ASSERT_EQ(chmod(device.Path(), 0640), 0);
    ASSERT_EQ(seteuid(NOBODY), 0);
    const std::string forOwner = WhyNot(device.Path(), ERROR_ACCESS_DENIED);
    ASSERT_EQ(seteuid(0), 0);
    EXPECT_TRUE(forGroup.starts_with("Permission denied. It belongs to the group ")) << forGroup;
    EXPECT_NE(forGroup.find("'sudo adduser "), std::string::npos) << forGroup;
    EXPECT_NE(forOwner.find("to the user root, and its permissions (0640)"), std::string::npos)
        << forOwner;
}
