#include "view/number_field.h"

#include "base/messages.h"
#include "base/numbers.h"

#include <cstring>
#include <string>

namespace {

constexpr std::size_t most_characters = 12;

struct field_t {
    std::vector<number_part_t> parts; // none: closed
    std::vector<std::string> texts;
    std::size_t at = 0;
};
field_t field;

// The character that a key types into a number; 0 for other keys.
char character_of(const char *key)
{
    static constexpr struct {
        const char *key;
        char character;
    } names[] = {{"period", '.'},       {"comma", '.'}, {"KP_Decimal", '.'},
                 {"KP_Separator", '.'}, {"minus", '-'}, {"KP_Subtract", '-'}};
    if (std::strlen(key) == 1 && *key >= '0' && *key <= '9')
        return *key;
    if (std::strncmp(key, "KP_", 3) == 0 && std::strlen(key) == 4 && key[3] >= '0' && key[3] <= '9')
        return key[3];
    for (const auto &name : names) {
        if (std::strcmp(key, name.key) == 0)
            return name.character;
    }
    return 0;
}

void type(char character)
{
    std::string &text = field.texts[field.at];
    if (character == '-') { // toggles the sign, wherever it is typed
        text = text.starts_with('-') ? text.substr(1) : "-" + text;
        return;
    }
    const bool second_point = character == '.' && text.find('.') != std::string::npos;
    if (!second_point && text.size() < most_characters)
        text += character;
}

bool is_one_of(const char *key, const char *a, const char *b)
{
    return std::strcmp(key, a) == 0 || std::strcmp(key, b) == 0;
}

void open(const std::vector<number_part_t> &parts, int first)
{
    field = {parts, std::vector<std::string>(parts.size()), static_cast<std::size_t>(first)};
}

} // namespace

number_key number_field_key(const char *key, const std::vector<number_part_t> &parts, int first)
{
    if (const char character = character_of(key)) {
        if (field.parts.empty())
            open(parts, first);
        type(character);
        return number_key::changed;
    }
    const bool forwards = std::strcmp(key, "Tab") == 0;
    const bool backwards = is_one_of(key, "ISO_Left_Tab", "BackTab");
    if (field.parts.empty() && (forwards || backwards)) // from the first component to its neighbour
        open(parts, first);
    if (field.parts.empty())
        return number_key::unused;
    const std::size_t count = field.parts.size();
    if (std::strcmp(key, "BackSpace") == 0) {
        std::string &text = field.texts[field.at];
        if (!text.empty())
            text.pop_back();
    } else if (forwards) {
        field.at = (field.at + 1) % count;
    } else if (backwards) {
        field.at = (field.at + count - 1) % count;
    } else if (is_one_of(key, "Return", "KP_Enter")) {
        return number_key::accepted;
    } else {
        return number_key::unused;
    }
    return number_key::changed;
}

bool number_field_is_open() { return !field.parts.empty(); }

void number_field_choose(int part)
{
    if (static_cast<std::size_t>(part) < field.parts.size())
        field.at = static_cast<std::size_t>(part);
}

bool number_field_value(int part, float *value)
{
    if (static_cast<std::size_t>(part) >= field.parts.size())
        return false;
    const std::string &text = field.texts[static_cast<std::size_t>(part)];
    if (text.find_first_of("0123456789") == std::string::npos)
        return false;
    *value = static_cast<float>(double_of(text.c_str()));
    return true;
}

void number_field_show(int view, int x, int y)
{
    if (field.parts.empty())
        return;
    const number_part_t &part = field.parts[field.at];
    show_number_field(view, x, y, part.label, part.axis, field.texts[field.at].c_str());
}

void number_field_close()
{
    if (field.parts.empty())
        return;
    field = {};
    hide_number_field();
}
