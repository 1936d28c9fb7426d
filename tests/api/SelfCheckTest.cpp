// The self-check, which is the test of the readers over its tables as well.
#include "api/SelfCheck.h"

#include <gtest/gtest.h>

#include "support/LogCapture.h"
#include "varnpdf/PdfTestObj.h"

namespace {

TEST(SelfCheck, EveryReaderGivesWhatIsExpected) {
    CPdfTestObj check;
    EXPECT_EQ(check.GetReaderNum(), 0);
    const varnpdf::test::LogCapture log("VarnPDF.CPdfTestObj");
    EXPECT_EQ(check.RunAll(), 0);
    int cases = 0;
    for (int i = 0; i < check.GetReaderNum(); ++i) {
        EXPECT_EQ(check.GetOkay(i), 1) << check.GetReaderName(i);
        EXPECT_EQ(check.GetFailure(i), "") << check.GetReaderName(i);
        EXPECT_EQ(check.GetLine(i), std::string(check.GetReaderName(i)) + "....Okay");
        EXPECT_TRUE(log.has(check.GetLine(i)));
        EXPECT_GT(check.GetCaseNum(i), 0) << check.GetReaderName(i);
        cases += check.GetCaseNum(i);
    }
    EXPECT_GE(check.GetReaderNum(), 30);
    EXPECT_GE(cases, 270);
    for (const int outside : {-1, check.GetReaderNum()}) {
        EXPECT_STREQ(check.GetReaderName(outside), "");
        EXPECT_EQ(check.GetLine(outside) + check.GetFailure(outside), "");
        EXPECT_EQ(check.GetOkay(outside) + check.GetCaseNum(outside), 0);
    }
}

TEST(SelfCheck, TellsTheFirstDifference) {
    const std::string_view rows[] = {"a -> 1 a", "b -> 1 c", "d -> ", " -> 1 "};
    const auto judgement = varnpdf::judge(rows, [](const std::string& in) { return "1 " + in; });
    EXPECT_EQ(judgement.cases, 4);
    EXPECT_EQ(judgement.failure, "b -> 1 c, given: 1 b");
    EXPECT_EQ(varnpdf::judge({rows, 1}, [](const std::string& in) { return "1 " + in; }).failure, "");
}

}  // namespace
