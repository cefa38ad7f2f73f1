#include "tests/telephony/FakeTapi.h"

#include <cstring>
#include <mutex>

extern "C" __attribute__((visibility("default"))) SFakeTapi* FakeTapi() {
    static SFakeTapi state;
    return &state;
}

// What the debug module of the tests has been given; that it comes and goes is of no interest here.
extern "C" __attribute__((visibility("default"))) void NoteDebugModule(const char* text) {
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    if (std::string_view(text).starts_with("output "))
        FakeTapi()->trace.emplace_back(text + std::strlen("output "));
}
