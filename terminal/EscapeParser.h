// CEscapeParser: takes the control sequences out of what a device sends, one verdict at a time.
//
// It knows how a sequence begins and ends, and no meaning of any. What has been collected stands in
// members of the owner, which outlive it: a sequence may come in any pieces, and the owner looks at
// it there. One thread uses it. Nothing is allocated, and a sequence of whatever length or content
// does no more than be dropped.
#pragma once

#include "platform/Types.h"

#include <array>
#include <span>
#include <string_view>

struct EscapeVerdict {
    enum class Kind {
        Text,       // to be shown
        Sequence,   // complete
        Dropped,    // a sequence that was abandoned or is too long: nothing of it is shown
        Unfinished, // the bytes have ended in the midst of a sequence
    };
    Kind kind;
    std::span<const BYTE> text = {};
    BYTE finalCharacter = 0; // of a complete sequence
};

class CEscapeParser {
  public:
    // A sequence without its ESC: the first byte is '['. A NUL fits behind the longest one.
    using Sequence = std::array<char, 256>;

    CEscapeParser(BOOL& collecting, Sequence& sequence, DWORD& length)
        : m_bCollecting(collecting), m_szSequence(sequence), m_nLength(length) {}

    // Takes from the front of the bytes, of which there must be some, what the verdict is about.
    EscapeVerdict Next(std::span<const BYTE>& bytes);

    // What stands between '[' and the final character of the sequence that is complete.
    std::string_view Parameters() const;

  private:
    BYTE End(std::span<const BYTE>& bytes);

    BOOL& m_bCollecting;
    Sequence& m_szSequence;
    DWORD& m_nLength;
};
