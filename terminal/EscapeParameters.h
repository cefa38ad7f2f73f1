// CEscapeParameters: takes the parameters of a control sequence apart, one by one.
//
// Pure; looks at the given text, which must outlive it. Parameters are separated by semicolons, and
// an empty one does not count: "5;10" and ";5;;10;" hold the same two. A value has at most two
// characters.
#pragma once

#include <optional>
#include <string_view>

class CEscapeParameters {
  public:
    explicit CEscapeParameters(std::string_view text) : m_text(text) {}

    // The value of the next parameter; nothing when there is none, or when it is too long to be
    // used.
    std::optional<int> Next();

    // The value of one parameter's text: decimal, 0 when there are no digits. Nothing for an empty
    // text or one of three and more characters.
    static std::optional<int> Value(std::string_view text);

  private:
    std::string_view m_text;
};
