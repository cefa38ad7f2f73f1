#include "script/CheckScope.h"

#include "script/ScriptValue.h"

CCheckScope::CCheckScope() {
    Open();
    for (const BuiltinEntry& entry : g_Builtins) {
        if (entry.handler == nullptr)
            continue;
        CheckSymbol symbol;
        symbol.size = kSizeFunction;
        symbol.builtin = &entry;
        Define(entry.name, symbol);
    }
}

CheckSymbol* CCheckScope::Define(std::string_view name, const CheckSymbol& symbol) {
    const auto [entry, isNew] = m_scopes.back().try_emplace(name, symbol);
    return isNew ? &entry->second : nullptr;
}

const CheckSymbol* CCheckScope::Find(std::string_view name) const {
    for (auto scope = m_scopes.rbegin(); scope != m_scopes.rend(); ++scope)
        if (const auto entry = scope->find(name); entry != scope->end())
            return &entry->second;
    return nullptr;
}
