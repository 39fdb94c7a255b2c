// SPDX-License-Identifier: MIT

#include "UHygiene.h"

#include "Log.h"
#include "Text_p.h"

#include <atomic>
#include <cmath>
#include <cstdint>
#include <string>

namespace {

/// A count of events. It wraps.
typedef std::atomic<std::int32_t> Counter;

// Totals over both types, for the debugger; nothing reads them.
Counter sZeroNaNandInfCount{0};
Counter sZeroOutOfRangeCount{0};

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

/// Logs and counts an event. The sink of the log may cause events of the same kind, so the event
/// counts after its line.
void LogAndCount(Counter& counter, char const* signature, char const* what, double value) noexcept {
    LogEvent(counter.load(std::memory_order_relaxed), signature, what, value);
    counter.fetch_add(1, std::memory_order_relaxed);
}

} // namespace

template <class T> bool ZeroIfNaNOrInf(T& x) {
    if (std::isnan(x)) {
        static Counter sCount{0};
        LogAndCount(sCount, Traits<T>::kZeroIfNaNOrInf, "NaN", static_cast<double>(x));
    } else if (std::isinf(x)) {
        static Counter sCount{0};
        LogAndCount(sCount, Traits<T>::kZeroIfNaNOrInf, "Inf", static_cast<double>(x));
    } else {
        return false;
    }
    sZeroNaNandInfCount.fetch_add(1, std::memory_order_relaxed);
    x = 0;
    return true;
}

template <class T> bool ZeroIfOutOfRange(T& x) {
    static Counter sCount{0};
    constexpr T limit = Traits<T>::kRangeLimit;
    if (x > limit || x < -limit) {
        LogAndCount(sCount, Traits<T>::kZeroIfOutOfRange, "RangeErr", static_cast<double>(x));
        sZeroOutOfRangeCount.fetch_add(1, std::memory_order_relaxed);
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
