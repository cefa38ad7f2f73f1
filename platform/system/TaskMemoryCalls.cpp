#include "platform/TaskMemory.h"

#include <cstdlib>

LPVOID CoTaskMemAlloc(std::size_t cb) {
    return std::malloc(cb);
}

LPVOID CoTaskMemRealloc(LPVOID pv, std::size_t cb) {
    if (cb != 0)
        return std::realloc(pv, cb);
    CoTaskMemFree(pv);
    return nullptr;
}

void CoTaskMemFree(LPVOID pv) {
    std::free(pv);
}
