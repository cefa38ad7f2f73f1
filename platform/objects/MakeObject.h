// What needs memory, without letting an exception out. Nothing outside platform/ includes this
// header. Any thread may call it.
#pragma once

#include "platform/Error.h"

#include <memory>
#include <new>
#include <utility>

namespace platform {

// What the callable returns, or an empty value with ERROR_NOT_ENOUGH_MEMORY.
template <class Callable> auto OrNoMemory(const Callable& callable) -> decltype(callable()) {
    try {
        return callable();
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return {};
    }
}

// The new object, or null with ERROR_NOT_ENOUGH_MEMORY.
template <class Object, class... Arguments>
std::shared_ptr<Object> MakeObject(Arguments&&... arguments) {
    return OrNoMemory(
        [&] { return std::make_shared<Object>(std::forward<Arguments>(arguments)...); });
}

} // namespace platform
