// Takes a command line apart, one command at a time, since each is run before the next is looked
// at. Owned by whoever runs the line; total for any text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace modemsim {

enum class EForm {
    Execute = 1, // ATE, AT+CSQ
    Read = 2,    // ATS0?, AT+CREG?
    Set = 4,     // ATE1, ATS0=1, AT+CREG=1
    Test = 8     // AT+CREG=?
};

struct Command {
    std::string name; // upper case; "E", "&F", "S", "+CSQ"
    EForm form = EForm::Execute;
    std::vector<std::string> parameters; // quotes taken off; for "S" the register stands first
};

// A parameter's number; nothing if it is not all digits or exceeds the limit.
std::optional<std::uint64_t> ParseNumber(std::string_view text, std::uint64_t limit);

class CCommandLine {
  public:
    // The line without its AT.
    explicit CCommandLine(std::string_view line);

    // The next command; nothing at the end or when what follows is no command (Malformed() then).
    std::optional<Command> Next();

    bool Malformed() const { return m_bMalformed; }

  private:
    std::optional<Command> NextBasic();
    std::optional<Command> NextExtended();
    std::optional<Command> NextRegister();
    std::optional<Command> Fail();
    bool TakeParameters(std::vector<std::string>& parameters);
    std::string TakeDigits();
    bool TakeIf(char byte);
    char Peek() const;

    std::string m_strLine; // upper case and without spaces, except in quotes
    std::size_t m_nPlace = 0;
    bool m_bMalformed = false;
};

} // namespace modemsim
