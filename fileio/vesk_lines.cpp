#include "fileio/vesk_lines.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "fileio/vesk_scan.h"

#include <algorithm>
#include <cstring>

vesk_lines::vesk_lines(const file_text &text, const char *first)
    : place(first), begin_(text.begin()), end_(text.end()), echoed_(debug_mode())
{
}

double vesk_lines::fraction() const
{
    return static_cast<double>(place - begin_) / static_cast<double>(end_ - begin_);
}

bool vesk_lines::next()
{
    if (place == end_)
        return false;
    const auto most = std::min<std::ptrdiff_t>(end_ - place, line_length);
    const void *newline = std::memchr(place, '\n', static_cast<std::size_t>(most));
    const auto length = newline ? static_cast<const char *>(newline) + 1 - place : most;
    std::memcpy(buffer_, place, static_cast<std::size_t>(length));
    buffer_[length] = '\0';
    place += length;
    ++number;
    if (echoed_)
        debugf("line %d %s", number, buffer_);
    return true;
}

bool vesk_lines::first_word(std::string *word)
{
    const char *start = skip_space(buffer_, buffer_ + std::strlen(buffer_));
    const char *end = start;
    while (*end != '\0' && !is_blank(*end) && *end != '\v' && *end != '\f')
        ++end;
    values_ = end;
    if (end == start)
        return false;
    word->assign(start, end);
    return true;
}

int vesk_lines::integer() const
{
    int value = 0;
    scan_int(values_, values_ + std::strlen(values_), &value);
    return value;
}

int vesk_lines::split()
{
    const std::size_t length = std::strlen(buffer_);
    if (length < line_length || buffer_[length - 1] == '\n' || std::strchr(buffer_, '"') == nullptr)
        return vesk_get_tokens(buffer_, nullptr, words_);
    const void *newline = std::memchr(place, '\n', static_cast<std::size_t>(end_ - place));
    const char *stop = newline ? static_cast<const char *>(newline) + 1 : end_;
    long_line_.assign(buffer_, length).append(place, stop);
    place = stop;
    return vesk_get_tokens(long_line_.data(), nullptr, words_);
}

void vesk_lines::reals(float *out, int n) const
{
    const char *p = values_;
    const char *end = p + std::strlen(p);
    for (int i = 0; i < n && p != nullptr; ++i)
        p = scan_float(p, end, out + i);
}

float vesk_lines::real(int word) const
{
    float value = 0;
    scan_float(words_[word], words_[word] + std::strlen(words_[word]), &value);
    return value;
}
