#include "tools/ModemSimulator.h"

#include <algorithm>
#include <utility>

namespace modemsim {
namespace {

// Input is looked at in pieces of this size, so that a full output queue is noticed in time.
constexpr std::size_t kInputPiece = 4096;

constexpr std::string_view kFarNumber = "+15550100";
constexpr std::string_view kPrompt = "\r\n> ";

} // namespace

CModemSimulator::CModemSimulator(SimulatorProfile profile)
    : m_Output(profile.faults), m_RingTimer(profile.ringPeriod),
      m_MessageTimer(profile.messagePeriod), m_RegistrationTimer(profile.registrationPeriod),
      m_nRingsLeft(profile.ringCount) {
    m_Modem.profile = std::move(profile);
    m_Modem.settings = m_Modem.FactorySettings();
    for (int count = 0; count < m_Modem.profile.storedMessages; ++count)
        Store(NextMessageText(), {});
}

void CModemSimulator::SetOpen(bool open, TimeMs now) {
    if (open == m_bOpen)
        return;
    m_Modem.now = std::max(now, m_Modem.now);
    m_bOpen = open;
    if (open) {
        m_RingTimer.Start(now);
        m_MessageTimer.Start(now);
        m_RegistrationTimer.Start(now);
        if (m_Modem.profile.faults.flood)
            m_Output.StartFlood();
        return;
    }
    m_RingTimer.Stop();
    m_MessageTimer.Stop();
    m_RegistrationTimer.Stop();
    m_Output.StopFlood();
    m_Output.Discard();
    m_Editor.Clear();
    m_Modem.entry.Stop();
    DropDtr();
}

void CModemSimulator::DropDtr() {
    const int action = m_Modem.settings.dtr;
    const ECallState state = m_Modem.call.State();
    if (action >= 2 || state == ECallState::Dialling)
        m_Modem.call.HangUp();
    else if (action == 1)
        m_Modem.call.Escape();
    if (action == 3)
        m_Modem.settings = m_Modem.FactorySettings();
}

std::size_t CModemSimulator::Input(std::string_view bytes, TimeMs now) {
    SetOpen(true, now);
    Advance(now);
    std::size_t taken = 0;
    while (taken < bytes.size() && AcceptsInput(m_Modem.now))
        taken += Take(bytes.substr(taken, kInputPiece));
    return taken;
}

std::size_t CModemSimulator::Take(std::string_view bytes) {
    if (m_Output.Silent() || m_Output.Vanishing() || m_Modem.profile.faults.flood)
        return bytes.size();
    if (m_Output.Flooding()) {
        m_Output.StopFlood();
        Answer(EResult::Ok);
        return 1;
    }
    if (m_Modem.call.State() == ECallState::Dialling)
        return TakeWhileDialling(bytes);
    if (m_Modem.call.State() == ECallState::Online)
        return TakeData(bytes);
    return m_Modem.entry.Active() ? TakeMessage(bytes) : TakeCommands(bytes);
}

std::size_t CModemSimulator::TakeCommands(std::string_view bytes) {
    std::string echo;
    std::size_t taken = 0;
    auto event = CLineEditor::EEvent::None;
    while (taken < bytes.size() && event == CLineEditor::EEvent::None)
        event = m_Editor.Feed(bytes[taken++], m_Modem.settings, echo);
    m_Output.Raw(echo);
    if (event == CLineEditor::EEvent::Line)
        ExecuteLine();
    else if (event == CLineEditor::EEvent::TooLong)
        Answer(EResult::Error);
    return taken;
}

void CModemSimulator::ExecuteLine() {
    m_Output.BeginAnswer(m_Modem.now);
    CCommandLine line(m_Editor.Line());
    FinalResult result;
    Event happening;
    while (result.code == EResult::Ok) {
        const std::optional<Command> command = line.Next();
        if (!command)
            break;
        Reply reply;
        result = RunCommand(m_Modem, *command, reply);
        m_Output.Information(reply.lines, m_Modem.settings);
        m_Output.LongLine(reply.longLine, m_Modem.settings);
        if (reply.event.kind != EHappening::None)
            happening = std::move(reply.event);
    }
    if (line.Malformed())
        result = {EResult::Error, EFailure::Unspecified, EErrorKind::Plain};
    FinishLine(result, happening);
}

void CModemSimulator::FinishLine(const FinalResult& result, const Event& event) {
    m_Output.Result(result, m_Modem.settings);
    if (m_Modem.entry.Active())
        m_Output.Raw(kPrompt);
    const auto& silentAfter = m_Modem.profile.faults.silentAfter;
    if (silentAfter && ++m_nLines >= *silentAfter)
        m_Output.Silence();
    LetHappen(event);
}

void CModemSimulator::Answer(EResult code) {
    m_Output.BeginAnswer(m_Modem.now);
    m_Output.Result({code}, m_Modem.settings);
}

std::size_t CModemSimulator::TakeMessage(std::string_view bytes) {
    std::string echo;
    std::size_t taken = 0;
    auto event = CMessageEntry::EEvent::None;
    while (taken < bytes.size() && event == CMessageEntry::EEvent::None)
        event = m_Modem.entry.Feed(bytes[taken++], m_Modem.settings, echo);
    m_Output.Raw(echo);
    FinishMessage(event);
    return taken;
}

void CModemSimulator::FinishMessage(CMessageEntry::EEvent event) {
    if (event == CMessageEntry::EEvent::NewLine)
        m_Output.Raw(kPrompt);
    if (event == CMessageEntry::EEvent::Cancelled)
        Answer(EResult::Ok);
    if (event != CMessageEntry::EEvent::Done)
        return;
    Reply reply;
    const FinalResult result = SendEnteredMessage(m_Modem, reply);
    m_Output.BeginAnswer(m_Modem.now);
    m_Output.Information(reply.lines, m_Modem.settings);
    m_Output.Result(result, m_Modem.settings);
}

// The far end of a data call sends everything back.
std::size_t CModemSimulator::TakeData(std::string_view bytes) {
    const auto escape = static_cast<char>(m_Modem.settings.registers[2]);
    const TimeMs guard = m_Modem.settings.GuardMilliseconds();
    std::size_t taken = bytes.size();
    if (EscapeEnabled())
        taken = m_Modem.call.Escapes().Feed(bytes, escape, guard, m_Modem.now);
    m_Output.Raw(bytes.substr(0, taken));
    if (guard == 0)
        AdvanceCall();
    return taken;
}

std::size_t CModemSimulator::TakeWhileDialling(std::string_view bytes) {
    // The line feed of an opener that ends its lines with both is no key.
    if (bytes.front() == '\n')
        return 1;
    m_Modem.call.HangUp();
    Answer(EResult::NoCarrier);
    return 1;
}

void CModemSimulator::Advance(TimeMs now) {
    m_Modem.now = std::max(now, m_Modem.now);
    AdvanceCall();
    if (m_RingTimer.Due(m_Modem.now))
        RingByTimer();
    if (m_MessageTimer.Due(m_Modem.now))
        Receive(NextMessageText(), {});
    if (m_RegistrationTimer.Due(m_Modem.now))
        Register(m_Modem.registration == 1 ? 2 : 1);
    // A call that outlives its opener may end while there is nobody to tell.
    if (!m_bOpen)
        m_Output.Discard();
}

void CModemSimulator::AdvanceCall() {
    CCall& call = m_Modem.call;
    const bool escaped = call.State() == ECallState::Online && EscapeEnabled() &&
                         call.Escapes().Escaped(m_Modem.settings.GuardMilliseconds(), m_Modem.now);
    if (escaped)
        Escape();
    if (!call.Deadline() || m_Modem.now < *call.Deadline())
        return;
    if (call.State() != ECallState::Dialling) {
        EndFarCall();
        return;
    }
    const EResult outcome = call.DialOutcome();
    call.HangUp();
    if (outcome == EResult::Connect)
        call.Connect(m_Modem.profile.hangUpAfter, m_Modem.now);
    Answer(outcome);
}

void CModemSimulator::Escape() {
    m_Modem.call.Escape();
    Answer(EResult::Ok);
}

void CModemSimulator::LetHappen(const Event& event) {
    switch (event.kind) {
    case EHappening::None:
        break;
    case EHappening::Ring:
        Ring();
        break;
    case EHappening::Message:
        Receive(event.text, event.number);
        break;
    case EHappening::Registration:
        Register(event.value);
        break;
    case EHappening::FarHangUp:
        EndFarCall();
        break;
    case EHappening::Vanish:
        m_Output.Vanish(m_Modem.now);
        break;
    case EHappening::Silence:
        m_Output.Silence();
        break;
    case EHappening::Flood:
        m_Output.StartFlood();
        break;
    }
}

// One period after the last ring the caller gives up.
void CModemSimulator::RingByTimer() {
    if (m_nRingsLeft == 0) {
        m_RingTimer.Stop();
        if (m_Modem.call.State() == ECallState::Ringing)
            m_Modem.call.HangUp();
        return;
    }
    if (Ring() && m_nRingsLeft)
        --*m_nRingsLeft;
}

// False when the line is in use or text is being entered: the caller finds it busy.
bool CModemSimulator::Ring() {
    if (m_Modem.entry.Active() || m_Output.Full() || !m_Modem.call.Ring())
        return false;
    m_Output.Raw(FormatResult({EResult::Ring}, m_Modem.settings));
    if (m_Modem.settings.callerTold != 0)
        m_Output.Information({"+CLIP: \"" + std::string(kFarNumber) + "\",145"}, m_Modem.settings);
    const int answerAfter = m_Modem.settings.registers[0];
    if (answerAfter > 0 && m_Modem.call.Rings() >= answerAfter) {
        m_Modem.call.Connect(m_Modem.profile.hangUpAfter, m_Modem.now);
        Answer(EResult::Connect);
    }
    return true;
}

void CModemSimulator::EndFarCall() {
    const ECallState state = m_Modem.call.State();
    m_Modem.call.HangUp();
    if (state == ECallState::Online || state == ECallState::Escaped || state == ECallState::Voice)
        Answer(EResult::NoCarrier);
}

// Whether an unsolicited line can be sent now; it is lost otherwise.
bool CModemSimulator::MayInterrupt() const {
    const ECallState state = m_Modem.call.State();
    return state != ECallState::Online && state != ECallState::Dialling &&
           !m_Modem.entry.Active() && !m_Output.Flooding() && !m_Output.Full();
}

std::string CModemSimulator::NextMessageText() {
    return "Simulated message " + std::to_string(++m_nReceived);
}

void CModemSimulator::Receive(const std::string& text, std::string number) {
    const std::optional<int> index = Store(text, std::move(number));
    if (!index || m_Modem.settings.indications[1] == 0 || !MayInterrupt())
        return;
    m_Output.Information({"+CMTI: \"SM\"," + std::to_string(*index)}, m_Modem.settings);
}

// The place it has found; nothing without one: the network keeps the message then.
std::optional<int> CModemSimulator::Store(const std::string& text, std::string number) {
    if (!m_Modem.profile.sim)
        return std::nullopt;
    const std::int64_t seconds = m_Modem.CalendarSeconds();
    Message message;
    message.number = number.empty() ? std::string(kFarNumber) : std::move(number);
    message.text = text.empty() ? "Simulated message" : text.substr(0, kMessageTextLimit);
    message.time = CalendarText(seconds);
    message.pdu = EncodeDeliver(message.number, message.text, seconds);
    return m_Modem.store.Add(std::move(message));
}

void CModemSimulator::Register(int state) {
    m_Modem.registration = state;
    if (m_Modem.settings.registrationTold != 0 && MayInterrupt())
        m_Output.Information({"+CREG: " + RegistrationText(m_Modem)}, m_Modem.settings);
}

std::optional<TimeMs> CModemSimulator::NextDeadline() const {
    const bool online = m_Modem.call.State() == ECallState::Online && EscapeEnabled();
    std::optional<TimeMs> next;
    for (const std::optional<TimeMs>& due :
         {m_Output.Deadline(m_Modem.now), m_Modem.call.Deadline(), m_RingTimer.Next(),
          m_MessageTimer.Next(), m_RegistrationTimer.Next(),
          online ? m_Modem.call.Escapes().Deadline(m_Modem.settings.GuardMilliseconds())
                 : std::optional<TimeMs>{}})
        if (due && (!next || *due < *next))
            next = due;
    return next;
}

} // namespace modemsim
