// Short messages: sending, listing, reading, deleting.
#include "tools/CommandTable.h"

#include <algorithm>
#include <utility>

namespace modemsim {
namespace {

constexpr EErrorKind kMessage = EErrorKind::Message;

// Octets of a PDU without its service centre, on the way out: header and 140 octets of text.
constexpr std::uint64_t kPduLengthLimit = 164;

bool IsNumber(std::string_view text) {
    if (text.starts_with('+'))
        text.remove_prefix(1);
    return !text.empty() && text.size() <= 20 &&
           text.find_first_not_of("0123456789*#") == std::string_view::npos;
}

Outcome Send(Modem& modem, const Command& command, Reply&) {
    const std::string& first = command.parameters.front();
    if (modem.settings.textMode == 0) {
        const auto length = ParseNumber(first, kPduLengthLimit);
        if (!length || *length == 0 || command.parameters.size() != 1)
            return Outcome::Fail(EFailure::BadPdu);
        modem.entry.StartPdu(static_cast<int>(*length));
        return {EResult::Pending};
    }
    // The second parameter, the kind of number, changes nothing here.
    if (!IsNumber(first) || command.parameters.size() > 2)
        return Outcome::Fail(EFailure::BadParameter);
    modem.entry.StartText(first);
    return {EResult::Pending};
}

// The part of +CMGL and +CMGR that follows the index, then the text with its lines.
void ShowMessage(const Modem& modem, const Message& entry, std::string head, Reply& reply) {
    if (modem.settings.textMode == 0) {
        reply.lines.push_back(head + std::to_string(static_cast<int>(entry.status)) + ",," +
                              std::to_string(entry.pdu.length));
        reply.lines.push_back(entry.pdu.hex);
        return;
    }
    head.append("\"").append(StatusName(static_cast<int>(entry.status))).append("\",\"");
    head += entry.number + "\",";
    if (!entry.time.empty())
        head += ",\"" + entry.time + "\"";
    reply.lines.push_back(std::move(head));
    for (std::size_t start = 0; start != std::string::npos;) {
        const std::size_t stop = entry.text.find('\n', start);
        reply.lines.push_back(entry.text.substr(start, stop - start));
        start = stop == std::string::npos ? stop : stop + 1;
    }
}

void MarkRead(Message& entry) {
    if (entry.status == EMessageStatus::Unread)
        entry.status = EMessageStatus::Read;
}

// Which messages AT+CMGL asks for: a word in text mode, a number in PDU mode; new ones by default.
std::optional<int> WantedStatus(const Modem& modem, const Command& command) {
    if (command.form == EForm::Execute)
        return static_cast<int>(EMessageStatus::Unread);
    if (command.parameters.size() != 1)
        return std::nullopt;
    if (modem.settings.textMode != 0)
        return StatusNamed(command.parameters.front());
    const auto number = ParseNumber(command.parameters.front(), kAllMessages);
    return number ? std::optional(static_cast<int>(*number)) : std::nullopt;
}

Outcome List(Modem& modem, const Command& command, Reply& reply) {
    const std::optional<int> wanted = WantedStatus(modem, command);
    if (!wanted)
        return Outcome::Fail(EFailure::BadParameter);
    for (int index = 1; index <= CMessageStore::kCapacity; ++index) {
        Message* entry = modem.store.Find(index);
        if (entry == nullptr)
            continue;
        if (*wanted != kAllMessages && *wanted != static_cast<int>(entry->status))
            continue;
        ShowMessage(modem, *entry, "+CMGL: " + std::to_string(index) + ",", reply);
        MarkRead(*entry);
    }
    return {};
}

Outcome Read(Modem& modem, const Command& command, Reply& reply) {
    const auto index = ParseNumber(command.parameters.front(), CMessageStore::kCapacity);
    Message* entry = index ? modem.store.Find(static_cast<int>(*index)) : nullptr;
    if (entry == nullptr || command.parameters.size() != 1)
        return Outcome::Fail(EFailure::BadIndex);
    ShowMessage(modem, *entry, "+CMGR: ", reply);
    MarkRead(*entry);
    return {};
}

// The second parameter widens the deletion: 1 to 3 to all that were read, sent, entered; 4 to all.
bool IsDeleted(int flag, EMessageStatus status) {
    switch (status) {
    case EMessageStatus::Read:
        return flag >= 1;
    case EMessageStatus::Sent:
        return flag >= 2;
    case EMessageStatus::Unsent:
        return flag >= 3;
    case EMessageStatus::Unread:
        break;
    }
    return flag >= 4;
}

Outcome Delete(Modem& modem, const Command& command, Reply&) {
    const auto& parameters = command.parameters;
    const auto index = ParseNumber(parameters[0], CMessageStore::kCapacity);
    const auto flag = parameters.size() == 2 ? ParseNumber(parameters[1], 4) : std::uint64_t{0};
    if (!index || parameters.size() > 2)
        return Outcome::Fail(EFailure::BadIndex);
    if (!flag)
        return Outcome::Fail(EFailure::BadParameter);
    if (*flag == 0 && !modem.store.Remove(static_cast<int>(*index)))
        return Outcome::Fail(EFailure::BadIndex);
    for (int place = 1; place <= CMessageStore::kCapacity; ++place) {
        const Message* entry = modem.store.Find(place);
        if (entry != nullptr && IsDeleted(static_cast<int>(*flag), entry->status))
            modem.store.Remove(place);
    }
    return {};
}

Outcome Storage(Modem& modem, const Command& command, Reply& reply) {
    const std::string use =
        std::to_string(modem.store.Count()) + "," + std::to_string(CMessageStore::kCapacity);
    if (command.form == EForm::Read) {
        const std::string one = "\"SM\"," + use;
        reply.lines.push_back("+CPMS: " + one + "," + one + "," + one);
        return {};
    }
    const bool known = std::ranges::all_of(command.parameters,
                                           [](const std::string& name) { return name == "SM"; });
    if (!known || command.parameters.size() > 3)
        return Outcome::Fail(EFailure::BadParameter);
    reply.lines.push_back("+CPMS: " + use + "," + use + "," + use);
    return {};
}

Outcome Indications(Modem& modem, const Command& command, Reply& reply) {
    auto wanted = modem.settings.indications;
    if (command.form == EForm::Read) {
        std::string line = "+CNMI: ";
        for (const int value : wanted)
            line += std::to_string(value) + ",";
        line.pop_back();
        reply.lines.push_back(std::move(line));
        return {};
    }
    if (command.parameters.size() > wanted.size())
        return Outcome::Fail(EFailure::BadParameter);
    for (std::size_t place = 0; place < command.parameters.size(); ++place) {
        const auto value = ParseNumber(command.parameters[place], 3);
        if (!value)
            return Outcome::Fail(EFailure::BadParameter);
        wanted[place] = static_cast<int>(*value);
    }
    modem.settings.indications = wanted;
    return {};
}

Outcome CharacterSet(Modem& modem, const Command& command, Reply& reply) {
    if (command.form == EForm::Read) {
        reply.lines.push_back("+CSCS: \"" + modem.settings.characterSet + "\"");
        return {};
    }
    const std::string& name = command.parameters.front();
    if ((name != "GSM" && name != "IRA") || command.parameters.size() != 1)
        return Outcome::Fail(EFailure::BadParameter);
    modem.settings.characterSet = name;
    return {};
}

Outcome ServiceCentre(Modem&, const Command&, Reply& reply) {
    reply.lines.emplace_back("+CSCA: \"+15550000\",145");
    return {};
}

constexpr CommandEntry kEntries[] = {
    {"+CMGS", kSetForm, kMessage, true, Send, "-"},
    {"+CMGL", kExecuteForm | kSetForm, kMessage, true, List,
     "(\"REC UNREAD\",\"REC READ\",\"STO UNSENT\",\"STO SENT\",\"ALL\")"},
    {"+CMGR", kSetForm, kMessage, true, Read, "-"},
    {"+CMGD", kSetForm, kMessage, true, Delete, "(1-50),(0-4)"},
    {"+CPMS", kReadForm | kSetForm, kMessage, true, Storage, "(\"SM\"),(\"SM\"),(\"SM\")"},
    {"+CNMI", kReadForm | kSetForm, kMessage, false, Indications, "(0-3),(0-3),(0-3),(0-3),(0-3)"},
    {"+CSCA", kReadForm, kMessage, true, ServiceCentre, "-"},
    {"+CSCS", kReadForm | kSetForm, EErrorKind::Telephone, false, CharacterSet,
     "(\"GSM\",\"IRA\")"},
};

// The message as it was entered; nothing when it is none.
std::optional<Message> EnteredMessage(const CMessageEntry& entry) {
    Message sent;
    sent.status = EMessageStatus::Sent;
    if (!entry.IsPdu()) {
        sent.number = entry.Number();
        sent.text = entry.Text();
        sent.pdu = EncodeSubmit(sent.number, sent.text);
        return sent;
    }
    const auto decoded = DecodeSubmit(entry.Text());
    if (!decoded || decoded->length != entry.PduLength())
        return std::nullopt;
    sent.number = decoded->number;
    sent.text = decoded->text;
    sent.pdu = {entry.Text(), decoded->length};
    return sent;
}

} // namespace

FinalResult SendEnteredMessage(Modem& modem, Reply& reply) {
    const CMessageEntry& entry = modem.entry;
    if (entry.TooLong())
        return {EResult::Error, EFailure::TooLong, kMessage};
    std::optional<Message> sent = EnteredMessage(entry);
    if (!sent)
        return {EResult::Error, EFailure::BadPdu, kMessage};
    // A message that finds no place was sent all the same.
    modem.store.Add(std::move(*sent));
    modem.messageReference = modem.messageReference % 255 + 1;
    reply.lines.push_back("+CMGS: " + std::to_string(modem.messageReference));
    return {};
}

std::span<const CommandEntry> MessageCommands() {
    return kEntries;
}

} // namespace modemsim
