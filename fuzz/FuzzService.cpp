#include "fuzz/FuzzService.h"

#include "platform/Error.h"
#include "platform/Registry.h"
#include "platform/Version.h"

#include <algorithm>
#include <array>

namespace fuzz {
namespace {

std::span<const BYTE> s_rest;

constexpr std::array kResults = {
    LINEERR_STRUCTURETOOSMALL, PHONEERR_STRUCTURETOOSMALL, LINEERR_REINIT,
    PHONEERR_REINIT,           LINEERR_OPERATIONFAILED,    PHONEERR_OPERATIONUNAVAIL};
constexpr BYTE kFirstFailure = 224;
constexpr BYTE kFirstRequest = 160;
constexpr BYTE kEverything = 0xFF;
constexpr DWORD kForeignInstance = 0x1234; // no object is there

} // namespace

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

CFuzzService::CFuzzService(std::span<const BYTE> bytes) {
    s_rest = bytes;
}

bool CFuzzService::CanLoad(LPCSTR function) {
    return function || TakeByte() != kEverything;
}

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
    if (!mine.callback || !HasBytes())
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

} // namespace fuzz

LONG RegOpenKeyExA(HKEY, LPCSTR, DWORD, REGSAM, HKEY* phkResult) {
    *phkResult = nullptr;
    return ERROR_FILE_NOT_FOUND;
}

BOOL GetVersionExA(OSVERSIONINFOA* lpVersionInformation) {
    lpVersionInformation->dwMajorVersion = fuzz::TakeByte();
    lpVersionInformation->dwPlatformId = fuzz::TakeByte();
    return lpVersionInformation->dwMajorVersion != fuzz::kEverything;
}
