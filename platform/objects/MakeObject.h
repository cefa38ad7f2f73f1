// Making a shared object without letting an exception out. Nothing outside platform/ includes this
// header. Any thread may call it.
#pragma once

#include "platform/Error.h"

#include <memory>
#include <new>
#include <utility>

namespace platform {

// The new object, or null with ERROR_NOT_ENOUGH_MEMORY.
template <class Object, class... Arguments>
std::shared_ptr<Object> MakeObject(Arguments&&... arguments) {
    try {
        return std::make_shared<Object>(std::forward<Arguments>(arguments)...);
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
}

} // namespace platform
