// SPDX-License-Identifier: MIT

// Rays to the west, which tell where one edge of each connected part of the lines lies. Not
// installed.

#ifndef TRAMMEL_WESTRAYS_P_H
#define TRAMMEL_WESTRAYS_P_H

#include "EdgeTree_p.h"
#include "Lines_p.h"
#include "Scratch_p.h"

#include <cstddef>
#include <optional>

namespace trammel_detail {

/// Casts rays from edges of lines. Refers to the lines and to the tree, which has to be over the
/// lines in their order, or none.
class WestRays {
public:
    WestRays(GridLines const& lines, std::optional<EdgeTree> const& tree)
        : mLines(lines), mTree(tree) {}

    /// Returns what EdgeTree::InsideWestOf() does.
    Operands InsideWestOf(std::size_t edge) {
        EdgeTree const* const tree = TreeForRay();
        return tree != nullptr ? tree->InsideWestOf(edge, mSteps) : PassFrom(edge);
    }
    /// True when the rays so far took much longer than a sweep over all edges does. They do so
    /// where lines lie in each other by the hundred.
    bool AreSlow() const { return mSteps > 32 * mLines.points.size(); }
    /// Appends what EdgeTree::CrossingsWestOf() does.
    void CrossingsWestOf(std::size_t edge, ScratchVector<RayCrossing>& crossings) {
        EdgeTree const* const tree = TreeForRay();
        if (tree != nullptr) {
            mSteps += tree->CrossingsWestOf(edge, crossings);
        } else {
            mSteps += StepsOfPass();
            trammel_detail::CrossingsWestOf(mLines, edge, crossings);
        }
    }

private:
    /// A look at a box of the tree takes as long as a look at two edges.
    std::size_t StepsOfPass() const { return mLines.points.size() / 2; }
    Operands PassFrom(std::size_t edge) {
        mSteps += StepsOfPass();
        return trammel_detail::InsideWestOf(mLines, edge);
    }
    /// Returns the tree for the next ray, or null if a pass over all edges costs less.
    EdgeTree const* TreeForRay() {
        // For a few rays a pass over all edges costs less than a tree.
        int const kFewRays = 8;
        if (!mTree && !mOwnTree && ++mRays > kFewRays) {
            mOwnTree.emplace(mLines, ScratchVector<char>(mLines.points.get_allocator()),
                             GridPoint{0, 0}, EdgeTree::Order::kLines);
        }
        std::optional<EdgeTree> const& tree = mTree ? mTree : mOwnTree;
        // A tree without boxes has so few edges that a pass over them costs less than holding them
        // against each other did.
        return tree && tree->HasBoxes() ? &*tree : nullptr;
    }

    GridLines const& mLines;
    std::optional<EdgeTree> const& mTree;
    std::optional<EdgeTree> mOwnTree;
    int mRays = 0; // while there is no tree
    std::size_t mSteps = 0;
};

} // namespace trammel_detail

#endif
