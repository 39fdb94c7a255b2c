// SPDX-License-Identifier: MIT

// Rotation helpers: a process-wide rotation that is set once and applied to many points, and a
// second, independent one that serves to undo it. Before they are set, both are all-zero tables,
// which map every finite point to (0, 0). For rotations that are values use CMatrix3x3.
//
// Threads may apply the rotations at the same time. Set them while no other thread applies them.
// Nothing throws.

#ifndef TRAMMEL_UROTATION_H
#define TRAMMEL_UROTATION_H

#include "TPoint.h"
#include "TrammelExport.h"

/// Sets the rotation of Transform to `angle` radians. Sine and cosine are the C library's, so
/// quarter turns leave residues near 1e-16. A NaN or infinite angle maps every point to NaN.
TRAMMEL_API void SetRotate(double angle);
/// Sets the rotation of UnTransform to `angle` radians. To undo SetRotate(a), pass -a.
TRAMMEL_API void SetUnRotate(double angle);
/// Rotates `p` about the origin by the angle of the last SetRotate, from +h toward +v.
TRAMMEL_API void Transform(TPoint<double>& p);
/// Rotates `p` about the origin by the angle of the last SetUnRotate, from +h toward +v.
TRAMMEL_API void UnTransform(TPoint<double>& p);

#endif
