#include "tools/MessageEntry.h"

#include "tools/Pdu.h"

#include <utility>

namespace modemsim {
namespace {

constexpr char kSendKey = 0x1A;   // Ctrl+Z
constexpr char kCancelKey = 0x1B; // ESC
constexpr char kDeleteKey = 0x7F;

// Two digits for each octet of the longest PDU (164 on the way out) and of its service centre (12).
constexpr std::size_t kPduDigitLimit = std::size_t{2} * (164 + 12);

} // namespace

void CMessageEntry::Start(bool pdu) {
    m_bActive = true;
    m_bPdu = pdu;
    m_bTooLong = false;
    m_strText.clear();
}

void CMessageEntry::StartText(std::string number) {
    Start(false);
    m_strNumber = std::move(number);
}

void CMessageEntry::StartPdu(int length) {
    Start(true);
    m_nLength = length;
}

void CMessageEntry::TakeByte(char byte) {
    if (m_strText.size() < (m_bPdu ? kPduDigitLimit : kMessageTextLimit))
        m_strText += byte;
    else
        m_bTooLong = true;
}

CMessageEntry::EEvent CMessageEntry::Feed(char byte, const ModemSettings& settings,
                                          std::string& echo) {
    const bool echoOn = settings.echo != 0;
    const auto code = static_cast<unsigned char>(byte);
    if (byte == kSendKey || byte == kCancelKey) {
        m_bActive = false;
        return byte == kSendKey ? EEvent::Done : EEvent::Cancelled;
    }
    if (code == settings.registers[5] || byte == kDeleteKey) {
        if (m_strText.empty() || m_bTooLong)
            return EEvent::None;
        m_strText.pop_back();
        if (echoOn)
            echo += "\b \b";
        return EEvent::None;
    }
    if (code == settings.registers[3]) {
        if (m_bPdu)
            return EEvent::None;
        TakeByte('\n');
        return EEvent::NewLine;
    }
    if (code < ' ')
        return EEvent::None;
    TakeByte(byte);
    if (echoOn)
        echo += byte;
    return EEvent::None;
}

} // namespace modemsim
