// Fuzzes the telephony wrapper with a service that answers what it likes, from the same input that
// says what is asked of it.
#include "common/InterfacePtr.h"
#include "fuzz/FuzzPlatform.h"
#include "platform/TaskMemory.h"
#include "telephony/Tapi.h"
#include "telephony/TapiRecord.h"
#include "tests/telephony/ScriptedService.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace {

constexpr int kOperations = 24; // enough to open, call, find and close a few times
constexpr int kMostNested = 3;  // operations of a callback inside another's wait

std::span<const BYTE> s_rest;

constexpr std::array kResults = {
    LINEERR_STRUCTURETOOSMALL, PHONEERR_STRUCTURETOOSMALL, LINEERR_REINIT,
    PHONEERR_REINIT,           LINEERR_OPERATIONFAILED,    PHONEERR_OPERATIONUNAVAIL};
constexpr BYTE kFirstFailure = 224;
constexpr BYTE kFirstRequest = 160;
constexpr BYTE kEverything = 0xFF;
constexpr DWORD kForeignInstance = 0x1234; // no object is there

// The next byte of the input, 0 behind its end.
BYTE TakeByte() {
    if (s_rest.empty())
        return 0;
    const BYTE byte = s_rest.front();
    s_rest = s_rest.subspan(1);
    return byte;
}

// Answers run out with the input, and are then successes that tell nothing.
class CFuzzService final : public CScriptedService {
  public:
    bool CanLoad(LPCSTR function) override { return function || TakeByte() != kEverything; }
    LONG Answer(ServiceCall& call) override;
    bool HasMessage() override { return m_bHasMessage = !m_bHasMessage; }
    void Deliver() override;
    void Trace(DWORD, const std::string&) override {}

  private:
    LONG TakeResult();

    DWORD m_dwRequest = 0; // the newest one
    bool m_bHasMessage = false;
};

LONG CFuzzService::TakeResult() {
    const BYTE byte = TakeByte();
    if (byte < kFirstRequest)
        return 0;
    if (byte >= kFirstFailure)
        return kResults[byte % kResults.size()];
    m_dwRequest = byte;
    return byte;
}

LONG CFuzzService::Answer(ServiceCall& call) {
    const LONG result = TakeResult();
    for (const LPDWORD out : call.outs) {
        const BYTE byte = out ? TakeByte() : BYTE{0};
        if (out)
            *out = byte == kEverything ? 0xFFFFFFFF : byte;
    }
    // The whole record is the service's, whatever it makes of it.
    if (!call.record.empty()) {
        const std::size_t wanted = std::size_t{TakeByte()} * 8;
        const std::size_t count = std::min({wanted, call.record.size(), s_rest.size()});
        std::ranges::copy(s_rest.first(count), call.record.begin());
        s_rest = s_rest.subspan(count);
    }
    return result;
}

// The service tells something, true or not, to an object or not.
void CFuzzService::Deliver() {
    const Open& mine = open[TakeByte() % 4 == 3];
    if (!mine.callback || s_rest.empty())
        return;
    const DWORD hDevice = TakeByte();
    const DWORD message = TakeByte() % 16;
    const BYTE addressee = TakeByte() % 8;
    const DWORD_PTR instances[] = {0, kForeignInstance, mine.instance};
    const BYTE parameter = TakeByte();
    // Small ones are call states, single bits.
    const DWORD_PTR first = parameter < 32 ? DWORD_PTR{1} << parameter : m_dwRequest;
    mine.callback(hDevice, message, instances[std::min<BYTE>(addressee, 2)], first,
                  static_cast<DWORD>(TakeResult()), 0);
}

std::array<CInterfacePtr<ITapi>, 2> s_objects;
int s_nested = 0;

// What is handed out belongs to the caller and is as large as it says, down to the last byte; there
// is nothing after a failure.
template <class Record, class Ask> CTaskMemory<Record> Check(Ask ask) {
    Record* record = nullptr;
    const LONG status = ask(&record);
    CTaskMemory<Record> owner(record);
    fuzz::Require((status >= 0) == (record != nullptr));
    if (record) {
        const std::span bytes(reinterpret_cast<const BYTE*>(record), record->dwTotalSize);
        fuzz::Require(bytes.size() >= sizeof(Record) && std::ranges::count(bytes, BYTE{1}) >= 0);
    }
    return owner;
}

void CheckText(const std::optional<std::string_view>& text) {
    fuzz::Require(!text || text->find('\0') == std::string_view::npos);
}

void Iterate(ITapi& tapi) {
    std::array<char, 32> name;
    name.fill('#');
    const DWORD size = TakeByte() % name.size();
    const LONG status = tapi.IterateModems(name.data(), size, TakeByte() % 2);
    fuzz::Require(std::find(name.begin() + size, name.end(), '\0') == name.end());
    fuzz::Require(status != 0 || size == 0 || std::memchr(name.data(), 0, size) != nullptr);
}

void Find(ITapi& tapi) {
    std::string name(TakeByte() % 8, '\0');
    std::ranges::generate(name, [] { return static_cast<char>(TakeByte()); });
    DWORD device = 0;
    tapi.LineDeviceNameToID(name.c_str(), &device);
    tapi.PhoneDeviceNameToID(name.c_str(), &device);
}

void LineRecords(ITapi& tapi) {
    const auto caps = Check<LINEDEVCAPS>(
        [&](LINEDEVCAPS** record) { return tapi.LineGetDevCaps(TakeByte(), record); });
    CheckText(caps ? LineNameOf(*caps) : std::nullopt);
    CheckText(caps ? DeviceTextOf(*caps) : std::nullopt);
    const auto identifier = Check<VARSTRING>(
        [&](VARSTRING** record) { return tapi.LineGetID(record, "comm/datamodem"); });
    fuzz::Require(!identifier || std::ranges::count(BytesOf(*identifier), BYTE{1}) >= 0);
    Check<LINECALLINFO>([&](LINECALLINFO** record) { return tapi.LineGetCallInfo(record); });
}

void PhoneRecords(ITapi& tapi) {
    const auto caps = Check<PHONECAPS>(
        [&](PHONECAPS** record) { return tapi.PhoneGetDevCaps(TakeByte(), record); });
    CheckText(caps ? PhoneNameOf(*caps) : std::nullopt);
    Check<PHONESTATUS>([&](PHONESTATUS** record) { return tapi.PhoneGetStatus(record); });
}

void Edit(ITapi& tapi) {
    Check<VARSTRING>([&](VARSTRING** record) {
        return tapi.LineConfigDialogEdit(0, nullptr, "comm", nullptr, 0, record);
    });
}

void Listen(ITapi& tapi);

constexpr void (*kKinds[])(ITapi&) = {
    Iterate,
    Find,
    LineRecords,
    PhoneRecords,
    Edit,
    // Arguments are evaluated in any order, the bytes of an input are taken in one.
    [](ITapi& tapi) {
        const BYTE device = TakeByte();
        tapi.LineOpen(device, TakeByte(), LINEMEDIAMODE_DATAMODEM);
    },
    [](ITapi& tapi) { tapi.LineMakeCall("1", 0, nullptr, TakeByte() % 2); },
    [](ITapi& tapi) { tapi.LineDrop(TakeByte() % 2); },
    [](ITapi& tapi) { tapi.LineClose(); },
    [](ITapi& tapi) {
        const BYTE device = TakeByte();
        tapi.PhoneOpen(device, TakeByte());
    },
    [](ITapi& tapi) {
        const BYTE volume = TakeByte();
        tapi.PhoneSetVolume(1, volume, TakeByte() % 2);
    },
    [](ITapi& tapi) { tapi.PhoneClose(); },
    [](ITapi& tapi) { tapi.LineAnswer(TakeByte() % 2); },
    Listen,
    // Inside a wait an object stays; outside of all it may go.
    [](ITapi&) {
        if (s_nested == 0)
            s_objects[TakeByte() % s_objects.size()].Reset();
    },
};

void Operate() {
    CInterfacePtr<ITapi>& object = s_objects[TakeByte() % s_objects.size()];
    if (!object)
        CreateTapi(object.Receive(), nullptr);
    const CInterfacePtr<ITapi> kept = object;
    kKinds[TakeByte() % std::size(kKinds)](*kept.Get());
}

void OnMessage(DWORD, DWORD, DWORD_PTR, DWORD_PTR, DWORD_PTR, DWORD_PTR) {
    if (s_nested >= kMostNested || s_rest.empty())
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
        s_rest = {data, size};
        const CFuzzService service;
        for (int count = 0; count < kOperations && !s_rest.empty(); ++count)
            Operate();
        for (CInterfacePtr<ITapi>& object : s_objects)
            object.Reset();
    }
    return 0;
}
