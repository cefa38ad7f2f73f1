#include "fuzz/FuzzPlatform.h"

#include "CORE/VXSerial/Lib/ISerial.h"
#include "platform/Clock.h"
#include "platform/Error.h"
#include "platform/File.h"
#include "platform/Message.h"
#include "platform/Wait.h"
#include "platform/objects/Deadline.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

namespace fuzz {
namespace {

struct OpenFile {
    std::span<const BYTE> rest;
    bool isOpen = false;
};

std::span<const BYTE> s_input;
std::array<OpenFile, 4> s_files;
DWORD s_ticks = 0;

HANDLE Open(std::span<const BYTE> content) {
    const auto file = std::ranges::find(s_files, false, &OpenFile::isOpen);
    Require(file != s_files.end());
    *file = {content, true};
    return &*file;
}

OpenFile& FileOf(HANDLE handle) {
    const auto file = std::ranges::find_if(
        s_files, [&](const OpenFile& open) { return open.isOpen && &open == handle; });
    Require(file != s_files.end());
    return *file;
}

} // namespace

std::span<const BYTE> DeviceBytesOf(std::span<const BYTE> input) {
    const auto end = std::ranges::find(input, BYTE{0xFF});
    return end == input.end() ? std::span<const BYTE>() : std::span(end + 1, input.end());
}

void BeginRun(std::span<const BYTE> input) {
    s_input = input;
    s_files = {};
    s_ticks = 0;
}

void EndRun() {
    Require(std::ranges::none_of(s_files, &OpenFile::isOpen));
}

void PassTime(DWORD milliseconds) {
    s_ticks += milliseconds;
}

HANDLE OpenScript() {
    return Open(s_input);
}

void Require(bool condition) {
    if (!condition)
        std::abort();
}

} // namespace fuzz

using namespace fuzz;

// A look at the clock takes a millisecond, so that whoever only looks comes to an end.
std::int64_t platform::MonotonicNanoseconds() {
    return s_ticks++ * kNanosecondsPerMillisecond;
}

void Sleep(DWORD dwMilliseconds) {
    PassTime(dwMilliseconds);
}

HANDLE CreateFileA(LPCSTR lpFileName, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD, HANDLE) {
    const std::string_view path = lpFileName;
    if (path == SCRIPT_PATH)
        return OpenScript();
    if (!path.empty())
        return Open(DeviceBytesOf(s_input));
    SetLastError(ERROR_FILE_NOT_FOUND);
    return INVALID_HANDLE_VALUE;
}

BOOL ReadFile(HANDLE hFile, LPVOID lpBuffer, DWORD nNumberOfBytesToRead,
              LPDWORD lpNumberOfBytesRead, OVERLAPPED*) {
    OpenFile& file = FileOf(hFile);
    const std::size_t count = std::min<std::size_t>(nNumberOfBytesToRead, file.rest.size());
    std::ranges::copy(file.rest.first(count), static_cast<BYTE*>(lpBuffer));
    file.rest = file.rest.subspan(count);
    *lpNumberOfBytesRead = static_cast<DWORD>(count);
    return TRUE;
}

BOOL CloseHandle(HANDLE hObject) {
    FileOf(hObject).isOpen = false;
    return TRUE;
}

DWORD MsgWaitForMultipleObjects(DWORD, const HANDLE*, BOOL, DWORD dwMilliseconds, DWORD) {
    PassTime(dwMilliseconds);
    return WAIT_TIMEOUT;
}

DWORD WaitForSingleObject(HANDLE, DWORD dwMilliseconds) {
    PassTime(dwMilliseconds);
    return WAIT_TIMEOUT;
}

// There is no port: the device is the modem object itself.
HRESULT CreateSerial(ISerial** lppSerial, IUnknown*) {
    *lppSerial = nullptr;
    return E_OUTOFMEMORY;
}
