#include "CORE/VXSerial/Lib/OverlappedRecord.h"

COverlappedRecord& COverlappedRecord::ForReads() {
    static COverlappedRecord record;
    return record;
}

COverlappedRecord& COverlappedRecord::ForWrites() {
    static COverlappedRecord record;
    return record;
}

COverlappedRecord& COverlappedRecord::ForEvents() {
    static COverlappedRecord record;
    return record;
}

OVERLAPPED* COverlappedRecord::Get() {
    if (!m_hEvent) {
        m_hEvent.Reset(CreateEventA(nullptr, TRUE, TRUE, nullptr));
        m_record.hEvent = m_hEvent;
    }
    return &m_record;
}

void COverlappedRecord::Reset() {
    m_record = {};
    m_record.hEvent = m_hEvent;
}
