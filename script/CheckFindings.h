// CCheckFindings: what a check of a script has found, by lines.
//
// One for each check, shared by its parts, on one thread. The same thing said twice of one line is
// kept once; of very many the rest is left out.
#pragma once

#include "platform/Types.h"

#include <set>
#include <string>
#include <string_view>
#include <utility>

class CCheckFindings {
  public:
    // The line counts from 1. The code is one of ScriptError.h; the detail, which may be empty, is
    // shown behind its message as it is.
    void Add(DWORD line, DWORD code, std::string_view detail = {});

    // In the order of the lines.
    using Set = std::set<std::pair<DWORD, std::string>>;
    const Set& Get() const { return m_findings; }

  private:
    static constexpr std::size_t kMost = 10'000;

    Set m_findings;
};
