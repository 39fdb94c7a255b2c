// SPDX-License-Identifier: MIT

// Runs the cases of SpecialValues.h, which stand in the files of that name by subject.

#include "SpecialValues.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using trammel_test::special::Case;
using trammel_test::special::Draw;
using trammel_test::special::kSpecials;
using trammel_test::special::Pt;

std::vector<Case> AllCases() {
    std::vector<Case> cases;
    for (std::vector<Case> const& some :
         {trammel_test::special::PlaneCases(), trammel_test::special::PolygonCases(),
          trammel_test::special::CurveCases(), trammel_test::special::QueryCases(),
          trammel_test::special::OutlineCases()}) {
        cases.insert(cases.end(), some.begin(), some.end());
    }
    return cases;
}

class SpecialValues : public testing::TestWithParam<Case> {
protected:
    // The log would fill with the hygiene events; the depth keeps curves that never become flat
    // from taking most of the time.
    void SetUp() override {
        SetNSLogSink([](std::string const&) {});
        mLimit = CBezier::mRecursionLimit;
        mSplineLimit = CBSpline::mRecursionLimit;
        CBezier::mRecursionLimit = 8;
        CBSpline::mRecursionLimit = 8;
    }
    void TearDown() override {
        CBezier::mRecursionLimit = mLimit;
        CBSpline::mRecursionLimit = mSplineLimit;
        SetNSLogSink(nullptr);
    }

private:
    std::int16_t mLimit = 15;
    std::int16_t mSplineLimit = 15;
};

TEST_P(SpecialValues, EveryCombinationOfTwoArgumentsReturnsWhatIsStated) {
    for (std::size_t a = 0; a < kSpecials.size(); ++a) {
        for (std::size_t b = 0; b < kSpecials.size(); ++b) {
            SCOPED_TRACE(std::to_string(a) + ", " + std::to_string(b));
            Draw draw(a, b);
            GetParam().run(draw);
            if (HasFailure()) {
                return;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, SpecialValues, testing::ValuesIn(AllCases()),
                         [](testing::TestParamInfo<Case> const& tested) {
                             return std::string(tested.param.name);
                         });

TEST(SpecialValues, CurvesThatNeverBecomeFlatStopAtTheFullDepth) {
    double const nan = std::nan("");
    TPolygon<double> polygon;
    CBezier(Pt(0, 0), Pt(0, nan), Pt(1, 1), Pt(2, 0)).Flatten(polygon, 1.0);
    EXPECT_EQ(polygon.LastIndex() + 1, 16383 + 2);
}

} // namespace
