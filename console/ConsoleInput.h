// The console's keyboard: reads standard input and makes one record of each byte or special key, as
// they are asked for. A sequence that is not complete waits for its rest: a lone ESC 100 ms, what
// no single key begins with half a second after its last byte, for a slow line's sake. On an input
// that is no terminal, only the known sequences are keys; all else is the bytes that it is.
//
// While the terminal is somebody else's, who waits for a key stops the process, as the system stops
// one that reads; when it continues, the wait goes on.
//
// One object lives as long as the process; it is used by the thread that has taken the console
// over. As a handle object it is signalled while a record can be taken without blocking, and for
// good at the end of the input.
#pragma once

#include "console/Console.h"
#include "console/ConsoleKeys.h"
#include "console/ConsoleMode.h"
#include "platform/objects/Descriptor.h"
#include "platform/objects/HandleObject.h"
#include "platform/terminal/Utf8.h"

#include <cstddef>
#include <cstdint>

namespace platform {

class CConsoleInput final : public CHandleObject {
  public:
    CConsoleInput() = default;

    // Takes the descriptor of standard input and the terminal's type (TERM; null: unknown), which
    // must stay valid.
    void Use(int descriptor, const char* terminalType);

    enum class Taken { Record, Nothing, End };
    // Takes the next record if there is one, without blocking; END at the end of the input.
    Taken Take(INPUT_RECORD& record) {
        if (m_nBegin < m_nEnd && m_bytes[m_nBegin] != CConsoleKeys::kEscape && m_wEvents == 0) {
            FillCharacter(record, m_bytes[m_nBegin++], 0);
            return Taken::Record;
        }
        return TakeSlow(record);
    }

    // How many of the bytes that are read next were typed while Enter was made LF: they arrive with
    // CR in its place. CConsoleMode::kEvery: the terminal is in somebody else's hands.
    void SetTypedBefore(std::size_t count) { m_nTypedBefore = count; }
    bool WasTypedBefore() const { return m_nTypedBefore != 0; }
    bool IsSomebodyElses() const { return m_nTypedBefore == CConsoleMode::kEvery; }

    // The character that the terminal's Backspace key sends; it is delivered as kBackspace.
    void SetErase(std::uint8_t byte) { m_byErase = byte; }

    // Whether anything was ever read from the keyboard.
    bool WasRead() const { return m_nReadTime != 0; }

    // Sets aside what has been typed and what has happened until now, so that Take begins with what
    // comes later; of what was typed, at most kMostHeld bytes. Release puts it back in front of
    // what was not taken meanwhile.
    void Hold();
    void Release();

    // Adds a record of this type, MENU_EVENT or WINDOW_BUFFER_SIZE_EVENT, that comes before what
    // was typed; one that waits already counts for both.
    void AddEvent(WORD type) { m_wEvents |= type; }

    int WaitDescriptor() const override { return m_bEnd ? -1 : m_nDescriptor; }
    bool IsReady() const override;
    int ReadyInMilliseconds() const override;
    bool TryAcquire(short events) override;

    static constexpr std::uint8_t kBackspace = 8;
    // Programs that tell Esc from a key by time wait about as long as this.
    static constexpr int kEscapeMilliseconds = 100;
    static constexpr int kSequenceMilliseconds = 500;
    static constexpr std::size_t kMostRead = 4096; // as much as a terminal holds in its own queue
    static constexpr std::size_t kMostHeld = 2 * kMostRead;

  private:
    void FillCharacter(INPUT_RECORD& record, std::uint8_t byte, DWORD controlKeys);
    bool GoesOn(std::uint8_t byte);
    Taken TakeSlow(INPUT_RECORD& record);
    void TakeEvent(INPUT_RECORD& record);
    CConsoleKeys::Match Look(bool final) const;
    // When what is unfinished is taken for finished, in the clock's milliseconds.
    std::int64_t Deadline() const;
    bool IsTimeUp() const;
    void Read();
    void Fill(std::size_t end);
    void BringEnterBack(std::size_t count);
    // A read does not wait for keys, but stops the process or finds the end.
    bool IsReadAnyway() const { return m_own && IsSomebodyElses(); }
    void KeepUnfinished();
    void LoadKeys();

    WORD m_wEvents = 0; // types of the records that wait to be taken
    WORD m_wHeldEvents = 0;
    std::size_t m_nHeld = 0; // bytes at the start of the buffer that are set aside
    std::size_t m_nBegin = 0;
    std::size_t m_nEnd = 0;
    std::size_t m_nCarried = 0; // the end of the bytes that came with an earlier read
    std::int64_t m_nCarriedTime = 0;
    std::int64_t m_nReadTime = 0;
    std::size_t m_nTypedBefore = 0;
    int m_nDescriptor = -1;
    CDescriptor m_own; // the controlling terminal, opened anew
    bool m_bEnd = false;
    bool m_bKeysLoaded = false;
    bool m_bKeyboard = false;
    bool m_bUtf8 = true;
    std::uint8_t m_byErase = kBackspace;
    CUtf8Decoder m_character; // as far as it was delivered
    const char* m_terminalType = nullptr;
    std::uint8_t m_bytes[kMostHeld + kMostRead];
    CConsoleKeys m_keys; // loaded when the first ESC is typed: starting up needs none of it
};

} // namespace platform
