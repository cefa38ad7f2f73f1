// The yardstick: poll() on the keyboard and the port, copying both ways, interpreting nothing. What
// a terminal takes more than this is what its work costs.

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace {

void MakeRaw(int descriptor) {
    termios settings = {};
    if (tcgetattr(descriptor, &settings) != 0)
        return;
    cfmakeraw(&settings);
    tcsetattr(descriptor, TCSANOW, &settings);
}

bool Copy(int from, int to) {
    std::array<char, 4096> bytes;
    const ssize_t count = read(from, bytes.data(), bytes.size());
    if (count <= 0)
        return count < 0 && errno == EINTR;
    for (ssize_t done = 0; done < count;) {
        const ssize_t written =
            write(to, bytes.data() + done, static_cast<std::size_t>(count - done));
        if (written < 0 && errno != EINTR)
            return false;
        done += written > 0 ? written : 0;
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    const int port = argc == 2 ? open(argv[1], O_RDWR | O_NOCTTY) : -1;
    if (port < 0)
        return 1;
    MakeRaw(STDIN_FILENO);
    MakeRaw(port);

    std::array<pollfd, 2> sides = {pollfd{STDIN_FILENO, POLLIN, 0}, pollfd{port, POLLIN, 0}};
    for (;;) {
        if (poll(sides.data(), sides.size(), -1) < 0 && errno != EINTR)
            return 1;
        if (sides[1].revents != 0 && !Copy(port, STDOUT_FILENO))
            return 0;
        if (sides[0].revents != 0 && !Copy(STDIN_FILENO, port))
            return 0;
    }
}
