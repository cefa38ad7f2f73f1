// CUniqueHandle: the owner of a handle. Closes it when it goes or takes another one over.
//
// Holds null when it holds nothing; INVALID_HANDLE_VALUE counts as nothing too. It stands for the
// handle wherever one is asked for. Not for use by several threads at once.
#pragma once

#include "platform/Wait.h"

class CUniqueHandle {
  public:
    CUniqueHandle() = default;
    explicit CUniqueHandle(HANDLE handle) : m_hObject(handle) {}
    CUniqueHandle(CUniqueHandle&& other) noexcept : m_hObject(other.Detach()) {}
    CUniqueHandle& operator=(CUniqueHandle&& other) noexcept {
        Reset(other.Detach());
        return *this;
    }
    ~CUniqueHandle() { Reset(); }

    operator HANDLE() const { return m_hObject; }

    // Gives the handle up without closing it.
    HANDLE Detach() {
        const HANDLE handle = m_hObject;
        m_hObject = nullptr;
        return handle;
    }

    // Closes what is held and takes the new one over.
    void Reset(HANDLE handle = nullptr) {
        const HANDLE former = m_hObject;
        m_hObject = handle;
        if (former && former != INVALID_HANDLE_VALUE)
            CloseHandle(former);
    }

  private:
    HANDLE m_hObject = nullptr;
};

// Closes what is held, for those to whom the result matters.
inline BOOL CloseHandle(CUniqueHandle& handle) {
    return CloseHandle(handle.Detach());
}
