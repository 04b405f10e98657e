#ifndef VESK_FILEIO_APPEND_TEXT_H
#define VESK_FILEIO_APPEND_TEXT_H

// Numbers and quoted texts at the end of a text. `Out` has `+= char` and `append(const char *,
// size_t)`: a std::string, or the sink of the rescue copy, which works when nothing may be
// allocated any more.

#include "base/numbers.h"
#include "model/object.h"

#include <cstddef>

// As "%g" writes it.
template <class Out>
void append_g(Out &out, float value)
{
    char buffer[16];
    out.append(buffer, static_cast<std::size_t>(write_g(buffer, value) - buffer));
}

template <class Out>
void append_int(Out &out, int value)
{
    char buffer[12];
    out.append(buffer, static_cast<std::size_t>(write_int(buffer, value) - buffer));
}

// With blanks between.
template <class Out>
void append_floats(Out &out, const float *values, int n)
{
    for (int i = 0; i < n; ++i) {
        if (i > 0)
            out += ' ';
        append_g(out, values[i]);
    }
}

template <class Out>
void append_point(Out &out, const point3_t &p)
{
    const float values[] = {p.x, p.y, p.z};
    append_floats(out, values, 3);
}

// In double quotes, with a backslash before each double quote and backslash.
template <class Out>
void append_quoted(Out &out, const char *text)
{
    out += '"';
    for (const char *p = text; *p != '\0'; ++p) {
        if (*p == '\\' || *p == '"')
            out += '\\';
        out += *p;
    }
    out += '"';
}

#endif
