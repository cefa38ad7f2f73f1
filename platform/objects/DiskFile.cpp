// Nothing here blocks in the kernel: the descriptor is non-blocking, and what would block becomes a
// wait for it. A lock is taken before a file is emptied, so that a refused open leaves it whole.
#include "platform/objects/DiskFile.h"

#include "platform/Error.h"
#include "platform/objects/DescriptorWait.h"
#include "platform/objects/MakeObject.h"
#include "platform/objects/TransferRecord.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <mutex>
#include <string_view>

namespace platform {
namespace {

// How long a FIFO or a terminal may take no byte until a write to it fails: a reader that has gone
// must not hold the program for ever.
constexpr DWORD kWritePatience = 10'000;

constexpr mode_t kNewFileMode = 0666; // the user's umask takes from it

BOOL FailWithWriteErrno(int systemError) {
    const bool isFull = systemError == ENOSPC || systemError == EDQUOT;
    return FailWith(isFull ? ERROR_DISK_FULL : ERROR_WRITE_FAULT);
}

bool IsFolderThere(std::string_view name) {
    const std::size_t slash = name.find_last_of('/');
    if (slash == std::string_view::npos || slash == 0)
        return true;
    char folder[PATH_MAX];
    if (slash >= sizeof folder)
        return false;
    *std::copy_n(name.data(), slash, folder) = '\0';
    return access(folder, F_OK) == 0;
}

void SetOpenError(LPCSTR name, int systemError) {
    const bool isFolderMissing = systemError == ENOENT && !IsFolderThere(name);
    SetLastError(isFolderMissing ? ERROR_PATH_NOT_FOUND : ErrorFromErrno(systemError));
}

// Reading and writing opens a FIFO without waiting for its other end, and O_NONBLOCK a device
// without waiting for its carrier; no terminal becomes the program's own.
int OpenFlags(DWORD access, DWORD disposition) {
    const int flags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    if (disposition == CREATE_ALWAYS)
        return flags | O_RDWR | O_CREAT;
    return flags | ((access & GENERIC_WRITE) != 0 ? O_RDWR : O_RDONLY);
}

// Locks are for regular files: /dev/null has room for everybody. One who shares reads what another
// writes, but what is being read first is not emptied: the command file may be named as the capture
// file by mistake.
BOOL LockFile(int file, DWORD shareMode) {
    const bool shares = (shareMode & FILE_SHARE_READ) != 0;
    const bool isLocked = flock(file, (shares ? LOCK_SH : LOCK_EX) | LOCK_NB) == 0;
    const bool isTaken = !shares && !isLocked && errno == EWOULDBLOCK;
    return isTaken ? FailWith(ERROR_SHARING_VIOLATION) : TRUE;
}

void RecordResult(OVERLAPPED* overlapped, BOOL succeeded, DWORD count) {
    if (overlapped != nullptr)
        EndTransfer(*overlapped, succeeded ? ERROR_SUCCESS : GetLastError(), count);
}

} // namespace

bool IsFolder(LPCSTR name) {
    struct stat status {};
    return stat(name, &status) == 0 && S_ISDIR(status.st_mode);
}

bool IsSameFile(LPCSTR name, LPCSTR other) {
    struct stat one {};
    struct stat two {};
    return stat(name, &one) == 0 && stat(other, &two) == 0 && one.st_dev == two.st_dev &&
           one.st_ino == two.st_ino;
}

std::shared_ptr<CTransferObject> OpenDiskFile(LPCSTR name, DWORD access, DWORD shareMode,
                                              DWORD disposition) {
    CDescriptor file(open(name, OpenFlags(access, disposition), kNewFileMode));
    struct stat status {};
    if (!file || fstat(file.Get(), &status) != 0) {
        SetOpenError(name, errno);
        return nullptr;
    }
    if (S_ISDIR(status.st_mode)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    }
    if (S_ISREG(status.st_mode)) {
        // Emptied only under the lock: a refused open must leave the other one's bytes in place.
        if (!LockFile(file.Get(), shareMode))
            return nullptr;
        if (disposition == CREATE_ALWAYS && ftruncate(file.Get(), 0) != 0) {
            SetLastError(ErrorFromErrno(errno));
            return nullptr;
        }
    }
    return MakeObject<CDiskFile>(std::move(file), S_ISFIFO(status.st_mode));
}

BOOL CDiskFile::Read(void* buffer, DWORD count, LPDWORD read, OVERLAPPED* overlapped) {
    *read = 0;
    const std::shared_lock lock(m_mutex);
    const BOOL succeeded = ReadSome(buffer, count, read);
    RecordResult(overlapped, succeeded, *read);
    return succeeded;
}

BOOL CDiskFile::Write(const void* buffer, DWORD count, LPDWORD written, OVERLAPPED* overlapped) {
    *written = 0;
    const std::shared_lock lock(m_mutex);
    const BOOL succeeded = WriteAll(static_cast<const BYTE*>(buffer), count, written);
    RecordResult(overlapped, succeeded, *written);
    return succeeded;
}

BOOL CDiskFile::GetResult(OVERLAPPED* overlapped, LPDWORD transferred, BOOL) {
    return ResultOf(*overlapped, transferred);
}

BOOL CDiskFile::ReadSome(void* buffer, DWORD count, LPDWORD read) {
    if (!m_file)
        return FailWith(ERROR_INVALID_HANDLE);
    // A FIFO that nobody has opened for writing yet reads as ended; its descriptor shows nothing
    // until somebody has.
    if (m_bFifo && WaitForDescriptor(m_file.Get(), POLLIN, INFINITE) < 0)
        return FALSE;
    for (;;) {
        const ssize_t moved = ::read(m_file.Get(), buffer, std::min<std::size_t>(count, INT_MAX));
        if (moved >= 0) {
            *read = static_cast<DWORD>(moved);
            return TRUE;
        }
        if (errno == EINTR)
            continue;
        if (errno != EAGAIN)
            return FailWith(ERROR_READ_FAULT);
        if (WaitForDescriptor(m_file.Get(), POLLIN, INFINITE) < 0)
            return FALSE;
    }
}

BOOL CDiskFile::WriteAll(const BYTE* bytes, DWORD count, LPDWORD written) {
    if (!m_file)
        return FailWith(ERROR_INVALID_HANDLE);
    while (*written < count) {
        const ssize_t moved = ::write(m_file.Get(), bytes + *written, count - *written);
        if (moved >= 0) {
            *written += static_cast<DWORD>(moved);
            continue;
        }
        if (errno == EINTR)
            continue;
        if (errno != EAGAIN)
            return FailWithWriteErrno(errno);
        const int shown = WaitForDescriptor(m_file.Get(), POLLOUT, kWritePatience);
        if (shown <= 0)
            return shown == 0 ? FailWith(ERROR_TIMEOUT) : FALSE;
    }
    return TRUE;
}

BOOL CDiskFile::Close() {
    const std::lock_guard lock(m_mutex);
    const int systemError = m_file.Reset();
    const bool isLost = systemError == EIO || systemError == ENOSPC || systemError == EDQUOT;
    return isLost ? FailWithWriteErrno(systemError) : TRUE;
}

} // namespace platform
