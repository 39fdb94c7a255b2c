// SPDX-License-Identifier: MIT

#include "CPathActions.h"

#include "CPath.h"
#include "plain/Comparing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using trammel_test::Text;

typedef TPoint<double> Pt;

/// Writes each element down with the current point and the start point that it sees.
class Recorder : public CPathActions {
public:
    std::vector<std::string> calls;

    void MoveTo(Pt const& p) override { Note("M", Text(p)); }
    void LineTo(Pt const& p) override { Note("L", Text(p)); }
    void CurveTo(Pt const& c1, Pt const& c2, Pt const& e) override {
        Note("C", Text(std::vector<Pt>{c1, c2, e}));
    }
    void ClosePath() override { Note("Z", ""); }

private:
    void Note(std::string const& what, std::string const& points) {
        calls.push_back(what + points + " at " + Text(GetCurrentPt()) + " from " +
                        Text(GetStartPt()));
    }
};

typedef std::vector<std::string> Calls;

TEST(PathActions, BothPointsBeginAtTheOrigin) {
    CPathActions const actions;
    EXPECT_SAME(actions.mStartPt, Pt(0, 0));
    EXPECT_SAME(actions.mCurrentPt, Pt(0, 0));
    EXPECT_SAME(actions.GetCurrentPt(), Pt(0, 0));
    EXPECT_SAME(actions.GetStartPt(), Pt(0, 0));
}

TEST(PathActions, IsABaseToDeriveFrom) {
    EXPECT_TRUE(std::is_polymorphic_v<CPathActions>);
    EXPECT_TRUE(std::has_virtual_destructor_v<CPathActions>);
    EXPECT_FALSE(std::is_abstract_v<CPathActions>);
    EXPECT_EQ(sizeof(CPathActions), std::max(sizeof(void*), alignof(Pt)) + 2 * sizeof(Pt));
}

TEST(PathActions, DefaultElementOperationsDoNothing) {
    CPathActions actions;
    actions.MoveTo(Pt(1, 2));
    actions.LineTo(Pt(3, 4));
    actions.CurveTo(Pt(5, 6), Pt(7, 8), Pt(9, 10));
    actions.ClosePath();
    EXPECT_SAME(actions.GetCurrentPt(), Pt(0, 0));
    EXPECT_SAME(actions.GetStartPt(), Pt(0, 0));
}

TEST(PathActions, TrackedPointsFollowTheElements) {
    CPathActions actions;
    actions.Move(Pt(1, 2));
    EXPECT_SAME(actions.GetCurrentPt(), Pt(1, 2));
    EXPECT_SAME(actions.GetStartPt(), Pt(1, 2));
    actions.Line(Pt(3, 4));
    EXPECT_SAME(actions.GetCurrentPt(), Pt(3, 4));
    EXPECT_SAME(actions.GetStartPt(), Pt(1, 2));
    actions.Curve(Pt(5, 6), Pt(7, 8), Pt(9, 10));
    EXPECT_SAME(actions.GetCurrentPt(), Pt(9, 10));
    EXPECT_SAME(actions.GetStartPt(), Pt(1, 2));
    actions.Close();
    EXPECT_SAME(actions.GetCurrentPt(), Pt(1, 2));
    EXPECT_SAME(actions.GetStartPt(), Pt(1, 2));
}

TEST(PathActions, OverrideRunsBeforeThePointsMoveOn) {
    Recorder recorder;
    recorder.Move(Pt(1, 2));
    recorder.Line(Pt(3, 4));
    recorder.Curve(Pt(5, 6), Pt(7, 8), Pt(9, 10));
    recorder.Close();
    recorder.Move(Pt(11, 12));
    EXPECT_EQ(recorder.calls,
              (Calls{"M(1, 2) at (0, 0) from (0, 0)", "L(3, 4) at (1, 2) from (1, 2)",
                     "C(5, 6) (7, 8) (9, 10) at (3, 4) from (1, 2)", "Z at (9, 10) from (1, 2)",
                     "M(11, 12) at (1, 2) from (1, 2)"}));
}

TEST(PathActions, ElementsMayBeGivenByTheTrackedPoints) {
    Recorder recorder;
    recorder.Move(Pt(1, 2));
    recorder.Line(Pt(3, 4));
    recorder.Line(recorder.mStartPt);
    EXPECT_SAME(recorder.mCurrentPt, Pt(1, 2));
    recorder.Line(Pt(3, 4));
    recorder.Move(recorder.mCurrentPt);
    EXPECT_SAME(recorder.mStartPt, Pt(3, 4));
    EXPECT_SAME(recorder.mCurrentPt, Pt(3, 4));
}

class ThrowsAtLines : public CPathActions {
public:
    void LineTo(Pt const&) override { throw 5; }
};

TEST(PathActions, ExceptionLeavesThePointsAsTheyWere) {
    ThrowsAtLines actions;
    actions.Move(Pt(1, 2));
    EXPECT_THROW(actions.Line(Pt(3, 4)), int);
    EXPECT_SAME(actions.GetCurrentPt(), Pt(1, 2));
}

TEST(PathActions, DeletingThroughTheBaseRunsTheDerivedDestructor) {
    struct Noticed : CPathActions {
        explicit Noticed(bool& flag) : mFlag(flag) {}
        ~Noticed() override { mFlag = true; }
        bool& mFlag;
    };
    bool destroyed = false;
    CPathActions* const actions = new Noticed(destroyed);
    delete actions;
    EXPECT_TRUE(destroyed);
}

TEST(PathTraversal, DeliversEveryElementInOrder) {
    CPath path;
    path.MoveTo(Pt(1, 1));
    path.LineTo(Pt(2, 1));
    path.LineTo(Pt(2, 2));
    path.ClosePath();
    Recorder recorder;
    path.ForAll(recorder);
    EXPECT_EQ(recorder.calls,
              (Calls{"M(1, 1) at (0, 0) from (0, 0)", "L(2, 1) at (1, 1) from (1, 1)",
                     "L(2, 2) at (2, 1) from (1, 1)", "Z at (2, 2) from (1, 1)"}));
    EXPECT_SAME(recorder.GetCurrentPt(), Pt(1, 1));
}

TEST(PathTraversal, CloseAfterAMoveSeesItsStart) {
    CPath path;
    path.MoveTo(Pt(1, 1));
    path.ClosePath();
    Recorder recorder;
    path.ForAll(recorder);
    EXPECT_EQ(recorder.calls, (Calls{"M(1, 1) at (0, 0) from (0, 0)", "Z at (1, 1) from (1, 1)"}));
}

TEST(PathTraversal, SecondMoveSeesTheFirstSubpathsStart) {
    CPath path;
    path.MoveTo(Pt(1, 1));
    path.LineTo(Pt(2, 1));
    path.MoveTo(Pt(7, 7));
    path.LineTo(Pt(8, 7));
    Recorder recorder;
    path.ForAll(recorder);
    ASSERT_EQ(recorder.calls.size(), 4U);
    EXPECT_EQ(recorder.calls[2], "M(7, 7) at (2, 1) from (1, 1)");
    EXPECT_EQ(recorder.calls[3], "L(8, 7) at (7, 7) from (7, 7)");
}

TEST(PathTraversal, CurveWithoutMoveStartsWhereTheVisitorIs) {
    CPath path;
    path.CurveTo(Pt(1, 2), Pt(3, 4), Pt(5, 6));
    Recorder recorder;
    path.ForAll(recorder);
    path.ForAll(recorder); // the tracked points carry over
    EXPECT_EQ(recorder.calls, (Calls{"C(1, 2) (3, 4) (5, 6) at (0, 0) from (0, 0)",
                                     "C(1, 2) (3, 4) (5, 6) at (5, 6) from (0, 0)"}));
}

TEST(PathTraversal, EmptyPathDeliversNothing) {
    Recorder recorder;
    CPath().ForAll(recorder);
    EXPECT_TRUE(recorder.calls.empty());
}

TEST(PathTraversal, UnknownCodesArePassedOver) {
    CPath path;
    path.mCtls = {4, 0, static_cast<char>(-1), 1, static_cast<char>(-128), 127, 3};
    path.mPts = {Pt(1, 1), Pt(2, 2)};
    Recorder recorder;
    path.ForAll(recorder);
    EXPECT_EQ(recorder.calls, (Calls{"M(1, 1) at (0, 0) from (0, 0)",
                                     "L(2, 2) at (1, 1) from (1, 1)", "Z at (2, 2) from (1, 1)"}));
}

TEST(PathTraversal, EndsWhereThePointsDoNotSuffice) {
    CPath path;
    path.mCtls = {0, 1, 2, 1, 3};
    path.mPts = {Pt(1, 1), Pt(2, 2), Pt(3, 3), Pt(4, 4)};
    Recorder recorder;
    path.ForAll(recorder);
    EXPECT_EQ(recorder.calls,
              (Calls{"M(1, 1) at (0, 0) from (0, 0)", "L(2, 2) at (1, 1) from (1, 1)"}));
}

TEST(PathTraversal, ForAllRebuildsThePath) {
    class Builder : public CPathActions {
    public:
        CPath path;
        void MoveTo(Pt const& p) override { path.MoveTo(p); }
        void LineTo(Pt const& p) override { path.LineTo(p); }
        void CurveTo(Pt const& c1, Pt const& c2, Pt const& e) override { path.CurveTo(c1, c2, e); }
        void ClosePath() override { path.ClosePath(); }
    };
    plain::Random random(11);
    for (int i = 0; i < 200; ++i) {
        CPath path;
        for (int k = random.Int(0, 12); k > 0; --k) {
            switch (random.Int(0, 3)) {
            case 0:
                path.MoveTo(random.Pt(-9, 9));
                break;
            case 1:
                path.LineTo(random.Pt(-9, 9));
                break;
            case 2:
                path.CurveTo(random.Pt(-9, 9), random.Pt(-9, 9), random.Pt(-9, 9));
                break;
            default:
                path.ClosePath();
                break;
            }
        }
        Builder builder;
        path.ForAll(builder);
        EXPECT_EQ(builder.path.mCtls, path.mCtls);
        EXPECT_EQ(builder.path.mPts, path.mPts);
        EXPECT_EQ(builder.path.mOpen, path.mOpen);
    }
}

TEST(PathTraversal, VisitorMayEmptyThePathThatItVisits) {
    class Clearer : public CPathActions {
    public:
        explicit Clearer(CPath& path) : mPath(path) {}
        int curves = 0;
        void CurveTo(Pt const& c1, Pt const& c2, Pt const& e) override {
            ++curves;
            mPath.clear();
            mPath.mPts.shrink_to_fit();
            mPath.mCtls.shrink_to_fit();
            mSum += c1 + c2 + e;
        }
        Pt Sum() const { return mSum; }

    private:
        CPath& mPath;
        Pt mSum;
    };
    CPath path;
    path.MoveTo(Pt(1, 1));
    path.CurveTo(Pt(1, 2), Pt(3, 4), Pt(5, 6));
    path.CurveTo(Pt(1, 2), Pt(3, 4), Pt(7, 8));
    Clearer clearer(path);
    path.ForAll(clearer);
    EXPECT_EQ(clearer.curves, 1);
    EXPECT_SAME(clearer.Sum(), Pt(9, 12));
    EXPECT_SAME(clearer.GetCurrentPt(), Pt(5, 6));
}

TEST(PathTraversal, ExceptionOfAnOverrideEndsTheTraversal) {
    CPath path;
    path.MoveTo(Pt(1, 1));
    path.LineTo(Pt(2, 2));
    ThrowsAtLines actions;
    EXPECT_THROW(path.ForAll(actions), int);
    EXPECT_SAME(actions.GetCurrentPt(), Pt(1, 1));
}

} // namespace
