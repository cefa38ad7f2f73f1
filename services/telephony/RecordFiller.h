// CRecordFiller: fills a caller's record with a variable part, as far as it fits, and tells truly
// what all would take.
//
// One function makes one for the record it answers with. The caller's dwTotalSize is the only thing
// taken from the record; everything else in its fixed part begins as 0.
#pragma once

#include "telephony/TapiRecords.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace telephonyservice {

template <class Record> class CRecordFiller {
  public:
    // record is not null. Nothing may be filled when it is smaller than its fixed part.
    explicit CRecordFiller(Record* record) : m_pRecord(record) {
        const DWORD total = record->dwTotalSize;
        if (total < sizeof(Record))
            return;
        std::memset(record, 0, sizeof(Record));
        record->dwTotalSize = total;
        record->dwNeededSize = sizeof(Record);
        record->dwUsedSize = sizeof(Record);
    }

    bool HasRoom() const { return m_pRecord->dwTotalSize >= sizeof(Record); }

    // Puts the bytes behind what is filled, and where they are into the two members. False when
    // they do not fit; they then stay absent, and only the needed size grows.
    bool Append(DWORD Record::*size, DWORD Record::*offset, std::string_view bytes) {
        const DWORD start = Align(m_pRecord->dwUsedSize);
        m_pRecord->dwNeededSize = Align(m_pRecord->dwNeededSize) + static_cast<DWORD>(bytes.size());
        if (std::uint64_t{start} + bytes.size() > m_pRecord->dwTotalSize)
            return false;
        std::memcpy(reinterpret_cast<char*>(m_pRecord) + start, bytes.data(), bytes.size());
        m_pRecord->*size = static_cast<DWORD>(bytes.size());
        m_pRecord->*offset = start;
        m_pRecord->dwUsedSize = start + static_cast<DWORD>(bytes.size());
        return true;
    }

  private:
    // A part may begin with a 32-bit number.
    static DWORD Align(DWORD size) {
        constexpr DWORD kUnit = sizeof(DWORD);
        return (size + kUnit - 1) / kUnit * kUnit;
    }

    Record* const m_pRecord;
};

// With the NUL at its end.
inline std::string_view WithNul(const std::string& text) {
    return {text.c_str(), text.size() + 1};
}

} // namespace telephonyservice
