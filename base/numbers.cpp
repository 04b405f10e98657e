#include "base/numbers.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <charconv>
#include <climits>
#include <cmath>
#include <limits>

namespace {

const char *skip_blanks(const char *p, const char *end)
{
    // scanf's white space: vertical tab and form feed too.
    while (p < end && (is_blank(*p) || *p == '\v' || *p == '\f'))
        ++p;
    return p;
}

// Up to 7 digits with a point and no exponent: all of them and the power of ten are exact in a
// float, so that one division rounds as it should. Null for anything else: left to the library.
const char *scan_short(const char *p, const char *end, float *out)
{
    constexpr float powers[] = {1e0f, 1e1f, 1e2f, 1e3f, 1e4f, 1e5f, 1e6f, 1e7f};
    constexpr int most_digits = 7;
    const bool negative = p < end && *p == '-';
    if (negative)
        ++p;
    int digits = 0;
    int count = 0;
    int decimals = 0;
    for (; p < end && *p >= '0' && *p <= '9' && count <= most_digits; ++p, ++count)
        digits = digits * 10 + (*p - '0');
    if (p < end && *p == '.') {
        const int whole = count;
        for (++p; p < end && *p >= '0' && *p <= '9' && count <= most_digits; ++p, ++count)
            digits = digits * 10 + (*p - '0');
        decimals = count - whole;
    }
    const bool longer = p < end && (*p == 'e' || *p == 'E');
    if (count == 0 || count > most_digits || digits > 1 << 24 || longer)
        return nullptr;
    const float value = static_cast<float>(digits) / powers[decimals];
    *out = negative ? -value : value;
    return p;
}

template <class Real>
const char *scan_real(const char *p, const char *end, Real *out)
{
    p = skip_blanks(p, end);
    const bool negative = p < end && *p == '-';
    if (p < end && (*p == '-' || *p == '+'))
        ++p;
    if (p < end && (*p == '-' || *p == '+')) // from_chars would take a second sign
        return nullptr;
    Real value = 0;
    const auto [after, error] = std::from_chars(p, end, value);
    if (error == std::errc::invalid_argument)
        return nullptr;
    if (error == std::errc::result_out_of_range) {
        // The exponent's sign, else the digits, show on which side it left the range.
        const char *e = std::find_if(p, after, [](char c) { return c == 'e' || c == 'E'; });
        const bool tiny = e != after ? e + 1 != after && e[1] == '-'
                                     : *p == '0' || *p == '.'; // "0.000...1" without an exponent
        value = tiny ? Real(0) : std::numeric_limits<Real>::infinity();
    }
    *out = negative ? -value : value;
    return after;
}

// Digits of `base` with saturation; `after` is left at the first other character.
long long digits_of(const char *p, const char *end, int base, const char **after)
{
    unsigned long long value = 0;
    const auto [stop, error] = std::from_chars(p, end, value, base);
    *after = stop;
    if (error == std::errc::result_out_of_range || value > LLONG_MAX)
        return LLONG_MAX;
    return static_cast<long long>(value);
}

int saturate(long long value)
{
    return static_cast<int>(std::clamp<long long>(value, INT_MIN, INT_MAX));
}

// "000" to "999".
constexpr auto three_digits = [] {
    std::array<char, 3000> text{};
    for (size_t i = 0; i < 1000; ++i) {
        text[3 * i] = static_cast<char>('0' + i / 100);
        text[3 * i + 1] = static_cast<char>('0' + i / 10 % 10);
        text[3 * i + 2] = static_cast<char>('0' + i % 10);
    }
    return text;
}();

// "%g" of values that need no exponent. Null for others and for those so near the middle between
// two results that the rounded product could fall on the wrong side: left to the library.
char *write_short(char *out, double v)
{
    constexpr double powers[] = {1e-4, 1e-3, 1e-2, 1e-1, 1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6};
    constexpr double scales[] = {1e9, 1e8, 1e7, 1e6, 1e5, 1e4, 1e3, 1e2, 1e1, 1e0};
    if (!(v >= powers[0] && v < powers[10]))
        return nullptr;
    int exponent = v < powers[4] ? 0 : 4; // powers[exponent] <= v < powers[exponent + 1]
    while (v >= powers[exponent + 1])
        ++exponent;
    const double scaled = v * scales[exponent]; // six digits before the point
    const auto whole = static_cast<unsigned>(scaled);
    const double rest = scaled - whole;
    if (scaled < 100000.5 || scaled > 999998.5 || (rest > 0.499999 && rest < 0.500001))
        return nullptr;
    const unsigned rounded = whole + (rest > 0.5 ? 1 : 0);
    char digits[6];
    std::copy_n(&three_digits[3 * (rounded / 1000)], 3, digits);
    std::copy_n(&three_digits[3 * (rounded % 1000)], 3, digits + 3);
    int count = 6;
    while (digits[count - 1] == '0') // the first digit is never 0
        --count;

    const int before_point = exponent - 3;
    if (before_point <= 0) {
        out = std::copy_n("0.000", 2 - before_point, out);
        return std::copy_n(digits, count, out);
    }
    out = std::copy_n(digits, before_point, out);
    if (count <= before_point)
        return out;
    *out++ = '.';
    return std::copy(digits + before_point, digits + count, out);
}

} // namespace

const char *scan_float(const char *p, const char *end, float *out)
{
    p = skip_blanks(p, end);
    const char *after = scan_short(p, end, out);
    return after != nullptr ? after : scan_real(p, end, out);
}

const char *scan_double(const char *p, const char *end, double *out)
{
    return scan_real(p, end, out);
}

const char *scan_int(const char *p, const char *end, int *out)
{
    p = skip_blanks(p, end);
    const bool negative = p < end && *p == '-';
    if (p < end && (*p == '-' || *p == '+'))
        ++p;
    if (p == end || *p < '0' || *p > '9')
        return nullptr;
    const char *after = p;
    const long long value = digits_of(p, end, 10, &after);
    *out = saturate(negative ? -value : value);
    return after;
}

int int_of(std::string_view text)
{
    int value = 0;
    scan_int(text.data(), text.data() + text.size(), &value);
    return value;
}

double double_of(std::string_view text)
{
    double value = 0;
    scan_double(text.data(), text.data() + text.size(), &value);
    return value;
}

float finite_float_of(std::string_view text)
{
    const double value = double_of(text);
    return std::fabs(value) <= FLT_MAX ? static_cast<float>(value) : 0.0f;
}

int int_of_any_base(std::string_view text)
{
    const char *end = text.data() + text.size();
    const char *p = skip_blanks(text.data(), end);
    const bool negative = p < end && *p == '-';
    if (p < end && (*p == '-' || *p == '+'))
        ++p;
    int base = 10;
    if (end - p >= 2 && p[0] == '0' && (p[1] == 'x' || p[1] == 'X')) {
        base = 16;
        p += 2;
    } else if (p < end && *p == '0') {
        base = 8;
    }
    const char *after = p;
    const long long value = digits_of(p, end, base, &after);
    return saturate(negative ? -value : value);
}

unsigned unsigned_of_hex(std::string_view text)
{
    const char *end = text.data() + text.size();
    const char *p = skip_blanks(text.data(), end);
    if (end - p >= 2 && p[0] == '0' && (p[1] == 'x' || p[1] == 'X'))
        p += 2;
    const char *after = p;
    return static_cast<unsigned>(std::min<long long>(digits_of(p, end, 16, &after), UINT_MAX));
}

char *write_g(char *out, float value)
{
    char *start = out;
    if (std::signbit(value))
        *out++ = '-';
    if (value == 0) {
        *out++ = '0';
        return out;
    }
    if (char *after = write_short(out, std::fabs(static_cast<double>(value))); after != nullptr)
        return after;
    out = start;
    return std::to_chars(out, out + 16, static_cast<double>(value), std::chars_format::general, 6)
        .ptr;
}

char *write_int(char *out, int value) { return std::to_chars(out, out + 12, value).ptr; }
