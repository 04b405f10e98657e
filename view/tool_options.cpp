#include "view/tool_options.h"

#include "base/command_result.h"
#include "base/messages.h"
#include "base/numbers.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace {

struct option_t {
    const char *name, *start;
    const char *words; // that it may be; null for a number
    float least = 0, most = 0;
    std::string value = start;
};

std::span<option_t> all_options()
{
    // clang-format off
    static option_t options[] = {
        {"slice_keep",     "both", "both front back"},
        {"slice_cap",      "0",    "0 1"},
        {"bevel_segments", "1",    nullptr, 1, 100},
        {"bevel_profile",  "0.5",  nullptr, 0, 1},
        {"inset_of",       "each", "each region"},
        {"shell_rim",      "1",    "0 1"},
    };
    // clang-format on
    return options;
}

option_t *option_named(const char *name)
{
    for (option_t &option : all_options()) {
        if (std::strcmp(option.name, name) == 0)
            return &option;
    }
    return nullptr;
}

bool is_among(const char *value, const char *words)
{
    const std::string all = std::string(" ") + words + " ";
    return *value != 0 && std::strchr(value, ' ') == nullptr &&
           all.find(std::string(" ") + value + " ") != std::string::npos;
}

bool fits(const option_t &option, const char *value)
{
    if (option.words != nullptr)
        return is_among(value, option.words);
    const float number = finite_float_of(value);
    return *value != 0 && number >= option.least && number <= option.most;
}

} // namespace

const std::string &tool_option(const char *name)
{
    static const std::string none;
    const option_t *option = option_named(name);
    return option == nullptr ? none : option->value;
}

void tool_option_step(const char *name, int by)
{
    option_t &option = *option_named(name);
    option.value =
        std::to_string(std::clamp(int_of(option.value.c_str()) + by, static_cast<int>(option.least),
                                  static_cast<int>(option.most)));
    tcl_command("set_tool_option_ui %s %s", name, option.value.c_str());
}

void command_set_tool_option(const char *name, const char *value)
{
    option_t *option = option_named(name);
    if (option == nullptr)
        display_message("no tool has an option '%s'", name);
    else if (!fits(*option, value))
        display_message("the option %s cannot be '%s'", name, value);
    else
        option->value = value;
}

void command_get_tool_option(const char *name) { command_result_set(tool_option(name).c_str()); }

void tool_options_reset_for_test()
{
    for (option_t &option : all_options())
        option.value = option.start;
}
