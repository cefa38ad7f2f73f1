// Every part of a record is found through CTapiRecord::Part, the one place that compares what the
// service says with what there is.
#include "telephony/TapiRecord.h"

#include <algorithm>
#include <cstring>

namespace {

std::span<const BYTE> HandlesOf(const LINECALLLIST& list) {
    return CTapiRecord(&list, list.dwTotalSize).Part(list.dwCallsSize, list.dwCallsOffset);
}

} // namespace

std::span<const BYTE> CTapiRecord::Part(DWORD size, DWORD offset) const {
    if (size == 0 || offset == 0 || offset > m_bytes.size() || size > m_bytes.size() - offset)
        return {};
    return m_bytes.subspan(offset, size);
}

std::optional<std::string_view> CTapiRecord::Text(DWORD size, DWORD offset) const {
    const std::span<const BYTE> part = Part(size, offset);
    if (part.empty())
        return std::nullopt;
    const std::string_view text(reinterpret_cast<const char*>(part.data()), part.size());
    return text.substr(0, text.find('\0'));
}

std::optional<std::string_view> LineNameOf(const LINEDEVCAPS& capabilities) {
    return CTapiRecord(&capabilities, capabilities.dwTotalSize)
        .Text(capabilities.dwLineNameSize, capabilities.dwLineNameOffset);
}

std::optional<std::string_view> DeviceTextOf(const LINEDEVCAPS& capabilities) {
    return CTapiRecord(&capabilities, capabilities.dwTotalSize)
        .Text(capabilities.dwDevSpecificSize, capabilities.dwDevSpecificOffset);
}

std::optional<std::string_view> PhoneNameOf(const PHONECAPS& capabilities) {
    return CTapiRecord(&capabilities, capabilities.dwTotalSize)
        .Text(capabilities.dwPhoneNameSize, capabilities.dwPhoneNameOffset);
}

std::span<const BYTE> BytesOf(const VARSTRING& string) {
    return CTapiRecord(&string, string.dwTotalSize)
        .Part(string.dwStringSize, string.dwStringOffset);
}

DWORD CountCalls(const LINECALLLIST& list) {
    return std::min(list.dwCallsNumEntries,
                    static_cast<DWORD>(HandlesOf(list).size() / sizeof(HCALL)));
}

HCALL CallAt(const LINECALLLIST& list, DWORD dwIndex) {
    if (dwIndex >= CountCalls(list))
        return 0;
    HCALL handle = 0;
    // The service may have put the list at any offset.
    std::memcpy(&handle, HandlesOf(list).data() + dwIndex * sizeof handle, sizeof handle);
    return handle;
}
