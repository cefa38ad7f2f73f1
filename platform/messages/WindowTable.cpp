// Two maps under one lock. A window's number is never given out twice, so a stale one finds
// nothing.
#include "platform/messages/WindowTable.h"

#include "platform/Error.h"

#include <algorithm>
#include <utility>

namespace platform {
namespace {

constexpr std::uintptr_t kWindowStep = 4;

std::uintptr_t ToNumber(HWND window) {
    return reinterpret_cast<std::uintptr_t>(window);
}

} // namespace

BOOL CWindowTable::RegisterClass(const std::string& name, WNDPROC procedure) {
    const std::lock_guard lock(m_mutex);
    return m_classes.try_emplace(name, procedure).second ? TRUE
                                                         : FailWith(ERROR_CLASS_ALREADY_EXISTS);
}

BOOL CWindowTable::UnregisterClass(const std::string& name) {
    const std::lock_guard lock(m_mutex);
    const auto found = m_classes.find(name);
    if (found == m_classes.end())
        return FailWith(ERROR_CLASS_DOES_NOT_EXIST);
    if (std::ranges::any_of(m_windows,
                            [&](const auto& each) { return each.second.windowClass == &*found; }))
        return FailWith(ERROR_CLASS_HAS_WINDOWS);
    m_classes.erase(found);
    return TRUE;
}

HWND CWindowTable::Add(const std::string& className, std::shared_ptr<CMessageQueue> queue) {
    const std::lock_guard lock(m_mutex);
    const auto windowClass = m_classes.find(className);
    if (windowClass == m_classes.end()) {
        SetLastError(ERROR_CANNOT_FIND_WND_CLASS);
        return nullptr;
    }
    m_lastWindow += kWindowStep;
    m_windows.emplace(m_lastWindow,
                      Window{std::move(queue), windowClass->second, 0, &*windowClass});
    return reinterpret_cast<HWND>(m_lastWindow);
}

BOOL CWindowTable::Remove(HWND window, const CMessageQueue& owner) {
    const std::lock_guard lock(m_mutex);
    const Window* const found = Locate(window);
    if (found == nullptr)
        return FALSE;
    if (found->queue.get() != &owner)
        return FailWith(ERROR_ACCESS_DENIED);
    m_windows.erase(ToNumber(window));
    return TRUE;
}

void CWindowTable::RemoveAllOf(const CMessageQueue& owner) {
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_windows, [&](const auto& each) { return each.second.queue.get() == &owner; });
}

Window CWindowTable::Find(HWND window) {
    const std::lock_guard lock(m_mutex);
    const Window* const found = Locate(window);
    return found != nullptr ? *found : Window();
}

BOOL CWindowTable::Put(QueuedMessages& message) {
    const std::lock_guard lock(m_mutex);
    const Window* const found = Locate(message.front().message.hwnd);
    return found != nullptr ? found->queue->Put(message) : FALSE;
}

LONG_PTR CWindowTable::ExchangeUserData(HWND window, LONG_PTR value) {
    const std::lock_guard lock(m_mutex);
    Window* const found = Locate(window);
    return found != nullptr ? std::exchange(found->userData, value) : 0;
}

Window* CWindowTable::Locate(HWND window) {
    const auto found = m_windows.find(ToNumber(window));
    if (found != m_windows.end())
        return &found->second;
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return nullptr;
}

// Never destroyed: threads that outlive main() may still look windows up.
CWindowTable& WindowTable() {
    static CWindowTable& table = *new CWindowTable;
    return table;
}

} // namespace platform
