#include "tools/Call.h"

#include <algorithm>
#include <array>
#include <span>

namespace modemsim {
namespace {

const std::array<DialRule, 3> kBuiltInRules = {
    {{"1", EResult::Connect}, {"2", EResult::Busy}, {"3", EResult::NoAnswer}}};

const DialRule* FindRule(std::span<const DialRule> rules, const std::string& digits) {
    const auto found = std::ranges::find_if(
        rules, [&](const DialRule& rule) { return digits.ends_with(rule.ending); });
    return found == rules.end() ? nullptr : &*found;
}

} // namespace

EResult CCall::Outcome(const std::string& number, const SimulatorProfile& profile) {
    // Letters and marks among the digits say how to dial, not whom.
    std::string digits;
    std::ranges::copy_if(number, std::back_inserter(digits), [](char byte) {
        return std::string_view("0123456789*#+").find(byte) != std::string_view::npos;
    });
    const DialRule* rule = FindRule(profile.dialRules, digits);
    if (rule == nullptr)
        rule = FindRule(kBuiltInRules, digits);
    return rule == nullptr ? EResult::NoCarrier : rule->result;
}

void CCall::Dial(EResult outcome, TimeMs until) {
    HangUp();
    m_eState = ECallState::Dialling;
    m_eOutcome = outcome;
    m_tDeadline = until;
}

void CCall::StartVoice() {
    HangUp();
    m_eState = ECallState::Voice;
}

void CCall::Connect(TimeMs hangUpAfter, TimeMs now) {
    HangUp();
    m_eState = ECallState::Online;
    if (hangUpAfter > 0)
        m_tDeadline = now + hangUpAfter;
    m_Escapes.Start(now);
}

bool CCall::Resume(TimeMs now) {
    if (m_eState != ECallState::Escaped)
        return false;
    m_eState = ECallState::Online;
    m_Escapes.Start(now);
    return true;
}

void CCall::Escape() {
    if (m_eState == ECallState::Online)
        m_eState = ECallState::Escaped;
}

void CCall::HangUp() {
    m_eState = ECallState::Idle;
    m_tDeadline.reset();
    m_nRings = 0;
}

bool CCall::Ring() {
    if (m_eState != ECallState::Idle && m_eState != ECallState::Ringing)
        return false;
    m_eState = ECallState::Ringing;
    m_nRings = std::min(m_nRings + 1, 255); // S1 shows it and holds no more
    return true;
}

} // namespace modemsim
