#include "fuzz/FuzzPlatform.h"

#include "CORE/VXSerial/Lib/ISerial.h"
#include "platform/Clock.h"
#include "platform/Error.h"
#include "platform/File.h"
#include "platform/Message.h"
#include "platform/objects/Deadline.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace {

using File = std::span<const BYTE>; // what is still to be read

File s_input;
DWORD s_ticks = 0;

} // namespace

std::span<const BYTE> fuzz::DeviceBytesOf(std::span<const BYTE> input) {
    const auto end = std::ranges::find(input, BYTE{0xFF});
    return end == input.end() ? File() : File(end + 1, input.end());
}

void fuzz::BeginRun(std::span<const BYTE> input) {
    s_input = input;
    s_ticks = 0;
}

void fuzz::Require(bool condition) {
    if (!condition)
        std::abort();
}

// A look at the clock takes a millisecond, so that whoever only looks comes to an end.
std::int64_t platform::MonotonicNanoseconds() {
    return s_ticks++ * kNanosecondsPerMillisecond;
}

void Sleep(DWORD dwMilliseconds) {
    s_ticks += dwMilliseconds;
}

DWORD MsgWaitForMultipleObjects(DWORD, const HANDLE*, BOOL, DWORD dwMilliseconds, DWORD) {
    Sleep(dwMilliseconds);
    return WAIT_TIMEOUT;
}

HANDLE CreateFileA(LPCSTR lpFileName, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD, HANDLE) {
    const std::string_view path = lpFileName;
    if (!path.empty())
        return new File(path == fuzz::kScriptPath ? s_input : fuzz::DeviceBytesOf(s_input));
    SetLastError(ERROR_FILE_NOT_FOUND);
    return INVALID_HANDLE_VALUE;
}

BOOL ReadFile(HANDLE hFile, LPVOID lpBuffer, DWORD nNumberOfBytesToRead,
              LPDWORD lpNumberOfBytesRead, OVERLAPPED*) {
    File& file = *static_cast<File*>(hFile);
    const std::size_t count = std::min<std::size_t>(nNumberOfBytesToRead, file.size());
    std::ranges::copy(file.first(count), static_cast<BYTE*>(lpBuffer));
    file = file.subspan(count);
    *lpNumberOfBytesRead = static_cast<DWORD>(count);
    return TRUE;
}

BOOL CloseHandle(HANDLE hObject) {
    delete static_cast<File*>(hObject);
    return TRUE;
}

// There is no port: the device is the modem object itself.
HRESULT CreateSerial(ISerial** lppSerial, IUnknown*) {
    *lppSerial = nullptr;
    return E_OUTOFMEMORY;
}
