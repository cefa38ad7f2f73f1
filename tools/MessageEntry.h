// Collects what is typed after the "> " of AT+CMGS, until Ctrl+Z sends it or ESC gives it up.
// Owned by the modem's state, one thread at a time; bounded and total for any bytes.
#pragma once

#include "tools/ModemSettings.h"

#include <string>

namespace modemsim {

class CMessageEntry {
  public:
    enum class EEvent { None, NewLine, Done, Cancelled };

    // Text for a number, or a PDU of so many octets.
    void StartText(std::string number);
    void StartPdu(int length);

    bool Active() const { return m_bActive; }

    // Takes one byte while active; appends what is to be echoed. Done and Cancelled end the entry;
    // what was entered can still be asked for.
    EEvent Feed(char byte, const ModemSettings& settings, std::string& echo);

    void Stop() { m_bActive = false; }

    bool IsPdu() const { return m_bPdu; }
    int PduLength() const { return m_nLength; }
    const std::string& Number() const { return m_strNumber; }
    const std::string& Text() const { return m_strText; }

    // True when more was entered than any message holds; Text() then has only the beginning.
    bool TooLong() const { return m_bTooLong; }

  private:
    void Start(bool pdu);
    void TakeByte(char byte);

    bool m_bActive = false;
    bool m_bPdu = false;
    bool m_bTooLong = false;
    int m_nLength = 0;
    std::string m_strNumber;
    std::string m_strText;
};

} // namespace modemsim
