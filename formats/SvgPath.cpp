// SPDX-License-Identifier: MIT

#include "SvgPath.h"

#include "UTrigonometry.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

namespace trammel {

namespace {

typedef TPoint<double> Pt;

bool IsSpace(char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r' || c == '\f'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool IsFinite(Pt const& p) { return std::isfinite(p.h) && std::isfinite(p.v); }

/// Equal bit by bit: other than for `==` zeros of different sign differ. For finite numbers.
bool Same(double a, double b) { return a == b && std::signbit(a) == std::signbit(b); }
bool Same(Pt const& a, Pt const& b) { return Same(a.h, b.h) && Same(a.v, b.v); }

/// The control point opposite to `control` as seen from `p`, rounded once.
Pt Reflected(Pt const& control, Pt const& p) {
    auto const reflected = [](double c, double at) {
        double const r = 2.0 * at - c;
        return std::isfinite(r) ? r : at + (at - c); // 2 * at alone may be out of range
    };
    return Pt(reflected(control.h, p.h), reflected(control.v, p.v));
}

// ------------------------------------------------------------------------------------------------
// Reading

/// The longest piece of the text that an error shows.
constexpr std::size_t kLongestFound = 32;

/// The number of arguments of a command in capitals, -1 for any other letter.
int ArgumentCount(char command) {
    switch (command) {
    case 'Z':
        return 0;
    case 'H':
    case 'V':
        return 1;
    case 'M':
    case 'L':
    case 'T':
        return 2;
    case 'S':
    case 'Q':
        return 4;
    case 'C':
        return 6;
    case 'A':
        return 7;
    default:
        return -1;
    }
}

/// A piece of text in quotation marks, shortened, and with '?' for what cannot be printed.
std::string Quoted(std::string_view text) {
    std::string shown(text.substr(0, kLongestFound));
    for (char& c : shown) {
        if (c < ' ' || c > '~') {
            c = IsSpace(c) ? ' ' : '?';
        }
    }
    return "'" + shown + (text.size() > kLongestFound ? "...'" : "'");
}

/// The code point of the UTF-8 sequence at the start of `text`, -1 when there is none.
long CodePoint(std::string_view text) {
    unsigned char const lead = static_cast<unsigned char>(text[0]);
    std::size_t const length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 1;
    if (length == 1 || lead > 0xF4 || text.size() < length) {
        return -1;
    }
    long code = lead & (0xFF >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        unsigned char const c = static_cast<unsigned char>(text[i]);
        if ((c & 0xC0) != 0x80) {
            return -1;
        }
        code = code << 6 | (c & 0x3F);
    }
    long const lowest = length == 2 ? 0x80 : length == 3 ? 0x800 : 0x10000;
    bool const surrogate = code >= 0xD800 && code <= 0xDFFF;
    return code < lowest || code > 0x10FFFF || surrogate ? -1 : code;
}

/// What stands at the start of `text`, readably: a whole word, else one character.
std::string Described(std::string_view text) {
    if (text.empty()) {
        return "end of text";
    }
    std::size_t length = 0;
    while (length < text.size() && length <= kLongestFound && IsLetter(text[length])) {
        ++length;
    }
    if (length > 0 || (text[0] >= ' ' && text[0] <= '~')) {
        return Quoted(text.substr(0, std::max<std::size_t>(length, 1)));
    }
    char shown[24];
    long const code = CodePoint(text);
    if (code >= 0) {
        std::snprintf(shown, sizeof shown, "U+%04lX", static_cast<unsigned long>(code));
    } else {
        std::snprintf(shown, sizeof shown, "byte 0x%02X", static_cast<unsigned char>(text[0]));
    }
    return shown;
}

/// True when a number without sign, too great or too small for a double, is too small.
bool IsTiny(std::string_view number) {
    std::size_t const mantissa = std::min(number.find_first_of("eE"), number.size());
    std::size_t const point = std::min(number.substr(0, mantissa).find('.'), mantissa);
    std::size_t const first = number.find_first_of("123456789");
    if (first >= mantissa) {
        return true;
    }
    // The decimal exponent of the first digit, as if there were none written.
    std::int64_t exponent =
        static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first) - (first < point);
    if (mantissa < number.size()) {
        std::string_view written = number.substr(mantissa + 1);
        bool const negative = written[0] == '-';
        if (!IsDigit(written[0])) {
            written.remove_prefix(1);
        }
        std::int64_t value = 0;
        if (std::from_chars(written.data(), written.data() + written.size(), value).ec !=
            std::errc()) {
            return negative;
        }
        // Both are far from the ends of 64 bits: a text is shorter than that, or the value is cut.
        value = std::min<std::int64_t>(value, std::numeric_limits<std::int64_t>::max() / 2);
        exponent += negative ? -value : value;
    }
    return exponent < 0;
}

/// (p + 2q) / 3, rounded from the exact value but for about a hundredth of a unit in the last
/// place: the sum's and the quotient's errors are made good (sum by Knuth's TwoSum, quotient by a
/// fused remainder).
double TwoThirds(double p, double q) {
    double scale = 1.0;
    if (!std::isfinite(p + 2.0 * q)) {
        p /= 4.0;
        q /= 4.0;
        scale = 4.0;
    }
    double const twice = 2.0 * q;
    double const sum = p + twice;
    double const part = sum - p;
    double const lost = (p - (sum - part)) + (twice - part);
    double const quotient = sum / 3.0;
    double const rest = std::fma(-3.0, quotient, sum) + lost;
    return (quotient + rest / 3.0) * scale;
}

Pt TwoThirds(Pt const& p, Pt const& q) { return Pt(TwoThirds(p.h, q.h), TwoThirds(p.v, q.v)); }

/// The point at `t` between two points; no step overflows.
Pt Between(Pt const& a, Pt const& b, double t) {
    return Pt(a.h * (1.0 - t) + b.h * t, a.v * (1.0 - t) + b.v * t);
}

/// An elliptical arc as cubic curves.
class ArcCurves {
public:
    /// The curves need at most a full turn in eighths.
    static constexpr std::size_t kMaxCurves = 8;

    /// The arc from `from` to `to`, which differ, with radii above 0, by the endpoint-to-centre
    /// conversion in the coordinates in which the ellipse is the unit circle around the origin.
    /// There the chord's half length s is the sine of half the arc, so that everything follows from
    /// s without differences of nearly equal numbers.
    ArcCurves(Pt const& from, Pt const& to, double rx, double ry, double degrees, bool large,
              bool sweep) {
        double sine;
        double cosine;
        // Between -180 and 180 exactly, so that quarter turns are exact; -180 is the same as 180.
        double const turn = std::abs(std::remainder(degrees, 360.0)) == 180.0
                                ? 180.0
                                : std::remainder(degrees, 360.0);
        SinCos(DegToRad(turn), sine, cosine);

        // Half the chord, turned to the axes of the ellipse.
        Pt const half(0.5 * from.h - 0.5 * to.h, 0.5 * from.v - 0.5 * to.v);
        Pt const chord(cosine * half.h + sine * half.v, cosine * half.v - sine * half.h);
        double s = std::hypot(chord.h / rx, chord.v / ry);
        if (!(s < 1.0)) {
            // Too small to reach both ends: enlarged until the chord is a diameter.
            double const ratio = rx / ry;
            rx = std::hypot(chord.h, chord.v * ratio);
            ry = std::hypot(chord.h / ratio, chord.v);
            s = 1.0;
        }
        // Of length 1, however small the chord is beside the radii.
        double const length = chord.Hypotenuse();
        double const greater = std::max(rx, ry);
        Pt direction(chord.h / length * (greater / rx), chord.v / length * (greater / ry));
        direction /= direction.Hypotenuse();

        double const sign = large != sweep ? 1.0 : -1.0;
        double const h = sign * std::sqrt((1.0 - s) * (1.0 + s));
        Pt const centre(h * direction.v, -h * direction.h);
        Pt const first = direction * s - centre;
        Pt const last = -(direction * s) - centre;
        double const small = 2.0 * std::asin(s);
        double const angle = large ? 2.0 * pi - small : small;
        // Rounding must not make three curves of a quarter turn.
        mCount = static_cast<std::size_t>(
            std::clamp(std::ceil(angle / (pi / 4.0) - 1e-9), 1.0, static_cast<double>(kMaxCurves)));
        double const step = (sweep ? angle : -angle) / static_cast<double>(mCount);
        double const arm = 4.0 / 3.0 * std::tan(step / 4.0);

        auto const back = [=](Pt const& p) { // a vector back to the ellipse
            double const x = p.h * rx;
            double const y = p.v * ry;
            return Pt(cosine * x - sine * y, sine * x + cosine * y);
        };
        Pt radius = first;
        Pt start = from;
        for (std::size_t i = 0; i < mCount; ++i) {
            Pt nextRadius = last;
            Pt end = to;
            if (i + 1 < mCount) {
                double const turned = step * static_cast<double>(i + 1);
                double const c = std::cos(turned);
                double const n = std::sin(turned);
                nextRadius.Set(first.h * c - first.v * n, first.h * n + first.v * c);
                end = from + back(nextRadius - first);
            }
            mPoints[3 * i] = start + back(Pt(-radius.v, radius.h) * arm);
            mPoints[3 * i + 1] = end - back(Pt(-nextRadius.v, nextRadius.h) * arm);
            mPoints[3 * i + 2] = end;
            start = end;
            radius = nextRadius;
        }
    }
    std::size_t Count() const { return mCount; }
    /// First control point, second control point and end of curve `i`.
    Pt const* Curve(std::size_t i) const { return &mPoints[3 * i]; }
    bool IsFinite() const {
        return std::all_of(mPoints.begin(),
                           mPoints.begin() + static_cast<std::ptrdiff_t>(3 * mCount),
                           [](Pt const& p) { return trammel::IsFinite(p); });
    }

private:
    std::size_t mCount;
    std::array<Pt, 3 * kMaxCurves> mPoints;
};

/// Reads one text into a path, from left to right.
class Reader {
public:
    explicit Reader(std::string_view text) : mText(text) {}

    SvgPathResult Read() {
        SkipSpace();
        if (!AtEnd() && mText[mPos] != 'M' && mText[mPos] != 'm') {
            Fail("a move (M or m)");
            return std::move(mResult);
        }
        while (!AtEnd() && ReadCommand()) {
        }
        return std::move(mResult);
    }

private:
    // Text

    bool AtEnd() const { return mPos >= mText.size(); }
    bool At(char c) const { return !AtEnd() && mText[mPos] == c; }
    bool AtDigit() const { return !AtEnd() && IsDigit(mText[mPos]); }

    void SkipSpace() {
        while (!AtEnd() && IsSpace(mText[mPos])) {
            ++mPos;
        }
    }

    /// White space with at most one comma in it; true when there was one.
    bool SkipSeparator() {
        SkipSpace();
        if (!At(',')) {
            return false;
        }
        ++mPos;
        SkipSpace();
        return true;
    }

    bool SkipDigits() {
        std::size_t const begin = mPos;
        while (AtDigit()) {
            ++mPos;
        }
        return mPos > begin;
    }

    bool Fail(std::size_t position, std::string found, char const* expected) {
        mResult.error = SvgPathError{position, std::move(found), expected};
        return false;
    }
    bool Fail(char const* expected) { return Fail(mPos, Described(mText.substr(mPos)), expected); }
    /// Complains about the piece from `begin` up to the place of reading.
    bool FailRange(std::size_t begin, char const* expected) {
        return Fail(begin, Quoted(mText.substr(begin, mPos - begin)), expected);
    }

    bool ReadNumber(double& number) {
        std::size_t const begin = mPos;
        bool const sign = At('-') || At('+');
        if (sign) {
            ++mPos;
        }
        std::size_t const unsignedBegin = mPos;
        bool digits = SkipDigits();
        if (At('.')) {
            ++mPos;
            digits = SkipDigits() || digits;
        }
        if (!digits) {
            return Fail(mPos > begin ? "a digit" : "a number");
        }
        if (At('e') || At('E')) {
            std::size_t const mantissaEnd = mPos;
            ++mPos;
            if (At('-') || At('+')) {
                ++mPos;
            }
            if (!SkipDigits()) {
                mPos = mantissaEnd; // no exponent; the letter is then out of place
            }
        }
        std::string_view const token = mText.substr(unsignedBegin, mPos - unsignedBegin);
        number = 0.0;
        std::errc const code =
            std::from_chars(token.data(), token.data() + token.size(), number).ec;
        if (code == std::errc::result_out_of_range && IsTiny(token)) {
            number = 0.0;
        } else if (code != std::errc() || !std::isfinite(number)) {
            return FailRange(begin, "a number in the range of double");
        }
        if (mText[begin] == '-') {
            number = -number;
        }
        return true;
    }

    bool ReadFlag(double& flag) {
        if (!At('0') && !At('1')) {
            return Fail("an arc flag (0 or 1)");
        }
        flag = mText[mPos] - '0';
        ++mPos;
        return true;
    }

    /// A command letter with all its groups of arguments.
    bool ReadCommand() {
        char const letter = mText[mPos];
        bool const relative = letter >= 'a';
        char command = static_cast<char>(relative ? letter - 'a' + 'A' : letter);
        int const count = IsLetter(letter) ? ArgumentCount(command) : -1;
        if (count < 0) {
            return Fail(mMayRepeat ? "a command or a number" : "a command");
        }
        ++mPos;
        SkipSpace();
        mMayRepeat = count > 0;
        if (count == 0) {
            Close();
            return true;
        }
        bool more;
        do {
            if (!ReadGroup(command, static_cast<std::size_t>(count), relative)) {
                return false;
            }
            if (command == 'M') {
                command = 'L';
            }
            more = SkipSeparator() || At('-') || At('+') || At('.') || AtDigit();
        } while (more);
        return true;
    }

    /// One group of arguments, and the segment that it makes.
    bool ReadGroup(char command, std::size_t count, bool relative) {
        std::size_t const begin = mPos;
        std::array<double, 7> a{};
        for (std::size_t i = 0; i < count; ++i) {
            if (i > 0) {
                SkipSeparator();
            }
            bool const flag = command == 'A' && (i == 3 || i == 4);
            if (!(flag ? ReadFlag(a[i]) : ReadNumber(a[i]))) {
                return false;
            }
        }
        // Nothing is added to absolute coordinates: -0 + 0 is not -0.
        auto const h = [&](std::size_t i) { return relative ? mCurrent.h + a[i] : a[i]; };
        auto const v = [&](std::size_t i) { return relative ? mCurrent.v + a[i] : a[i]; };
        auto const point = [&](std::size_t i) { return Pt(h(i), v(i + 1)); };
        bool drawn = false;
        switch (command) {
        case 'M':
            drawn = Move(point(0));
            break;
        case 'L':
            drawn = Line(point(0));
            break;
        case 'H':
            drawn = Line(Pt(h(0), mCurrent.v));
            break;
        case 'V':
            drawn = Line(Pt(mCurrent.h, v(0)));
            break;
        case 'C':
            drawn = Cubic(point(0), point(2), point(4));
            break;
        case 'S':
            drawn = Cubic(Smooth(kCubic), point(0), point(2));
            break;
        case 'Q':
            drawn = Quadratic(point(0), point(2));
            break;
        case 'T':
            drawn = Quadratic(Smooth(kQuadratic), point(0));
            break;
        default:
            drawn = Arc(a, point(5));
            break;
        }
        return drawn || FailRange(begin, "coordinates in the range of double");
    }

    // Segments: each is false, and nothing is drawn, when a point is out of range

    bool Move(Pt const& p) {
        if (!IsFinite(p)) {
            return false;
        }
        mResult.path.MoveTo(p);
        mStart = p;
        Arrive(p);
        return true;
    }

    bool Line(Pt const& p) {
        if (!IsFinite(p)) {
            return false;
        }
        if (p != mCurrent) {
            Open();
            mResult.path.LineTo(p);
        }
        Arrive(p);
        return true;
    }

    bool Cubic(Pt const& c1, Pt const& c2, Pt const& e) {
        if (!IsFinite(c1) || !IsFinite(c2) || !IsFinite(e)) {
            return false;
        }
        AddCurve(c1, c2, e);
        Arrive(e, kCubic, c2);
        return true;
    }

    bool Quadratic(Pt const& q, Pt const& e) {
        if (!IsFinite(q) || !IsFinite(e)) {
            return false;
        }
        AddCurve(TwoThirds(mCurrent, q), TwoThirds(e, q), e);
        Arrive(e, kQuadratic, q);
        return true;
    }

    bool Arc(std::array<double, 7> const& a, Pt const& e) {
        double const rx = std::abs(a[0]);
        double const ry = std::abs(a[1]);
        if (rx == 0.0 || ry == 0.0 || e == mCurrent) {
            return Line(e);
        }
        if (!IsFinite(e)) {
            return false;
        }
        ArcCurves const curves(mCurrent, e, rx, ry, a[2], a[3] != 0.0, a[4] != 0.0);
        if (!curves.IsFinite()) {
            return false;
        }
        for (std::size_t i = 0; i < curves.Count(); ++i) {
            Pt const* const points = curves.Curve(i);
            AddCurve(points[0], points[1], points[2]);
            Arrive(points[2]);
        }
        return true;
    }

    void Close() {
        mResult.path.ClosePath();
        Arrive(mStart);
    }

    /// Adds a curve from the current point; cut in two where it would be dropped as one.
    void AddCurve(Pt const& c1, Pt const& c2, Pt const& e) {
        if (e != mCurrent) {
            Open();
            mResult.path.CurveTo(c1, c2, e);
            return;
        }
        // A curve whose middle lies on its ends crosses itself there or runs to and fro. It is then
        // away from them at a quarter; only a curve that stays in one point is nowhere.
        for (double const t : {0.5, 0.25, 0.75}) {
            Pt const a = Between(mCurrent, c1, t);
            Pt const b = Between(c1, c2, t);
            Pt const c = Between(c2, e, t);
            Pt const ab = Between(a, b, t);
            Pt const bc = Between(b, c, t);
            Pt const cut = Between(ab, bc, t);
            if (cut != mCurrent) {
                Open();
                mResult.path.CurveTo(a, ab, cut);
                mResult.path.CurveTo(bc, c, e);
                return;
            }
        }
    }

    /// Begins a subpath where the last one was closed.
    void Open() {
        if (!mResult.path.mOpen) {
            mResult.path.MoveTo(mStart);
        }
    }

    // Where the next command starts, which is the grammar's business, not the path's

    enum Kind : std::uint8_t { kOther, kCubic, kQuadratic };

    void Arrive(Pt const& p, Kind kind = kOther, Pt const& control = Pt()) {
        mCurrent = p;
        mKind = kind;
        mControl = control;
    }

    /// The first control point of a smooth curve.
    Pt Smooth(Kind kind) const { return mKind == kind ? Reflected(mControl, mCurrent) : mCurrent; }

    std::string_view mText;
    std::size_t mPos = 0;
    bool mMayRepeat = false; ///< the command read last takes arguments
    Pt mStart;               ///< of the subpath
    Pt mCurrent;
    Kind mKind = kOther; ///< of the last segment
    Pt mControl;         ///< its last control point, unless it is of another kind
    SvgPathResult mResult;
};

// ------------------------------------------------------------------------------------------------
// Writing

/// The shortest spelling of one number.
struct Numeral {
    char text[32];
    std::size_t length = 0;
    bool fraction = false; ///< has a point or an exponent: a point after it begins a new number

    std::string_view View() const { return std::string_view(text, length); }
};

/// Respells "-d.ddde-xx": without superfluous zeros, point, sign or exponent.
Numeral Respelled(std::string_view scientific) {
    Numeral out;
    auto const put = [&](char c) { out.text[out.length++] = c; };
    if (scientific[0] == '-') {
        put('-');
        scientific.remove_prefix(1);
    }
    std::size_t const e = scientific.find('e');
    int exponent = 0;
    std::size_t const exponentBegin = e + (scientific[e + 1] == '+' ? 2 : 1);
    std::from_chars(scientific.data() + exponentBegin, scientific.data() + scientific.size(),
                    exponent);
    char digits[24];
    int count = 0;
    for (char const c : scientific.substr(0, e)) {
        if (c != '.') {
            digits[count++] = c;
        }
    }
    exponent -= count - 1; // of the last digit
    while (count > 1 && digits[count - 1] == '0') {
        --count;
        ++exponent;
    }
    if (count == 1 && digits[0] == '0') {
        exponent = 0;
    }

    char exponentText[8];
    std::size_t const exponentLength = static_cast<std::size_t>(
        std::to_chars(exponentText, exponentText + sizeof exponentText, exponent).ptr -
        exponentText);
    int const point = count + exponent; // digits in front of the point, below 0: zeros after it
    int const plainLength = exponent >= 0 ? point : point > 0 ? count + 1 : 1 - exponent;
    if (plainLength <= count + 1 + static_cast<int>(exponentLength)) {
        // From the first digit, or the point in front of it, to the last digit or the unit.
        int const begin = std::min(point, 0);
        for (int i = begin; i < std::max(count, point); ++i) {
            if (i == point && exponent < 0) {
                put('.');
            }
            put(i >= 0 && i < count ? digits[i] : '0');
        }
        out.fraction = exponent < 0;
    } else {
        for (int i = 0; i < count; ++i) {
            put(digits[i]);
        }
        put('e');
        for (std::size_t i = 0; i < exponentLength; ++i) {
            put(exponentText[i]);
        }
        out.fraction = true;
    }
    return out;
}

/// "-d.ddde-xx" in `buffer`, rounded to so many digits after the point if told.
template <class... Digits>
std::string_view Scientific(char (&buffer)[40], double value, Digits... digits) {
    char* const end = std::to_chars(buffer, buffer + sizeof buffer, value,
                                    std::chars_format::scientific, digits...)
                          .ptr;
    return std::string_view(buffer, static_cast<std::size_t>(end - buffer));
}

/// The shortest numeral that reads as `value`.
Numeral Absolute(double value) {
    char buffer[40];
    return Respelled(Scientific(buffer, value));
}

/// Finds the shortest numeral that gives `to` when added to `from`; false when none is found.
///
/// The numbers that do lie in an interval around the difference, as wide as the rounding of `to`;
/// with each digit more the nearest decimal comes no farther from its middle, so the least number
/// of digits is found by halving.
bool Relative(double from, double to, Numeral& numeral) {
    double const difference = to - from;
    if (!std::isfinite(difference) || !Same(from + difference, to)) {
        return false;
    }
    char text[40];
    std::string_view best = Scientific(text, difference);
    int lowest = 1;
    int highest =
        static_cast<int>(std::count_if(best.begin(), best.begin() + best.find('e'), IsDigit));
    char trial[40];
    while (lowest < highest) {
        int const middle = (lowest + highest) / 2;
        std::string_view const rounded = Scientific(trial, difference, middle - 1);
        double read = 0.0;
        std::from_chars(rounded.data(), rounded.data() + rounded.size(), read);
        if (Same(from + read, to)) {
            highest = middle;
            best = std::string_view(text, rounded.copy(text, sizeof text));
        } else {
            lowest = middle + 1;
        }
    }
    numeral = Respelled(best);
    return true;
}

/// Numerals for the coordinates of up to three points, h before v.
struct Numerals {
    std::array<Numeral, 6> items;
    std::size_t count = 0;
    bool valid = true;
};

/// One way to spell an element.
struct Spelling {
    char letter = 0;       ///< 0: the element is written as nothing at all
    char repeats = 0;      ///< the command that numbers alone mean after this one; 0: none
    bool fraction = false; ///< the last number has a point or an exponent
    std::string numbers;   ///< with the separators between them
    std::size_t cost = 0;  ///< the shortest text up to and with this spelling has this length,
    std::size_t from = 0;  ///< and the element before is spelled in this way
};

/// The character between two spellings: a letter, a space or, as 0, nothing.
char Joint(Spelling const& before, Spelling const& after) {
    if (after.letter != before.repeats) {
        return after.letter;
    }
    if (after.numbers.empty()) {
        return 0;
    }
    char const first = after.numbers[0];
    return first == '-' || (first == '.' && before.fraction) ? '\0' : ' ';
}

/// Joins elements, of which each can be spelled in several ways, into the shortest text.
///
/// What a spelling costs depends only on the one before it, so the shortest text that ends in each
/// spelling of an element follows from those of the element before (a shortest path, by dynamic
/// programming). As soon as all of them go back to one spelling, the text up to it is settled.
class ShortestText {
public:
    /// Begins a new element; spellings that are added after it are its own.
    void BeginElement() {
        if (++mCount > mElements.size()) {
            mElements.emplace_back();
        }
        mElements[mCount - 1].count = 0;
    }

    /// Adds a spelling to the element; of equally short ones the first is taken.
    void AddSpelling(char letter, char repeats, Numerals const& numerals, std::size_t begin = 0) {
        if (!numerals.valid) {
            return;
        }
        Element& element = mElements[mCount - 1];
        Spelling& spelling = element.spellings[element.count++];
        spelling.letter = letter;
        spelling.repeats = repeats;
        spelling.fraction = false;
        spelling.numbers.clear();
        for (std::size_t i = begin; i < numerals.count; ++i) {
            Numeral const& numeral = numerals.items[i];
            char const first = numeral.text[0];
            if (i > begin && first != '-' && !(first == '.' && spelling.fraction)) {
                spelling.numbers += ' ';
            }
            spelling.numbers += numeral.View();
            spelling.fraction = numeral.fraction;
        }
    }

    /// Ends the element, which has at least one spelling.
    void EndElement() {
        Element& element = mElements[mCount - 1];
        bool settled = true;
        for (std::size_t i = 0; i < element.count; ++i) {
            Spelling& spelling = element.spellings[i];
            spelling.cost = std::numeric_limits<std::size_t>::max();
            if (mCount == 1) {
                spelling.from = 0;
                spelling.cost = Cost(mSettled, spelling);
                continue;
            }
            Element const& before = mElements[mCount - 2];
            for (std::size_t j = 0; j < before.count; ++j) {
                std::size_t const cost =
                    before.spellings[j].cost + Cost(before.spellings[j], spelling);
                bool const tie = cost == spelling.cost;
                // On a tie from the shorter one, to which the others then go back as well.
                if (cost < spelling.cost ||
                    (tie && before.spellings[j].cost < before.spellings[spelling.from].cost)) {
                    spelling.cost = cost;
                    spelling.from = j;
                }
            }
            settled = settled && spelling.from == element.spellings[0].from;
        }
        if (settled && mCount > 1) {
            Settle(mCount - 1, element.spellings[0].from);
            std::swap(mElements[0], mElements[mCount - 1]);
            mCount = 1;
        }
    }

    /// The whole text.
    std::string Take() {
        if (mCount > 0) {
            Element const& last = mElements[mCount - 1];
            std::size_t best = 0;
            for (std::size_t i = 1; i < last.count; ++i) {
                if (last.spellings[i].cost < last.spellings[best].cost) {
                    best = i;
                }
            }
            Settle(mCount, best);
        }
        return std::move(mText);
    }

private:
    struct Element {
        std::array<Spelling, 4> spellings;
        std::size_t count = 0;
    };

    static std::size_t Cost(Spelling const& before, Spelling const& spelling) {
        return (Joint(before, spelling) != 0 ? 1 : 0) + spelling.numbers.size();
    }

    /// Writes the first `count` elements, the last of them in the spelling `choice`.
    void Settle(std::size_t count, std::size_t choice) {
        mChoices.resize(count);
        for (std::size_t i = count; i-- > 0;) {
            mChoices[i] = choice;
            choice = mElements[i].spellings[choice].from;
        }
        for (std::size_t i = 0; i < count; ++i) {
            Spelling const& spelling = mElements[i].spellings[mChoices[i]];
            char const joint = Joint(mSettled, spelling);
            if (joint != 0) {
                mText += joint;
            }
            mText += spelling.numbers;
            mSettled.letter = spelling.letter;
            mSettled.repeats = spelling.repeats;
            mSettled.fraction = spelling.fraction;
        }
    }

    std::vector<Element>
        mElements; ///< the first mCount are not settled; the others keep their room
    std::size_t mCount = 0;
    std::vector<std::size_t> mChoices;
    Spelling mSettled; ///< the last settled one, without its numbers
    std::string mText;
};

/// Writes one path. Keeps the state of whoever reads the text beside that of the path as measured,
/// which differ where elements have no move before them.
class Writer {
public:
    std::string Write(CPath const& path) {
        std::size_t point = 0;
        for (std::size_t i = 0; i < path.mCtls.size(); ++i) {
            char const code = path.mCtls[i];
            bool const known = code == kPathMove || code == kPathLine || code == kPathCurve;
            std::size_t const count = !known ? 0 : code == kPathCurve ? 3 : 1;
            if (path.mPts.size() - point < count) {
                break;
            }
            Pt const* const points = path.mPts.data() + point;
            point += count;
            if (!std::all_of(points, points + count, [](Pt const& p) { return IsFinite(p); })) {
                throw std::invalid_argument("element " + std::to_string(i) +
                                            " of the path has a coordinate that is not finite");
            }
            if (code == kPathMove) {
                mMove = points[0];
                mMeasuredStart = mMeasured = points[0];
            } else if (code == kPathLine) {
                WriteLine(points[0]);
                mMeasured = points[0];
            } else if (code == kPathCurve) {
                WriteCurve(points[0], points[1], points[2]);
                mMeasured = points[2];
            } else if (code == kPathClose) {
                WriteClose();
            }
        }
        if (mMove) {
            WriteMove(false);
        }
        return mText.Take();
    }

private:
    template <class... Points> static Numerals AbsoluteNumerals(Points const&... points) {
        Numerals out;
        for (Pt const& p : {points...}) {
            out.items[out.count++] = Absolute(p.h);
            out.items[out.count++] = Absolute(p.v);
        }
        return out;
    }
    template <class... Points> Numerals RelativeNumerals(Points const&... points) const {
        Numerals out;
        for (Pt const& p : {points...}) {
            out.valid = out.valid && Relative(mCurrent.h, p.h, out.items[out.count++]) &&
                        Relative(mCurrent.v, p.v, out.items[out.count++]);
        }
        return out;
    }
    static Numerals OneNumeral(Numerals const& both, std::size_t i) {
        Numerals out;
        out.items[0] = both.items[i];
        out.count = 1;
        return out;
    }

    /// Writes the move that waits. \param drawn a line or curve of some extent follows it, so that
    /// the start of the subpath just closed need not be named.
    void WriteMove(bool drawn) {
        Pt const p = *mMove;
        mMove.reset();
        mText.BeginElement();
        if (drawn && mAfterClose && Same(p, mStart)) {
            mText.AddSpelling(0, 0, Numerals());
        } else {
            mText.AddSpelling('M', 'L', AbsoluteNumerals(p));
            mText.AddSpelling('m', 'l', RelativeNumerals(p));
        }
        mText.EndElement();
        mStart = p;
        mOpen = true;
        Arrive(p);
    }

    /// Sees to it that a segment to `p` starts where it is measured from.
    void Open(Pt const& p) {
        if (!mMove && !mOpen) {
            mMove = mMeasured;
        }
        if (mMove) {
            WriteMove(p != *mMove);
        }
    }

    void WriteLine(Pt const& p) {
        Open(p);
        Numerals const absolute = AbsoluteNumerals(p);
        mText.BeginElement();
        if (Same(p.v, mCurrent.v)) {
            AddSingle('H', 'h', absolute, 0, mCurrent.h, p.h);
        } else if (Same(p.h, mCurrent.h)) {
            AddSingle('V', 'v', absolute, 1, mCurrent.v, p.v);
        }
        mText.AddSpelling('L', 'L', absolute);
        mText.AddSpelling('l', 'l', RelativeNumerals(p));
        mText.EndElement();
        Arrive(p);
    }

    /// Adds the spellings with one coordinate only.
    void AddSingle(char letter, char relativeLetter, Numerals const& absolute, std::size_t i,
                   double from, double to) {
        mText.AddSpelling(letter, letter, OneNumeral(absolute, i));
        Numerals relative;
        relative.valid = Relative(from, to, relative.items[0]);
        relative.count = 1;
        mText.AddSpelling(relativeLetter, relativeLetter, relative);
    }

    void WriteCurve(Pt const& c1, Pt const& c2, Pt const& e) {
        Open(e);
        Numerals const absolute = AbsoluteNumerals(c1, c2, e);
        Numerals const relative = RelativeNumerals(c1, c2, e);
        mText.BeginElement();
        if (Same(c1, mAfterCurve ? Reflected(mControl, mCurrent) : mCurrent)) {
            // The first two numbers are left out.
            mText.AddSpelling('S', 'S', absolute, 2);
            if (relative.valid) {
                mText.AddSpelling('s', 's', relative, 2);
            } else {
                mText.AddSpelling('s', 's', RelativeNumerals(c2, e));
            }
        }
        mText.AddSpelling('C', 'C', absolute);
        mText.AddSpelling('c', 'c', relative);
        mText.EndElement();
        Arrive(e);
        mAfterCurve = true;
        mControl = c2;
    }

    void WriteClose() {
        if (mMove) {
            WriteMove(false);
        }
        if (!mOpen) {
            return;
        }
        if (mStart == mMeasuredStart) {
            mText.BeginElement();
            mText.AddSpelling('Z', 0, Numerals());
            mText.EndElement();
            Arrive(mStart);
            mAfterClose = true;
        } else if (mMeasuredStart != mCurrent) {
            WriteLine(mMeasuredStart);
        }
        mOpen = false;
    }

    void Arrive(Pt const& p) {
        mCurrent = p;
        mAfterCurve = false;
        mAfterClose = false;
    }

    ShortestText mText;

    // As the path is measured.
    Pt mMeasured;            ///< the last point drawn
    Pt mMeasuredStart;       ///< the last move
    std::optional<Pt> mMove; ///< a move that is not written yet

    // As the text is read.
    Pt mCurrent;
    Pt mStart;
    bool mOpen = false;
    bool mAfterClose = false; ///< the last thing written is a close
    bool mAfterCurve = false; ///< the last thing written is a curve
    Pt mControl;              ///< its last control point
};

} // namespace

std::string SvgPathError::Message() const {
    return "at byte " + std::to_string(position) + ": expected " + expected + ", found " + found;
}

SvgPathResult ReadSvgPath(std::string_view text) { return Reader(text).Read(); }

std::string WriteSvgPath(CPath const& path) { return Writer().Write(path); }

} // namespace trammel
