// SPDX-License-Identifier: MIT

// The drawing layer's path: a reference-counted list of segments, and the table that lets a 32-bit
// record field stand for one.
#ifndef TRAMMEL_PATHOBJECT_H
#define TRAMMEL_PATHOBJECT_H

#include "Records.h"
#include "TrammelExport.h"

#include <cstdint>

/// A path: subpaths of lines and curves in single-precision coordinates. It is made with one
/// reference, is freed with the last one, and is touched through the functions below only.
///
/// Null paths are accepted by every function. References may be taken and given back in several
/// threads at once; adding to a path needs it for one thread.
struct CGPath;

/// A path that is only read.
typedef const CGPath* CGPathRef;
/// A path that segments are added to.
typedef CGPath* CGMutablePathRef;

/// What a path's element does.
enum CGPathElementType : int32_t {
    kCGPathElementMoveToPoint = 0,         ///< starts a subpath; 1 point
    kCGPathElementAddLineToPoint = 1,      ///< 1 point, the end
    kCGPathElementAddQuadCurveToPoint = 2, ///< 2 points, control and end
    kCGPathElementAddCurveToPoint = 3,     ///< 3 points, two controls and end
    kCGPathElementCloseSubpath = 4         ///< no point: a line to the subpath's start
};

/// One element, as CGPathApply shows it.
struct CGPathElement {
    CGPathElementType type;
    CGPoint* points; ///< as many as the type has, readable during the call only
};

/// Gets each element in turn; `info` is what CGPathApply was given.
typedef void (*CGPathApplierFunction)(void* info, const CGPathElement* element);

/// Makes an empty path with one reference; null when memory is short.
TRAMMEL_API CGMutablePathRef CGPathCreateMutable() noexcept;

/// Takes one more reference; returns the path.
TRAMMEL_API CGPathRef CGPathRetain(CGPathRef path) noexcept;

/// Gives one reference back; the last one frees the path. Nothing for null.
TRAMMEL_API void CGPathRelease(CGPathRef path) noexcept;

/// The number of references, 0 for null. For diagnostics: other threads may change it at any time.
TRAMMEL_API long CGPathGetRetainCount(CGPathRef path) noexcept;

/// Starts a subpath at (x, y), mapped by `m` unless that is null.
/// Throws std::bad_alloc when memory is short, and then the path is as it was.
TRAMMEL_API void CGPathMoveToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x,
                                   CGFloat y);

/// Adds a line to (x, y), mapped by `m` unless that is null. An empty path has no place to draw
/// from and stays empty; after a closed subpath the line begins at that subpath's start.
/// Throws std::bad_alloc when memory is short, and then the path is as it was.
TRAMMEL_API void CGPathAddLineToPoint(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x,
                                      CGFloat y);

/// Adds a cubic curve with the control points 1 and 2 to (x, y), all three mapped by `m` unless
/// that is null. Empty path, closed subpath and short memory: as for a line.
TRAMMEL_API void CGPathAddCurveToPoint(CGMutablePathRef path, const CGAffineTransform* m,
                                       CGFloat cp1x, CGFloat cp1y, CGFloat cp2x, CGFloat cp2y,
                                       CGFloat x, CGFloat y);

/// Closes the subpath with a line to its start. Nothing for an empty path, and nothing directly
/// after another close. Throws std::bad_alloc when memory is short, and then the path is as it was.
TRAMMEL_API void CGPathCloseSubpath(CGMutablePathRef path);

/// Shows `function` the path's elements in order; nothing when path or function is null.
/// The points are copies: writing to them changes nothing. Elements that the function itself adds
/// to the path are not shown; it may release the path. What the function throws passes through.
TRAMMEL_API void CGPathApply(CGPathRef path, void* info, CGPathApplierFunction function);

/// The smallest rectangle around all points, control points and lone moves included.
/// NaN coordinates are passed over. Without a point that has a number on each axis (an empty path,
/// a null path) the result is the null rectangle: origin (+infinity, +infinity), size 0 by 0. The
/// size is formed in single precision and may round to infinity.
TRAMMEL_API CGRect CGPathGetBoundingBox(CGPathRef path) noexcept;

/// True when the path is null or has no element.
TRAMMEL_API bool CGPathIsEmpty(CGPathRef path) noexcept;

// Tokens. A block that is exchanged as it stands keeps a 32-bit field for its path, and a pointer
// takes 64. The field holds a token instead: 0 for none, otherwise a key of a table in the library.
//
// Such a block may be copied byte by byte, token included, without the library's knowledge. Two
// things keep a copied token harmless:
//
// 1. An entry belongs to the owner that stored it (the handle of the block). For any other owner
//    the token means nothing: it neither reads nor releases.
// 2. Numbers are given out in turn over the whole 32-bit range, so a token that was released comes
//    back only after all others were tried. An old copy that is put back into its owner's block
//    therefore does not meet that owner's later path either.
namespace trammel_detail {

/// Stores a path for `owner`, takes over one of the caller's references, and returns the token.
/// Returns 0 when the path or the owner is null, and when memory is short; the reference is then
/// given back, so that the caller has nothing to clean up. Safe to call in several threads, as are
/// the other functions of the table.
TRAMMEL_API int32_t StorePath(CGPath* path, const void* owner) noexcept;

/// The path that `owner` stored under the token, without a new reference; null for 0, for a token
/// that is not in use, and for a token of another owner.
TRAMMEL_API CGPath* PathForToken(int32_t token, const void* owner) noexcept;

/// Gives back the reference that `owner` stored under the token, and frees the token. Nothing for
/// 0, for a token that is not in use, and for a token of another owner.
TRAMMEL_API void ReleasePathToken(int32_t token, const void* owner) noexcept;

/// The number of path objects that exist, for tests that look for leaks.
TRAMMEL_API long LivePathCount() noexcept;

/// The number of tokens in use, for tests that look for leaks.
TRAMMEL_API long LivePathTokenCount() noexcept;

/// Makes `token` the next one to be tried, so that tests can reach the end of the range.
TRAMMEL_API void SetNextPathToken(int32_t token) noexcept;

} // namespace trammel_detail

#endif
