// Debug reports: one-line messages on the debug-output stream, and the two checks that report
// there.
//
// Any thread may report at any time; every report reaches the stream whole. A report never changes
// the outcome of what writes it: the last error stays, and a failed check only reports.
#pragma once

#include "platform/Types.h"

#include <cstddef>

// Formats printf-style and writes the text and a line end. A text that does not fit is cut to 510
// characters; the line end is always there.
void DebugReport(LPCSTR szFormat, ...) __attribute__((format(printf, 1, 2)));

// The name under which the checks report their source file; null: the file's own. A class whose
// operations are spread over several files declares a constant of this name for them all.
inline constexpr const char* kReportFile = nullptr;

// What the checks add to their line numbers. Classes that report under one file's name declare a
// constant of this name each, by which their checks are told apart.
inline constexpr int kReportLines = 0;

namespace diagnostics {

// The name of a source file without folder and extension.
template <std::size_t Size> struct CFileName {
    char name[Size] = {};

    consteval explicit CFileName(const char (&path)[Size]) {
        std::size_t begin = 0;
        for (std::size_t i = 0; i < Size; ++i)
            begin = path[i] == '/' ? i + 1 : begin;
        for (std::size_t i = begin; i < Size && path[i] != '.'; ++i)
            name[i - begin] = path[i];
    }
};

void ReportFailedAssert(int line, const char* file, const char* expression);
void ReportFailedVerify(int line, const char* file, const char* expression);

} // namespace diagnostics

// Reports the source text of a condition that does not hold, and goes on.
#define DEBUG_ASSERT(expression)                                                                   \
    DEBUG_CHECK_(expression, #expression, diagnostics::ReportFailedAssert)

// Does the work of an expression, once, and reports its source text when the result is zero.
#define DEBUG_VERIFY(expression)                                                                   \
    DEBUG_CHECK_(expression, #expression, diagnostics::ReportFailedVerify)

#define DEBUG_CHECK_(expression, text, report)                                                     \
    do {                                                                                           \
        if (!(expression)) {                                                                       \
            static constexpr diagnostics::CFileName debugFileName(__FILE__);                       \
            report(kReportLines + __LINE__, kReportFile ? kReportFile : debugFileName.name, text); \
        }                                                                                          \
    } while (false)
