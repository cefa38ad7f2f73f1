// The functions of a telephony service that a test plays: each makes a Call of its name, hands it
// its arguments one after the other by Take and returns what Finish does.
#pragma once

#include "telephony/TapiFunctions.h"

#include <array>

#define SERVICE_INDEX(result, name, parameters) Service_##name,
enum { WIRELET_TAPI_FUNCTIONS(SERVICE_INDEX) };
#define SERVICE_NAME(result, name, parameters) #name,
inline constexpr std::array SERVICE_NAMES = {WIRELET_TAPI_FUNCTIONS(SERVICE_NAME)};

template <class Call, int INDEX, class Function> struct SServiceFunction;
template <class Call, int INDEX, class... Parameters>
struct SServiceFunction<Call, INDEX, LONG(Parameters...)> {
    static LONG Run(Parameters... parameters) {
        Call call(SERVICE_NAMES[INDEX]);
        (call.Take(parameters), ...);
        return call.Finish();
    }
};
