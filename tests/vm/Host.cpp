#include "tests/vm/Host.h"

#include "tests/support/Pipe.h"

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
