// The functions that mean nothing for a data modem.
//
// All of the list stand here as weak symbols: where another file of the module defines a function,
// the linker takes that one.
#include "services/telephony/Exports.h"

namespace {

constexpr LONG UnavailableResult(const char* function) {
    return function[0] == 'p' ? PHONEERR_OPERATIONUNAVAIL : LINEERR_OPERATIONUNAVAIL;
}

} // namespace

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-parameter"
#define WIRELET_DEFINE_UNAVAILABLE(result, name, parameters)                                       \
    extern "C" __attribute__((weak)) result name parameters {                                      \
        return UnavailableResult(#name);                                                           \
    }
WIRELET_TAPI_FUNCTIONS(WIRELET_DEFINE_UNAVAILABLE)
#undef WIRELET_DEFINE_UNAVAILABLE
#pragma GCC diagnostic pop
