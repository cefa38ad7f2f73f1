#include "telephony/TapiOperation.h"

#include "diagnostics/ModuleTrace.h"

namespace {

// Statuses are traced as 32 bits, whatever the size of a long.
unsigned long Bits(LONG lStatus) {
    return static_cast<DWORD>(lStatus);
}

LONG ReportStep(const TapiOperation& operation, LPCSTR szStep, LPCSTR szOutcome, LONG lStatus) {
    DebugError("CVTapi::%s() - %s%s %#08lx%s", operation.szName, szStep, szOutcome, Bits(lStatus),
               operation.szEnd);
    return lStatus;
}

} // namespace

LONG ReportMissing(const TapiOperation& operation, LPCSTR szWhat, LONG lStatus) {
    DebugError("CVTapi::%s() - %s%s", operation.szName, szWhat, operation.szEnd);
    return lStatus;
}

LONG ReportMemory(const TapiOperation& operation, int attempt) {
    DebugError("CVTapi::%s() - CoTaskMemAlloc() failure #%d%s", operation.szName, attempt,
               operation.szEnd);
    return E_TAPI_NOMEMORY;
}

LONG ReportInitializeFailed(const TapiOperation& operation, LONG lStatus) {
    return ReportStep(operation, operation.szInitializeFailed, "", lStatus);
}

LONG CheckResult(const TapiOperation& operation, LONG lStatus) {
    if (lStatus >= 0 || !operation.szFunction)
        return lStatus;
    return ReportStep(operation, operation.szFunction, operation.szFailed, lStatus);
}

LONG CheckWait(const TapiOperation& operation, LONG lStatus) {
    return lStatus < 0 ? ReportStep(operation, operation.szWaitFailed, "", lStatus) : lStatus;
}

LONG CheckStatus(LPCSTR szFormat, LONG lStatus) {
    if (lStatus < 0)
        DebugError(szFormat, Bits(lStatus));
    return lStatus;
}
