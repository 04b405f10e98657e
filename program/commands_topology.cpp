#include "base/command_row.h"
#include "base/numbers.h"
#include "edit/catmull_clark.h"
#include "edit/inset.h"
#include "program/own_commands.h"

namespace {

void inset_words(int /*count*/, const char *const *words)
{
    command_inset(finite_float_of(words[0]), finite_float_of(words[1]), words[2]);
}

} // namespace

std::span<const own_command_t> topology_commands()
{
    using enum command_kind;
    static const own_command_t rows[] = {
        command_row("inset", inset_words, edit, 3, 3,
                    "<float width> <float depth> <string each or region>",
                    "a smaller polygon inside each selected one, or each region"),
        command_row("catmull_clark", command_catmull_clark, edit, "<int steps>",
                    "smooth subdivision into quads"),
    };
    return rows;
}
