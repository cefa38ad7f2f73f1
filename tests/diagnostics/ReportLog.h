// CReportLog: takes what is written to the debug-output stream while it lives. One at a time; any
// thread may report.
#pragma once

#include "platform/DebugOutput.h"

#include <mutex>
#include <string>
#include <utility>
#include <vector>

class CReportLog {
  public:
    CReportLog() {
        Take();
        platform::SetDebugListener([](LPCSTR text) {
            const std::lock_guard lock(s_mutex);
            s_texts.emplace_back(text);
        });
    }
    ~CReportLog() { platform::SetDebugListener(nullptr); }
    CReportLog(const CReportLog&) = delete;
    CReportLog& operator=(const CReportLog&) = delete;

    // The texts since the last call.
    std::vector<std::string> Take() {
        const std::lock_guard lock(s_mutex);
        return std::exchange(s_texts, {});
    }

  private:
    inline static std::mutex s_mutex;
    inline static std::vector<std::string> s_texts;
};
