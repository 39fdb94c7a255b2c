// SPDX-License-Identifier: MIT

#include "UHygiene.h"

#include "Integers.h"
#include "Log.h"
#include "Text_p.h"

#include <cmath>
#include <cstdint>
#include <string>

namespace {

// Totals over both types, for the debugger; nothing reads them.
[[maybe_unused]] std::int32_t sZeroNaNandInfCount = 0;
[[maybe_unused]] std::int32_t sZeroOutOfRangeCount = 0;

/// The counter value that announces the last message of its kind.
constexpr std::int32_t kLogCap = 100;

template <class T> struct Traits;
template <> struct Traits<float> {
    // The double limit rounded to single precision.
    static constexpr float kRangeLimit = 113596366848.0f;
    static constexpr char const* kZeroIfNaNOrInf = "bool ZeroIfNaNOrInf(T &) [T = float]";
    static constexpr char const* kZeroIfOutOfRange = "bool ZeroIfOutOfRange(T &) [T = float]";
};
template <> struct Traits<double> {
    static constexpr double kRangeLimit = 113596369920.0;
    static constexpr char const* kZeroIfNaNOrInf = "bool ZeroIfNaNOrInf(T &) [T = double]";
    static constexpr char const* kZeroIfOutOfRange = "bool ZeroIfOutOfRange(T &) [T = double]";
};

/// Logs event number `count` of its kind, unless the kind has fallen silent. A counter that wrapped
/// to negative values logs again. Nothing is thrown, because the caller has yet to zero the value:
/// when memory is short the line is dropped, as NSLog itself drops it.
void LogEvent(std::int32_t count, char const* signature, char const* what, double value) noexcept {
    if (count > kLogCap) {
        return;
    }
    try {
        std::string const number = trammel_detail::FormatFixed6(value);
        NSLog("(%d) '%s' %s%s encountered - zeroing.  value: %s", count, signature,
              count == kLogCap ? " Last emmision..." : "", what, number.c_str());
    } catch (...) { // memory is short
    }
}

void CountUp(std::int32_t& counter) { counter = trammel_detail::WrappingAdd(counter, 1); }

} // namespace

template <class T> bool ZeroIfNaNOrInf(T& x) {
    if (std::isnan(x)) {
        static std::int32_t sCount = 0;
        LogEvent(sCount, Traits<T>::kZeroIfNaNOrInf, "NaN", static_cast<double>(x));
        CountUp(sCount);
    } else if (std::isinf(x)) {
        static std::int32_t sCount = 0;
        LogEvent(sCount, Traits<T>::kZeroIfNaNOrInf, "Inf", static_cast<double>(x));
        CountUp(sCount);
    } else {
        return false;
    }
    CountUp(sZeroNaNandInfCount);
    x = 0;
    return true;
}

template <class T> bool ZeroIfOutOfRange(T& x) {
    static std::int32_t sCount = 0;
    constexpr T limit = Traits<T>::kRangeLimit;
    if (x > limit || x < -limit) {
        LogEvent(sCount, Traits<T>::kZeroIfOutOfRange, "RangeErr", static_cast<double>(x));
        CountUp(sCount);
        CountUp(sZeroOutOfRangeCount);
        x = 0;
    }
    return false;
}

template <class T> bool ValidateFloat(T& x) { return ZeroIfNaNOrInf(x) || ZeroIfOutOfRange(x); }

bool ValidatePoint(TPoint<double>& p) { return ValidateFloat(p.h) || ValidateFloat(p.v); }

template bool ZeroIfNaNOrInf<float>(float&);
template bool ZeroIfNaNOrInf<double>(double&);
template bool ZeroIfOutOfRange<float>(float&);
template bool ZeroIfOutOfRange<double>(double&);
template bool ValidateFloat<float>(float&);
template bool ValidateFloat<double>(double&);
