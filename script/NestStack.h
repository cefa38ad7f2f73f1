// CNestStack: the lines on which the constructs of one kind that are still open began.
//
// One for each kind, while a script is tokenized.
#pragma once

#include "platform/Types.h"

#include <array>

// In the order in which what is left open is reported.
enum ENestKind : BYTE { NEST_IF, NEST_FOR, NEST_WHILE, NEST_SELECT, NEST_FUNCTION, NEST_KINDS };

class CNestStack {
  public:
    // FALSE when ten are open already.
    bool Push(DWORD line) {
        if (m_nCount == m_lines.size())
            return false;
        m_lines[m_nCount++] = line;
        m_bEquality = true;
        return true;
    }
    // FALSE when none is open.
    bool Pop() {
        if (m_nCount == 0)
            return false;
        --m_nCount;
        return true;
    }
    bool IsEmpty() const { return m_nCount == 0; }
    // The line of the innermost one.
    DWORD Top() const { return m_lines[m_nCount - 1]; }

    // Whether "=" compares: from the keyword to the end of its line.
    bool m_bEquality = false;

  private:
    std::array<DWORD, 10> m_lines{};
    DWORD m_nCount = 0;
};
