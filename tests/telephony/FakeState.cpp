#include "tests/telephony/FakeTapi.h"

extern "C" __attribute__((visibility("default"))) SFakeTapi* FakeTapi() {
    static SFakeTapi state;
    return &state;
}
