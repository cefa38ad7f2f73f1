#include "terminal/ModuleNotices.h"

#include "common/UniqueHandle.h"
#include "platform/Wait.h"
#include "platform/notify/ModuleNotice.h"
#include "platform/terminal/PrintableText.h"
#include "terminal/StandardError.h"

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t kMostKept = 20;

using Lines = std::vector<std::string>;

struct Notices {
    std::mutex mutex;
    Lines faults;
    Lines news;
    bool isHeld = false;
    CUniqueHandle newsEvent{CreateEventA(nullptr, TRUE, FALSE, nullptr)};
};

// Outlives every thread that still tells something.
Notices& State() {
    static Notices& notices = *new Notices;
    return notices;
}

void Keep(Lines& lines, const char* text) {
    if (lines.size() < kMostKept && std::find(lines.begin(), lines.end(), text) == lines.end())
        lines.emplace_back(text);
}

void TakeNotice(platform::ENotice kind, LPCSTR text) {
    Notices& notices = State();
    const std::lock_guard lock(notices.mutex);
    if (kind == platform::ENotice::Fault)
        return Keep(notices.faults, text);
    if (!notices.isHeld)
        return TellOnStandardError(text);
    Keep(notices.news, text);
    SetEvent(notices.newsEvent);
}

} // namespace

void ListenToModules() {
    platform::SetNoticeListener(TakeNotice);
}

void TellModuleFaults() {
    Notices& notices = State();
    const std::lock_guard lock(notices.mutex);
    for (const std::string& line : std::exchange(notices.faults, {}))
        TellOnStandardError(line);
}

void HoldModuleNews() {
    Notices& notices = State();
    const std::lock_guard lock(notices.mutex);
    notices.isHeld = true;
}

void TellModuleNews() {
    Notices& notices = State();
    const std::lock_guard lock(notices.mutex);
    notices.isHeld = false;
    for (const std::string& line : std::exchange(notices.news, {}))
        TellOnStandardError(line);
}

HANDLE GetModuleNewsEvent() {
    return State().newsEvent;
}

std::string TakeModuleNews() {
    Notices& notices = State();
    const std::lock_guard lock(notices.mutex);
    ResetEvent(notices.newsEvent);
    std::string lines;
    for (const std::string& line : std::exchange(notices.news, {}))
        lines += "wirelet: " + platform::PrintableText(line) + '\n';
    return lines;
}
