#include "fuzz/FuzzService.h"

#include "diagnostics/ModuleTrace.h"
#include "fuzz/FuzzPlatform.h"
#include "platform/Error.h"
#include "platform/Message.h"
#include "platform/Registry.h"
#include "platform/Version.h"
#include "telephony/TapiResult.h"
#include "tests/telephony/ServiceFunctions.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace fuzz {
namespace {

// What the service has given out and not taken back, for lines and for phones.
struct SOpen {
    DWORD hApplication = 0;
    int nDevices = 0;
    LINECALLBACK callback = nullptr;
    DWORD_PTR dwInstance = 0;
};

bool s_isOffered = false;
int s_loads = 0;
std::span<const BYTE> s_rest;
std::array<SOpen, 2> s_open;
DWORD s_request = 0; // the newest one
bool s_hasMessage = false;

constexpr std::array RESULTS = {
    LINEERR_STRUCTURETOOSMALL, PHONEERR_STRUCTURETOOSMALL, LINEERR_REINIT,
    PHONEERR_REINIT,           LINEERR_OPERATIONFAILED,    PHONEERR_OPERATIONUNAVAIL};
constexpr BYTE FIRST_FAILURE = 224;
constexpr BYTE FIRST_REQUEST = 160;
constexpr BYTE EVERYTHING = 0xFF;
constexpr int MOST_OBJECTS = 2;            // alive at a time, with one line and one phone each
constexpr DWORD FOREIGN_INSTANCE = 0x1234; // no object is there

LONG TakeResult() {
    const BYTE byte = TakeByte();
    if (byte < FIRST_REQUEST)
        return 0;
    if (byte >= FIRST_FAILURE)
        return RESULTS[byte % RESULTS.size()];
    s_request = byte;
    return byte;
}

// One call of the service: each argument is used as far as a service may use it.
class CAnswer {
  public:
    explicit CAnswer(std::string_view name)
        : m_name(name), m_open(s_open[name.starts_with("phone")]), m_lResult(TakeResult()) {}

    void Take(DWORD value) {
        if (m_name.ends_with("Shutdown")) {
            Require(value != 0 && value == m_open.hApplication);
            m_open = {};
        }
        if (m_name.ends_with("Close"))
            Require(value != 0 && m_open.nDevices-- > 0);
    }
    void Take(LPCSTR text) { m_length += text ? std::strlen(text) : 0; }
    void Take(LPCVOID) {}
    void Take(DWORD_PTR instance) { m_open.dwInstance = instance; }
    void Take(LINECALLBACK callback) { m_open.callback = callback; }
    void Take(LPDWORD out) {
        if (!out)
            return;
        const BYTE byte = TakeByte();
        *out = byte == EVERYTHING ? 0xFFFFFFFF : byte;
        if (!m_first)
            m_first = out;
    }
    // The whole block is the service's, whatever it makes of it.
    template <class Record>
    requires requires(Record* record) { record->dwTotalSize = 0; }
    void Take(Record* record) {
        if (!record)
            return;
        const std::size_t total = record->dwTotalSize;
        Require(total >= sizeof(Record) && total <= TAPI_RESULT_MAX);
        auto* const bytes = reinterpret_cast<BYTE*>(record);
        Require(std::none_of(bytes + sizeof(DWORD), bytes + total, std::identity()));
        const std::size_t count = std::min<std::size_t>({TakeByte() * 8u, total, s_rest.size()});
        std::ranges::copy(s_rest.first(count), bytes);
        s_rest = s_rest.subspan(count);
    }

    LONG Finish() {
        const bool isPhone = &m_open == &s_open[1];
        if (m_name.ends_with("Initialize")) {
            Require(m_open.hApplication == 0);
            if (isPhone ? m_lResult == 0 : m_lResult >= 0)
                m_open.hApplication = *m_first;
        }
        // A handle counts even if the service says that it has failed.
        if (m_name.ends_with("Open") && *m_first != 0)
            Require(++m_open.nDevices <= MOST_OBJECTS);
        return m_lResult;
    }

  private:
    std::string_view m_name;
    SOpen& m_open;
    LONG m_lResult;
    LPDWORD m_first = nullptr; // where a handle goes
    std::size_t m_length = 0;
};

#define FUZZ_ADDRESS(result, name, parameters)                                                     \
    reinterpret_cast<FARPROC>(&SServiceFunction<CAnswer, Service_##name, result parameters>::Run),
const std::array<FARPROC, SERVICE_NAMES.size()> ADDRESSES = {WIRELET_TAPI_FUNCTIONS(FUZZ_ADDRESS)};

// The service tells something, true or not, to an object or not.
void TellObject() {
    const bool isPhone = TakeByte() % 4 == 3;
    const SOpen& open = s_open[isPhone];
    if (!open.callback || !HasBytes())
        return;
    const DWORD hDevice = TakeByte();
    const DWORD message = TakeByte() % 16;
    const BYTE addressee = TakeByte() % 8;
    const DWORD_PTR instance = addressee == 0   ? 0
                               : addressee == 1 ? FOREIGN_INSTANCE
                                                : open.dwInstance;
    const BYTE parameter = TakeByte();
    // Small ones are call states, single bits.
    const DWORD_PTR first = parameter < 32 ? DWORD_PTR{1} << parameter : s_request;
    open.callback(hDevice, message, instance, first, static_cast<DWORD>(TakeResult()), 0);
}

} // namespace

void BeginService(std::span<const BYTE> bytes) {
    s_isOffered = true;
    s_rest = bytes;
    s_open = {};
    s_request = 0;
    s_hasMessage = false;
}

void EndService() {
    Require(s_loads == 0);
    for (const SOpen& open : s_open)
        Require(open.hApplication == 0);
    s_isOffered = false;
}

BYTE TakeByte() {
    if (s_rest.empty())
        return 0;
    const BYTE byte = s_rest.front();
    s_rest = s_rest.subspan(1);
    return byte;
}

bool HasBytes() {
    return !s_rest.empty();
}

} // namespace fuzz

using namespace fuzz;

HMODULE LoadLibraryA(LPCSTR lpLibFileName) {
    if (!s_isOffered || std::strcmp(lpLibFileName, "TAPI32.DLL") != 0 || TakeByte() == EVERYTHING)
        return nullptr;
    ++s_loads;
    return &s_loads;
}

FARPROC GetProcAddress(HMODULE hModule, LPCSTR lpProcName) {
    Require(s_loads == 1 && hModule == &s_loads);
    const auto* const name = std::ranges::find(SERVICE_NAMES, std::string_view(lpProcName));
    Require(name != SERVICE_NAMES.end());
    return ADDRESSES[static_cast<std::size_t>(name - SERVICE_NAMES.begin())];
}

BOOL FreeLibrary(HMODULE hLibModule) {
    Require(s_loads == 1 && hLibModule == &s_loads);
    --s_loads;
    return TRUE;
}

// Every other time there is one.
BOOL PeekMessageA(MSG* lpMsg, HWND, UINT, UINT, UINT) {
    s_hasMessage = !s_hasMessage;
    if (s_hasMessage)
        *lpMsg = {};
    return s_hasMessage ? TRUE : FALSE;
}

LRESULT DispatchMessageA(const MSG*) {
    TellObject();
    return 0;
}

LONG RegOpenKeyExA(HKEY, LPCSTR, DWORD, REGSAM, HKEY* phkResult) {
    *phkResult = nullptr;
    return ERROR_FILE_NOT_FOUND;
}

BOOL GetVersionExA(OSVERSIONINFOA* lpVersionInformation) {
    lpVersionInformation->dwMajorVersion = TakeByte();
    lpVersionInformation->dwPlatformId = TakeByte();
    return lpVersionInformation->dwMajorVersion != EVERYTHING;
}

// The texts that a trace is made of must be there.
BOOL DebugError(LPCSTR szFormat, ...) {
    char text[512];
    va_list arguments;
    va_start(arguments, szFormat);
    const int length = std::vsnprintf(text, sizeof text, szFormat, arguments);
    va_end(arguments);
    Require(length > 0);
    return TRUE;
}
