// A buffer that is filled at its end and written from its front. m_nLimit is how far a producer may
// go without asking: the high-water mark at first, the whole buffer for a terminal that takes
// nothing, 0 once output is gone, so that one comparison tells all of that.
#include "console/ConsoleGather.h"

#include "platform/Wait.h"
#include "platform/objects/Deadline.h"
#include "platform/objects/DescriptorWait.h"

#include <cerrno>
#include <charconv>

namespace platform {
namespace {

// Whether one of eight bytes is below 0x20 or above 0x7E: the high bit of each byte tells, set by
// a borrow, by a carry, or from the start. A borrow or a carry into a neighbour comes only from a
// byte that is itself one.
constexpr bool HoldsUnprintable(std::uint64_t eight) {
    constexpr std::uint64_t kEach = 0x0101010101010101;
    return (((eight - kEach * 0x20) | (eight + kEach) | eight) & kEach * 0x80) != 0;
}
static_assert(!HoldsUnprintable(0x7E207E207E207E20));
static_assert(HoldsUnprintable(0x7E207E207E207E1F) && HoldsUnprintable(0x7F20202020202020));
static_assert(HoldsUnprintable(0x2020202080202020) && HoldsUnprintable(0x20202020201B2020));

} // namespace

std::size_t CConsoleGather::PutPrintable(const std::uint8_t* bytes, std::size_t most) {
    std::uint8_t* const room = m_bytes + m_nEnd;
    std::size_t count = 0;
    // Eight at a time: pieces of text between sequences are short, and a loop that ends at another
    // byte each time costs more than the bytes do.
    for (; count + sizeof(std::uint64_t) <= most; count += sizeof(std::uint64_t)) {
        std::uint64_t eight;
        std::memcpy(&eight, bytes + count, sizeof eight);
        if (HoldsUnprintable(eight))
            break;
        std::memcpy(room + count, &eight, sizeof eight);
    }
    for (; count < most && bytes[count] >= 0x20 && bytes[count] < 0x7F; ++count)
        room[count] = bytes[count];
    m_nEnd += count;
    return count;
}

void CConsoleGather::PutNumber(int number) {
    constexpr std::size_t kMostDigits = 11;
    char* const begin = reinterpret_cast<char*>(m_bytes + m_nEnd);
    m_nEnd +=
        static_cast<std::size_t>(std::to_chars(begin, begin + kMostDigits, number).ptr - begin);
}

void CConsoleGather::PutSequence(int first, char final) {
    PutSequence(&first, 1, final);
}

void CConsoleGather::PutSequence(int first, int second, char final) {
    const int numbers[] = {first, second};
    PutSequence(numbers, 2, final);
}

void CConsoleGather::PutSequence(const int* numbers, int count, char final) {
    Put("\x1b[");
    for (int index = 0; index < count; ++index) {
        if (index != 0)
            Put(';');
        PutNumber(numbers[index]);
    }
    Put(static_cast<std::uint8_t>(final));
}

void CConsoleGather::TryWrite() {
    while (m_nBegin < m_nEnd && !m_bGone) {
        const ssize_t written = m_channel.Write(m_bytes + m_nBegin, m_nEnd - m_nBegin);
        if (written <= 0) {
            m_bGone = written < 0;
            m_bStalled = written == 0;
            break;
        }
        m_bStuck = false;
        m_nBegin += static_cast<std::size_t>(written);
    }
    if (m_nBegin < m_nEnd && !m_bGone)
        return;
    Empty();
}

void CConsoleGather::Empty() {
    m_nBegin = m_nEnd = 0;
    m_nLimit = m_bGone ? 0 : kHighWater; // once output is gone nobody gets past MakeRoom
    m_bStalled = false;
}

bool CConsoleGather::MakeRoom() {
    if (m_bGone)
        return false;
    if (!m_bStalled)
        TryWrite();
    if (m_bGone)
        return false;
    if (HasRoom())
        return true;
    Compact();
    if (Count() + kUnit > sizeof m_bytes && !WaitForRoom())
        return false;
    m_nLimit = Count() + kUnit > kHighWater ? sizeof m_bytes : kHighWater;
    return true;
}

void CConsoleGather::Compact() {
    if (m_nBegin == 0)
        return;
    std::memmove(m_bytes, m_bytes + m_nBegin, Count());
    m_nEnd -= m_nBegin;
    m_nBegin = 0;
}

bool CConsoleGather::WaitForRoom() {
    const unsigned abandoned = m_nAbandoned;
    while (Count() + kUnit > kHighWater) {
        const int shown = WaitForDescriptor(m_channel.Descriptor(), POLLOUT, INFINITE);
        if (shown < 0 || abandoned != m_nAbandoned)
            return false;
        TryWrite();
        if (m_bGone)
            return false;
    }
    Compact();
    return true;
}

bool CConsoleGather::Drain(int milliseconds) {
    TryWrite();
    CDeadline deadline(static_cast<DWORD>(milliseconds));
    while (Count() != 0) {
        pollfd descriptor = {m_channel.Descriptor(), POLLOUT, 0};
        const auto left = static_cast<int>(deadline.Remaining());
        const int shown = poll(&descriptor, 1, m_bStuck ? 0 : left);
        if (shown == 0 || (shown < 0 && errno != EINTR)) {
            m_bStuck = true;
            return false;
        }
        const std::size_t before = Count();
        TryWrite();
        if (Count() < before)
            deadline = CDeadline(static_cast<DWORD>(milliseconds));
    }
    return !m_bGone;
}

void CConsoleGather::Abandon() {
    Empty();
    ++m_nAbandoned;
}

} // namespace platform
