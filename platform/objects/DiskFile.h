// A file behind a handle: a regular file, or a device, terminal or FIFO named in its place. Owned
// by the handle table; any thread may call any operation, a close waits for the transfers in
// progress. Nothing outside platform/ includes this header.
//
// The descriptor never blocks in the kernel: where the file would (a FIFO, a terminal), the calling
// thread waits as in every other wait, with the console served.
#pragma once

#include "platform/objects/Descriptor.h"
#include "platform/objects/TransferObject.h"

#include <shared_mutex>

namespace platform {

class CDiskFile final : public CTransferObject {
  public:
    explicit CDiskFile(CDescriptor file, bool isFifo) : m_file(std::move(file)), m_bFifo(isFifo) {}

    // An overlapped record is filled in at once: no transfer of a file is ever pending. The offset
    // in it is not looked at, the bytes follow those before.
    BOOL Read(void* buffer, DWORD count, LPDWORD read, OVERLAPPED* overlapped) override;
    BOOL Write(const void* buffer, DWORD count, LPDWORD written, OVERLAPPED* overlapped) override;
    BOOL GetResult(OVERLAPPED* overlapped, LPDWORD transferred, BOOL wait) override;

    bool TryAcquire(short) override { return false; }

    // FALSE with ERROR_DISK_FULL or ERROR_WRITE_FAULT when the system could not keep what was
    // written.
    BOOL Close() override;

  private:
    BOOL ReadSome(void* buffer, DWORD count, LPDWORD read);
    BOOL WriteAll(const BYTE* bytes, DWORD count, LPDWORD written);

    std::shared_mutex m_mutex; // shared by transfers, held alone by Close
    CDescriptor m_file;
    const bool m_bFifo;
};

// Opens or makes a file, see CreateFileA; null with the last error set.
std::shared_ptr<CTransferObject> OpenDiskFile(LPCSTR name, DWORD access, DWORD shareMode,
                                              DWORD disposition);

} // namespace platform
