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

constexpr int OPERATIONS = 24; // enough to open, call, find and close a few times
constexpr int MOST_NESTED = 3; // operations of a callback inside another's wait

std::array<CInterfacePtr<ITapi>, 2> s_objects;
int s_nested = 0;

CInterfacePtr<ITapi>& Current() {
    CInterfacePtr<ITapi>& object = s_objects[fuzz::TakeByte() % s_objects.size()];
    if (!object)
        CreateTapi(object.Receive(), nullptr);
    return object;
}

// A record belongs to the caller and is as large as it says, down to the last byte; there is none
// after a failure.
template <class Record, class Read> void Check(LONG lStatus, Record* record, Read read) {
    const CTaskMemory<Record> owner(record);
    fuzz::Require((lStatus >= 0) == (record != nullptr));
    if (!record)
        return;
    fuzz::Require(record->dwTotalSize >= sizeof(Record));
    const auto* const bytes = reinterpret_cast<const BYTE*>(record);
    fuzz::Require(std::count(bytes, bytes + record->dwTotalSize, BYTE{1}) >= 0);
    read(*record);
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
    LINEDEVCAPS* caps = nullptr;
    LONG status = tapi.LineGetDevCaps(fuzz::TakeByte(), &caps);
    Check(status, caps, [](const LINEDEVCAPS& record) {
        CheckText(LineNameOf(record));
        CheckText(DeviceTextOf(record));
    });
    VARSTRING* identifier = nullptr;
    status = tapi.LineGetID(&identifier, "comm/datamodem");
    Check(status, identifier, [](const VARSTRING& record) {
        const auto bytes = BytesOf(record);
        fuzz::Require(std::ranges::count(bytes, BYTE{1}) >= 0);
    });
    LINECALLINFO* info = nullptr;
    status = tapi.LineGetCallInfo(&info);
    Check(status, info, [](const LINECALLINFO&) {});
}

void PhoneRecords(ITapi& tapi) {
    PHONECAPS* caps = nullptr;
    LONG status = tapi.PhoneGetDevCaps(fuzz::TakeByte(), &caps);
    Check(status, caps, [](const PHONECAPS& record) { CheckText(PhoneNameOf(record)); });
    PHONESTATUS* phone = nullptr;
    status = tapi.PhoneGetStatus(&phone);
    Check(status, phone, [](const PHONESTATUS&) {});
}

void Edit(ITapi& tapi) {
    VARSTRING* edited = nullptr;
    const LONG status = tapi.LineConfigDialogEdit(0, nullptr, "comm", nullptr, 0, &edited);
    Check(status, edited, [](const VARSTRING&) {});
}

void FindKey(ITapi& tapi) {
    HKEY key = nullptr;
    fuzz::Require(tapi.GetModemRegKey(0x01010101u * fuzz::TakeByte(), &key) == E_TAPI_FAILED);
}

void Listen(ITapi& tapi);

using fuzz::TakeByte;
constexpr void (*KINDS[])(ITapi&) = {
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
    KINDS[TakeByte() % std::size(KINDS)](*object.Get());
}

void OnMessage(DWORD, DWORD, DWORD_PTR, DWORD_PTR, DWORD_PTR, DWORD_PTR) {
    if (s_nested >= MOST_NESTED || !fuzz::HasBytes())
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
    fuzz::BeginService({data, size});
    for (int count = 0; count < OPERATIONS && fuzz::HasBytes(); ++count)
        Operate();
    for (CInterfacePtr<ITapi>& object : s_objects)
        object.Reset();
    fuzz::EndService();
    fuzz::EndRun();
    return 0;
}
