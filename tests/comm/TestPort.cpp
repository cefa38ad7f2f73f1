// The port's own headers bring the kernel's termios2 in, which no test beside <termios.h> can.
#include "tests/comm/TestPort.h"

#include "platform/comm/CommPort.h"
#include "platform/objects/HandleTable.h"

HANDLE OpenPort(const std::string& name) {
    return CreateFileA(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                       FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OVERLAPPED, nullptr);
}

std::shared_ptr<CTestLines> CTestLines::PutInto(HANDLE port, bool isTelling) {
    auto lines = std::make_shared<CTestLines>(isTelling);
    platform::FindHandleOf<platform::CCommPort>(port)->ReplaceLines(lines);
    return lines;
}
