#include "diagnostics/DebugReport.h"

#include "platform/Error.h"
#include "tests/diagnostics/ReportLog.h"

#include <gtest/gtest.h>

#define EXPANDS_TO_ZERO 0

namespace {

using Texts = std::vector<std::string>;

TEST(DebugReport, WritesOneBoundedLineAndLeavesTheLastErrorAlone) {
    CReportLog log;
    SetLastError(1234);
    DebugReport("Class::Operation() - \"%s\" - %ld %#08lx", "text", 5L, 0x80000048UL);
    EXPECT_EQ(GetLastError(), 1234u);
    EXPECT_EQ(log.Take(), Texts{"Class::Operation() - \"text\" - 5 0x80000048\n"});
    DebugReport("%s", std::string(511, 'x').c_str());
    EXPECT_EQ(log.Take(), Texts{std::string(510, 'x') + '\n'});
}

TEST(DebugChecks, EvaluateOnceReportAndGoOn) {
    CReportLog log;
    int evaluations = 0;
    DEBUG_VERIFY(++evaluations);
    DEBUG_ASSERT(evaluations == 1);
    EXPECT_EQ(log.Take(), Texts{});

    const int line = __LINE__ + 1;
    DEBUG_VERIFY(++evaluations == 3);
    DEBUG_ASSERT(evaluations && EXPANDS_TO_ZERO);
    EXPECT_EQ(evaluations, 2);
    const std::string place = std::to_string(line) + "\n\tFile: DebugReportTest\n\tExp: ";
    const std::string next = std::to_string(line + 1) + "\n\tFile: DebugReportTest\n\tExp: ";
    EXPECT_EQ(log.Take(), (Texts{"Verify Failed!\n\tLine: " + place + "++evaluations == 3\n",
                                 "Assert!\n\tLine: " + next + "evaluations && EXPANDS_TO_ZERO\n"}));
}

} // namespace
