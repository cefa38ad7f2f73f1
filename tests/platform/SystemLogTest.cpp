#include "platform/system/SystemLog.h"

#include "platform/objects/Descriptor.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>
#include <ctime>
#include <thread>

// A daemon that starts late and reads late: nobody waits for it, and it hears how much it missed.
TEST(SystemLog, LosesRatherThanBlocksAndTellsHowMany) {
    constexpr int kTexts = 300;
    const CTempFolder folder;
    const std::string path = folder.GetPath("log");
    const platform::CDescriptor daemon(
        socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);

    platform::CSystemLog log(path.c_str());
    const std::string text = std::string(300, 'a') + "%s%n\n" + std::string(300, 'b');
    const auto write = [&] { log.Write(platform::LogSeverity::Debug, text.c_str()); };
    write();
    ASSERT_EQ(bind(daemon.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    const auto writeAll = [&] {
        for (int count = 0; count < kTexts; ++count)
            write();
    };
    std::thread other(writeAll);
    writeAll();
    other.join();
    int known = 0;
    const auto take = [&] {
        char datagram[1000];
        for (ssize_t length = 0; (length = recv(daemon.Get(), datagram, sizeof datagram, 0)) > 0;) {
            const std::string taken(datagram, static_cast<std::size_t>(length));
            tm time{};
            const char* const head = strptime(taken.c_str(), "<15>%b %d %T wirelet: ", &time);
            ASSERT_NE(head, nullptr) << taken;
            int lost = 0;
            std::sscanf(head, "(lost before: %d)", &lost);
            known += 1 + lost;
            EXPECT_TRUE(taken.ends_with(text));
        }
    };
    take();
    write();
    take();
    EXPECT_EQ(known, 1 + 2 * kTexts + 1);
}
