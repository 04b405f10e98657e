#include "app/numbers.h"

#include <algorithm>
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
        // Which way it left the range is told by the exponent's sign, else by the digits.
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

} // namespace

const char *scan_float(const char *p, const char *end, float *out)
{
    return scan_real(p, end, out);
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
    return std::to_chars(out, out + 16, static_cast<double>(value), std::chars_format::general, 6)
        .ptr;
}

char *write_int(char *out, int value) { return std::to_chars(out, out + 12, value).ptr; }
