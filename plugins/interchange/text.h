// Texts and bytes of files, in and out.
#ifndef INTERCHANGE_TEXT_H
#define INTERCHANGE_TEXT_H

#include <charconv>
#include <cmath>
#include <cstdint>
#include <plugin/vesk.h>
#include <string>
#include <type_traits>
#include <vector>

// A text under construction. Numbers take the fewest digits that read back as the same number;
// infinite ones and those that are none become 0.
class text_out {
public:
    std::string text;

    template <class... A>
    void add(const A &...parts)
    {
        (put(parts), ...);
    }

private:
    void put(const char *words) { text += words; }
    void put(const std::string &words) { text += words; }
    void put(char sign) { text += sign; }
    template <class N>
    requires std::is_arithmetic_v<N>
    void put(N value)
    {
        if constexpr (std::is_floating_point_v<N>)
            value = std::isfinite(value) ? value + N{0} : N{0};
        char buffer[40];
        const auto end = std::to_chars(buffer, buffer + sizeof buffer, value);
        text.append(buffer, end.ptr);
    }
    void put(const point3_t &p) { add(p.x, ' ', p.y, ' ', p.z); }
};

// Appends a number's bytes, the lowest first.
template <class N>
void add_bytes(std::string &out, N value)
{
    if constexpr (std::is_same_v<N, float>) {
        if (!std::isfinite(value))
            value = 0;
    }
    char bytes[sizeof(N)];
    __builtin_memcpy(bytes, &value, sizeof value); // the machine stores them so
    out.append(bytes, sizeof value);
}

// "<", "&" and the like as XML wants them.
std::string xml_text(const std::string &text);
// A file name as an address: blanks and the like as %20.
std::string url_text(const std::string &text);

// The words of a line, separated by blanks.
std::vector<std::string> words_of(const std::string &line);

// Without the mark that some programs put before UTF-8, and with line feeds where lines end in
// carriage returns alone.
void plain_lines(std::string &text);

// The name of a file without its folder and suffix.
std::string base_name(const std::string &filename);

#endif
