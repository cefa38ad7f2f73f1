// The short messages on the simulated SIM: a fixed number of places, counted from 1, each empty or
// with one message. Owned by the modem's state, one thread at a time.
#pragma once

#include "tools/Pdu.h"

#include <array>
#include <optional>
#include <string>

namespace modemsim {

// The values are those that PDU mode shows.
enum class EMessageStatus { Unread = 0, Read = 1, Unsent = 2, Sent = 3 };
inline constexpr int kAllMessages = 4;

struct Message {
    EMessageStatus status = EMessageStatus::Unread;
    std::string number;
    std::string text;
    std::string time; // as +CMGL shows it; empty for one on its way out
    Pdu pdu;
};

class CMessageStore {
  public:
    static constexpr int kCapacity = 50;

    // Puts a message into the first empty place; returns its index, nothing when all are taken.
    std::optional<int> Add(Message message);

    // The message at an index from 1; null when there is none. Valid until it is removed.
    Message* Find(int index);

    // True also when the place was empty already; false for an index that does not exist.
    bool Remove(int index);

    int Count() const;

  private:
    std::array<std::optional<Message>, kCapacity> m_Places;
};

// "REC UNREAD" and so on; "ALL" for allMessages.
std::string_view StatusName(int status);

// The reverse; nothing for another text.
std::optional<int> StatusNamed(std::string_view name);

} // namespace modemsim
