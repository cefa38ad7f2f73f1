#include "terminal/ModemNames.h"

#include "common/InterfacePtr.h"
#include "telephony/ITapi.h"
#include "telephony/Tapi.h"

#include <array>

namespace {

constexpr DWORD kNameSize = 260;
constexpr std::size_t kFirstRoom = 10;

} // namespace

BOOL EnumerateModems(ModemNames& names) {
    names.clear();
    names.reserve(kFirstRoom);
    CInterfacePtr<ITapi> telephony;
    CreateTapi(telephony.Receive(), nullptr);
    if (!telephony || !CVTapi::LoadTapi())
        return FALSE;
    std::array<char, kNameSize> name;
    for (BOOL isFirst = TRUE; telephony->IterateModems(name.data(), kNameSize, isFirst) == 0;
         isFirst = FALSE)
        names.emplace_back(name.data());
    return TRUE;
}
