// Fuzzes the telephony wrapper with a service that answers what it likes, from the same input that
// says what is asked of it.
#include "common/InterfacePtr.h"
#include "fuzz/FuzzPlatform.h"
#include "fuzz/FuzzService.h"
#include "platform/TaskMemory.h"
#include "telephony/Tapi.h"
#include "telephony/TapiRecord.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace {

constexpr int kOperations = 24; // enough to open, call, find and close a few times
constexpr int kMostNested = 3;  // operations of a callback inside another's wait

std::array<CInterfacePtr<ITapi>, 2> s_objects;
int s_nested = 0;

CInterfacePtr<ITapi>& Current() {
    CInterfacePtr<ITapi>& object = s_objects[fuzz::TakeByte() % s_objects.size()];
    if (!object)
        CreateTapi(object.Receive(), nullptr);
    return object;
}

// What is handed out belongs to the caller and is as large as it says, down to the last byte; there
// is nothing after a failure.
template <class Record, class Ask> CTaskMemory<Record> Check(Ask ask) {
    Record* record = nullptr;
    const LONG status = ask(&record);
    CTaskMemory<Record> owner(record);
    fuzz::Require((status >= 0) == (record != nullptr));
    if (!record)
        return owner;
    fuzz::Require(record->dwTotalSize >= sizeof(Record));
    const auto* const bytes = reinterpret_cast<const BYTE*>(record);
    fuzz::Require(std::count(bytes, bytes + record->dwTotalSize, BYTE{1}) >= 0);
    return owner;
}

void CheckText(const std::optional<std::string_view>& text) {
    fuzz::Require(!text || text->find('\0') == std::string_view::npos);
}

void Iterate(ITapi& tapi) {
    std::array<char, 32> name;
    name.fill('#');
    const DWORD size = fuzz::TakeByte() % name.size();
    const LONG status = tapi.IterateModems(name.data(), size, fuzz::TakeByte() % 2);
    fuzz::Require(std::find(name.begin() + size, name.end(), '\0') == name.end());
    fuzz::Require(status != 0 || size == 0 || std::memchr(name.data(), 0, size) != nullptr);
}

void Find(ITapi& tapi) {
    std::string name(fuzz::TakeByte() % 8, '\0');
    std::ranges::generate(name, [] { return static_cast<char>(fuzz::TakeByte()); });
    DWORD device = 0;
    tapi.LineDeviceNameToID(name.c_str(), &device);
    tapi.PhoneDeviceNameToID(name.c_str(), &device);
}

void LineRecords(ITapi& tapi) {
    const auto caps = Check<LINEDEVCAPS>(
        [&](LINEDEVCAPS** record) { return tapi.LineGetDevCaps(fuzz::TakeByte(), record); });
    CheckText(caps ? LineNameOf(*caps) : std::nullopt);
    CheckText(caps ? DeviceTextOf(*caps) : std::nullopt);
    const auto identifier = Check<VARSTRING>(
        [&](VARSTRING** record) { return tapi.LineGetID(record, "comm/datamodem"); });
    fuzz::Require(!identifier || std::ranges::count(BytesOf(*identifier), BYTE{1}) >= 0);
    Check<LINECALLINFO>([&](LINECALLINFO** record) { return tapi.LineGetCallInfo(record); });
}

void PhoneRecords(ITapi& tapi) {
    const auto caps = Check<PHONECAPS>(
        [&](PHONECAPS** record) { return tapi.PhoneGetDevCaps(fuzz::TakeByte(), record); });
    CheckText(caps ? PhoneNameOf(*caps) : std::nullopt);
    Check<PHONESTATUS>([&](PHONESTATUS** record) { return tapi.PhoneGetStatus(record); });
}

void Edit(ITapi& tapi) {
    Check<VARSTRING>([&](VARSTRING** record) {
        return tapi.LineConfigDialogEdit(0, nullptr, "comm", nullptr, 0, record);
    });
}

void FindKey(ITapi& tapi) {
    HKEY key = nullptr;
    fuzz::Require(tapi.GetModemRegKey(0x01010101u * fuzz::TakeByte(), &key) == E_TAPI_FAILED);
}

void Listen(ITapi& tapi);

using fuzz::TakeByte;
constexpr void (*kKinds[])(ITapi&) = {
    Iterate,
    Find,
    LineRecords,
    PhoneRecords,
    Edit,
    [](ITapi& tapi) { tapi.LineOpen(TakeByte(), TakeByte(), LINEMEDIAMODE_DATAMODEM); },
    [](ITapi& tapi) { tapi.LineMakeCall("1", 0, nullptr, TakeByte() % 2); },
    [](ITapi& tapi) { tapi.LineDrop(TakeByte() % 2); },
    [](ITapi& tapi) { tapi.LineClose(); },
    [](ITapi& tapi) { tapi.PhoneOpen(TakeByte(), TakeByte()); },
    [](ITapi& tapi) { tapi.PhoneSetVolume(1, TakeByte(), TakeByte() % 2); },
    [](ITapi& tapi) { tapi.PhoneClose(); },
    FindKey,
    Listen,
    // Inside a wait an object stays; outside of all it may go.
    [](ITapi&) {
        if (s_nested == 0)
            s_objects[TakeByte() % s_objects.size()].Reset();
    },
};

void Operate() {
    const CInterfacePtr<ITapi> object = Current();
    kKinds[TakeByte() % std::size(kKinds)](*object.Get());
}

void OnMessage(DWORD, DWORD, DWORD_PTR, DWORD_PTR, DWORD_PTR, DWORD_PTR) {
    if (s_nested >= kMostNested || !fuzz::HasBytes())
        return;
    ++s_nested;
    Operate();
    --s_nested;
}

void Listen(ITapi& tapi) {
    tapi.LineSetUserCallback(OnMessage, 0);
    tapi.PhoneSetUserCallback(OnMessage, 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const BYTE* data, std::size_t size) {
    fuzz::BeginRun({data, size});
    {
        const fuzz::CFuzzService service({data, size});
        for (int count = 0; count < kOperations && fuzz::HasBytes(); ++count)
            Operate();
        for (CInterfacePtr<ITapi>& object : s_objects)
            object.Reset();
    }
    return 0;
}
