#include "services/telephony/Records.h"

#include "services/telephony/RecordFiller.h"

#include <cstdint>

namespace telephonyservice {
namespace {

// The same for a name from start to start (32-bit FNV-1a).
DWORD MakePermanentId(const std::string& name) {
    constexpr DWORD kBasis = 2166136261U;
    constexpr DWORD kPrime = 16777619U;
    DWORD hash = kBasis;
    for (const unsigned char byte : name)
        hash = (hash ^ byte) * kPrime;
    return hash;
}

} // namespace

DWORD MediaModesOf(const LineDevice& device) {
    return device.isDataModem ? LINEMEDIAMODE_DATAMODEM : 0;
}

LONG FillDevCaps(const LineDevice& device, LINEDEVCAPS* caps) {
    CRecordFiller filler(caps);
    if (!filler.HasRoom())
        return LINEERR_STRUCTURETOOSMALL;
    caps->dwPermanentLineID = MakePermanentId(device.name);
    caps->dwStringFormat = STRINGFORMAT_ASCII;
    caps->dwAddressModes = LINEADDRESSMODE_ADDRESSID;
    caps->dwNumAddresses = 1;
    caps->dwBearerModes = LINEBEARERMODE_VOICE | LINEBEARERMODE_PASSTHROUGH;
    caps->dwMediaModes = MediaModesOf(device);
    caps->dwMaxNumActiveCalls = 1;
    caps->dwLineFeatures = LINEFEATURE_MAKECALL;
    filler.Append(&LINEDEVCAPS::dwLineNameSize, &LINEDEVCAPS::dwLineNameOffset,
                  WithNul(device.name));
    filler.Append(&LINEDEVCAPS::dwDevSpecificSize, &LINEDEVCAPS::dwDevSpecificOffset,
                  WithNul(device.devicePath));
    return 0;
}

LONG FillPortName(const LineDevice& device, VARSTRING* identifier) {
    CRecordFiller filler(identifier);
    if (!filler.HasRoom())
        return LINEERR_STRUCTURETOOSMALL;
    identifier->dwStringFormat = STRINGFORMAT_ASCII;
    filler.Append(&VARSTRING::dwStringSize, &VARSTRING::dwStringOffset, WithNul(device.devicePath));
    return 0;
}

LONG FillPortHandle(const LineDevice& device, HANDLE port, VARSTRING* identifier, bool& filled) {
    filled = false;
    CRecordFiller filler(identifier);
    if (!filler.HasRoom())
        return LINEERR_STRUCTURETOOSMALL;
    // Handles are small numbers, whatever the size of a pointer.
    const auto number = static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(port));
    std::string bytes(sizeof number, '\0');
    std::memcpy(bytes.data(), &number, sizeof number);
    bytes += device.devicePath;
    identifier->dwStringFormat = STRINGFORMAT_BINARY;
    filled = filler.Append(&VARSTRING::dwStringSize, &VARSTRING::dwStringOffset, WithNul(bytes));
    return 0;
}

} // namespace telephonyservice
