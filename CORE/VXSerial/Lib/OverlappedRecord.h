// COverlappedRecord: the record of overlapped transfers of one kind, with its event.
//
// There is one for the reads, one for the writes and one for the waits for comm events of the
// whole process, so one port at a time does overlapped transfers, and one thread of it each kind.
// The event is made on first use, lives as long as the record and is closed at the exit of the
// process.
#pragma once

#include "common/UniqueHandle.h"
#include "platform/File.h"

class COverlappedRecord {
  public:
    static COverlappedRecord& ForReads();
    static COverlappedRecord& ForWrites();
    static COverlappedRecord& ForEvents();

    COverlappedRecord(const COverlappedRecord&) = delete;
    COverlappedRecord& operator=(const COverlappedRecord&) = delete;

    // The record for the next transfer.
    OVERLAPPED* Get();

    // Makes the record ready for another transfer, once the last one has ended.
    void Reset();

  private:
    COverlappedRecord() = default;

    OVERLAPPED m_record = {};
    CUniqueHandle m_hEvent;
};
