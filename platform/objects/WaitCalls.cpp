#include "platform/Wait.h"

#include "platform/Error.h"
#include "platform/objects/HandleObject.h"
#include "platform/objects/HandleTable.h"
#include "platform/objects/ThreadObject.h"
#include "platform/objects/WaitLoop.h"

#include <array>

namespace platform {
namespace {

bool CanBeWaitedFor(const CHandleObject& object) {
    return object.WaitDescriptor() >= 0 || object.IsReady() || object.ReadyInMilliseconds() >= 0;
}

// Capacity: most waits are for a few handles, and clearing room for all 64 costs more than they do.
template <DWORD Capacity>
DWORD WaitForHandles(DWORD count, const HANDLE* handles, DWORD milliseconds) {
    std::array<std::shared_ptr<CHandleObject>, Capacity> owners;
    std::array<CHandleObject*, Capacity> objects;
    for (DWORD index = 0; index < count; ++index) {
        owners[index] = FindHandle(handles[index]);
        if (!owners[index] || !CanBeWaitedFor(*owners[index])) {
            SetInvalidHandleError();
            return WAIT_FAILED;
        }
        objects[index] = owners[index].get();
    }
    return CWaitLoop(objects.data(), count, milliseconds, handles).Run();
}

constexpr DWORD kFewHandles = 8;

} // namespace
} // namespace platform

DWORD WaitForSingleObject(HANDLE hHandle, DWORD dwMilliseconds) {
    // The short way of an object that is known to be signalled: each key and each write goes it.
    const auto object = platform::FindHandle(hHandle);
    if (object && object->IsReady() && !platform::CThreadObject::IsCurrentTerminated() &&
        object->TryAcquire(0))
        return WAIT_OBJECT_0;
    return platform::WaitForHandles<1>(1, &hHandle, dwMilliseconds);
}

DWORD WaitForMultipleObjects(DWORD nCount, const HANDLE* lpHandles, BOOL bWaitAll,
                             DWORD dwMilliseconds) {
    if (nCount == 0 || nCount > MAXIMUM_WAIT_OBJECTS || lpHandles == nullptr || bWaitAll) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return WAIT_FAILED;
    }
    if (nCount <= platform::kFewHandles)
        return platform::WaitForHandles<platform::kFewHandles>(nCount, lpHandles, dwMilliseconds);
    return platform::WaitForHandles<MAXIMUM_WAIT_OBJECTS>(nCount, lpHandles, dwMilliseconds);
}
