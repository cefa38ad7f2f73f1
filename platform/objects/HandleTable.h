// The table of handles. It lives as long as the process and owns the objects that it names; any
// thread may call these. Nothing outside platform/ and console/ includes this header.
#pragma once

#include "platform/objects/HandleObject.h"

#include <memory>

namespace platform {

// Puts an object into the table; null when the table is full (ERROR_NOT_ENOUGH_MEMORY).
HANDLE RegisterHandle(std::shared_ptr<CHandleObject> object);

// The same for one of the few objects that live as long as the process: it is found without a lock
// and its handle cannot be closed.
HANDLE RegisterImmortal(CHandleObject& object);

// The object that a handle names; null, with ERROR_INVALID_HANDLE set, for any other value.
std::shared_ptr<CHandleObject> FindHandle(HANDLE handle);

// Takes the handle out of the table without closing the object; null as FindHandle.
std::shared_ptr<CHandleObject> RemoveHandle(HANDLE handle);

void SetInvalidHandleError();

// FindHandle, for a handle of one kind only.
template <class Object> std::shared_ptr<Object> FindHandleOf(HANDLE handle) {
    auto object = std::dynamic_pointer_cast<Object>(FindHandle(handle));
    if (!object)
        SetInvalidHandleError();
    return object;
}

} // namespace platform
