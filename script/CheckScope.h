// CCheckScope: the names that a check knows at the place where it is, and what each was declared
// as.
//
// Lives for one check, on one thread. Built-ins, globals and functions are known from the first
// scope on; scopes are opened and closed like blocks.
#pragma once

#include "platform/Types.h"
#include "script/BuiltinTable.h"

#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

// What is known of a name, as in a ScriptSymbol.
struct CheckSymbol {
    BYTE size = 0;
    BYTE depth = 0;
    bool isArray = false;
    std::optional<std::int32_t> elements;  // of an array whose dimension is a number
    const BuiltinEntry* builtin = nullptr; // of a built-in
    std::optional<std::size_t> parameters; // of a script's function, how many
};

class CCheckScope {
  public:
    // With the built-ins in it.
    CCheckScope();

    // A name in the innermost scope; null when it is there already. Valid until the next one.
    CheckSymbol* Define(std::string_view name, const CheckSymbol& symbol);

    // What a name means here; null for one that is not known.
    const CheckSymbol* Find(std::string_view name) const;

    void Open() { m_scopes.emplace_back(); }
    void Close() { m_scopes.pop_back(); }

  private:
    std::vector<std::unordered_map<std::string_view, CheckSymbol>> m_scopes;
};
