#include "tags.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

void add_letter(std::string &out, unsigned long code)
{
    if (code < 0x80) {
        out += static_cast<char>(code);
        return;
    }
    const int more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    const unsigned long lead[] = {0, 0xC0, 0xE0, 0xF0};
    out += static_cast<char>(lead[more] | code >> 6 * more);
    for (int i = more; i-- > 0;)
        out += static_cast<char>(0x80 | (code >> 6 * i & 0x3F));
}

// "&#233;" and "&#xE9;": the place after it, or `at` when it is none.
std::size_t take_number(const std::string &text, std::size_t at, std::string *out)
{
    if (text.compare(at, 2, "&#") != 0)
        return at;
    const bool hexadecimal = at + 2 < text.size() && text[at + 2] == 'x';
    const char *digits = text.c_str() + at + (hexadecimal ? 3 : 2);
    char *end = nullptr;
    const unsigned long code = std::strtoul(digits, &end, hexadecimal ? 16 : 10);
    if (end == digits || *end != ';' || code == 0 || code > 0x10FFFF)
        return at;
    add_letter(*out, code);
    return static_cast<std::size_t>(end + 1 - text.c_str());
}

std::string decoded(const std::string &text)
{
    static const std::pair<const char *, const char *> entities[] = {
        {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&apos;", "'"}, {"&amp;", "&"}};
    std::string out;
    for (std::size_t at = 0; at < text.size();) {
        if (const std::size_t after = take_number(text, at, &out); after != at) {
            at = after;
            continue;
        }
        const auto *found =
            std::find_if(std::begin(entities), std::end(entities), [&](const auto &entity) {
                return text.compare(at, std::strlen(entity.first), entity.first) == 0;
            });
        const bool known = found != std::end(entities);
        out += known ? found->second : text.substr(at, 1);
        at += known ? std::strlen(found->first) : 1;
    }
    return out;
}

} // namespace

bool tag_reader::next()
{
    while (true) {
        const std::size_t begin = text_.find('<', at_);
        if (begin == std::string::npos)
            return false;
        if (text_.compare(begin, 4, "<!--") == 0) {
            at_ = text_.find("-->", begin);
            if (at_ == std::string::npos)
                return false;
            continue;
        }
        std::size_t end = begin;
        for (char quote = '\0'; end < text_.size() && (quote != '\0' || text_[end] != '>'); ++end) {
            if (quote != '\0' ? text_[end] == quote : (text_[end] == '"' || text_[end] == '\''))
                quote = quote == '\0' ? text_[end] : '\0';
        }
        if (end >= text_.size())
            return false;
        at_ = end + 1;
        if (text_[begin + 1] == '?' || text_[begin + 1] == '!')
            continue;
        take(begin + 1, end);
        return true;
    }
}

std::string tag_reader::text(const char *attribute) const
{
    std::size_t begin = 0;
    std::size_t end = 0;
    return find(attribute, &begin, &end) ? decoded(text_.substr(begin, end - begin)) : "";
}

template <class N>
N tag_reader::number(const char *attribute, N fallback) const
{
    std::size_t begin = 0;
    std::size_t end = 0;
    N value = fallback;
    if (find(attribute, &begin, &end)) {
        while (begin < end && (text_[begin] == ' ' || text_[begin] == '+'))
            ++begin;
        if (std::from_chars(text_.data() + begin, text_.data() + end, value).ec != std::errc())
            value = fallback;
    }
    return value;
}

float tag_reader::real(const char *attribute, float fallback) const
{
    return number(attribute, fallback);
}

int tag_reader::whole(const char *attribute, int fallback) const
{
    return number(attribute, fallback);
}

void tag_reader::take(std::size_t begin, std::size_t end)
{
    closes = text_[begin] == '/';
    begin += closes ? 1 : 0;
    empty = end > begin && text_[end - 1] == '/';
    end_ = end - (empty ? 1 : 0);
    const std::string_view tag(text_.data() + begin, end_ - begin); // not the whole file for each
    const std::size_t stop = begin + std::min(tag.find_first_of(" \t\r\n"), tag.size());
    name = text_.substr(begin, stop - begin);
    name = name.substr(name.find(':') + 1);
    attributes_ = stop;
}

bool tag_reader::find(const char *attribute, std::size_t *begin, std::size_t *end) const
{
    const std::size_t length = std::strlen(attribute);
    for (std::size_t at = attributes_; at < end_;) {
        at = text_.find_first_not_of(" \t\r\n", at);
        if (at >= end_)
            return false;
        const void *sign = std::memchr(&text_[at], '=', end_ - at);
        if (sign == nullptr)
            return false;
        const auto equals = static_cast<std::size_t>(static_cast<const char *>(sign) - &text_[0]);
        const std::string_view rest(text_.data() + equals, end_ - equals);
        const std::size_t open = equals + std::min(rest.find_first_of("\"'"), rest.size());
        if (open >= end_)
            return false;
        const std::size_t close = text_.find(text_[open], open + 1);
        if (close > end_)
            return false;
        if (equals - at >= length && text_.compare(at, length, attribute) == 0 &&
            text_.find_first_not_of(" \t\r\n", at + length) == equals) {
            *begin = open + 1;
            *end = close;
            return true;
        }
        at = close + 1;
    }
    return false;
}
