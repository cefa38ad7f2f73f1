#include "tools/Pdu.h"

#include "tools/GsmAlphabet.h"

#include <algorithm>
#include <chrono>
#include <vector>

namespace modemsim {
namespace {

using Octets = std::vector<std::uint8_t>;

// Fields of the first octets; the names are those of 3GPP 23.040 without their prefixes.
constexpr std::uint8_t kDeliverNoMore = 0x04;
constexpr std::uint8_t kSubmitKind = 0x01;
constexpr std::uint8_t kKindMask = 0x03;
constexpr std::uint8_t kHeaderFlag = 0x40;
constexpr std::uint8_t kNationalNumber = 0x81;
constexpr std::uint8_t kInternationalNumber = 0x91;
constexpr std::size_t kNumberDigitLimit = 20;

constexpr std::string_view kHexDigits = "0123456789ABCDEF";
constexpr std::string_view kNumberDigits = "0123456789*#abc"; // by semi-octet; 15 fills up

std::string ToHex(const Octets& octets) {
    std::string hex;
    for (const std::uint8_t octet : octets) {
        hex += kHexDigits[octet >> 4];
        hex += kHexDigits[octet & 0x0F];
    }
    return hex;
}

std::optional<Octets> FromHex(std::string_view hex) {
    if (hex.size() % 2 != 0)
        return std::nullopt;
    Octets octets;
    for (std::size_t place = 0; place < hex.size(); place += 2) {
        unsigned octet = 0;
        for (const char digit : hex.substr(place, 2)) {
            const bool lower = digit >= 'a' && digit <= 'f';
            const std::size_t value =
                kHexDigits.find(lower ? static_cast<char>(digit - 32) : digit);
            if (value == std::string_view::npos)
                return std::nullopt;
            octet = octet << 4 | static_cast<unsigned>(value);
        }
        octets.push_back(static_cast<std::uint8_t>(octet));
    }
    return octets;
}

void AddNumber(Octets& octets, std::string_view number) {
    const bool international = number.starts_with('+');
    const std::string_view digits = number.substr(international ? 1 : 0, kNumberDigitLimit);
    octets.push_back(static_cast<std::uint8_t>(digits.size()));
    octets.push_back(international ? kInternationalNumber : kNationalNumber);
    for (std::size_t place = 0; place < digits.size(); place += 2) {
        const std::size_t low = kNumberDigits.find(digits[place]) & 0x0F;
        const std::size_t high =
            place + 1 < digits.size() ? kNumberDigits.find(digits[place + 1]) & 0x0F : 0x0F;
        octets.push_back(static_cast<std::uint8_t>(high << 4 | low));
    }
}

void AddTime(Octets& octets, std::int64_t seconds) {
    using namespace std::chrono;
    const sys_seconds moment{std::chrono::seconds{seconds}};
    const auto midnight = floor<days>(moment);
    const year_month_day date{midnight};
    const hh_mm_ss time{moment - midnight};
    const auto addSwapped = [&](unsigned value) {
        octets.push_back(static_cast<std::uint8_t>((value % 10) << 4 | (value / 10) % 10));
    };
    addSwapped(static_cast<unsigned>(static_cast<int>(date.year()) % 100));
    addSwapped(static_cast<unsigned>(date.month()));
    addSwapped(static_cast<unsigned>(date.day()));
    addSwapped(static_cast<unsigned>(time.hours().count()));
    addSwapped(static_cast<unsigned>(time.minutes().count()));
    addSwapped(static_cast<unsigned>(time.seconds().count()));
    octets.push_back(0); // quarters of an hour off UTC
}

void AddText(Octets& octets, std::string_view text) {
    std::vector<std::uint8_t> septets = ToSeptets(text.substr(0, kMessageTextLimit));
    septets.resize(std::min(septets.size(), kMessageTextLimit));
    octets.push_back(static_cast<std::uint8_t>(septets.size()));
    const Octets packed = PackSeptets(septets);
    octets.insert(octets.end(), packed.begin(), packed.end());
}

Pdu Finish(const Octets& octets) {
    return {ToHex(octets), static_cast<int>(octets.size()) - 1};
}

// Reads octets one by one; past the end it only remembers that.
class CReader {
  public:
    explicit CReader(const Octets& octets) : m_Octets(octets) {}

    std::uint8_t Take() {
        m_bShort = m_bShort || m_nPlace == m_Octets.size();
        return m_bShort ? std::uint8_t{0} : m_Octets[m_nPlace++];
    }
    Octets Take(std::size_t count) {
        Octets taken;
        while (count-- > 0 && !m_bShort)
            taken.push_back(Take());
        return taken;
    }
    std::size_t Left() const { return m_Octets.size() - m_nPlace; }
    bool Short() const { return m_bShort; }

  private:
    const Octets& m_Octets;
    std::size_t m_nPlace = 0;
    bool m_bShort = false;
};

std::string TakeNumber(CReader& reader) {
    const std::size_t count = reader.Take();
    std::string number = reader.Take() == kInternationalNumber ? "+" : "";
    for (const std::uint8_t pair : reader.Take((count + 1) / 2))
        for (const int semi : {pair & 0x0F, pair >> 4})
            if (semi < 0x0F)
                number += kNumberDigits[static_cast<std::size_t>(semi)];
    return number;
}

// Octets of the validity period, by its format bits.
std::size_t ValidityLength(std::uint8_t first) {
    constexpr std::size_t kLengths[] = {0, 7, 1, 7};
    return kLengths[(first >> 3) & 0x03];
}

std::string TakeText(CReader& reader, std::uint8_t coding, bool headed) {
    const std::size_t length = reader.Take();
    const bool septets = (coding & 0xCC) == 0 || (coding & 0xF4) == 0xF0;
    const Octets octets = reader.Take(septets ? (length * 7 + 7) / 8 : length);
    if (!septets || headed)
        return ToHex(octets);
    return FromSeptets(UnpackSeptets(octets, length));
}

} // namespace

Pdu EncodeDeliver(std::string_view number, std::string_view text, std::int64_t seconds) {
    Octets octets = {0, kDeliverNoMore};
    AddNumber(octets, number);
    octets.insert(octets.end(), {0, 0}); // protocol, coding: plain text in the 7-bit alphabet
    AddTime(octets, seconds);
    AddText(octets, text);
    return Finish(octets);
}

Pdu EncodeSubmit(std::string_view number, std::string_view text) {
    Octets octets = {0, kSubmitKind, 0};
    AddNumber(octets, number);
    octets.insert(octets.end(), {0, 0});
    AddText(octets, text);
    return Finish(octets);
}

std::optional<DecodedPdu> DecodeSubmit(std::string_view hex) {
    const std::optional<Octets> octets = FromHex(hex);
    if (!octets)
        return std::nullopt;
    CReader reader(*octets);
    reader.Take(reader.Take()); // the service centre
    DecodedPdu pdu;
    pdu.length = static_cast<int>(reader.Left());
    const std::uint8_t first = reader.Take();
    reader.Take(); // the reference
    pdu.number = TakeNumber(reader);
    reader.Take(); // the protocol
    const std::uint8_t coding = reader.Take();
    reader.Take(ValidityLength(first));
    pdu.text = TakeText(reader, coding, (first & kHeaderFlag) != 0);
    if (reader.Short() || reader.Left() != 0 || (first & kKindMask) != kSubmitKind)
        return std::nullopt;
    return pdu;
}

} // namespace modemsim
