#include "fileio/vrml1_scan.h"

#include "base/numbers.h"

#include <algorithm>
#include <cstring>

namespace {

bool is_space(char c) { return is_blank(c) || c == ','; }
bool is_sign(char c) { return c != '\0' && std::strchr("{}[]()|", c) != nullptr; }

std::size_t end_of_text(std::string_view text, std::size_t at)
{
    while (at < text.size() && text[at] != '"')
        at += text[at] == '\\' ? 2 : 1;
    return std::min(at, text.size());
}

} // namespace

std::vector<vrml_word> vrml_words(std::string_view text, progress_t &progress)
{
    std::vector<vrml_word> words;
    std::size_t at = 0;
    while (at < text.size() && progress.step(static_cast<double>(at))) {
        const char c = text[at];
        if (is_space(c)) {
            ++at;
        } else if (c == '#') {
            at = std::min(text.find('\n', at), text.size());
        } else if (is_sign(c)) {
            words.push_back({vrml_word::SIGN, text.substr(at++, 1)});
        } else if (c == '"') {
            const std::size_t end = end_of_text(text, at + 1);
            words.push_back({vrml_word::TEXT, text.substr(at + 1, end - at - 1)});
            at = end + 1;
        } else {
            std::size_t end = at;
            while (end < text.size() && !is_space(text[end]) && !is_sign(text[end]) &&
                   text[end] != '#' && text[end] != '"')
                ++end;
            end = std::max(end, at + 1);
            const bool number = std::strchr("0123456789+-.", c) != nullptr && c != '\0';
            words.push_back(
                {number ? vrml_word::NUMBER : vrml_word::NAME, text.substr(at, end - at)});
            at = end;
        }
    }
    return words;
}

std::span<const vrml_word> vrml_fields::values(std::string_view name) const
{
    const auto found = fields_.find(name);
    if (found == fields_.end())
        return {};
    return std::span(words_).subspan(found->second.begin, found->second.end - found->second.begin);
}

std::vector<float> vrml_fields::numbers(std::string_view name) const
{
    std::vector<float> numbers;
    for (const vrml_word &word : values(name)) {
        float value = 0;
        if (word.kind == vrml_word::NUMBER) {
            scan_float(word.text.data(), word.text.data() + word.text.size(), &value);
            numbers.push_back(value);
        }
    }
    return numbers;
}

std::vector<int> vrml_fields::integers(std::string_view name) const
{
    std::vector<int> integers;
    for (const vrml_word &word : values(name))
        if (word.kind == vrml_word::NUMBER)
            integers.push_back(int_of(word.text));
    return integers;
}

float vrml_fields::number(std::string_view name, float fallback) const
{
    const std::vector<float> all = numbers(name);
    return all.empty() ? fallback : all[0];
}

std::string_view vrml_fields::word(std::string_view name) const
{
    for (const vrml_word &word : values(name))
        if (word.kind == vrml_word::NAME || word.kind == vrml_word::TEXT)
            return word.text;
    return "";
}

bool vrml_fields::mentions(std::string_view name, std::string_view word) const
{
    const auto all = values(name);
    return std::any_of(all.begin(), all.end(), [&](const auto &w) { return w.text == word; });
}
