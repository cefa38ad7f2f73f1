#include "tools/CommandLine.h"

#include "common/Ascii.h"

#include <charconv>

namespace modemsim {
namespace {

constexpr std::size_t kParameterLimit = 16;

bool IsLetter(char byte) {
    return byte >= 'A' && byte <= 'Z';
}

// What V.250 allows in the name of an extended command.
bool IsNameByte(char byte) {
    return IsLetter(byte) || IsDigit(byte) ||
           std::string_view("!%-./:_").find(byte) != std::string_view::npos;
}

} // namespace

std::optional<std::uint64_t> ParseNumber(std::string_view text, std::uint64_t limit) {
    std::uint64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, number);
    if (text.empty() || failure != std::errc{} || stop != end || number > limit)
        return std::nullopt;
    return number;
}

CCommandLine::CCommandLine(std::string_view line) {
    bool quoted = false;
    m_strLine.reserve(line.size());
    for (const char byte : line) {
        if (byte == '"')
            quoted = !quoted;
        if (byte == ' ' && !quoted)
            continue;
        const bool lower = !quoted && byte >= 'a' && byte <= 'z';
        m_strLine += lower ? static_cast<char>(byte - 'a' + 'A') : byte;
    }
}

char CCommandLine::Peek() const {
    return m_nPlace < m_strLine.size() ? m_strLine[m_nPlace] : '\0';
}

bool CCommandLine::TakeIf(char byte) {
    if (m_nPlace == m_strLine.size() || m_strLine[m_nPlace] != byte)
        return false;
    ++m_nPlace;
    return true;
}

std::string CCommandLine::TakeDigits() {
    const std::size_t start = m_nPlace;
    while (IsDigit(Peek()))
        ++m_nPlace;
    return m_strLine.substr(start, m_nPlace - start);
}

std::optional<Command> CCommandLine::Fail() {
    m_bMalformed = true;
    m_nPlace = m_strLine.size();
    return std::nullopt;
}

std::optional<Command> CCommandLine::Next() {
    while (TakeIf(';')) {
    }
    if (m_nPlace == m_strLine.size())
        return std::nullopt;
    if (Peek() == '+')
        return NextExtended();
    if (Peek() == 'S')
        return NextRegister();
    return NextBasic();
}

std::optional<Command> CCommandLine::NextBasic() {
    Command command;
    if (TakeIf('&'))
        command.name += '&';
    if (!IsLetter(Peek()))
        return Fail();
    command.name += m_strLine[m_nPlace++];

    // A dial string goes to the line's end, whatever it holds.
    if (command.name == "D") {
        command.parameters.push_back(m_strLine.substr(m_nPlace));
        m_nPlace = m_strLine.size();
        return command;
    }
    std::string digits = TakeDigits();
    if (digits.empty())
        return command;
    command.form = EForm::Set;
    command.parameters.push_back(std::move(digits));
    return command;
}

std::optional<Command> CCommandLine::NextRegister() {
    Command command;
    command.name = m_strLine[m_nPlace++];
    command.parameters.push_back(TakeDigits());
    if (TakeIf('?')) {
        command.form = EForm::Read;
        return command;
    }
    if (!TakeIf('='))
        return Fail();
    command.form = EForm::Set;
    command.parameters.push_back(TakeDigits());
    return command;
}

std::optional<Command> CCommandLine::NextExtended() {
    Command command;
    command.name = m_strLine[m_nPlace++];
    while (IsNameByte(Peek()))
        command.name += m_strLine[m_nPlace++];

    if (TakeIf('?')) {
        command.form = EForm::Read;
    } else if (TakeIf('=')) {
        command.form = TakeIf('?') ? EForm::Test : EForm::Set;
        if (command.form == EForm::Set && !TakeParameters(command.parameters))
            return Fail();
    }
    const bool ended = m_nPlace == m_strLine.size() || TakeIf(';');
    if (!ended)
        return Fail();
    return command;
}

// Stops before the semicolon or at the line's end; false when a quote stays open, text follows a
// closing quote or there are too many.
bool CCommandLine::TakeParameters(std::vector<std::string>& parameters) {
    do {
        if (parameters.size() == kParameterLimit)
            return false;
        const bool quoted = TakeIf('"');
        const std::size_t start = m_nPlace;
        const std::size_t stop = m_strLine.find_first_of(quoted ? "\"" : ",;", start);
        if (quoted && stop == std::string::npos)
            return false;
        m_nPlace = stop == std::string::npos ? m_strLine.size() : stop;
        parameters.push_back(m_strLine.substr(start, m_nPlace - start));
        if (quoted)
            ++m_nPlace;
    } while (TakeIf(','));
    return m_nPlace == m_strLine.size() || Peek() == ';';
}

} // namespace modemsim
