// SPDX-License-Identifier: MIT

#ifndef TRAMMEL_AGGPATH_H
#define TRAMMEL_AGGPATH_H

#include <trammel/CPath.h>
#include <trammel/CPathActions.h>

#include <agg_path_storage.h>

#include <memory>

namespace peers {

/// Returns AGG's path of ours.
inline std::shared_ptr<agg::path_storage> ToAgg(CPath const& path) {
    struct Builder : CPathActions {
        explicit Builder(agg::path_storage& storage) : mStorage(storage) {}
        void MoveTo(TPoint<double> const& p) override { mStorage.move_to(p.h, p.v); }
        void LineTo(TPoint<double> const& p) override { mStorage.line_to(p.h, p.v); }
        void CurveTo(TPoint<double> const& c1, TPoint<double> const& c2,
                     TPoint<double> const& e) override {
            mStorage.curve4(c1.h, c1.v, c2.h, c2.v, e.h, e.v);
        }
        void ClosePath() override { mStorage.close_polygon(); }
        agg::path_storage& mStorage;
    };
    auto const storage = std::make_shared<agg::path_storage>();
    Builder builder(*storage);
    path.ForAll(builder);
    return storage;
}

} // namespace peers

#endif
