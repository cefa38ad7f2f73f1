// The buffer holds three stretches: what is set aside for a box, what waits to be taken, and free
// room. A sequence that is not complete stays at the front of the second one, and the bytes that
// are read behind it come with a time of their own: the lone ESC is judged by when it came.
#include "console/ConsoleInput.h"

#include "console/ConsoleKeyTable.h"
#include "platform/terminal/CharacterSet.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace platform {
namespace {

std::int64_t Milliseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

bool IsReadable(int descriptor) {
    pollfd polled = {descriptor, POLLIN, 0};
    return poll(&polled, 1, 0) > 0;
}

} // namespace

void CConsoleInput::Use(int descriptor, const char* terminalType) {
    m_nDescriptor = descriptor;
    m_terminalType = terminalType;
    m_bKeyboard = isatty(descriptor) != 0;
    const CCharacterSet& set = CCharacterSet::OfLocale();
    m_bUtf8 = set.IsUtf8() || set.IsAscii(); // the latter is that of a locale that nobody has set
    m_bEnd = fcntl(descriptor, F_GETFD) < 0; // started without a standard input
    // A read that stopped the process begins again by itself when it continues, before the terminal
    // is raw: it must not wait for a line then. Other terminals stop nobody.
    if (tcgetpgrp(descriptor) < 0)
        return;
    m_own.Reset(open("/dev/tty", O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (m_own)
        m_nDescriptor = m_own.Get();
}

void CConsoleInput::TakeEvent(INPUT_RECORD& record) {
    const WORD type = (m_wEvents & MENU_EVENT) != 0 ? MENU_EVENT : WINDOW_BUFFER_SIZE_EVENT;
    m_wEvents &= static_cast<WORD>(~type);
    record = {type, {}};
}

// Ctrl+@ is the one character that is no character to who reads the record: it is told by its key,
// the 2 on which it lies.
void CConsoleInput::FillCharacter(INPUT_RECORD& record, std::uint8_t byte, DWORD controlKeys) {
    constexpr WORD kKey2 = 0x32;
    const bool isNul = byte == 0;
    const auto character = static_cast<char>(byte == m_byErase ? kBackspace : byte);
    const WORD repeats = GoesOn(byte) ? 0 : 1;
    record = {KEY_EVENT,
              {{TRUE,
                repeats,
                isNul ? kKey2 : WORD{0},
                0,
                {character},
                controlKeys | (isNul ? LEFT_CTRL_PRESSED : 0)}}};
}

// Whether the byte belongs to the character of the one before it.
bool CConsoleInput::GoesOn(std::uint8_t byte) {
    if ((byte < 0x80 && m_character.IsIdle()) || !m_bUtf8)
        return false;
    const bool isInside = !m_character.IsIdle();
    if (m_character.Feed(byte) != CUtf8Decoder::Result::Broken)
        return isInside;
    m_character.Feed(byte);
    return false;
}

CConsoleInput::Taken CConsoleInput::TakeSlow(INPUT_RECORD& record) {
    if (m_wEvents != 0) {
        TakeEvent(record);
        return Taken::Record;
    }
    if (m_nBegin == m_nEnd)
        return m_bEnd ? Taken::End : Taken::Nothing;
    CConsoleKeys::Match match = Look(m_bEnd);
    if (match.kind == CConsoleKeys::Kind::More && !m_bEnd) {
        // The rest may have come long ago and only not have been read.
        if (IsReadable(m_nDescriptor))
            Read();
        match = Look(m_bEnd || IsTimeUp());
        if (match.kind == CConsoleKeys::Kind::More)
            return Taken::Nothing;
    }
    m_nBegin += match.length;
    if (match.kind == CConsoleKeys::Kind::Key)
        record = {KEY_EVENT, {{TRUE, 1, match.virtualKey, 0, {0}, match.controlKeys}}};
    else if (match.kind == CConsoleKeys::Kind::Alt)
        FillCharacter(record, m_bytes[m_nBegin++], LEFT_ALT_PRESSED);
    else
        FillCharacter(record, m_bytes[m_nBegin - 1], 0);
    return Taken::Record;
}

CConsoleKeys::Match CConsoleInput::Look(bool final) const {
    const std::uint8_t* const bytes = m_bytes + m_nBegin;
    const std::size_t count = m_nEnd - m_nBegin;
    return m_bKeyboard ? m_keys.FindTyped(bytes, count, final) : m_keys.Find(bytes, count, final);
}

std::int64_t CConsoleInput::Deadline() const {
    if (m_bytes[m_nEnd - 1] != CConsoleKeys::kEscape)
        return m_nReadTime + kSequenceMilliseconds;
    return (m_nBegin < m_nCarried ? m_nCarriedTime : m_nReadTime) + kEscapeMilliseconds;
}

bool CConsoleInput::IsTimeUp() const {
    return Milliseconds() >= Deadline();
}

bool CConsoleInput::IsReady() const {
    if (m_wEvents != 0 || m_bEnd)
        return true;
    return m_nBegin < m_nEnd && Look(false).kind != CConsoleKeys::Kind::More;
}

int CConsoleInput::ReadyInMilliseconds() const {
    if (IsReadAnyway())
        return 0;
    if (m_nBegin == m_nEnd)
        return -1;
    return static_cast<int>(std::max<std::int64_t>(Deadline() - Milliseconds(), 0));
}

bool CConsoleInput::TryAcquire(short events) {
    if (IsReady())
        return true;
    if (events != 0 || IsReadAnyway())
        Read();
    return IsReady() || (m_nBegin < m_nEnd && IsTimeUp());
}

void CConsoleInput::Hold() {
    m_wHeldEvents = std::exchange(m_wEvents, 0);
    KeepUnfinished();
    while (m_nEnd < kMostHeld && !m_bEnd && IsReadable(m_nDescriptor))
        Fill(kMostHeld);
    m_nHeld = m_nBegin = std::min(m_nEnd, kMostHeld);
}

void CConsoleInput::Release() {
    const std::size_t left = m_nEnd - m_nBegin;
    std::memmove(m_bytes + m_nHeld, m_bytes + m_nBegin, left);
    m_nEnd = m_nHeld + left;
    m_nBegin = m_nCarried = m_nHeld = 0;
    m_wEvents |= std::exchange(m_wHeldEvents, 0);
}

void CConsoleInput::Read() {
    KeepUnfinished();
    Fill(m_nHeld + kMostRead);
}

// Reads up to an end in the buffer.
void CConsoleInput::Fill(std::size_t end) {
    const ssize_t length = read(m_nDescriptor, m_bytes + m_nEnd, end - m_nEnd);
    if (length < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR))
        return;
    m_nReadTime = Milliseconds();
    if (length <= 0) {
        m_bEnd = true;
        return;
    }
    BringEnterBack(static_cast<std::size_t>(length));
    if (!m_bKeysLoaded && std::memchr(m_bytes + m_nEnd, CConsoleKeys::kEscape,
                                      static_cast<std::size_t>(length)) != nullptr)
        LoadKeys();
    m_nEnd += static_cast<std::size_t>(length);
}

// In the bytes just read.
void CConsoleInput::BringEnterBack(std::size_t count) {
    const std::size_t before = std::min(count, m_nTypedBefore);
    std::replace(m_bytes + m_nEnd, m_bytes + m_nEnd + before, std::uint8_t{'\n'},
                 std::uint8_t{'\r'});
    if (!IsSomebodyElses())
        m_nTypedBefore -= before;
}

void CConsoleInput::KeepUnfinished() {
    const std::size_t kept = m_nEnd - m_nBegin;
    if (kept != 0)
        m_nCarriedTime = m_nBegin < m_nCarried ? m_nCarriedTime : m_nReadTime;
    std::memmove(m_bytes + m_nHeld, m_bytes + m_nBegin, kept);
    m_nBegin = m_nHeld;
    m_nEnd = m_nCarried = m_nHeld + kept;
}

void CConsoleInput::LoadKeys() {
    m_bKeysLoaded = true;
    AddKnownKeys(m_keys);
    AddTerminfoKeys(m_keys, m_terminalType);
}

} // namespace platform
