#include "fileio/dxf_text.h"

#include "fileio/text_objects.h"
#include "model/bounds.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/object_tree.h"

#include <algorithm>
#include <cstdlib>

namespace {

// "%%d" and the like; "%%u" and "%%o" only switch lines below and above on and off.
std::string without_percents(std::string_view text)
{
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text.substr(i, 2) != "%%" || i + 2 >= text.size()) {
            plain += text[i];
            continue;
        }
        const char code = static_cast<char>(text[i + 2] | 0x20);
        plain += code == 'd'   ? "\u00b0"
                 : code == 'p' ? "\u00b1"
                 : code == 'c' ? "\u00d8"
                 : code == '%' ? "%"
                               : "";
        i += 2;
    }
    return plain;
}

// One code of an MTEXT, which begins with a backslash at `i`; leaves `i` at its last letter.
std::string code_of(std::string_view text, std::size_t *i)
{
    const char code = *i + 1 < text.size() ? text[*i + 1] : '\0';
    if (code == 'U')
        return "\\"; // a letter by its number
    ++*i;
    if (code == 'P' || code == 'X')
        return "\n";
    if (code == '~')
        return " ";
    if (code == '\\' || code == '{' || code == '}')
        return {code};
    if (code == '\0' || std::string_view("LlOoKkN").find(code) != std::string_view::npos)
        return {};
    // The others have words up to a semicolon; those of a fraction are its numbers.
    const std::size_t first = *i + 1, end = std::min(text.find(';', first), text.size());
    std::string words(text.substr(std::min(first, text.size()), end - std::min(first, end)));
    *i = std::min(end, text.size() - 1);
    if (code != 'S')
        return {};
    std::replace_if(
        words.begin(), words.end(), [](char c) { return c == '^' || c == '#'; }, '/');
    return words;
}

std::string without_codes(std::string_view text)
{
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\')
            plain += code_of(text, &i);
        else if (text[i] != '{' && text[i] != '}')
            plain += text[i];
    }
    return plain;
}

void move_and_scale(object_t *top, const point3_t &by, float scale)
{
    for_each_object(top, [&](object_t *object) {
        const auto place = [&](point3_t &p) {
            p = {(p.x + by.x) * scale, (p.y + by.y) * scale, (p.z + by.z) * scale};
        };
        for (vertex *point : each<vertex>(object->vertices))
            place(point->position);
        place(object->centre);
        object_mark(object, CHANGED_POSITIONS);
    });
}

// The part of the text's width and height that stands left of and below its place.
void anchor_of(const dxf_record &record, float *across, float *up)
{
    if (record.type == "MTEXT") {
        const int anchor = std::clamp(record.whole(71, 1), 1, 9) - 1;
        *across = static_cast<float>(anchor % 3) / 2;
        *up = 1 - static_cast<float>(anchor / 3) / 2;
        return;
    }
    const int sideways = record.whole(72), upright = record.whole(73);
    *across = sideways == 1 || sideways == 4 ? 0.5f : sideways == 2 ? 1.0f : 0.0f;
    *up = sideways == 4 || upright == 2 ? 0.5f : upright == 3 ? 1.0f : 0.0f;
}

} // namespace

std::string dxf_plain_text(const dxf_record &record)
{
    std::string text;
    for (const dxf_record::pair_t &pair : record.pairs) {
        if (record.type == "MTEXT" && pair.code == 3)
            text += pair.value; // comes before the end, which has code 1
    }
    text += record.text(1);
    text = record.type == "MTEXT" ? without_codes(text) : std::move(text);
    text = without_percents(text);
    std::string lines;
    for (std::size_t first = 0; first <= text.size();) {
        const std::size_t end = std::min(text.find('\n', first), text.size());
        lines += (first > 0 ? "\n" : "") +
                 dxf_decoded(std::string_view(text).substr(first, end - first));
        first = end + 1;
    }
    return lines;
}

float dxf_capital_height()
{
    object_t *letter = create_text("H");
    if (letter == nullptr)
        return 1;
    const float height = find_object_size(letter).y;
    object_free(letter);
    return height > 0 ? height : 1;
}

object_t *dxf_make_text(const dxf_record &record, float capital_height)
{
    const std::string text = dxf_plain_text(record);
    if (text.find_first_not_of(" \n") == std::string::npos)
        return nullptr;
    object_t *object = create_text(text.c_str());
    if (object == nullptr)
        return nullptr;
    const point3_t min = find_object_min(object), size = find_object_size(object);
    float across = 0, up = 0;
    anchor_of(record, &across, &up);
    // The first line stands on the base line; the box of several reaches down from there.
    const float top = std::max(min.y + size.y, capital_height);
    const float bottom = up == 0 ? 0 : min.y + up * (top - min.y);
    const float height = static_cast<float>(record.number(40, 1));
    move_and_scale(object, {-min.x - across * size.x, -bottom, 0}, height / capital_height);
    return object;
}
