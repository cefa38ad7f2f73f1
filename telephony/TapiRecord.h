// CTapiRecord: a look at a record that the telephony service has filled, which may say anything.
//
// Refers to the caller's block and owns nothing; what it hands out lives as long as the block. A
// part that does not lie in the block with all its bytes is as good as absent.
#pragma once

#include "telephony/TapiRecords.h"

#include <optional>
#include <span>
#include <string_view>

class CTapiRecord {
  public:
    // size is what was allocated, in bytes, whatever the record says of itself.
    CTapiRecord(LPCVOID record, DWORD size) : m_bytes(static_cast<const BYTE*>(record), size) {}

    // The bytes of a part; empty when it is absent.
    std::span<const BYTE> Part(DWORD size, DWORD offset) const;

    // The text of a part, up to its NUL or else to the part's end; none when the part is absent.
    std::optional<std::string_view> Text(DWORD size, DWORD offset) const;

  private:
    std::span<const BYTE> m_bytes;
};

// The names that capabilities carry, and the text in the part that belongs to the kind of device:
// with the service that comes with this system, the device's path. None when absent. The record is
// one that an ITapi operation gave: dwTotalSize is then the size of its block.
std::optional<std::string_view> LineNameOf(const LINEDEVCAPS& capabilities);
std::optional<std::string_view> DeviceTextOf(const LINEDEVCAPS& capabilities);
std::optional<std::string_view> PhoneNameOf(const PHONECAPS& capabilities);

// The bytes of a string record, likewise.
std::span<const BYTE> BytesOf(const VARSTRING& string);

// One handle of a list, 0 for an index behind its end; the list's own count is believed only as far
// as there are handles.
DWORD CountCalls(const LINECALLLIST& list);
HCALL CallAt(const LINECALLLIST& list, DWORD dwIndex);
