#include "platform/File.h"

#include "platform/Error.h"
#include "platform/objects/DiskFile.h"
#include "platform/objects/HandleTable.h"
#include "platform/objects/TransferObject.h"

using platform::CTransferObject;

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
    DWORD unused = 0;
    DWORD& moved = lpNumberOfBytesRead != nullptr ? *lpNumberOfBytesRead : unused;
    moved = 0;
    const auto object = platform::FindHandleOf<CTransferObject>(hFile);
    if (!object)
        return FALSE;
    if (lpBuffer == nullptr && nNumberOfBytesToRead != 0)
        return platform::FailWith(ERROR_INVALID_PARAMETER);
    return object->Read(lpBuffer, nNumberOfBytesToRead, &moved, lpOverlapped);
}

BOOL WriteFile(HANDLE hFile, LPCVOID lpBuffer, DWORD nNumberOfBytesToWrite,
               LPDWORD lpNumberOfBytesWritten, OVERLAPPED* lpOverlapped) {
    DWORD unused = 0;
    DWORD& moved = lpNumberOfBytesWritten != nullptr ? *lpNumberOfBytesWritten : unused;
    moved = 0;
    const auto object = platform::FindHandleOf<CTransferObject>(hFile);
    if (!object)
        return FALSE;
    if (lpBuffer == nullptr && nNumberOfBytesToWrite != 0)
        return platform::FailWith(ERROR_INVALID_PARAMETER);
    return object->Write(lpBuffer, nNumberOfBytesToWrite, &moved, lpOverlapped);
}

BOOL GetOverlappedResult(HANDLE hFile, OVERLAPPED* lpOverlapped, LPDWORD lpNumberOfBytesTransferred,
                         BOOL bWait) {
    DWORD unused = 0;
    DWORD& moved = lpNumberOfBytesTransferred != nullptr ? *lpNumberOfBytesTransferred : unused;
    moved = 0;
    const auto object = platform::FindHandleOf<CTransferObject>(hFile);
    if (!object)
        return FALSE;
    if (lpOverlapped == nullptr)
        return platform::FailWith(ERROR_INVALID_PARAMETER);
    return object->GetResult(lpOverlapped, &moved, bWait);
}
