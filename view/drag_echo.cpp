#include "view/drag_echo.h"

#include "base/command_registry.h"
#include "base/echo.h"
#include "base/messages.h"
#include "edit/document/element_text.h"
#include "edit/document/undo_internal.h"
#include "edit/symmetry_scope.h"

namespace {

// Longer lines cannot be read, and hold the console up.
constexpr std::size_t longest_line = 20000;

using words_t = std::vector<std::string>;

words_t operator+(words_t words, const words_t &more)
{
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

words_t words_of_rotation(const drag_change_t &change, bool own)
{
    if (own)
        return {"rotate_each_with_undo", std::to_string(change.view), echo_number(change.degrees)};
    point3_t angles = {0, 0, 0};
    if (change.view == VIEW_ZY)
        angles.x = change.degrees;
    else if (change.view == VIEW_XZ)
        angles.y = -change.degrees;
    else
        angles.z = -change.degrees;
    return words_t{"rotate_about_with_undo"} + echo_point(angles) + echo_point(change.centre);
}

} // namespace

std::vector<std::string> words_of_change(const drag_change_t &change, bool own)
{
    switch (change.kind) {
    case drag_change_t::MOVE:
        return words_t{"move_with_undo"} + echo_point(change.offset);
    case drag_change_t::RESIZE:
        return words_t{"resize_with_undo"} + echo_point(change.to_min) + echo_point(change.to_max);
    case drag_change_t::PLACE:
        return {}; // the tool knows where it stands
    default:
        return words_of_rotation(change, own);
    }
}

std::vector<std::string> words_of_extrusion(const point3_t &offset, extrude_sides sides)
{
    return words_t{"extrude_select", sides == extrude_sides::automatic ? "1" : "0"} +
           echo_point(offset);
}

void echo_selection(bool on, bool replace, const listitem *elements)
{
    echo_elements({"select_elements",
                   replace ? "set"
                   : on    ? "add"
                           : "remove",
                   element_text(elements)});
}

void echo_elements(const std::vector<std::string> &words)
{
    if (words.back().size() > longest_line)
        echo_note(words.front() + " ...: more than can be listed");
    else
        echo_command(words);
}

void keep_step(step_t &step, const std::vector<std::string> &words, const char *label)
{
    if (!words.empty())
        echo_command(words);
    step.keep(label, words);
}

void run_in_drag(const std::vector<std::string> &words)
{
    std::vector<const char *> texts;
    for (const std::string &word : words)
        texts.push_back(word.c_str());
    vesk_command_t *command = find_command(texts.front());
    if (command == nullptr)
        return;
    symmetry_scope both_sides(texts.front());
    execute_command(static_cast<int>(texts.size()), texts.data(), command);
    both_sides.end();
}

void run_as_step(const std::vector<std::string> &words, const char *label)
{
    step_t step(step_t::of::drag);
    const unsigned serial = undo_last_serial();
    run_in_drag(words);
    if (undo_last_serial() != serial)
        keep_step(step, words, label);
}
