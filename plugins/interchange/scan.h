// Numbers in texts, fast: with std::from_chars alone an OBJ file of a million vertices takes 1.1
// times as long.
#ifndef INTERCHANGE_SCAN_H
#define INTERCHANGE_SCAN_H

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

// Reads a real number at `p`, with a sign in front, and returns the place after it; null when there
// is none. Rounded as it should be: up to 15 digits and the power of ten are exact in a double,
// their quotient is the nearest double, and that narrows to the nearest float unless it stands in
// the very middle between two.
inline const char *scan_real(const char *p, const char *end, float *out)
{
    static constexpr double powers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    constexpr int most_digits = 15;
    constexpr double least = 1e-30; // far above where floats lose digits
    if (p != end && *p == '+')
        ++p;
    const char *begin = p;
    const bool negative = p != end && *p == '-';
    p += negative ? 1 : 0;
    std::int64_t digits = 0;
    const char *first = p;
    while (p != end && *p >= '0' && *p <= '9' && p - first <= most_digits)
        digits = digits * 10 + (*p++ - '0');
    std::ptrdiff_t count = p - first;
    std::ptrdiff_t decimals = 0;
    if (p != end && *p == '.') {
        first = ++p;
        while (p != end && *p >= '0' && *p <= '9' && count + (p - first) <= most_digits)
            digits = digits * 10 + (*p++ - '0');
        decimals = p - first;
        count += decimals;
    }
    const bool more = p != end && (*p == 'e' || *p == 'E' || (*p >= '0' && *p <= '9'));
    if (count > 0 && count <= most_digits && !more) {
        const double value = static_cast<double>(digits) / powers[decimals];
        std::uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        if (digits == 0 || (value > least && (bits & 0x1FFFFFFF) != 0x10000000)) {
            const auto narrow = static_cast<float>(value);
            *out = negative ? -narrow : narrow;
            return p;
        }
    }
    const auto [after, error] = std::from_chars(begin, end, *out);
    if (error == std::errc::invalid_argument)
        return nullptr;
    if (error == std::errc::result_out_of_range) // nothing, or infinite
        *out = std::strtof(std::string(begin, after).c_str(), nullptr);
    return after;
}

#endif
