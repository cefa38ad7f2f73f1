// TapiOperation: a row for each operation that asks the service one thing: what must be there
// first, and how its failures are worded.
#pragma once

#include "telephony/TapiStatus.h"

enum class ETapiNeed {
    Nothing,
    Call,         // E_TAPI_NOCALL without
    Line,         // E_TAPI_NOLINE without
    LineService,  // brought up first
    Phone,        // E_TAPI_NOPHONE without
    PhoneService, // brought up first
};

// The texts are what the trace has always said, and are kept to the letter for those who search
// for them.
struct TapiOperation {
    LPCSTR szName;
    LPCSTR szFunction; // what failed, as the trace calls it; null: nothing is said of it
    ETapiNeed need = ETapiNeed::Nothing;
    LPCSTR szEnd = ""; // of every text of the operation
    LPCSTR szFailed = "() failed returning";
    LPCSTR szInitializeFailed = "MLineInitialize() failed returning";
    LPCSTR szWaitFailed = "MLineWaitForReply() failed returning";
};

// Each writes one failure to the trace and returns the status.
LONG ReportMissing(const TapiOperation& operation, LPCSTR szWhat, LONG lStatus);
LONG ReportMemory(const TapiOperation& operation, int attempt); // returns E_TAPI_NOMEMORY
LONG ReportInitializeFailed(const TapiOperation& operation, LONG lStatus);

// Each returns the status and writes it to the trace if it is a failure: of the operation's
// function, of its wait, of what the text tells, which takes the status as an unsigned long.
LONG CheckResult(const TapiOperation& operation, LONG lStatus);
LONG CheckWait(const TapiOperation& operation, LONG lStatus);
LONG CheckStatus(LPCSTR szFormat, LONG lStatus);
