#include "tests/vm/FarEnd.h"

#include <sys/ioctl.h>

CDevice OpenFarEnd(const std::string& path) {
    // What the last test's program sent may still be on its way.
    constexpr int kSilence = 200;
    CDevice device(path);
    // What a gadget's driver got when nobody had its terminal open comes with the next byte, or
    // now.
    const int discipline = N_TTY;
    ioctl(device.GetDescriptor(), TIOCSETD, &discipline);
    pollfd polled = {device.GetDescriptor(), POLLIN, 0};
    while (poll(&polled, 1, kSilence) > 0 && !device.GetLine().Read(4096).empty())
        continue;
    return device;
}
