#include "terminal/ModuleNotices.h"

#include "platform/CharacterSet.h"
#include "platform/ModuleNotice.h"
#include "platform/PrintableText.h"

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <string>
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
};

// Outlives every thread that still tells something.
Notices& State() {
    static Notices& notices = *new Notices;
    return notices;
}

void Tell(const std::string& line) {
    std::fprintf(stderr, "wirelet: %s\n",
                 platform::LocaleText(platform::PrintableText(line)).c_str());
}

void Keep(Lines& lines, const char* text) {
    if (lines.size() < kMostKept && std::find(lines.begin(), lines.end(), text) == lines.end())
        lines.emplace_back(text);
}

void TakeNotice(platform::ENotice kind, LPCSTR text) {
    Notices& notices = State();
    const std::lock_guard lock(notices.mutex);
    if (kind == platform::ENotice::Fault)
        Keep(notices.faults, text);
    else if (notices.isHeld)
        Keep(notices.news, text);
    else
        Tell(text);
}

} // namespace

void ListenToModules() {
    platform::SetNoticeListener(TakeNotice);
}

void TellModuleFaults() {
    Notices& notices = State();
    const std::lock_guard lock(notices.mutex);
    for (const std::string& line : std::exchange(notices.faults, {}))
        Tell(line);
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
        Tell(line);
}
