#include "tests/vm/Cable.h"

#include "tests/support/Pipe.h"

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace {

// Of the USB device that the ACM is. Its gadget stays on the bus; without authorization the bus has
// the drivers let go of it as of an unplugged one.
std::string s_authorization;

void Authorize(int isAuthorized) {
    std::ofstream(s_authorization) << isAuthorized;
}

bool CanBeOpened(const Cable& cable) {
    const CDescriptor device(open(cable.device, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    return device.Get() >= 0;
}

// A new device's name is there a moment before the device is.
void AwaitDevice(const Cable& cable, bool isThere) {
    const auto end = std::chrono::steady_clock::now() + GUARD * 5;
    const auto isSo = [&] {
        return isThere ? CanBeOpened(cable) : access(cable.device, F_OK) != 0;
    };
    while (!isSo() && std::chrono::steady_clock::now() < end)
        usleep(10000);
    EXPECT_TRUE(isSo()) << cable;
}

} // namespace

void Unplug(const Cable& cable) {
    if (cable == ADAPTER) {
        EXPECT_EQ(AskHost("unplug"), "done");
        return;
    }
    const auto interface = std::filesystem::canonical("/sys/class/tty/ttyACM0/device");
    s_authorization = interface.parent_path() / "authorized";
    Authorize(0);
}

// The old device's end must have been noticed, or the new one gets another name.
void Plug(const Cable& cable) {
    AwaitDevice(cable, false);
    if (cable == ADAPTER)
        EXPECT_EQ(AskHost("plug"), "done");
    else
        Authorize(1);
    AwaitDevice(cable, true);
}

std::string AskHost(const std::string& command) {
    static const CDescriptor line(open("/dev/vport0p2", O_RDWR | O_CLOEXEC));
    const std::string request = command + '\n';
    EXPECT_EQ(write(line.Get(), request.data(), request.size()),
              static_cast<ssize_t>(request.size()));
    std::string answer;
    for (char byte = 0; read(line.Get(), &byte, 1) == 1 && byte != '\n';)
        answer += byte;
    return answer;
}
