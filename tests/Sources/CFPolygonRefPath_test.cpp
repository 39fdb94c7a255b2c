// SPDX-License-Identifier: MIT

// The drawing path that a handle polygon caches: who builds it, how long it is kept, and that each
// is released exactly once.
#include "CFPolygonRef.h"

#include "CGPathBuilder.h"
#include "ShortMemory.h"
#include "TPoly.h"
#include "TestSupport.h"
#include "UFPoly.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using trammel_test::kNaN;
using trammel_test::Random;

typedef TPoint<double> Pt;
typedef TRect<double> Box;
typedef std::vector<Pt> Points;

bool const kNoBuilderAtLoad = mBuildProc == nullptr;

/// A builder that keeps a reference of its own to each path that it made. So the reference count
/// tells what the polygon did with its reference.
struct Builder {
    static inline std::vector<CGPath*> paths; // NOLINT: a plain function has no other place
    static inline long calls = 0;             // NOLINT
    static inline OpaqueCFPolygon** last = nullptr;

    static CGPath* Build(CFPolygonRef polygon) {
        ++calls;
        last = polygon.mRef;
        CGPath* const path = CGPathCreateMutable();
        if (path != nullptr) {
            CGPathRetain(path);
            paths.push_back(path);
        }
        return path;
    }
    static CGPath* BuildNothing(CFPolygonRef) {
        ++calls;
        return nullptr;
    }
};

/// True while the polygon still has its reference to the path.
bool Kept(CGPath* path) { return CGPathGetRetainCount(path) == 2; }

class PolygonPath : public trammel_test::WithoutLeaks {
protected:
    void SetUp() override {
        WithoutLeaks::SetUp();
        Builder::paths.clear();
        Builder::calls = 0;
        CFPolygonRef::SetBuilPathProc(Builder::Build);
    }
    void TearDown() override {
        CFPolygonRef::SetBuilPathProc(nullptr);
        trammel_detail::FailNextAllocations(0);
        for (CFPolygonRef& ref : mKept) {
            ref.Dispose();
        }
        for (CGPath* const path : Builder::paths) {
            EXPECT_EQ(CGPathGetRetainCount(path), 1) << "released exactly once";
            CGPathRelease(path);
        }
        Builder::paths.clear();
        WithoutLeaks::TearDown();
    }
    /// Three points, disposed after the test.
    CFPolygonRef Triangle() {
        CFPolygonRef ref;
        ref.CFPolygonCreate(Points{{1, 1}, {5, 1}, {5, 5}});
        mKept.push_back(ref);
        return ref;
    }
    CFPolygonRef Keep(CFPolygonRef ref) {
        mKept.push_back(ref);
        return ref;
    }

private:
    std::vector<CFPolygonRef> mKept;
};

TEST_F(PolygonPath, NoBuilderMeansNoPathAndNothingIsCached) {
    EXPECT_TRUE(kNoBuilderAtLoad);
    CFPolygonRef ref = Triangle();
    CFPolygonRef::SetBuilPathProc(nullptr);
    EXPECT_EQ(mBuildProc, nullptr);
    EXPECT_EQ(ref.GetPath(), nullptr);
    EXPECT_EQ((*static_cast<FPolygon**>(ref))->polyPath, 0);
    CFPolygonRef::SetBuilPathProc(Builder::Build);
    EXPECT_EQ(mBuildProc, &Builder::Build);
    EXPECT_NE(ref.GetPath(), nullptr);
    EXPECT_EQ(Builder::calls, 1);
}

TEST_F(PolygonPath, ANullReferenceHasNoPathAndAsksNoOne) {
    EXPECT_EQ(CFPolygonRef().GetPath(), nullptr);
    EXPECT_EQ(Builder::calls, 0);
}

TEST_F(PolygonPath, IsBuiltOnceAndBorrowed) {
    CFPolygonRef ref = Triangle();
    CGPath* const path = ref.GetPath();
    ASSERT_NE(path, nullptr);
    EXPECT_EQ(Builder::last, ref.mRef) << "the polygon itself, no copy";
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(ref.GetPath(), path);
        EXPECT_EQ(CFPolygonRef(ref, false).GetPath(), path) << "whoever shares the block shares it";
    }
    EXPECT_EQ(Builder::calls, 1);
    EXPECT_EQ(CGPathGetRetainCount(path), 2) << "the polygon's and the test's: none for the caller";
    EXPECT_NE((*static_cast<FPolygon**>(ref))->polyPath, 0);
}

TEST_F(PolygonPath, AnEmptyPolygonHasAPathLikeAnyOther) {
    CFPolygonRef ref = Keep(CFPolygonRef(true));
    CGPath* const path = ref.GetPath();
    EXPECT_NE(path, nullptr);
    EXPECT_EQ(ref.GetPath(), path);
    EXPECT_EQ(Builder::calls, 1);
}

TEST_F(PolygonPath, ANullResultIsAskedForAgain) {
    CFPolygonRef ref = Triangle();
    CFPolygonRef::SetBuilPathProc(Builder::BuildNothing);
    for (int i = 1; i <= 3; ++i) {
        EXPECT_EQ(ref.GetPath(), nullptr);
        EXPECT_EQ(Builder::calls, i);
        EXPECT_EQ((*static_cast<FPolygon**>(ref))->polyPath, 0);
    }
    CFPolygonRef::SetBuilPathProc(Builder::Build);
    EXPECT_NE(ref.GetPath(), nullptr);
}

TEST_F(PolygonPath, AnotherBuilderLeavesPathsThatAreCached) {
    CFPolygonRef ref = Triangle();
    CGPath* const path = ref.GetPath();
    CFPolygonRef::SetBuilPathProc(Builder::BuildNothing);
    EXPECT_EQ(ref.GetPath(), path);
    CFPolygonRef::SetBuilPathProc(nullptr);
    EXPECT_EQ(ref.GetPath(), path);
    EXPECT_TRUE(Kept(path));
    ref.InvalBounds();
    EXPECT_EQ(ref.GetPath(), nullptr);
    EXPECT_FALSE(Kept(path));
}

TEST_F(PolygonPath, TheBuilderMayReadThePolygon) {
    CFPolygonRef ref = Triangle();
    ref.SetClosed(true);
    static std::string read;
    CFPolygonRef::SetBuilPathProc([](CFPolygonRef polygon) {
        read = PolyDescription(polygon) + (polygon.Closed() ? "closed " : "open ") +
               polygon.Bounds().NSString();
        EXPECT_TRUE(polygon.Contains(Pt(4, 2)));
        return Builder::Build(polygon);
    });
    CGPath* const path = ref.GetPath();
    EXPECT_EQ(read, "1, 1\n5, 1\n5, 5\nclosed " + Box(1, 1, 5, 5).NSString());
    EXPECT_EQ(ref.GetPath(), path);
    EXPECT_TRUE(ref.BoundsValid());
}

TEST_F(PolygonPath, ABuilderThatAsksForThePathBeingBuiltLosesNone) {
    CFPolygonRef ref = Triangle();
    static bool inside = false;
    static CGPath* inner = nullptr;
    CFPolygonRef::SetBuilPathProc([](CFPolygonRef polygon) {
        if (!inside) {
            inside = true;
            inner = polygon.GetPath();
            inside = false;
        }
        return Builder::Build(polygon);
    });
    CGPath* const path = ref.GetPath();
    ASSERT_EQ(Builder::paths.size(), 2u);
    EXPECT_EQ(Builder::paths[0], inner);
    EXPECT_EQ(Builder::paths[1], path);
    EXPECT_FALSE(Kept(inner));
    EXPECT_TRUE(Kept(path));
    EXPECT_EQ(ref.GetPath(), path);
}

TEST_F(PolygonPath, WhatTheBuilderThrowsPassesThroughAndNothingIsCached) {
    CFPolygonRef ref = Triangle();
    CFPolygonRef::SetBuilPathProc([](CFPolygonRef) -> CGPath* { throw std::string("no"); });
    EXPECT_THROW(ref.GetPath(), std::string);
    EXPECT_EQ((*static_cast<FPolygon**>(ref))->polyPath, 0);
    CFPolygonRef::SetBuilPathProc(Builder::Build);
    EXPECT_NE(ref.GetPath(), nullptr);
}

TEST_F(PolygonPath, APathOfSeveralOwnersStaysWithTheOthers) {
    static CGPath* shared = nullptr;
    shared = CGPathCreateMutable();
    CFPolygonRef::SetBuilPathProc([](CFPolygonRef) {
        CGPathRetain(shared); // one reference for each polygon
        return shared;
    });
    CFPolygonRef a = Triangle();
    CFPolygonRef b = Triangle();
    EXPECT_EQ(a.GetPath(), shared);
    EXPECT_EQ(b.GetPath(), shared);
    EXPECT_EQ(CGPathGetRetainCount(shared), 3);
    a.InvalBounds();
    EXPECT_EQ(CGPathGetRetainCount(shared), 2);
    EXPECT_EQ(b.GetPath(), shared);
    b.InvalBounds();
    EXPECT_EQ(CGPathGetRetainCount(shared), 1);
    CGPathRelease(shared);
}

/// One operation, on a triangle, and whether it drops the path.
struct Operation {
    char const* name;
    std::function<void(CFPolygonRef&)> run;
    bool drops;
};

std::vector<Operation> Operations() {
    typedef CFPolygonRef& Ref;
    static Pt const p(2, 3);
    static Box const from(0, 0, 1, 1);
    static Box const to(0, 0, 2, 2);
    auto const dispose = [](MacPolygon** qd) { DisposeHandle(reinterpret_cast<Handle>(qd)); };
    return {
        {"SetSize", [](Ref r) { r.SetSize(7); }, true},
        {"SetSize to the same", [](Ref r) { r.SetSize(3); }, true},
        {"SetSize to 0", [](Ref r) { r.SetSize(0); }, true},
        {"SetSize negative", [](Ref r) { r.SetSize(-1); }, false},
        {"SetPolyPoints", [](Ref r) { r.SetPolyPoints(1, p); }, true},
        {"SetPolyPoints to the same", [](Ref r) { r.SetPolyPoints(0, Pt(1, 1)); }, true},
        {"SetPolyPoints outside", [](Ref r) { r.SetPolyPoints(3, p); }, false},
        {"Append", [](Ref r) { r.Append(p); }, true},
        {"Insert", [](Ref r) { r.Insert(1, p); }, false},
        {"Insert at the end", [](Ref r) { r.Insert(3, p); }, false},
        {"Delete", [](Ref r) { r.Delete(1, 1); }, true},
        {"Delete of no points", [](Ref r) { r.Delete(1, 0); }, true},
        {"Delete outside", [](Ref r) { r.Delete(3, 1); }, true},
        {"Delete from a negative index", [](Ref r) { r.Delete(-1, 1); }, true},
        {"Delete of a negative count", [](Ref r) { r.Delete(0, -1); }, true},
        {"SetClosed to the other", [](Ref r) { r.SetClosed(true); }, true},
        {"SetClosed to the same", [](Ref r) { r.SetClosed(false); }, false},
        {"InvalBounds", [](Ref r) { r.InvalBounds(); }, true},
        {"CalcBounds", [](Ref r) { r.CalcBounds(); }, false},
        {"Bounds", [](Ref r) { r.Bounds(); }, false},
        {"Offset", [](Ref r) { r.Offset(p); }, true},
        {"Scale", [](Ref r) { r.Scale(2.0); }, true},
        {"Scale by 1", [](Ref r) { r.Scale(1.0); }, false},
        {"Scale in one direction", [](Ref r) { r.Scale(1.0, 2.0); }, true},
        {"Scale by 1 and 1", [](Ref r) { r.Scale(1.0, 1.0); }, false},
        {"Rotate", [](Ref r) { r.Rotate(0.5, p); }, true},
        {"Map", [](Ref r) { r.Map(from, to); }, true},
        {"Contains", [](Ref r) { r.Contains(p); }, false},
        {"PolyPoints", [](Ref r) { r.PolyPoints(0); }, false},
        {"GetEdge", [](Ref r) { r.GetEdge(0); }, false},
        {"CreateQDPoly", [dispose](Ref r) { dispose(r.CreateQDPoly()); }, false},
        {"CFPolygonCreateCopy", [](Ref r) { CFPolygonCreateCopy(r).Dispose(); }, false},
        {"to a TPolygon", [](Ref r) { TPolygon<double> const polygon(r); }, false},
        {"assignment", [](Ref r) { r = CFPolygonRef(r); }, false},

        {"OpenFPoly and CloseFPoly",
         [](Ref) {
             KillFPoly(OpenFPoly());
             CloseFPoly();
         },
         false},
        {"CloneFPoly", [](Ref r) { KillFPoly(CloneFPoly(r)); }, false},
        {"FPoly2Poly", [dispose](Ref r) { dispose(FPoly2Poly(r)); }, false},
        {"FPolyClosed", [](Ref r) { FPolyClosed(r); }, false},
        {"LastFPolyIndex", [](Ref r) { LastFPolyIndex(r); }, false},
        {"FindFPolyBBox", [](Ref r) { FindFPolyBBox(r); }, true},
        {"PolyDescription", [](Ref r) { PolyDescription(r); }, false},
        {"ScaleFPoly", [](Ref r) { ScaleFPoly(r, 3.0); }, true},
        {"ScaleFPoly by 1", [](Ref r) { ScaleFPoly(r, 1.0); }, false},
        {"RotateFPoly", [](Ref r) { RotateFPoly(r, 1.0, p); }, true},
        {"MapFPoly", [](Ref r) { MapFPoly(r, from, to); }, true},
        {"OffsetFPoly", [](Ref r) { OffsetFPoly(r, p); }, true},
        {"AppendPolyPt", [](Ref r) { AppendPolyPt(p, r); }, true},
        {"InsertPolyPt", [](Ref r) { InsertPolyPt(1, p, r); }, false},
        {"InsertPolyPts forward", [](Ref r) { InsertPolyPts(r, r, 2, 1); }, true},
        {"InsertPolyPts backward", [](Ref r) { InsertPolyPts(r, r, 2, 2); }, true},
        {"InsertPolyPts of nothing", [](Ref r) { InsertPolyPts(r, r, 2, 0); }, false},
        {"InsertPolyPts from it",
         [](Ref r) {
             CFPolygonRef other = OpenFPoly();
             InsertPolyPts(other, r, 2, 1);
             KillFPoly(other);
         },
         false},
        {"DeletePolyPt", [](Ref r) { DeletePolyPt(r); }, true},
        {"FPtInFPoly", [](Ref r) { FPtInFPoly(r, p); }, false},
        {"FRectInFPoly", [](Ref r) { FRectInFPoly(r, to, true); }, false},
        {"FPolyInFPoly", [](Ref r) { FPolyInFPoly(r, r, false); }, false},
        {"SetBuilPathProc", [](Ref) { CFPolygonRef::SetBuilPathProc(Builder::Build); }, false},
        {"GetPath", [](Ref r) { r.GetPath(); }, false},
    };
}

TEST_F(PolygonPath, EveryOperationKeepsOrDropsItAsStated) {
    for (Operation const& operation : Operations()) {
        for (bool const boundsValid : {false, true}) {
            SCOPED_TRACE(operation.name);
            CFPolygonRef ref;
            ref.CFPolygonCreate(Points{{1, 1}, {5, 1}, {5, 5}});
            if (boundsValid) {
                ref.Bounds();
            }
            CGPath* const path = ref.GetPath();
            long const calls = Builder::calls;
            operation.run(ref);
            EXPECT_EQ(Kept(path), !operation.drops);
            CGPath* const again = ref.GetPath();
            EXPECT_EQ(Builder::calls, calls + (operation.drops ? 1 : 0));
            EXPECT_EQ(again == path, !operation.drops);
            EXPECT_TRUE(Kept(again));
            KillFPoly(ref);
            EXPECT_FALSE(Kept(again));
            EXPECT_EQ(CGPathGetRetainCount(path), 1);
        }
    }
}

TEST_F(PolygonPath, ShortMemoryKeepsThePathOfAPolygonThatStaysAsItWas) {
    CFPolygonRef ref = Triangle();
    CGPath* const path = ref.GetPath();
    trammel_detail::FailNextAllocations(4);
    ref.Append(Pt(1, 2));
    ref.SetSize(9);
    AppendPolyPt(Pt(1, 2), ref);
    InsertPolyPts(ref, ref, 2, 1);
    EXPECT_FALSE(trammel_detail::TakeInjectedFailure());
    EXPECT_EQ(ref.LastIndex(), 2);
    EXPECT_TRUE(Kept(path));
    EXPECT_EQ(ref.GetPath(), path);
}

TEST_F(PolygonPath, ShortMemoryWhileStoringReleasesThePathAndAsksAgain) {
    CFPolygonRef ref = Triangle();
    CFPolygonRef::SetBuilPathProc([](CFPolygonRef polygon) {
        CGPath* const path = Builder::Build(polygon);
        trammel_detail::FailNextAllocations(1); // for the entry in the table
        return path;
    });
    EXPECT_EQ(ref.GetPath(), nullptr);
    ASSERT_EQ(Builder::paths.size(), 1u);
    EXPECT_FALSE(Kept(Builder::paths[0]));
    EXPECT_EQ((*static_cast<FPolygon**>(ref))->polyPath, 0);
    CFPolygonRef::SetBuilPathProc(Builder::Build);
    CGPath* const path = ref.GetPath();
    ASSERT_EQ(Builder::paths.size(), 2u);
    EXPECT_EQ(path, Builder::paths[1]);
    EXPECT_TRUE(Kept(path));
}

TEST_F(PolygonPath, ACopyBuildsAPathOfItsOwn) {
    CFPolygonRef ref = Triangle();
    CGPath* const path = ref.GetPath();
    CFPolygonRef copy = Keep(CFPolygonCreateCopy(ref));
    CGPath* const other = copy.GetPath();
    EXPECT_NE(other, path);
    EXPECT_EQ(Builder::last, copy.mRef);
    copy.Append(Pt(1, 2));
    EXPECT_FALSE(Kept(other));
    EXPECT_TRUE(Kept(path));
    EXPECT_EQ(ref.GetPath(), path);
}

/// The same bytes in another block, as an application makes it that stores blocks as they stand.
CFPolygonRef RawCopy(CFPolygonRef const& ref) {
    Handle h = nullptr;
    EXPECT_EQ(PtrToHand(*ref.mRef, &h, ref.DataSize()), noErr);
    return CFPolygonRef(reinterpret_cast<FPolygon**>(h), false);
}

TEST_F(PolygonPath, ABlockCopiedByteByByteHasNoPathUntilItBuildsOne) {
    for (bool const sourceFirst : {false, true}) {
        CFPolygonRef ref;
        ref.CFPolygonCreate(Points{{1, 1}, {5, 1}, {5, 5}});
        CGPath* const path = ref.GetPath();
        CFPolygonRef copy = RawCopy(ref);
        EXPECT_EQ((*static_cast<FPolygon**>(copy))->polyPath,
                  (*static_cast<FPolygon**>(ref))->polyPath);
        CFPolygonRef::SetBuilPathProc(nullptr);
        EXPECT_EQ(copy.GetPath(), nullptr);
        CFPolygonRef::SetBuilPathProc(Builder::BuildNothing);
        EXPECT_EQ(copy.GetPath(), nullptr);
        EXPECT_TRUE(Kept(path));
        CFPolygonRef::SetBuilPathProc(Builder::Build);
        CGPath* const other = copy.GetPath();
        EXPECT_NE(other, path);
        EXPECT_EQ(copy.GetPath(), other);
        EXPECT_EQ(ref.GetPath(), path);
        (sourceFirst ? ref : copy).Dispose();
        EXPECT_EQ(Kept(path), !sourceFirst);
        EXPECT_EQ(Kept(other), sourceFirst);
        (sourceFirst ? copy : ref).Dispose();
        EXPECT_FALSE(Kept(path) || Kept(other));
    }
}

TEST_F(PolygonPath, BytesPutBackIntoTheirBlockBringNoReleasedPathBack) {
    CFPolygonRef ref = Triangle();
    CGPath* const path = ref.GetPath();
    std::string const saved(reinterpret_cast<char const*>(*ref.mRef),
                            static_cast<std::size_t>(ref.DataSize()));
    ref.InvalBounds();
    EXPECT_FALSE(Kept(path));
    std::memcpy(reinterpret_cast<char*>(*ref.mRef), saved.data(), saved.size());
    CGPath* const again = ref.GetPath();
    EXPECT_NE(again, path);
    EXPECT_TRUE(Kept(again));
    EXPECT_EQ(Builder::calls, 2);
}

// Random sequences against a model: for each block the path that it must have

struct Modelled {
    CFPolygonRef ref;
    CGPath* path; ///< null for none
};

/// Walks through random operations on a changing set of blocks. After each operation it checks that
/// every block has the path that it must have, and that no one holds another path.
class Walk {
public:
    explicit Walk(std::uint64_t seed) : mRandom(seed) {}

    void Step() {
        if (mBlocks.empty() || (mBlocks.size() < 12 && Chance(12))) {
            Add(CFPolygonRef(true), nullptr);
            return;
        }
        std::size_t const index =
            static_cast<std::size_t>(mRandom.Integer(0, static_cast<int>(mBlocks.size()) - 1));
        if (Chance(14)) {
            Copy(index);
        } else if (Chance(16)) {
            Dispose(index);
        } else if (Chance(3)) {
            GetPath(mBlocks[index]);
        } else {
            Change(mBlocks[index]);
        }
    }
    void Check() const {
        std::map<CGPath*, int> held;
        for (Modelled const& block : mBlocks) {
            if (block.path != nullptr) {
                ++held[block.path];
            }
        }
        for (CGPath* const path : Builder::paths) {
            auto const found = held.find(path);
            ASSERT_EQ(CGPathGetRetainCount(path), 1 + (found != held.end() ? found->second : 0));
        }
        ASSERT_EQ(trammel_detail::LivePathTokenCount() - mTokens, static_cast<long>(held.size()));
    }
    void DisposeAll() {
        while (!mBlocks.empty()) {
            Dispose(
                static_cast<std::size_t>(mRandom.Integer(0, static_cast<int>(mBlocks.size()) - 1)));
        }
    }

private:
    bool Chance(int n) { return mRandom.Integer(1, n) == 1; }
    Pt Point() { return mRandom.Point(10.0); }

    void Add(CFPolygonRef ref, CGPath* path) { mBlocks.push_back({ref, path}); }

    void Copy(std::size_t index) {
        CFPolygonRef const source = mBlocks[index].ref;
        switch (mRandom.Integer(0, 3)) {
        case 0:
            Add(CFPolygonCreateCopy(source), nullptr);
            break;
        case 1:
            Add(CloneFPoly(source), nullptr);
            break;
        case 2:
            Add(RawCopy(source), nullptr);
            break;
        default: {
            Handle h = reinterpret_cast<Handle>(source.mRef);
            ASSERT_EQ(HandToHand(&h), noErr);
            Add(CFPolygonRef(reinterpret_cast<FPolygon**>(h), false), nullptr);
        }
        }
    }
    void Dispose(std::size_t index) {
        CFPolygonRef ref = mBlocks[index].ref;
        if (Chance(2)) {
            ref.Dispose();
        } else {
            KillFPoly(ref);
        }
        mBlocks.erase(mBlocks.begin() + static_cast<std::ptrdiff_t>(index));
    }
    void GetPath(Modelled& block) {
        long const calls = Builder::calls;
        CGPath* const path = block.ref.GetPath();
        ASSERT_NE(path, nullptr);
        if (block.path == nullptr) {
            ASSERT_EQ(Builder::calls, calls + 1);
            ASSERT_EQ(path, Builder::paths.back());
            block.path = path;
        } else {
            ASSERT_EQ(Builder::calls, calls);
            ASSERT_EQ(path, block.path);
        }
    }
    void Change(Modelled& block) {
        CFPolygonRef& ref = block.ref;
        long const n = ref.LastIndex() + 1;
        long const i = mRandom.Integer(-2, static_cast<int>(n) + 1);
        bool const inside = i >= 0 && i < n;
        bool drops = false;
        switch (mRandom.Integer(0, 16)) {
        case 0:
            ref.Append(Point());
            drops = true;
            break;
        case 1:
            ref.Insert(i, Point());
            break;
        case 2:
            ref.Delete(i, mRandom.Integer(-1, 3));
            drops = true;
            break;
        case 3:
            ref.SetPolyPoints(i, Point());
            drops = inside;
            break;
        case 4: {
            bool const closed = Chance(2);
            drops = closed != ref.Closed();
            ref.SetClosed(closed);
            break;
        }
        case 5:
            ref.SetSize(i);
            drops = i >= 0;
            break;
        case 6:
            OffsetFPoly(ref, Point());
            drops = true;
            break;
        case 7: {
            double const scale = Chance(2) ? 1.0 : 0.5;
            ScaleFPoly(ref, scale);
            drops = scale != 1.0;
            break;
        }
        case 8:
            RotateFPoly(ref, mRandom.Uniform(-3.0, 3.0), Point());
            drops = true;
            break;
        case 9:
            MapFPoly(ref, Box(0, 0, 1, 1), Box(1, 1, 2, 2));
            drops = n > 0;
            break;
        case 10:
            DeletePolyPt(ref);
            drops = true;
            break;
        case 11: {
            CFPolygonRef const source = mBlocks[static_cast<std::size_t>(mRandom.Integer(
                                                    0, static_cast<int>(mBlocks.size()) - 1))]
                                            .ref;
            long const count = mRandom.Integer(-1, 4);
            short const mode = static_cast<short>(mRandom.Integer(0, 2));
            InsertPolyPts(ref, source, count, mode);
            drops = mode != 0 && count > 0;
            break;
        }
        case 12:
            FindFPolyBBox(ref);
            drops = true;
            break;
        case 13:
            ref.Bounds();
            ref.Contains(Point());
            break;
        case 14:
            trammel_detail::FailNextAllocations(1);
            AppendPolyPt(Point(), ref);
            trammel_detail::FailNextAllocations(0);
            break;
        case 15:
            InsertPolyPt(i, Point(), ref);
            break;
        default:
            ref.CalcBounds();
            break;
        }
        if (drops) {
            block.path = nullptr;
        }
    }

    Random mRandom;
    std::vector<Modelled> mBlocks;
    long mTokens = trammel_detail::LivePathTokenCount();
};

TEST_F(PolygonPath, RandomSequencesReleaseEachPathExactlyOnce) {
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE(seed);
        Walk walk(seed);
        for (int step = 0; step < 400; ++step) {
            walk.Step();
            walk.Check();
            if (HasFailure()) {
                break;
            }
        }
        EXPECT_GT(Builder::paths.size(), 20u);
        walk.DisposeAll();
        walk.Check();
        for (CGPath* const path : Builder::paths) {
            EXPECT_EQ(CGPathGetRetainCount(path), 1);
            CGPathRelease(path);
        }
        Builder::paths.clear();
        if (HasFailure()) {
            return;
        }
    }
}

// The ready builder where memory runs out. The allocation that fails is the n-th one, until none
// does.

TEST_F(PolygonPath, TheReadyBuilderLeavesNothingBehindWhenMemoryIsShort) {
    CFPolygonRef ref;
    ref.CFPolygonCreate(Points(1000, Pt(3, 4)));
    Keep(ref);
    ref.SetPolyPoints(500, Pt(kNaN, 0)); // so that there are moves, lines and no close
    for (CGPath* (*const build)(CFPolygonRef) :
         {&trammel::BuildOpenPath, &trammel::BuildClosedPath, &trammel::BuildPath}) {
        long const paths = trammel_detail::LivePathCount();
        CGPath* path = nullptr;
        int failures = -1;
        while (path == nullptr && failures < 100) {
            ++failures;
            trammel_test::ShortMemory const memory(failures);
            path = build(ref);
            EXPECT_EQ(trammel_detail::LivePathCount(), paths + (path != nullptr ? 1 : 0));
        }
        EXPECT_GE(failures, 8) << "the path object, and its elements as they grow";
        EXPECT_EQ(CGPathGetRetainCount(path), 1);
        CGPathRelease(path);
    }
    trammel_detail::FailNextAllocations(1);
    EXPECT_EQ(trammel::BuildPath(ref), nullptr);
}

TEST_F(PolygonPath, AFailedReadyBuilderIsAskedAgain) {
    CFPolygonRef ref = Triangle();
    CFPolygonRef::SetBuilPathProc(trammel::BuildPath);
    for (int allocations = 0; allocations < 3; ++allocations) {
        trammel_test::ShortMemory const memory(allocations);
        EXPECT_EQ(ref.GetPath(), nullptr) << allocations;
    }
    CGPath* const path = ref.GetPath();
    EXPECT_NE(path, nullptr);
    EXPECT_EQ(ref.GetPath(), path);
}

} // namespace
