// Commands of the model check.

#include "base/command_result.h"
#include "base/command_row.h"
#include "base/numbers.h"
#include "edit/check/model_check_fix.h"
#include "model/identity.h"
#include "model/world.h"
#include "program/own_commands.h"

#include <string>

namespace {

// One line each: kind, object, element, text.
void command_check_model()
{
    std::string lines;
    for (const found_problem &problem : model_find_problems(vesk_get_world()).problems) {
        if (!lines.empty())
            lines += "\n";
        lines += std::string(model_problem_name(problem.kind)) + " " +
                 std::to_string(object_identity(problem.object)) + " " + problem_element(problem) +
                 " " + problem_text(problem);
    }
    command_result_set(lines.c_str());
}

// Kind and number of each kind, those that check_model leaves out too.
void command_check_counts()
{
    command_result_set("");
    const model_findings found = model_find_problems(vesk_get_world());
    for (int i = 0; i < num_model_problems; ++i) {
        const auto kind = static_cast<model_problem>(i);
        command_result_append_element(std::string_view(model_problem_name(kind)));
        command_result_append_element(found.total(kind));
    }
}

// The same of the notes among them.
void command_check_notes()
{
    command_result_set("");
    const model_findings found = model_find_problems(vesk_get_world());
    for (int i = 0; i < num_model_problems; ++i) {
        command_result_append_element(
            std::string_view(model_problem_name(static_cast<model_problem>(i))));
        command_result_append_element(found.notes[static_cast<std::size_t>(i)]);
    }
}

void command_check_begin() { command_result_set(model_check_begin(vesk_get_world()) ? "1" : "0"); }

void check_select(int, const char *const *words)
{
    command_check_select(words[0], int_of(words[1]), words[2]);
}

void check_fix(int, const char *const *words)
{
    command_check_fix(words[0], int_of(words[1]), words[2]);
}

} // namespace

std::span<const own_command_t> check_commands()
{
    using enum command_kind;
    static const own_command_t rows[] = {
        command_row("check_model", command_check_model, query, nullptr,
                    "returns lines of kind, object id, element and text: problems of the model"),
        command_row("check_counts", command_check_counts, query, nullptr,
                    "returns each kind of problem and how many there are"),
        command_row("check_notes", command_check_notes, query, nullptr,
                    "returns each kind of problem and how many of it seem to be meant"),
        command_row(
            "check_begin", command_check_begin, query, nullptr,
            "has the model checked by a worker; returns 1 when check_model needs no waiting, "
            "else model_check_ended is called at the end"),
        command_row("check_follow", model_check_follow, query, nullptr,
                    "gives up the check of what has changed since check_begin"),
        command_row("check_fix_all", command_check_fix_all, edit, "<string kind>",
                    "fix all problems of a kind"),
        command_row("check_select", check_select, select, 3, 3,
                    "<string kind> <int object_id> <string element>",
                    "select what a problem names"),
        command_row("check_fix", check_fix, edit, 3, 3,
                    "<string kind> <int object_id> <string element>", "fix a problem"),
    };
    return rows;
}
