#include "platform/File.h"

#include "platform/Error.h"
#include "platform/objects/DiskFile.h"
#include "platform/objects/HandleTable.h"
#include "platform/objects/TransferObject.h"

using platform::CTransferObject;
using platform::FailWith;

namespace {

// What the use of the file returns, which gets a count of 0 to fill in, wanted or not. FALSE with
// ERROR_INVALID_HANDLE.
template <class Use> BOOL WithFile(HANDLE handle, LPDWORD count, const Use& use) {
    DWORD unused = 0;
    const LPDWORD moved = count != nullptr ? count : &unused;
    *moved = 0;
    const auto file = platform::FindHandleOf<CTransferObject>(handle);
    return file ? use(*file, moved) : FALSE;
}

} // namespace

HANDLE CreateFileA(LPCSTR lpFileName, DWORD dwDesiredAccess, DWORD dwShareMode,
                   SECURITY_ATTRIBUTES* lpSecurityAttributes, DWORD dwCreationDisposition,
                   DWORD dwFlagsAndAttributes, HANDLE hTemplateFile) {
    const bool isKnown =
        dwCreationDisposition == CREATE_ALWAYS || dwCreationDisposition == OPEN_EXISTING;
    if (lpFileName == nullptr || lpSecurityAttributes != nullptr || hTemplateFile != nullptr ||
        !isKnown) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    const bool isPort = dwCreationDisposition == OPEN_EXISTING &&
                        (dwFlagsAndAttributes & FILE_FLAG_OVERLAPPED) != 0;
    auto object = isPort ? platform::OpenCommPort(lpFileName)
                         : platform::OpenDiskFile(lpFileName, dwDesiredAccess, dwShareMode,
                                                  dwCreationDisposition);
    if (!object)
        return INVALID_HANDLE_VALUE;
    const HANDLE handle = platform::RegisterHandle(object);
    if (handle != nullptr)
        return handle;
    object->Close();
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return INVALID_HANDLE_VALUE;
}

BOOL ReadFile(HANDLE hFile, LPVOID lpBuffer, DWORD nNumberOfBytesToRead,
              LPDWORD lpNumberOfBytesRead, OVERLAPPED* lpOverlapped) {
    return WithFile(hFile, lpNumberOfBytesRead, [&](CTransferObject& file, LPDWORD moved) {
        return lpBuffer != nullptr || nNumberOfBytesToRead == 0
                   ? file.Read(lpBuffer, nNumberOfBytesToRead, moved, lpOverlapped)
                   : FailWith(ERROR_INVALID_PARAMETER);
    });
}

BOOL WriteFile(HANDLE hFile, LPCVOID lpBuffer, DWORD nNumberOfBytesToWrite,
               LPDWORD lpNumberOfBytesWritten, OVERLAPPED* lpOverlapped) {
    return WithFile(hFile, lpNumberOfBytesWritten, [&](CTransferObject& file, LPDWORD moved) {
        return lpBuffer != nullptr || nNumberOfBytesToWrite == 0
                   ? file.Write(lpBuffer, nNumberOfBytesToWrite, moved, lpOverlapped)
                   : FailWith(ERROR_INVALID_PARAMETER);
    });
}

BOOL GetOverlappedResult(HANDLE hFile, OVERLAPPED* lpOverlapped, LPDWORD lpNumberOfBytesTransferred,
                         BOOL bWait) {
    return WithFile(hFile, lpNumberOfBytesTransferred, [&](CTransferObject& file, LPDWORD moved) {
        return lpOverlapped != nullptr ? file.GetResult(lpOverlapped, moved, bWait)
                                       : FailWith(ERROR_INVALID_PARAMETER);
    });
}
