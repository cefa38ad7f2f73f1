// The process's windows and the classes they are made from. One table, which lives as long as the
// process; any thread may call any operation, each of which is one step under the table's lock.
// Nothing outside platform/ includes this header.
//
// The table knows a window's queue, its procedure and its user data. A message for a window gets
// into the queue under the lock, so that none comes after the window has been taken out.
#pragma once

#include "platform/messages/MessageQueue.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace platform {

// A window as the table knows it.
struct Window {
    std::shared_ptr<CMessageQueue> queue{};
    WNDPROC procedure = nullptr;
    LONG_PTR userData = 0;
    const void* windowClass = nullptr; // for the table itself
};

class CWindowTable {
  public:
    // See RegisterClassA and UnregisterClassA; may throw bad_alloc.
    BOOL RegisterClass(const std::string& name, WNDPROC procedure);
    BOOL UnregisterClass(const std::string& name);

    // A new window of the class, whose messages go to the queue. Null with
    // ERROR_CANNOT_FIND_WND_CLASS; may throw bad_alloc.
    HWND Add(const std::string& className, std::shared_ptr<CMessageQueue> queue);

    // FALSE with ERROR_INVALID_WINDOW_HANDLE or, when it is not the owner's, ERROR_ACCESS_DENIED.
    BOOL Remove(HWND window, const CMessageQueue& owner);
    void RemoveAllOf(const CMessageQueue& owner);

    // One without a queue, with ERROR_INVALID_WINDOW_HANDLE, when there is no such window.
    Window Find(HWND window);

    // Puts the message into its window's queue. FALSE with ERROR_INVALID_WINDOW_HANDLE or
    // ERROR_NOT_ENOUGH_QUOTA.
    BOOL Put(QueuedMessages& message);

    // Returns the value found; 0 with ERROR_INVALID_WINDOW_HANDLE.
    LONG_PTR ExchangeUserData(HWND window, LONG_PTR value);

  private:
    // Null with ERROR_INVALID_WINDOW_HANDLE.
    Window* Locate(HWND window);

    std::mutex m_mutex;
    std::map<std::string, WNDPROC> m_classes;
    std::map<std::uintptr_t, Window> m_windows;
    std::uintptr_t m_lastWindow = 1; // a number never comes twice, and bit 0 is set in no handle
};

// The process's table.
CWindowTable& WindowTable();

} // namespace platform
