// CMessageWindow: the window by which the service reaches the thread that initialised it.
//
// Belongs to the thread that makes it; any thread may post. Destroyed on another thread, the window
// lives, without effect, until its own thread next dispatches messages.
#pragma once

#include "platform/Message.h"

namespace telephonyservice {

class CMessageWindow {
  public:
    // Called on the window's thread with the number that was posted, once for each post.
    using Delivery = void (*)(DWORD number);

    // The window is of the calling thread; see IsThere.
    explicit CMessageWindow(Delivery delivery);
    CMessageWindow(const CMessageWindow&) = delete;
    CMessageWindow& operator=(const CMessageWindow&) = delete;
    ~CMessageWindow();

    bool IsThere() const { return m_hWindow != nullptr; }

    // Lost when the window's thread has ended, or leaves 10000 messages unread.
    void Post(DWORD number) const;

  private:
    static LRESULT OnMessage(HWND window, UINT message, WPARAM number, LPARAM parameter);

    HWND m_hWindow = nullptr;
};

} // namespace telephonyservice
