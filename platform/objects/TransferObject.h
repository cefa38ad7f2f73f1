// A handle object that bytes can be read from and written to: what ReadFile, WriteFile and
// GetOverlappedResult reach behind the handle. Owned by the handle table; any thread may call any
// operation. Nothing outside platform/ includes this header.
#pragma once

#include "platform/File.h"
#include "platform/objects/HandleObject.h"

#include <memory>

namespace platform {

// The operations have the arguments, results and errors of the calls in platform/File.h.
class CTransferObject : public CHandleObject {
  public:
    virtual BOOL Read(void* buffer, DWORD count, LPDWORD read, OVERLAPPED* overlapped) = 0;
    virtual BOOL Write(const void* buffer, DWORD count, LPDWORD written,
                       OVERLAPPED* overlapped) = 0;
    virtual BOOL GetResult(OVERLAPPED* overlapped, LPDWORD transferred, BOOL wait) = 0;
};

// Opens the serial port that CreateFileA was asked for; null with the last error set.
std::shared_ptr<CTransferObject> OpenCommPort(LPCSTR portName);

} // namespace platform
