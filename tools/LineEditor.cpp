#include "tools/LineEditor.h"

namespace modemsim {
namespace {

constexpr char kDeleteKey = 0x7F;

bool IsControl(char byte) {
    return static_cast<unsigned char>(byte) < ' ';
}

} // namespace

void CLineEditor::Clear() {
    m_eState = EState::Start;
    m_bTooLong = false;
    m_strBody.clear();
}

CLineEditor::EEvent CLineEditor::FinishLine() {
    const bool whole = m_eState == EState::Body;
    const bool tooLong = m_bTooLong;
    if (whole && !tooLong)
        m_strLast = m_strBody;
    Clear();
    if (!whole)
        return EEvent::None;
    return tooLong ? EEvent::TooLong : EEvent::Line;
}

// Erases on the opener's screen as well: back, blank, back.
void CLineEditor::TakeBack(std::string& echo, bool echoOn) {
    if (m_eState == EState::Start || m_eState == EState::Skipping || m_bTooLong)
        return;
    if (m_eState == EState::Prefix)
        m_eState = m_bPrefixFirst ? EState::Start : EState::Skipping;
    else if (m_strBody.empty())
        m_eState = EState::Prefix;
    else
        m_strBody.pop_back();
    if (echoOn)
        echo += "\b \b";
}

CLineEditor::EEvent CLineEditor::TakeByte(char byte) {
    if (m_eState == EState::Body) {
        if (m_strBody.size() < kLineLimit)
            m_strBody += byte;
        else
            m_bTooLong = true;
        return EEvent::None;
    }
    if (m_eState == EState::Prefix && (byte == 'T' || byte == 't')) {
        m_eState = EState::Body;
        return EEvent::None;
    }
    if (m_eState == EState::Prefix && byte == '/' && m_bPrefixFirst) {
        Clear();
        return EEvent::Line;
    }
    if (byte == 'A' || byte == 'a') {
        m_bPrefixFirst = m_eState == EState::Start;
        m_eState = EState::Prefix;
        return EEvent::None;
    }
    if (byte != ' ' || m_eState == EState::Prefix)
        m_eState = EState::Skipping;
    return EEvent::None;
}

CLineEditor::EEvent CLineEditor::Feed(char byte, const ModemSettings& settings, std::string& echo) {
    const bool echoOn = settings.echo != 0;
    const auto code = static_cast<unsigned char>(byte);
    if (code == settings.registers[3]) {
        if (echoOn)
            echo += byte;
        return FinishLine();
    }
    if (code == settings.registers[5] || byte == kDeleteKey) {
        TakeBack(echo, echoOn);
        return EEvent::None;
    }
    // The line feed of an opener that ends its lines with both.
    if (byte == '\n')
        return EEvent::None;
    if (echoOn)
        echo += byte;
    return IsControl(byte) ? EEvent::None : TakeByte(byte);
}

} // namespace modemsim
