// What the module exports: every function of the published interface that the list names, declared
// once, so that a definition with other parameters does not compile.
//
// No exception leaves the module: the definitions are guarded.
#pragma once

#include "telephony/TapiFunctions.h"

#include <new>

#define WIRELET_DECLARE_EXPORT(result, name, parameters)                                           \
    extern "C" __attribute__((visibility("default"))) result name parameters;
WIRELET_TAPI_FUNCTIONS(WIRELET_DECLARE_EXPORT)
#undef WIRELET_DECLARE_EXPORT

namespace telephonyservice {

template <class Operation> LONG Guard(const Operation& operation) {
    try {
        return operation();
    } catch (const std::bad_alloc&) {
        return LINEERR_NOMEM;
    }
}

} // namespace telephonyservice
