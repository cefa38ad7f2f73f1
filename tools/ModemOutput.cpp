#include "tools/ModemOutput.h"

#include <algorithm>

namespace modemsim {
namespace {

// With more than this waiting the modem takes no more input, like one whose line is held.
constexpr std::uint64_t kQueueLimit = 65536;

// From the last byte to the hang-up. A hang-up throws away what the opener has not read yet, so it
// gets a moment to read the bytes that were meant to arrive.
constexpr TimeMs kVanishLinger = 100;

} // namespace

CModemOutput::CModemOutput(const Faults& faults)
    : m_Faults(faults), m_Random(faults.seed), m_bSilent(faults.silent || faults.silentAfter == 0) {
}

void CModemOutput::Raw(std::string_view bytes) {
    if (!m_bSilent)
        m_Queue.Append(bytes);
}

void CModemOutput::BeginAnswer(TimeMs now) {
    if (m_bSilent)
        return;
    if (m_Faults.delay > 0)
        m_Queue.HoldUntil(now + m_Faults.delay);
    std::string garbage(m_Faults.garbage, '\0');
    std::ranges::generate(garbage, [this] { return static_cast<char>(m_Random() >> 8 & 0xFF); });
    m_Queue.Append(garbage);
}

void CModemOutput::Information(const std::vector<std::string>& lines,
                               const ModemSettings& settings) {
    Raw(FormatInformation(lines, settings));
}

void CModemOutput::LongLine(std::uint64_t count, const ModemSettings& settings) {
    if (count == 0 || m_bSilent)
        return;
    m_Queue.Append(LineStart(settings));
    m_Queue.AppendPattern(count);
    m_Queue.Append(LineEnd(settings));
}

void CModemOutput::Result(const FinalResult& result, const ModemSettings& settings) {
    if (result.code != EResult::Pending)
        LongLine(m_Faults.longLine, settings);
    Raw(FormatResult(result, settings));
}

void CModemOutput::StartFlood() {
    m_bFlood = !m_bSilent;
    m_nFlooded = 0;
}

void CModemOutput::Vanish(TimeMs now) {
    m_bFlood = false;
    m_Faults.vanishAfter = m_nSent + m_Queue.Size();
    if (m_Queue.Size() == 0)
        m_tVanish = now + kVanishLinger;
}

std::string_view CModemOutput::Ready(TimeMs now) const {
    if (Vanishing())
        return {};
    std::string_view bytes = m_Queue.Ready(now);
    if (bytes.empty() && m_bFlood && m_Queue.Size() == 0)
        bytes = PatternAt(m_nFlooded);
    if (m_Faults.split)
        bytes = bytes.substr(0, 1);
    if (!m_Faults.vanishAfter)
        return bytes;
    const std::uint64_t left = *m_Faults.vanishAfter - m_nSent;
    return bytes.substr(0, static_cast<std::size_t>(std::min<std::uint64_t>(left, bytes.size())));
}

void CModemOutput::Consume(std::size_t count, TimeMs now) {
    if (m_Queue.Size() == 0)
        m_nFlooded += count;
    else
        m_Queue.Consume(count);
    m_nSent += count;
    if (m_Faults.vanishAfter && m_nSent >= *m_Faults.vanishAfter && !Vanishing())
        m_tVanish = now + kVanishLinger;
}

void CModemOutput::Discard() {
    m_Queue.Clear();
}

bool CModemOutput::Full() const {
    return m_Queue.Size() > kQueueLimit;
}

bool CModemOutput::HasRoom(TimeMs now) const {
    return Vanishing() || (!Full() && !m_Queue.Holds(now));
}

std::optional<TimeMs> CModemOutput::Deadline(TimeMs now) const {
    if (Vanishing())
        return Vanished(now) ? std::nullopt : m_tVanish;
    return m_Queue.Deadline(now);
}

} // namespace modemsim
