#include "tools/MessageStore.h"

#include <algorithm>
#include <utility>

namespace modemsim {
namespace {

constexpr std::array<std::string_view, 5> kStatusNames = {"REC UNREAD", "REC READ", "STO UNSENT",
                                                          "STO SENT", "ALL"};

} // namespace

std::string_view StatusName(int status) {
    return kStatusNames.at(static_cast<std::size_t>(status));
}

std::optional<int> StatusNamed(std::string_view name) {
    const auto* found = std::ranges::find(kStatusNames, name);
    if (found == kStatusNames.end())
        return std::nullopt;
    return static_cast<int>(found - kStatusNames.begin());
}

std::optional<int> CMessageStore::Add(Message message) {
    const auto place = std::ranges::find_if(m_Places, [](const auto& slot) { return !slot; });
    if (place == m_Places.end())
        return std::nullopt;
    *place = std::move(message);
    return static_cast<int>(place - m_Places.begin()) + 1;
}

Message* CMessageStore::Find(int index) {
    if (index < 1 || index > kCapacity)
        return nullptr;
    auto& place = m_Places[static_cast<std::size_t>(index - 1)];
    return place ? &*place : nullptr;
}

bool CMessageStore::Remove(int index) {
    if (index < 1 || index > kCapacity)
        return false;
    m_Places[static_cast<std::size_t>(index - 1)].reset();
    return true;
}

int CMessageStore::Count() const {
    return static_cast<int>(
        std::ranges::count_if(m_Places, [](const auto& place) { return place.has_value(); }));
}

} // namespace modemsim
