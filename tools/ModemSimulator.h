// A modem as its opener sees it: bytes and times in, bytes and the next deadline out. It knows no
// descriptors and no clock, so whoever owns it decides where the bytes go and what time it is.
//
// One thread at a time. Any bytes are taken; memory stays bounded because AcceptsInput() turns
// false while much is waiting to be sent. It holds no resources: it stops by not being used any
// more.
#pragma once

#include "tools/CommandTable.h"
#include "tools/LineEditor.h"
#include "tools/ModemOutput.h"
#include "tools/PeriodicTimer.h"

namespace modemsim {

class CModemSimulator {
  public:
    explicit CModemSimulator(SimulatorProfile profile);

    // The device was opened or closed. What happens by itself happens only while it is open;
    // closing drops what was not sent or entered to its end, and acts as AT&D says.
    void SetOpen(bool open, TimeMs now);

    // Takes input from the opener; returns how many bytes it took, fewer than given when
    // AcceptsInput() turned false on the way: the rest is to be given again later.
    std::size_t Input(std::string_view bytes, TimeMs now);

    bool AcceptsInput(TimeMs now) const { return m_Output.HasRoom(now); }

    // The next bytes to write, in one write; empty when there are none now. Valid until the next
    // change.
    std::string_view Output(TimeMs now) const { return m_Output.Ready(now); }

    // So many bytes of Output() were written.
    void Consume(std::size_t count, TimeMs now) { m_Output.Consume(count, now); }

    // Drops what is waiting to be written.
    void DiscardOutput() { m_Output.Discard(); }

    // Lets everything happen that is due.
    void Advance(TimeMs now);

    // When Advance() or Output() has something new, if nothing comes in before; always after the
    // time of the last call.
    std::optional<TimeMs> NextDeadline() const;

    // The device is gone for its opener.
    bool Vanished(TimeMs now) const { return m_Output.Vanished(now); }

  private:
    std::size_t Take(std::string_view bytes);
    std::size_t TakeCommands(std::string_view bytes);
    std::size_t TakeMessage(std::string_view bytes);
    std::size_t TakeData(std::string_view bytes);
    std::size_t TakeWhileDialling(std::string_view bytes);

    void ExecuteLine();
    void FinishLine(const FinalResult& result, const Event& event);
    void FinishMessage(CMessageEntry::EEvent event);
    void Answer(EResult code);

    void AdvanceCall();
    void Escape();
    bool EscapeEnabled() const { return m_Modem.settings.registers[2] < 128; }
    void DropDtr();

    void LetHappen(const Event& event);
    void RingByTimer();
    bool Ring();
    void Receive(const std::string& text, std::string number);
    std::optional<int> Store(const std::string& text, std::string number);
    std::string NextMessageText();
    void Register(int state);
    void EndFarCall();
    bool MayInterrupt() const;

    Modem m_Modem;
    CModemOutput m_Output;
    CLineEditor m_Editor;
    CPeriodicTimer m_RingTimer;
    CPeriodicTimer m_MessageTimer;
    CPeriodicTimer m_RegistrationTimer;
    std::optional<std::uint64_t> m_nRingsLeft;
    std::uint64_t m_nLines = 0;    // answered, for SFaults::silentAfter
    std::uint64_t m_nReceived = 0; // messages that came without being asked for
    bool m_bOpen = false;
};

} // namespace modemsim
