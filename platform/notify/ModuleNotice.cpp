#include "platform/notify/ModuleNotice.h"

#include "platform/system/SystemLog.h"

#include <atomic>

namespace platform {
namespace {

std::atomic<NoticeListener> g_listener = nullptr;

} // namespace

void GiveNotice(ENotice kind, LPCSTR text) {
    if (text == nullptr)
        return;
    SystemLog().Write(LogSeverity::Warning, text);
    if (const NoticeListener listener = g_listener)
        listener(kind, text);
}

void SetNoticeListener(NoticeListener listener) {
    g_listener = listener;
}

} // namespace platform
