#include "fuzz/FuzzPlatform.h"

#include "CORE/VXSerial/Lib/ISerial.h"
#include "diagnostics/ModuleTrace.h"
#include "platform/Clock.h"
#include "platform/Comm.h"
#include "platform/EndRequest.h"
#include "platform/Error.h"
#include "platform/File.h"
#include "platform/Message.h"
#include "platform/Notification.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
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
DWORD s_error = ERROR_SUCCESS;
DWORD s_shownErrors = 0;
bool s_hasMessage = false;
void (*s_dispatch)() = nullptr;

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

// The whole text must be there to be read.
std::size_t LengthOf(LPCSTR text) {
    return text != nullptr ? std::strlen(text) : 0;
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
    s_error = ERROR_SUCCESS;
    s_shownErrors = 0;
    s_hasMessage = false;
}

void EndRun() {
    Require(std::ranges::none_of(s_files, &OpenFile::isOpen));
    Require(s_shownErrors <= 1);
}

void PassTime(DWORD milliseconds) {
    s_ticks += milliseconds;
}

void SetDispatch(void (*dispatch)()) {
    s_dispatch = dispatch;
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

DWORD GetLastError() {
    return s_error;
}

void SetLastError(DWORD dwErrCode) {
    s_error = dwErrCode;
}

// A look at the clock takes a millisecond, so that whoever only looks comes to an end.
DWORD GetTickCount() {
    return s_ticks++;
}

bool platform::IsEndRequested() {
    return false;
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

int MessageBoxA(HWND, LPCSTR lpText, LPCSTR lpCaption, UINT uType) {
    s_shownErrors += uType == (MB_ICONEXCLAMATION | MB_OK) ? 1 : 0;
    PassTime(static_cast<DWORD>(LengthOf(lpText) + LengthOf(lpCaption)));
    return IDOK;
}

BOOL MessageBeep(UINT) {
    return TRUE;
}

BOOL sndPlaySoundA(LPCSTR lpszSound, UINT) {
    return LengthOf(lpszSound) % 2 == 0 ? TRUE : FALSE;
}

BOOL PostMessageA(HWND, UINT, WPARAM, LPARAM) {
    return TRUE;
}

// Every other time there is one.
BOOL PeekMessageA(MSG* lpMsg, HWND, UINT, UINT, UINT) {
    s_hasMessage = !s_hasMessage;
    if (s_hasMessage)
        *lpMsg = {};
    return s_hasMessage ? TRUE : FALSE;
}

BOOL TranslateMessage(const MSG*) {
    return FALSE;
}

LRESULT DispatchMessageA(const MSG*) {
    if (s_dispatch != nullptr)
        s_dispatch();
    return 0;
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
BOOL GetCommState(HANDLE, DCB*) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
}

HRESULT CreateSerial(ISerial** lppSerial, IUnknown*) {
    *lppSerial = nullptr;
    return E_OUTOFMEMORY;
}

BOOL DebugTrace(LPCSTR, ...) {
    return FALSE;
}
