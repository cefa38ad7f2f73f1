#include "diagnostics/DebugReport.h"

#include "platform/DebugOutput.h"

#include <cstdarg>

namespace {

constexpr std::size_t kReportSize = 512;

} // namespace

void DebugReport(LPCSTR szFormat, ...) {
    char report[kReportSize];
    va_list arguments;
    va_start(arguments, szFormat);
    const int length = wvsprintfA(report, sizeof(report) - 1, szFormat, arguments);
    va_end(arguments);
    report[length] = '\n';
    report[length + 1] = '\0';
    OutputDebugStringA(report);
}

void diagnostics::ReportFailedAssert(int line, const char* file, const char* expression) {
    DebugReport("Assert!\n\tLine: %d\n\tFile: %s\n\tExp: %s", line, file, expression);
}

void diagnostics::ReportFailedVerify(int line, const char* file, const char* expression) {
    DebugReport("Verify Failed!\n\tLine: %d\n\tFile: %s\n\tExp: %s", line, file, expression);
}
