// SPDX-License-Identifier: MIT
//
// What the processor can do. Not installed.

#ifndef TRAMMEL_DISPATCH_P_H
#define TRAMMEL_DISPATCH_P_H

#include "TrammelExport.h"

namespace trammel_detail {

/// True where processor and system have vectors of four doubles (AVX2), unless
/// UsePortableForms(true) was called. Found out by the first call. For functions that exist in a
/// form for these and in one for every processor, with the same results to the last bit.
bool HasWideVectors();

/// Makes HasWideVectors() false (true), or the truth again (false), for tests that compare the two
/// forms. Returns false when there is but one form on this processor. Not for use while other
/// threads call the library.
TRAMMEL_API bool UsePortableForms(bool portable);

} // namespace trammel_detail

#endif
