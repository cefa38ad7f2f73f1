// Gathers the console's output so that it leaves in few large writes, and holds it while the
// terminal takes none.
//
// Up to kHighWater bytes gather before a write is tried; a terminal that does not take them has
// kSlack more, which is what a turn of the session's loop adds at most in ordinary use. Only then
// does a producer block, in a wait that serves the console. Used by the thread that has taken the
// console over. The bytes lie at the start of the buffer whenever they can, so that normal use
// touches few pages of it.
#pragma once

#include "console/ConsoleChannel.h"
#include "platform/terminal/CharacterSet.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace platform {

class CConsoleGather {
  public:
    static constexpr std::size_t kHighWater = std::size_t{64} * 1024;
    static constexpr std::size_t kSlack = std::size_t{32} * 1024;
    // Room that one call of HasRoom or EnsureRoom vouches for: more than any unit of output (a
    // character with the colours and the movement before it, a title) takes.
    static constexpr std::size_t kUnit = 512;

    CConsoleChannel& Channel() { return m_channel; }
    const CConsoleChannel& Channel() const { return m_channel; }

    // The character set of what reads the output.
    void Use(const CCharacterSet& set) { m_set = &set; }
    const CCharacterSet& Set() const { return *m_set; }

    std::size_t Count() const { return m_nEnd - m_nBegin; }
    // How many bytes a run of characters can take without a further look.
    std::size_t RunBytes() const { return m_nLimit > m_nEnd ? m_nLimit - m_nEnd : 0; }
    bool HasRoom() const { return m_nEnd + kUnit <= m_nLimit; }
    // Sees to room for a unit, blocking while the terminal holds back more than the buffer takes.
    // FALSE when output is gone, when the console was given back meanwhile, or when the thread was
    // ended: what was to be written is then dropped.
    bool EnsureRoom() { return HasRoom() || MakeRoom(); }

    // Append; the caller has seen to the room.
    void Put(std::uint8_t byte) { m_bytes[m_nEnd++] = byte; }
    void Put(std::string_view text) {
        std::memcpy(m_bytes + m_nEnd, text.data(), text.size());
        m_nEnd += text.size();
    }
    // Appends a text that is UTF-8, in the reader's character set; never more bytes than it has.
    void PutText(std::string_view text) {
        if (m_set->IsUtf8())
            Put(text);
        else
            Put(m_set->Encode(text));
    }
    // Appends the printable ASCII characters at the front of the bytes, at most the given number;
    // returns how many.
    std::size_t PutPrintable(const std::uint8_t* bytes, std::size_t most);
    // CSI, the numbers and the final character.
    void PutSequence(int first, char final);
    void PutSequence(int first, int second, char final);
    void PutSequence(const int* numbers, int count, char final);

    // Writes what can be written now without blocking.
    void TryWrite();
    // Bytes are left because the terminal had no room; a POLLOUT ends that.
    bool IsStalled() const { return m_bStalled; }
    void EndStall() { m_bStalled = false; }
    // Writes everything, giving up after the given time without progress; at once when that is what
    // the last one gave up after. FALSE when bytes are left.
    bool Drain(int milliseconds);

    // Output is gone: bytes are dropped from now on.
    bool IsGone() const { return m_bGone; }
    // Forgets what is gathered, and ends an EnsureRoom in progress further up this thread's stack.
    void Abandon();

  private:
    bool MakeRoom();
    void PutNumber(int number);
    void Compact();
    void Empty();
    bool WaitForRoom();

    CConsoleChannel m_channel;
    const CCharacterSet* m_set = &CCharacterSet::Utf8();
    std::size_t m_nBegin = 0;
    std::size_t m_nEnd = 0;
    std::size_t m_nLimit = kHighWater;
    unsigned m_nAbandoned = 0; // how often the console was given back
    bool m_bStalled = false;
    bool m_bStuck = false; // nothing was taken since a drain has given up
    bool m_bGone = false;
    std::uint8_t m_bytes[kHighWater + kSlack]; // not cleared: its pages are used as they are needed
};

} // namespace platform
