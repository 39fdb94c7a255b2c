// SPDX-License-Identifier: MIT

#include "SvgNumeral_p.h"

#include "Int128_p.h"
#include "SvgPathGrammar_p.h"
#include "Text_p.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>

namespace trammel_detail {

namespace {

/// Copies at most 24 characters, eight at a time: up to eight behind the last one are read and
/// written, too. Returns the end of the copy.
char* CopyEights(char const* from, int count, char* to) {
    std::memcpy(to, from, 8);
    if (count > 8) {
        std::memcpy(to + 8, from + 8, 8);
        if (count > 16) {
            std::memcpy(to + 16, from + 16, 8);
        }
    }
    return to + count;
}

/// Spells the number of `count` digits, the last of which counts 10^exponent, without superfluous
/// zeros, point, sign or exponent. There are at most 17 digits, and eight more characters may be
/// read behind them.
void Spell(bool negative, char const* digits, int count, int exponent, SvgNumeral& out) {
    char* end = out.text;
    if (negative) {
        *end++ = '-';
    }
    while (count > 1 && digits[count - 1] == '0') {
        --count;
        ++exponent;
    }
    if (count == 1 && digits[0] == '0') {
        exponent = 0;
    }

    int const size = std::abs(exponent);
    int const exponentLength = (exponent < 0 ? 1 : 0) + (size < 10 ? 1 : size < 100 ? 2 : 3);
    int const point = count + exponent; // digits in front of the point, below 0: zeros after it
    int const plainLength = exponent >= 0 ? point : point > 0 ? count + 1 : 1 - exponent;
    if (plainLength <= count + 1 + exponentLength) {
        // From the first digit, or the point in front of it, to the last digit or the unit.
        int const whole = std::min(std::max(point, 0), count);
        end = CopyEights(digits, whole, end);
        out.fraction = exponent < 0;
        if (out.fraction) {
            *end++ = '.';
            if (point < 0) {
                end = std::fill_n(end, -point, '0');
            }
            end = CopyEights(digits + whole, count - whole, end);
        } else if (exponent > 0) {
            end = std::fill_n(end, exponent, '0');
        }
    } else {
        end = CopyEights(digits, count, end);
        *end++ = 'e';
        end = std::to_chars(end, out.text + sizeof out.text, exponent).ptr;
        out.fraction = true;
    }
    out.length = static_cast<std::size_t>(end - out.text);
}

// ------------------------------------------------------------------------------------------------
// Any number, by the standard library

/// Spells "-d.ddde-xx".
void Respell(std::string_view scientific, SvgNumeral& out) {
    bool const negative = scientific[0] == '-';
    if (negative) {
        scientific.remove_prefix(1);
    }
    std::size_t const e = scientific.find('e');
    int exponent = 0;
    std::size_t const exponentBegin = e + (scientific[e + 1] == '+' ? 2 : 1);
    std::from_chars(scientific.data() + exponentBegin, scientific.data() + scientific.size(),
                    exponent);
    char digits[32] = {};
    int count = 0;
    for (char const c : scientific.substr(0, e)) {
        if (c != '.') {
            digits[count++] = c;
        }
    }
    Spell(negative, digits, count, exponent - (count - 1), out);
}

/// Writes "-d.ddde-xx" into `buffer`: with the fewest digits that read as `value`, or with the
/// given number of digits after the point.
template <class... Digits>
std::string_view Scientific(char (&buffer)[kNumeralRoom], double value, Digits... digits) {
    char* const end = WriteScientific(buffer, value, digits...);
    return std::string_view(buffer, static_cast<std::size_t>(end - buffer));
}

/// Finds the numeral that FindRelativeNumeral asks for.
///
/// The numbers that give `to` fill an interval around the difference; it is as wide as the rounding
/// of `to`. With each further digit the nearest decimal comes no farther from the interval's
/// middle, so halving finds the least number of digits.
void RelativeByHalving(double from, double to, double difference, SvgNumeral& numeral) {
    char text[kNumeralRoom];
    std::string_view best = Scientific(text, difference);
    int lowest = 1;
    int highest =
        static_cast<int>(std::count_if(best.begin(), best.begin() + best.find('e'), IsDigit));
    char trial[kNumeralRoom];
    while (lowest < highest) {
        int const middle = (lowest + highest) / 2;
        std::string_view const rounded = Scientific(trial, difference, middle - 1);
        if (Same(from + ReadNumeral(rounded), to)) {
            highest = middle;
            best = std::string_view(text, rounded.copy(text, sizeof text));
        } else {
            lowest = middle + 1;
        }
    }
    Respell(best, numeral);
}

// ------------------------------------------------------------------------------------------------
// Ordinary numbers, by integers

typedef trammel_detail::UInt128 Wide;

constexpr int kMostDecimals = 27; ///< 5^27 has 63 bits, and 53 more fit beside it

constexpr std::array<std::uint64_t, kMostDecimals + 1> PowersOfFive() {
    std::array<std::uint64_t, kMostDecimals + 1> powers{};
    std::uint64_t power = 1;
    for (std::uint64_t& p : powers) {
        p = power;
        power *= 5;
    }
    return powers;
}
constexpr std::array<std::uint64_t, kMostDecimals + 1> kPowersOfFive = PowersOfFive();

constexpr std::array<double, kMostDecimals + 1> Tenths() {
    std::array<double, kMostDecimals + 1> tenths{};
    double power = 1.0;
    for (double& tenth : tenths) {
        tenth = 1.0 / power; // rounded
        power *= 10.0;
    }
    return tenths;
}
constexpr std::array<double, kMostDecimals + 1> kTenths = Tenths();

/// An ordinary number m·2^-s, where m has 53 bits, and the decimals near it.
class Ordinary {
public:
    /// Sums and differences of numbers below this one are right to an eighth.
    static constexpr double kGreatest = 0x1p49;

    /// Returns false where the number is too large, or so small that it takes too many decimals.
    bool Set(double number) {
        std::uint64_t bits;
        std::memcpy(&bits, &number, sizeof bits);
        int const exponent = static_cast<int>(bits >> 52 & 0x7FF) - 1023;
        mSignificand = (bits & (kHidden - 1)) | kHidden;
        mShift = 52 - exponent;
        mNumber = number;
        if (exponent < -29 || exponent >= 49) {
            return false;
        }
        // With so many decimals it is below 2^60 without the point, but has 17 digits, which always
        // suffice. 1233/4096 is a little less than log10(2).
        mMost = (59 - exponent) * 1233 >> 12;
        mUlp = std::copysign(PowerOfTwo(-mShift), number);
        return true;
    }
    int MostDecimals() const { return mMost; }

    /// Rounds the number to the given number of decimals. False where no digit is left.
    bool Round(int decimals) {
        std::uint64_t const five = kPowersOfFive[static_cast<std::size_t>(decimals)];
        int const shift = mShift - decimals; // from 1 to 81
        Wide const product = Wide{mSignificand} * five;
        // 64 bits in front of the point, and as many behind it.
        Wide const fixed = shift <= 64 ? product << (64 - shift) : product >> (shift - 64);
        auto const whole = static_cast<std::uint64_t>(fixed >> 64);
        auto const rest = static_cast<std::uint64_t>(fixed);
        if (whole == 0) {
            return false;
        }
        constexpr std::uint64_t half = std::uint64_t{1} << 63;
        bool up = rest >= half;
        // As a number with a sign it is what rounding took away.
        auto part = static_cast<double>(static_cast<std::int64_t>(rest));
        if (rest == half) {
            bool const more = shift > 64 && (product & ((Wide{1} << (shift - 64)) - 1)) != 0;
            up = more || (whole & 1) != 0;
            part = up ? -0x1p63 : 0x1p63;
        }
        mDigits = whole + (up ? 1 : 0);
        mOff = -part * PowerOfTwo(shift - 64) / static_cast<double>(five);
        return true;
    }
    /// Returns the digits of the rounded number, without the point.
    std::uint64_t Digits() const { return mDigits; }

    /// Tells whether `from` and the double as which the digits read give `to`. Returns nothing
    /// where that is not certain.
    std::optional<bool> Gives(double from, double to) const {
        Way const way = TheWay();
        bool const gives = Same(from + (mNumber + std::copysign(way.length, mOff) * mUlp), to);
        return gives && !way.whole ? std::nullopt : std::optional<bool>(gives);
    }
    /// As Gives, and the same holds with more decimals where it is true, and with fewer where it is
    /// false. Returns nothing where that is not certain.
    std::optional<bool> GivesFromHereOn(double from, double to) const {
        // Decimals come nearer to the number with each further digit, from either side. So both
        // sides have to agree.
        Way const way = TheWay();
        bool const above = Same(from + (mNumber + way.length * mUlp), to);
        bool const below = Same(from + (mNumber - way.length * mUlp), to);
        return above != below || (above && !way.whole) ? std::nullopt : std::optional<bool>(above);
    }
    /// True where it is certain that `from` and no decimal give `to` that is as far as `distance`,
    /// or farther, from the rounded number. False says nothing.
    bool NoneGives(double from, double to, double distance) const {
        double const most = distance * (1.0 - 0x1p-20);
        if (from == 0.0) {
            // `to` is the number itself, which only decimals within half a unit read as.
            return most > (std::abs(mOff) + 0.51) * std::abs(mUlp);
        }
        double const way = most - (std::abs(mOff) + 2.0) * std::abs(mUlp);
        return way > 0.0 && !Same(from + (mNumber + way), to) && !Same(from + (mNumber - way), to);
    }

private:
    static constexpr std::uint64_t kHidden = std::uint64_t{1} << 52;

    /// The way from the number to the double as which the digits read, in units in the last place.
    struct Way {
        double length;
        bool
            whole; ///< false where the length is only a part, which is enough to see that it is far
    };
    Way TheWay() const {
        double const off = std::abs(mOff);
        double const steps = (off + 0x1p52) - 0x1p52; // the nearest integer
        auto const significand = static_cast<double>(mSignificand);
        // Doubles lie as densely all the way, and the rounding to them is certain.
        if (off == 0.0 || (off < 0x1p30 && std::abs(off - steps) < 0.499 &&
                           significand - steps > 0x1p52 && significand + steps < 0x1p53 - 1.0)) {
            return {steps, true};
        }
        return {std::max(off * (1.0 - 0x1p-20) - 2.0, 0.0), false};
    }

    static double PowerOfTwo(int exponent) {
        std::uint64_t const bits = static_cast<std::uint64_t>(exponent + 1023) << 52;
        double power;
        std::memcpy(&power, &bits, sizeof power);
        return power;
    }

    double mNumber;
    double mUlp; ///< a unit in the last place, with the number's sign
    std::uint64_t mSignificand;
    int mShift;
    int mMost;
    std::uint64_t mDigits;
    double mOff; ///< units from the number to the rounded one, positive when that is farther from 0
};

/// Returns the number of decimals, up to one more, at which their distance is less than two units
/// in the last place of `number`. So many often suffice to tell it from its neighbours, and with
/// one less they hardly ever do.
int FullDecimals(double number) {
    std::uint64_t bits;
    std::memcpy(&bits, &number, sizeof bits);
    int const exponent = static_cast<int>(bits >> 52 & 0x7FF) - 1023;
    return std::max(((51 - exponent) * 1233 >> 12) + 1, 0);
}

/// Drops zeros at the end of the decimals.
void DropZeros(std::uint64_t& digits, int& decimals) {
    struct Step {
        int zeros;
        std::uint64_t power;
    };
    static constexpr std::array<Step, 4> kSteps = {Step{8, 100000000}, Step{4, 10000}, Step{2, 100},
                                                   Step{1, 10}};
    if (digits % 10 != 0) {
        return;
    }
    for (Step const& step : kSteps) {
        while (decimals >= step.zeros && digits % step.power == 0) {
            digits /= step.power;
            decimals -= step.zeros;
        }
    }
}

/// Digits without the point, which stands in front of the last `decimals` of them.
struct Decimal {
    std::uint64_t digits;
    int decimals;
};

/// Below this product of a number and a power of ten, neighbouring decimals are 16 and more units
/// in the number's last place apart.
constexpr double kShort = 0x1p48;
/// Powers of ten that are doubles.
constexpr int kMostTens = 22;
constexpr std::array<double, kMostTens + 1> Tens() {
    std::array<double, kMostTens + 1> tens{};
    double power = 1.0;
    for (double& ten : tens) {
        ten = power;
        power *= 10.0;
    }
    return tens;
}
constexpr std::array<double, kMostTens + 1> kTens = Tens();

/// True where a decimal of so many places is short: no other one of as many or fewer places gives
/// `to` as well.
bool IsShort(double to, double difference, int decimals) {
    return decimals <= kMostTens &&
           (std::abs(to) + std::abs(difference)) * kTens[static_cast<std::size_t>(decimals)] <
               kShort;
}

/// Finds the decimal that FindFromFull finds, if it has at most `decimals` places and is short.
/// Returns nothing otherwise, or where this form of the search cannot be certain.
///
/// Numbers that give `to` are at most one unit in the last place of `to` apart. So among short
/// decimals at most one is near enough, and it is the nearest to `difference` as well.
std::optional<Decimal> FindShort(double from, double to, double difference, int decimals) {
    if (!IsShort(to, difference, decimals)) {
        return std::nullopt;
    }
    double const power = kTens[static_cast<std::size_t>(decimals)];
    double const product = std::abs(difference) * power;
    double const digits = (product + 0x1p52) - 0x1p52; // the nearest integer
    // A decimal that gives `to` is at most a unit in the last place of `to` away. With the rounding
    // of quotient and product that makes an eighth.
    if (!(std::abs(product - digits) <= 0.125)) {
        return std::nullopt;
    }
    // Both are integers below 2^53 or powers of ten, so the quotient is the double that is read.
    double const read = std::copysign(digits / power, difference);
    if (!Same(from + read, to)) {
        return std::nullopt;
    }
    if (from == 0.0) {
        // Decimals with more places are as near or nearer, and read as the same double. Below a
        // power of two doubles lie more densely, where only an integer is certain.
        int exponent = 0;
        if (decimals > 0 && std::frexp(std::abs(difference), &exponent) == 0.5) {
            return std::nullopt;
        }
    } else {
        // Decimals with more places lie within the same distance on either side.
        double const off = std::abs(read - difference) + std::abs(difference) * 0x1p-51;
        if (!Same(from + (difference - off), to) || !Same(from + (difference + off), to)) {
            return std::nullopt;
        }
    }
    Decimal best{static_cast<std::uint64_t>(digits), decimals};
    DropZeros(best.digits, best.decimals);
    return best;
}

/// Finds the decimal of fewest digits that gives `to` when added to `from`. Returns nothing where
/// success does not begin at one number of decimals and last from there on, or where this form
/// of the search cannot be certain. It begins where decimals are about as dense as doubles.
std::optional<Decimal> FindFromFull(Ordinary& number, double from, double to) {
    Decimal best{0, -1};
    int failed = -1; // the greatest number of decimals that do not suffice, as far as is known
    int decimals = std::min(FullDecimals(to), number.MostDecimals());
    while (decimals >= 0 && decimals <= number.MostDecimals()) {
        std::optional<bool> const gives =
            number.Round(decimals) ? number.GivesFromHereOn(from, to) : std::optional<bool>(false);
        if (!gives) {
            return std::nullopt;
        }
        if (*gives) {
            best = {number.Digits(), decimals};
            if (failed >= 0 && failed == decimals - 1) {
                return best;
            }
            DropZeros(best.digits, best.decimals);
            // With one decimal less, the nearest number is off by the last digit, or by what that
            // lacks to ten.
            auto const last = static_cast<double>(best.digits % 10);
            double const off = std::min(last, 10.0 - last);
            decimals = best.decimals;
            if (number.NoneGives(from, to, off * kTenths[static_cast<std::size_t>(decimals)])) {
                return best;
            }
            --decimals;
        } else if (best.decimals > decimals) {
            return best;
        } else {
            failed = decimals++;
        }
    }
    return decimals < 0 ? std::optional<Decimal>(best) : std::nullopt;
}

/// Finds the decimal that RelativeByHalving finds, by the same steps. Returns nothing where a step
/// is not certain.
std::optional<Decimal> FindByHalving(Ordinary& number, double difference, double from, double to) {
    std::optional<Decimal> best = FindFromFull(number, 0.0, difference);
    if (!best || best->decimals == 0) {
        return best; // of two integers only one gives `to`
    }
    int highest = 1;
    for (std::uint64_t rest = best->digits; rest >= 10; rest /= 10) {
        ++highest;
    }
    int const behind = best->decimals - highest; // decimals of no digit
    int lowest = 1;
    while (lowest < highest) {
        int const middle = (lowest + highest) / 2;
        if (behind + middle < 0 || !number.Round(behind + middle)) {
            return std::nullopt;
        }
        std::optional<bool> const gives = number.Gives(from, to);
        if (!gives) {
            return std::nullopt;
        }
        if (*gives) {
            highest = middle;
            best = Decimal{number.Digits(), behind + middle};
        } else {
            lowest = middle + 1;
        }
    }
    return best;
}

/// The numbers from 00 to 99, one after the other.
constexpr std::array<char, 200> Pairs() {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}
constexpr std::array<char, 200> kPairs = Pairs();

/// Writes two digits in front of `end`, and returns their place.
char* PairBefore(char* end, std::uint32_t number) {
    std::memcpy(end - 2, &kPairs[2 * static_cast<std::size_t>(number)], 2);
    return end - 2;
}

/// Writes the digits of a number that is not 0 in front of `end`, and returns the first one's
/// place.
char* DigitsBefore(char* end, std::uint64_t number) {
    for (; number >= 100000000; number /= 100000000) {
        auto const part = static_cast<std::uint32_t>(number % 100000000);
        std::uint32_t const high = part / 10000;
        std::uint32_t const low = part % 10000;
        end = PairBefore(PairBefore(end, low % 100), low / 100);
        end = PairBefore(PairBefore(end, high % 100), high / 100);
    }
    auto part = static_cast<std::uint32_t>(number);
    for (; part >= 100; part /= 100) {
        end = PairBefore(end, part % 100);
    }
    return part >= 10 ? PairBefore(end, part) : part == 0 ? end : PairBefore(end, part) + 1;
}

/// Sets `numeral` to the numeral of fewest digits that gives `to` when added to `from`. Returns
/// false where this form of the search does not know it.
bool FindFewestDigits(double from, double to, double difference, int& guess, SvgNumeral& numeral) {
    std::optional<Decimal> best = FindShort(from, to, difference, guess);
    if (!best) {
        Ordinary number;
        if (!(std::abs(to) < Ordinary::kGreatest) || !number.Set(difference)) {
            return false;
        }
        best = FindFromFull(number, from, to);
        if (!best) {
            best = FindByHalving(number, difference, from, to);
        }
        if (!best) {
            return false;
        }
        if (IsShort(to, difference, best->decimals)) {
            guess = best->decimals;
        }
    }
    char text[32];
    char* const end = text + 24;
    std::memset(end, 0, 8);
    char const* const begin = DigitsBefore(end, best->digits);
    Spell(difference < 0.0, begin, static_cast<int>(end - begin), -best->decimals, numeral);
    return true;
}

void SpellZero(bool negative, SvgNumeral& numeral) {
    constexpr char digits[16] = {'0'};
    Spell(negative, digits, 1, 0, numeral);
}

} // namespace

SvgNumeral AbsoluteNumeral(double value, int& guess) {
    SvgNumeral numeral;
    if (value == 0.0) {
        SpellZero(std::signbit(value), numeral);
    } else if (!FindFewestDigits(0.0, value, value, guess, numeral)) {
        char buffer[kNumeralRoom];
        Respell(Scientific(buffer, value), numeral);
    }
    return numeral;
}

bool FindRelativeNumeral(double from, double to, int& guess, SvgNumeral& numeral) {
    double const difference = to - from;
    if (!std::isfinite(difference) || !Same(from + difference, to)) {
        return false;
    }
    if (difference == 0.0) {
        SpellZero(std::signbit(difference), numeral);
    } else if (!FindFewestDigits(from, to, difference, guess, numeral)) {
        RelativeByHalving(from, to, difference, numeral);
    }
    return true;
}

} // namespace trammel_detail
