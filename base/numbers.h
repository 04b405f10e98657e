#ifndef VESK_BASE_NUMBERS_H
#define VESK_BASE_NUMBERS_H

#include <cstdint>
#include <string_view>

// The one lenient number scanner and the one writer, both without a locale. A scanner skips
// leading blanks (also line ends), takes an optional sign and as much as makes a number, and
// returns the place after it; null, with `out` untouched, when there is no number. Numbers beyond
// the range saturate. "inf" and "nan" are values.

const char *scan_float(const char *p, const char *end, float *out);
const char *scan_double(const char *p, const char *end, double *out);
const char *scan_int(const char *p, const char *end, int *out);

// The whole-text forms: 0 when the text holds no number.
int int_of(std::string_view text);
double double_of(std::string_view text);
// A length or an angle from a person or a script: 0 also for "inf", "nan" and numbers that a float
// cannot hold.
float finite_float_of(std::string_view text);
// Automatic base: "0x" hexadecimal, a leading 0 octal, else decimal; 0 for no number.
int int_of_any_base(std::string_view text);
// Hexadecimal digits with an optional "0x"; 0 for none.
unsigned unsigned_of_hex(std::string_view text);

// Writes `value` as printf's "%g" does and returns the place after it; `out` takes 16 characters.
char *write_g(char *out, float value);
// Writes `value` in decimal; `out` takes 12 characters.
char *write_int(char *out, int value);

inline bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

#endif
