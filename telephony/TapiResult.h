// How an operation obtains a record of a size that only the service knows.
//
// The block is allocated, cleared and offered to the service; when the service wants more, it is
// grown once, cleared and offered again. The record that comes back has its block's real size in
// dwTotalSize, whatever the service has written there.
#pragma once

#include "platform/TaskMemory.h"
#include "telephony/TapiOperation.h"
#include "telephony/TapiTypes.h"

#include <cstring>

// What a service may ask for at most: far above every real record, far below what hurts.
inline constexpr DWORD kMostResultBytes = 1024 * 1024;

enum class ETapiGrowth {
    WhenMoreIsNeeded,  // also when the service has filled what it could
    WhenRefusedForSize // only when the service has filled nothing
};

// Where a record begins: its size in bytes, and when it is grown.
struct TapiRecordRule {
    DWORD dwInitialSize;
    ETapiGrowth growth = ETapiGrowth::WhenMoreIsNeeded;
};

inline bool IsTooSmall(LONG lStatus, DWORD dwNeeded, DWORD dwTotal, ETapiGrowth growth) {
    if (growth == ETapiGrowth::WhenRefusedForSize)
        return lStatus == PHONEERR_STRUCTURETOOSMALL;
    return lStatus == LINEERR_STRUCTURETOOSMALL || dwNeeded > dwTotal;
}

// Fills a record with fill(Record*), which asks the service and returns its result. Returns that
// result with the record stored, or a negative one, which has been reported, with null stored.
// E_TAPI_NOMEMORY also for a size beyond kMostResultBytes.
template <class Record, class Fill>
LONG ObtainResult(const TapiOperation& operation, const TapiRecordRule& rule, Record** ppResult,
                  Fill fill) {
    *ppResult = nullptr;
    DWORD dwSize = rule.dwInitialSize;
    CTaskMemory<Record> record(static_cast<Record*>(CoTaskMemAlloc(dwSize)));
    if (!record)
        return ReportMemory(operation, 1);
    const auto offer = [&] {
        std::memset(static_cast<void*>(record.get()), 0, dwSize);
        record->dwTotalSize = dwSize;
        return fill(record.get());
    };
    LONG status = offer();
    const DWORD dwNeeded = record->dwNeededSize;
    // A service that refuses for the size and needs no more than there is has no second chance.
    if (IsTooSmall(status, dwNeeded, dwSize, rule.growth) && dwNeeded > dwSize) {
        void* const grown =
            dwNeeded <= kMostResultBytes ? CoTaskMemRealloc(record.get(), dwNeeded) : nullptr;
        if (!grown)
            return ReportMemory(operation, 2);
        static_cast<void>(record.release());
        record.reset(static_cast<Record*>(grown));
        dwSize = dwNeeded;
        status = offer();
    }
    if (CheckResult(operation, status) < 0)
        return status;
    record->dwTotalSize = dwSize;
    *ppResult = record.release();
    return status;
}
