#include "platform/Error.h"

#include <cerrno>

namespace {

thread_local DWORD t_dwLastError = ERROR_SUCCESS;

struct ErrorCode {
    int systemError;
    DWORD code;
};

constexpr ErrorCode kErrorCodes[] = {
    {0, ERROR_SUCCESS},
    {ENOENT, ERROR_FILE_NOT_FOUND},
    {ENOTDIR, ERROR_PATH_NOT_FOUND},
    {ELOOP, ERROR_PATH_NOT_FOUND},
    {ENAMETOOLONG, ERROR_PATH_NOT_FOUND},
    {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
    {ENFILE, ERROR_TOO_MANY_OPEN_FILES},
    {EACCES, ERROR_ACCESS_DENIED},
    {EPERM, ERROR_ACCESS_DENIED},
    {EISDIR, ERROR_ACCESS_DENIED},
    {EROFS, ERROR_ACCESS_DENIED},
    {EBUSY, ERROR_ACCESS_DENIED},
    {ETXTBSY, ERROR_ACCESS_DENIED},
    {EBADF, ERROR_INVALID_HANDLE},
    {ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
    {EAGAIN, ERROR_NOT_ENOUGH_MEMORY}, // a thread or a lock that the system has no room for
    {EPIPE, ERROR_WRITE_FAULT},
    {ENOTTY, ERROR_NOT_SUPPORTED},
    {ENOSYS, ERROR_NOT_SUPPORTED},
    {EOPNOTSUPP, ERROR_NOT_SUPPORTED},
    {EINVAL, ERROR_INVALID_PARAMETER},
    {ENOSPC, ERROR_DISK_FULL},
    {EDQUOT, ERROR_DISK_FULL},
    {EIO, ERROR_DEVICE_NOT_CONNECTED}, // what the tty layer answers after a hang-up
    {ENXIO, ERROR_DEVICE_NOT_CONNECTED},
    {ENODEV, ERROR_DEVICE_NOT_CONNECTED},
};

} // namespace

DWORD GetLastError() {
    return t_dwLastError;
}

void SetLastError(DWORD dwErrCode) {
    t_dwLastError = dwErrCode;
}

namespace platform {

DWORD ErrorFromErrno(int systemError) {
    for (const ErrorCode& entry : kErrorCodes) {
        if (entry.systemError == systemError)
            return entry.code;
    }
    return ERROR_GEN_FAILURE;
}

BOOL FailWithErrno() {
    return FailWith(ErrorFromErrno(errno));
}

BOOL FailWith(DWORD code) {
    SetLastError(code);
    return FALSE;
}

} // namespace platform
