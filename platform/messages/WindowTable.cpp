#include "platform/messages/WindowTable.h"

#include "platform/Error.h"
#include "platform/messages/MessageQueue.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace platform {
namespace {

std::uintptr_t ToNumber(HWND window) {
    return reinterpret_cast<std::uintptr_t>(window);
}

// The published range of a class's number and length of its name.
constexpr std::size_t FIRST_CLASS = 0xC000;
constexpr std::size_t CLASSES_MAX = 0x4000;
constexpr std::size_t CLASS_NAME_MAX = 256;

// Empty when the name cannot be one.
std::string_view ClassName(LPCSTR name) {
    const std::size_t length = name != nullptr ? strnlen(name, CLASS_NAME_MAX + 1) : 0;
    return length <= CLASS_NAME_MAX ? std::string_view(name, length) : std::string_view();
}

char LowerCase(char character) {
    const bool isUpperCase = character >= 'A' && character <= 'Z';
    return isUpperCase ? static_cast<char>(character - 'A' + 'a') : character;
}

bool IsSameName(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return LowerCase(a) == LowerCase(b); });
}

} // namespace

ATOM CWindowTable::RegisterClass(LPCSTR name, WNDPROC procedure) {
    const std::string_view className = ClassName(name);
    if (className.empty() || procedure == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const std::lock_guard lock(m_mutex);
    if (FindClass(className) != nullptr) {
        SetLastError(ERROR_CLASS_ALREADY_EXISTS);
        return 0;
    }
    try {
        std::string kept(className);
        if (Class* const free = TakeFreeClass()) {
            *free = {std::move(kept), procedure, 0};
            return static_cast<ATOM>(FIRST_CLASS + static_cast<std::size_t>(free - &m_classes[0]));
        }
    } catch (const std::bad_alloc&) {
    }
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return 0;
}

BOOL CWindowTable::UnregisterClass(LPCSTR name) {
    const std::lock_guard lock(m_mutex);
    Class* const found = FindClass(ClassName(name));
    if (found == nullptr)
        return FailWith(ERROR_CLASS_DOES_NOT_EXIST);
    if (found->windows != 0)
        return FailWith(ERROR_CLASS_HAS_WINDOWS);
    *found = {};
    return TRUE;
}

CWindowTable::Class* CWindowTable::FindClass(std::string_view name) {
    if (name.empty())
        return nullptr;
    for (Class& each : m_classes) {
        if (IsSameName(each.name, name))
            return &each;
    }
    return nullptr;
}

CWindowTable::Class* CWindowTable::TakeFreeClass() {
    for (Class& each : m_classes) {
        if (each.name.empty())
            return &each;
    }
    return m_classes.size() < CLASSES_MAX ? &m_classes.emplace_back() : nullptr;
}

HWND CWindowTable::Add(LPCSTR className, std::shared_ptr<CMessageQueue> queue) {
    const std::lock_guard lock(m_mutex);
    Class* const windowClass = FindClass(ClassName(className));
    if (windowClass == nullptr) {
        SetLastError(ERROR_CANNOT_FIND_WND_CLASS);
        return nullptr;
    }
    const auto classIndex = static_cast<std::size_t>(windowClass - &m_classes[0]);
    const std::uintptr_t number = m_windows.Add({std::move(queue), classIndex, 0});
    if (number == 0)
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    else
        ++windowClass->windows;
    return reinterpret_cast<HWND>(number);
}

BOOL CWindowTable::Remove(HWND window, const CMessageQueue& owner) {
    const std::lock_guard lock(m_mutex);
    const Window* const found = FindWindow(window);
    if (found == nullptr)
        return FALSE;
    if (found->queue.get() != &owner)
        return FailWith(ERROR_ACCESS_DENIED);
    --m_classes[found->windowClass].windows;
    m_windows.Remove(ToNumber(window));
    return TRUE;
}

bool CWindowTable::Has(HWND window) {
    const std::lock_guard lock(m_mutex);
    return m_windows.Find(ToNumber(window)) != nullptr;
}

std::shared_ptr<CMessageQueue> CWindowTable::QueueOf(HWND window) {
    const std::lock_guard lock(m_mutex);
    const Window* const found = FindWindow(window);
    return found != nullptr ? found->queue : nullptr;
}

WNDPROC CWindowTable::ProcedureOf(HWND window, const CMessageQueue& owner) {
    const std::lock_guard lock(m_mutex);
    const Window* const found = FindWindow(window);
    if (found == nullptr)
        return nullptr;
    if (found->queue.get() == &owner)
        return m_classes[found->windowClass].procedure;
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return nullptr;
}

LONG_PTR CWindowTable::UserData(HWND window) {
    const std::lock_guard lock(m_mutex);
    const Window* const found = FindWindow(window);
    return found != nullptr ? found->userData : 0;
}

LONG_PTR CWindowTable::ExchangeUserData(HWND window, LONG_PTR value) {
    const std::lock_guard lock(m_mutex);
    Window* const found = FindWindow(window);
    return found != nullptr ? std::exchange(found->userData, value) : 0;
}

CWindowTable::Window* CWindowTable::FindWindow(HWND window) {
    Window* const found = m_windows.Find(ToNumber(window));
    if (found == nullptr)
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return found;
}

// Never destroyed: threads that outlive main() may still look windows up.
CWindowTable& WindowTable() {
    static CWindowTable& table = *new CWindowTable;
    return table;
}

} // namespace platform
