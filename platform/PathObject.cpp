// SPDX-License-Identifier: MIT

#include "PathObject.h"

#include "Handles.h"

#include <atomic>
#include <cstddef>
#include <limits>
#include <mutex>
#include <new>
#include <unordered_map>
#include <vector>

namespace {

std::atomic<long> gLivePaths{0};

/// One element with room for the points of the longest kind.
struct Segment {
    CGPathElementType type;
    CGPoint points[3];
};

constexpr std::size_t PointCount(CGPathElementType type) {
    switch (type) {
    case kCGPathElementMoveToPoint:
    case kCGPathElementAddLineToPoint:
        return 1;
    case kCGPathElementAddCurveToPoint:
        return 3;
    case kCGPathElementAddQuadCurveToPoint: // no call adds one
    case kCGPathElementCloseSubpath:
        break;
    }
    return 0;
}

CGPoint Mapped(CGAffineTransform const* m, CGFloat x, CGFloat y) {
    if (m == nullptr) {
        return CGPointMake(x, y);
    }
    return CGPointMake(m->a * x + m->c * y + m->tx, m->b * x + m->d * y + m->ty);
}

/// The numbers between `low` and `high`, both included; none as long as low > high.
struct Interval {
    CGFloat low = std::numeric_limits<CGFloat>::infinity();
    CGFloat high = -std::numeric_limits<CGFloat>::infinity();

    void Include(CGFloat value) {
        // Neither comparison holds for a NaN.
        low = value < low ? value : low;
        high = value > high ? value : high;
    }
    bool Empty() const { return low > high; }
    /// Returns 0 for a single value, also for an infinite one, where the difference would be a NaN.
    CGFloat Length() const { return low == high ? 0.0F : high - low; }
};

} // namespace

struct CGPath {
    CGPath() { gLivePaths.fetch_add(1, std::memory_order_relaxed); }
    ~CGPath() { gLivePaths.fetch_sub(1, std::memory_order_relaxed); }
    CGPath(CGPath const&) = delete;
    CGPath& operator=(CGPath const&) = delete;

    mutable std::atomic<long> references{1};
    std::vector<Segment> segments;
};

CGMutablePathRef CGPathCreateMutable() noexcept {
    return trammel_detail::TakeInjectedFailure() ? nullptr : new (std::nothrow) CGPath;
}

CGPathRef CGPathRetain(CGPathRef path) noexcept {
    if (path != nullptr) {
        path->references.fetch_add(1, std::memory_order_relaxed);
    }
    return path;
}

void CGPathRelease(CGPathRef path) noexcept {
    // The thread that frees the path sees what the others did to it before they let go.
    if (path != nullptr && path->references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete path;
    }
}

long CGPathGetRetainCount(CGPathRef path) noexcept {
    return path != nullptr ? path->references.load(std::memory_order_relaxed) : 0;
}

void CGPathMoveToPoint(CGMutablePathRef path, CGAffineTransform const* m, CGFloat x, CGFloat y) {
    if (path != nullptr) {
        path->segments.push_back({kCGPathElementMoveToPoint, {Mapped(m, x, y), {}, {}}});
    }
}

void CGPathAddLineToPoint(CGMutablePathRef path, CGAffineTransform const* m, CGFloat x, CGFloat y) {
    if (!CGPathIsEmpty(path)) {
        path->segments.push_back({kCGPathElementAddLineToPoint, {Mapped(m, x, y), {}, {}}});
    }
}

void CGPathAddCurveToPoint(CGMutablePathRef path, CGAffineTransform const* m, CGFloat cp1x,
                           CGFloat cp1y, CGFloat cp2x, CGFloat cp2y, CGFloat x, CGFloat y) {
    if (!CGPathIsEmpty(path)) {
        path->segments.push_back({kCGPathElementAddCurveToPoint,
                                  {Mapped(m, cp1x, cp1y), Mapped(m, cp2x, cp2y), Mapped(m, x, y)}});
    }
}

void CGPathCloseSubpath(CGMutablePathRef path) {
    if (!CGPathIsEmpty(path) && path->segments.back().type != kCGPathElementCloseSubpath) {
        path->segments.push_back({kCGPathElementCloseSubpath, {}});
    }
}

void CGPathApply(CGPathRef path, void* info, CGPathApplierFunction function) {
    if (path == nullptr || function == nullptr) {
        return;
    }
    // The function may release the path. It may also add to it, which moves the segments.
    struct Keeper {
        CGPathRef path;
        ~Keeper() { CGPathRelease(path); }
    } const keeper{CGPathRetain(path)};
    std::size_t const count = path->segments.size();
    for (std::size_t i = 0; i < count; ++i) {
        Segment shown = path->segments[i];
        CGPathElement const element{shown.type, shown.points};
        function(info, &element);
    }
}

CGRect CGPathGetBoundingBox(CGPathRef path) noexcept {
    Interval x;
    Interval y;
    if (path != nullptr) {
        for (Segment const& segment : path->segments) {
            std::size_t const count = PointCount(segment.type);
            for (std::size_t i = 0; i < count; ++i) {
                x.Include(segment.points[i].x);
                y.Include(segment.points[i].y);
            }
        }
    }
    if (x.Empty() || y.Empty()) {
        constexpr CGFloat infinity = std::numeric_limits<CGFloat>::infinity();
        return CGRectMake(infinity, infinity, 0.0F, 0.0F);
    }
    return CGRectMake(x.low, y.low, x.Length(), y.Length());
}

bool CGPathIsEmpty(CGPathRef path) noexcept { return path == nullptr || path->segments.empty(); }

namespace trammel_detail {
namespace {

/// The path that a token stands for.
struct StoredPath {
    CGPath* path;
    void const* owner;
};

struct TokenTable {
    std::mutex mutex;
    std::unordered_map<std::uint32_t, StoredPath> paths;
    std::uint32_t next = 1;
};

/// Returns the table. It lives as long as the process, because destructors of static objects may
/// dispose blocks.
TokenTable& Table() {
    static TokenTable& table = *new TokenTable;
    return table;
}

/// Enters the path under the next free number; 0 when memory is short.
std::uint32_t EnterPath(CGPath* path, void const* owner) {
    TokenTable& table = Table();
    std::lock_guard<std::mutex> const lock(table.mutex);
    if (table.paths.size() >= std::numeric_limits<std::uint32_t>::max()) {
        return 0; // every number but 0 is in use
    }
    while (table.next == 0 || table.paths.count(table.next) != 0) {
        ++table.next;
    }
    table.paths.emplace(table.next, StoredPath{path, owner});
    return table.next++;
}

} // namespace

std::int32_t StorePath(CGPath* path, void const* owner) noexcept {
    std::uint32_t number = 0;
    if (path != nullptr && owner != nullptr && !TakeInjectedFailure()) {
        try {
            number = EnterPath(path, owner);
        } catch (...) { // memory is short: number is still 0
        }
    }
    if (number == 0) {
        CGPathRelease(path);
    }
    return static_cast<std::int32_t>(number);
}

CGPath* PathForToken(std::int32_t token, void const* owner) noexcept {
    if (token == 0) {
        return nullptr;
    }
    TokenTable& table = Table();
    std::lock_guard<std::mutex> const lock(table.mutex);
    auto const found = table.paths.find(static_cast<std::uint32_t>(token));
    return found != table.paths.end() && found->second.owner == owner ? found->second.path
                                                                      : nullptr;
}

void ReleasePathToken(std::int32_t token, void const* owner) noexcept {
    if (token == 0) {
        return;
    }
    CGPath* path = nullptr;
    {
        TokenTable& table = Table();
        std::lock_guard<std::mutex> const lock(table.mutex);
        auto const found = table.paths.find(static_cast<std::uint32_t>(token));
        if (found == table.paths.end() || found->second.owner != owner) {
            return;
        }
        path = found->second.path;
        table.paths.erase(found);
    }
    CGPathRelease(path);
}

long LivePathCount() noexcept { return gLivePaths.load(std::memory_order_relaxed); }

long LivePathTokenCount() noexcept {
    TokenTable& table = Table();
    std::lock_guard<std::mutex> const lock(table.mutex);
    return static_cast<long>(table.paths.size());
}

void SetNextPathToken(std::int32_t token) noexcept {
    TokenTable& table = Table();
    std::lock_guard<std::mutex> const lock(table.mutex);
    table.next = static_cast<std::uint32_t>(token);
}

} // namespace trammel_detail
