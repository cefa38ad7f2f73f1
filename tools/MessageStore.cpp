#include "tools/MessageStore.h"

#include <algorithm>
#include <utility>

namespace modemsim {
namespace {

constexpr std::array<std::string_view, 5> statusNames = {"REC UNREAD", "REC READ", "STO UNSENT",
                                                         "STO SENT", "ALL"};

} // namespace

std::string_view StatusName(int status) {
    return statusNames.at(static_cast<std::size_t>(status));
}

std::optional<int> StatusNamed(std::string_view name) {
    const auto* found = std::ranges::find(statusNames, name);
    if (found == statusNames.end())
        return std::nullopt;
    return static_cast<int>(found - statusNames.begin());
}

std::optional<int> CMessageStore::Add(SMessage message) {
    const auto place = std::ranges::find_if(m_Places, [](const auto& slot) { return !slot; });
    if (place == m_Places.end())
        return std::nullopt;
    *place = std::move(message);
    return static_cast<int>(place - m_Places.begin()) + 1;
}

SMessage* CMessageStore::Find(int index) {
    if (index < 1 || index > capacity)
        return nullptr;
    auto& place = m_Places[static_cast<std::size_t>(index - 1)];
    return place ? &*place : nullptr;
}

bool CMessageStore::Remove(int index) {
    if (index < 1 || index > capacity)
        return false;
    m_Places[static_cast<std::size_t>(index - 1)].reset();
    return true;
}

int CMessageStore::Count() const {
    return static_cast<int>(
        std::ranges::count_if(m_Places, [](const auto& place) { return place.has_value(); }));
}

} // namespace modemsim
