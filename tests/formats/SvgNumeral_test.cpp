// SPDX-License-Identifier: MIT

// The numerals of SVG path text equal the standard library's, character by character.

#include "SvgNumeral_p.h"

#include "plain/PlainNumeral.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>

namespace {

using trammel_detail::AbsoluteNumeral;
using trammel_detail::FindRelativeNumeral;
using trammel_detail::SvgNumeral;

/// Numbers of drawings, and others where rounding is hard.
class Numbers {
public:
    std::uint64_t Any() { return mRandom(); }
    std::uint64_t Below(std::uint64_t n) { return mRandom() % n; }
    double Next(std::uint64_t kind) {
        switch (kind) {
        case 0: // all digits
            return 1000.0 * Fraction();
        case 1: // three decimals
            return (static_cast<double>(Below(2000001)) - 1e6) / 1000.0;
        case 2:
            return (static_cast<double>(Below(20001)) - 1e4) / static_cast<double>(1 + Below(300));
        case 3: { // any finite double
            std::uint64_t const bits = Any();
            double number;
            std::memcpy(&number, &bits, sizeof number);
            return std::isfinite(number) ? number : 0.0;
        }
        case 4: // beside a power of two
            return std::ldexp(1.0 + (static_cast<double>(Below(5)) - 2.0) * 0x1p-52, Exponent());
        case 5:
            return std::ldexp(Fraction() - 0.5, Exponent());
        case 6: // a few digits, any number of decimals
            return static_cast<double>(Below(100000)) / Power();
        case 7: // beside a short binary fraction
            return std::nextafter(static_cast<double>(Below(1000)) / 16.0,
                                  Below(2) == 0 ? -1e9 : 1e9);
        case 8: { // any number of digits
            double const power = Power();
            return std::round(std::ldexp(Fraction(), static_cast<int>(Below(60))) * power) / power;
        }
        case 9: // integers
            return static_cast<double>(Any() >> Below(64));
        default: // ties
            return (static_cast<double>(Below(1000)) + 0.5) *
                   std::ldexp(1.0, static_cast<int>(Below(40)) - 20);
        }
    }
    static constexpr std::uint64_t kKinds = 11;

private:
    double Fraction() { return static_cast<double>(Any() >> 11) * 0x1p-53; }
    int Exponent() { return static_cast<int>(Below(120)) - 60; }
    double Power() { return std::pow(10.0, static_cast<double>(Below(18))); }

    std::mt19937_64 mRandom{11};
};

void ExpectAsPlain(double from, double to, int& guess, int& relativeGuess) {
    SvgNumeral const absolute = AbsoluteNumeral(to, guess);
    std::string const text(absolute.View());
    ASSERT_EQ(text, plain::AbsoluteNumeral(to)) << to;
    ASSERT_EQ(absolute.fraction, text.find_first_of(".e") != std::string::npos) << text;
    SvgNumeral relative;
    bool const found = FindRelativeNumeral(from, to, relativeGuess, relative);
    ASSERT_EQ(found ? std::string(relative.View()) : "", plain::RelativeNumeral(from, to))
        << std::hexfloat << from << " to " << to;
}

TEST(SvgNumeral, IsWhatTheStandardLibraryWritesShortest) {
    Numbers numbers;
    int guess = 0;
    int relativeGuess = 0;
    for (int i = 0; i < 400000 && !HasFatalFailure(); ++i) {
        std::uint64_t const kind = numbers.Below(Numbers::kKinds);
        double const from = numbers.Next(kind);
        double to = numbers.Next(i % 3 != 0 ? kind : numbers.Below(Numbers::kKinds));
        if (i % 8 == 0) { // a few units in the last place apart
            to = from * (1.0 + (static_cast<double>(numbers.Below(9)) - 4.0) * 0x1p-50);
        } else if (i % 16 == 1) { // a short difference
            to = from + numbers.Next(6);
        }
        ExpectAsPlain(from, std::isfinite(to) ? to : 1.0, guess, relativeGuess);
    }
}

TEST(SvgNumeral, DoesNotDependOnTheGuess) {
    for (int first = 0; first < 40; ++first) {
        for (double const to : {0.0, -0.0, 1.0, -2.0, 0.1, 12.375, 1.0 / 3.0, 1500.0, 1e-9, 5e-324,
                                0x1p49, 1e22, 1.7976931348623157e308}) {
            int guess = first;
            int relativeGuess = first;
            ExpectAsPlain(0.0, to, guess, relativeGuess);
            ExpectAsPlain(0.3, to, guess, relativeGuess);
            ExpectAsPlain(-to, to, guess, relativeGuess);
        }
    }
}

} // namespace
