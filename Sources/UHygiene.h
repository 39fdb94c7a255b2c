// SPDX-License-Identifier: MIT

// Numeric hygiene: finds NaN, infinite and absurdly large coordinates, replaces them by zero and
// reports them through the platform log (see NSLog in Log.h).
//
// Each kind of event (NaN, infinity, out of range; float and double apart) has its own 32-bit
// counter. Its first 100 events are logged with the numbers 0 to 99. The next one is announced as
// the last, and later ones are zeroed in silence. The counters live as long as the process, one set
// for all its modules. These functions may run in several threads, on different values. Events at
// the same time may then have the same number, and a few more than 100 lines may come. The
// announcement of the last one may be missing, or come twice.
//
// None of these functions throws. An event whose line finds no memory is still zeroed and counted;
// its line is dropped.

#ifndef TRAMMEL_UHYGIENE_H
#define TRAMMEL_UHYGIENE_H

#include "TPoint.h"
#include "TrammelExport.h"

/// Zeroes a NaN or infinite `x`, logs it and returns true; otherwise leaves it and returns false.
/// T is float or double.
template <class T> TRAMMEL_API bool ZeroIfNaNOrInf(T& x);

/// Zeroes and logs an `x` beyond ±113596369920 (doubles) or ±113596366848 (floats). The limits
/// themselves are allowed; a NaN is left alone. Always returns false, zeroed or not, so that
/// `ValidatePoint` goes on to the second coordinate. T is float or double.
template <class T> TRAMMEL_API bool ZeroIfOutOfRange(T& x);

/// Applies `ZeroIfNaNOrInf` and, only if that found nothing, `ZeroIfOutOfRange`. Returns true
/// exactly when a NaN or an infinity was zeroed. Afterwards `x` is finite and within the limits.
/// T is float or double.
template <class T> TRAMMEL_API bool ValidateFloat(T& x);

/// Applies `ValidateFloat` to `p.h` and, only if that returned false, to `p.v`. Returns true when a
/// NaN or an infinity was zeroed. After a NaN or infinite h, v has not been examined.
TRAMMEL_API bool ValidatePoint(TPoint<double>& p);

extern template TRAMMEL_API bool ZeroIfNaNOrInf<float>(float&);
extern template TRAMMEL_API bool ZeroIfNaNOrInf<double>(double&);
extern template TRAMMEL_API bool ZeroIfOutOfRange<float>(float&);
extern template TRAMMEL_API bool ZeroIfOutOfRange<double>(double&);
extern template TRAMMEL_API bool ValidateFloat<float>(float&);
extern template TRAMMEL_API bool ValidateFloat<double>(double&);

#endif
