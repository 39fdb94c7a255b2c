// SPDX-License-Identifier: MIT

// The drawing layer's path: a reference-counted list of segments, and the table that lets a 32-bit
// record field stand for one.

#ifndef TRAMMEL_PATHOBJECT_H
#define TRAMMEL_PATHOBJECT_H

#include "Records.h"
#include "TrammelExport.h"

#include <cstdint>

/// A path: subpaths of lines and curves in single-precision coordinates. It is made with one
/// reference and is freed with the last one. Only the functions below touch it.
///
/// Every function accepts null paths. Several threads may take and give back references at once;
/// while one thread adds to a path, no other may use it.
struct CGPath;

/// A path that is only read.
typedef CGPath const* CGPathRef;
/// A path that segments are added to.
typedef CGPath* CGMutablePathRef;

/// The kind of a path's element.
enum CGPathElementType : std::int32_t {
    kCGPathElementMoveToPoint = 0,         ///< starts a subpath; 1 point
    kCGPathElementAddLineToPoint = 1,      ///< 1 point, the end
    kCGPathElementAddQuadCurveToPoint = 2, ///< 2 points, control and end
    kCGPathElementAddCurveToPoint = 3,     ///< 3 points, two controls and end
    kCGPathElementCloseSubpath = 4         ///< no point: a line to the subpath's start
};

/// One element, as CGPathApply shows it.
struct CGPathElement {
    CGPathElementType type;
    CGPoint* points; ///< as many as the type has; they last for the call only
};

/// A function that gets each element in turn; CGPathApply passes on its own `info`.
typedef void (*CGPathApplierFunction)(void* info, CGPathElement const* element);

/// Makes an empty path with one reference; null when memory is short.
TRAMMEL_API CGMutablePathRef CGPathCreateMutable() noexcept;

/// Takes one more reference; returns the path.
TRAMMEL_API CGPathRef CGPathRetain(CGPathRef path) noexcept;

/// Gives one reference back; the last one frees the path. Does nothing for null.
TRAMMEL_API void CGPathRelease(CGPathRef path) noexcept;

/// Returns the number of references, 0 for null. For diagnostics: other threads may change it at
/// any time.
TRAMMEL_API long CGPathGetRetainCount(CGPathRef path) noexcept;

/// Starts a subpath at (x, y), mapped by `m` unless that is null.
/// Throws std::bad_alloc when memory is short, and then the path is as it was.
TRAMMEL_API void CGPathMoveToPoint(CGMutablePathRef path, CGAffineTransform const* m, CGFloat x,
                                   CGFloat y);

/// Adds a line to (x, y), mapped by `m` unless that is null. An empty path has no place to draw
/// from and stays empty; after a closed subpath the line begins at that subpath's start.
/// Throws std::bad_alloc when memory is short, and then the path is as it was.
TRAMMEL_API void CGPathAddLineToPoint(CGMutablePathRef path, CGAffineTransform const* m, CGFloat x,
                                      CGFloat y);

/// Adds a cubic curve with the control points 1 and 2 to (x, y), all three mapped by `m` unless
/// that is null. Empty path, closed subpath and short memory: as for a line.
TRAMMEL_API void CGPathAddCurveToPoint(CGMutablePathRef path, CGAffineTransform const* m,
                                       CGFloat cp1x, CGFloat cp1y, CGFloat cp2x, CGFloat cp2y,
                                       CGFloat x, CGFloat y);

/// Closes the subpath with a line to its start. Adds nothing to an empty path or directly after
/// another close. Throws std::bad_alloc when memory is short, and then the path is as it was.
TRAMMEL_API void CGPathCloseSubpath(CGMutablePathRef path);

/// Shows `function` the path's elements in order; does nothing when path or function is null.
/// The points are copies: writing to them changes nothing. The function may release the path.
/// Elements that it adds to the path are not shown. Its exceptions pass through.
TRAMMEL_API void CGPathApply(CGPathRef path, void* info, CGPathApplierFunction function);

/// Returns the smallest rectangle around all points, control points and lone moves included.
/// NaN coordinates are passed over. An axis may then be left without a number, as it is in an empty
/// or null path. The result is then the null rectangle: origin (+infinity, +infinity), size 0 by 0.
/// The size is formed in single precision and may round to infinity. Cost: O(n).
TRAMMEL_API CGRect CGPathGetBoundingBox(CGPathRef path) noexcept;

/// True when the path is null or has no element.
TRAMMEL_API bool CGPathIsEmpty(CGPathRef path) noexcept;

// Tokens. A block that programs exchange keeps a field of 32 bits for its path, and a pointer takes
// 64. The field holds a token instead: 0 for none, otherwise a key of a table in the library.
//
// Programs may copy such a block byte by byte, token included, without the library's knowledge. Two
// rules keep a copied token harmless:
//
// 1. An entry belongs to the owner that stored it (the handle of the block). For any other owner
//    the token means nothing: it neither reads nor releases.
// 2. Numbers are given out in turn over the whole 32-bit range, so a released token comes back only
//    after all others were tried. An old copy that returns to its owner's block therefore does not
//    meet that owner's later path either.
namespace trammel_detail {

/// Stores a path for `owner`, takes over one of the caller's references, and returns the token.
/// Returns 0 when the path or the owner is null, and when memory is short. The reference is then
/// given back, so that the caller has nothing to clean up. All functions of the table are safe in
/// several threads at once.
TRAMMEL_API std::int32_t StorePath(CGPath* path, void const* owner) noexcept;

/// Returns the path that `owner` stored under the token, without a new reference. Returns null for
/// 0, for a token that is not in use, and for a token of another owner.
TRAMMEL_API CGPath* PathForToken(std::int32_t token, void const* owner) noexcept;

/// Gives back the reference that `owner` stored under the token, and frees the token. Does nothing
/// for 0, for a token that is not in use, and for a token of another owner.
TRAMMEL_API void ReleasePathToken(std::int32_t token, void const* owner) noexcept;

/// Returns the number of path objects that exist, for tests that look for leaks.
TRAMMEL_API long LivePathCount() noexcept;

/// Returns the number of tokens in use, for tests that look for leaks.
TRAMMEL_API long LivePathTokenCount() noexcept;

/// Makes `token` the next one to be tried, so that tests can reach the end of the range.
TRAMMEL_API void SetNextPathToken(std::int32_t token) noexcept;

} // namespace trammel_detail

#endif
