// The title of the terminal's window. The user's own title is kept by the terminal from the first
// change on and comes back at the end. Used by the thread that has taken the console over.
#pragma once

#include "console/ConsoleGather.h"

#include <string_view>

namespace platform {

class CConsoleTitle {
  public:
    explicit CConsoleTitle(CConsoleGather& gather) : m_gather(gather) {}

    // Whether a terminal of this type is known to have a title; others would show the sequence.
    static bool IsPossible(const char* terminalType);

    // Sets the title: well-formed characters other than controls, at most kMostBytes. The caller
    // sees to the room.
    void Set(std::string_view title);
    // Brings the user's title back if Set changed it.
    void Restore();
    bool IsChanged() const { return m_bChanged; }

    static constexpr std::size_t kMostBytes = 256;

  private:
    CConsoleGather& m_gather;
    bool m_bChanged = false;
};

} // namespace platform
