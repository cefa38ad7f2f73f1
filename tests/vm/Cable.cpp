#include "tests/vm/Cable.h"

#include "tests/endtoend/Device.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

// Of the USB device that the ACM is. Its gadget stays on the bus; without authorization the bus has
// the drivers let go of it as of an unplugged one.
std::string s_authorization;
bool s_isUnplugged = false;

void Authorize(int isAuthorized) {
    std::ofstream(s_authorization) << isAuthorized;
}

bool CanBeOpened(const Cable& cable) {
    const CDescriptor device(open(cable.device, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    return device.Get() >= 0;
}

// A new device's name is there a moment before the device is.
void AwaitDevice(const Cable& cable, bool isThere) {
    const auto isSo = [&] {
        return isThere ? CanBeOpened(cable) : access(cable.device, F_OK) != 0;
    };
    EXPECT_TRUE(CPump().RunUntil(isSo)) << cable;
}

} // namespace

const Cable& SessionCable() {
    static constexpr Cable kCables[] = {kAdapter, kUart, kAcm};
    return *std::ranges::find(kCables, std::string_view(std::getenv("WIRELET_CABLE")),
                              &Cable::name);
}

CDevice MakeDevice() {
    const Cable& cable = SessionCable();
    if (s_isUnplugged)
        Plug(cable);
    return CDevice(cable.device, cable.farEnd, [&cable] { Unplug(cable); });
}

void Unplug(const Cable& cable) {
    s_isUnplugged = true;
    if (cable == kAdapter) {
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
    if (cable == kAdapter)
        EXPECT_EQ(AskHost("plug"), "done");
    else
        Authorize(1);
    AwaitDevice(cable, true);
    s_isUnplugged = false;
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
