// The process's windows and the classes they are made from. One table, which lives as long as the
// process; any thread may call any operation, each of which is one step under the table's lock.
// Nothing outside platform/ includes this header.
//
// The table knows a window's queue, its procedure and its user data; what is queued for the window
// is the queue's business.
#pragma once

#include "platform/Message.h"
#include "platform/objects/SlotTable.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

class CMessageQueue;

class CWindowTable {
  public:
    // See RegisterClassA and UnregisterClassA.
    ATOM RegisterClass(LPCSTR name, WNDPROC procedure);
    BOOL UnregisterClass(LPCSTR name);

    // A new window of the class, whose messages go to the queue. Null with
    // ERROR_CANNOT_FIND_WND_CLASS or ERROR_NOT_ENOUGH_MEMORY (also when the table is full).
    HWND Add(LPCSTR className, std::shared_ptr<CMessageQueue> queue);

    // FALSE with ERROR_INVALID_WINDOW_HANDLE or, when it is not the owner's, ERROR_ACCESS_DENIED.
    BOOL Remove(HWND window, const CMessageQueue& owner);

    bool Has(HWND window);

    // Null with ERROR_INVALID_WINDOW_HANDLE; the procedure also for another queue's window.
    std::shared_ptr<CMessageQueue> QueueOf(HWND window);
    WNDPROC ProcedureOf(HWND window, const CMessageQueue& owner);

    // Both return the value found; 0 with ERROR_INVALID_WINDOW_HANDLE.
    LONG_PTR UserData(HWND window);
    LONG_PTR ExchangeUserData(HWND window, LONG_PTR value);

  private:
    struct Class {
        std::string name; // empty while the place is free
        WNDPROC procedure = nullptr;
        std::size_t windows = 0;
    };
    struct Window {
        std::shared_ptr<CMessageQueue> queue;
        std::size_t windowClass = 0;
        LONG_PTR userData = 0;
    };

    Class* FindClass(std::string_view name);
    Class* TakeFreeClass();
    // Null with ERROR_INVALID_WINDOW_HANDLE.
    Window* FindWindow(HWND window);

    // Tells windows from the handles of other objects.
    static constexpr std::uintptr_t KIND = 1;

    std::mutex m_mutex;
    std::vector<Class> m_classes;
    CSlotTable<Window, KIND> m_windows;
};

// The process's table.
CWindowTable& WindowTable();

} // namespace platform
