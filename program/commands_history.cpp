// Commands of the history: redo, its list, repeating, taking back.

#include "base/command_result.h"
#include "base/command_row.h"
#include "base/messages.h"
#include "base/redraw.h"
#include "edit/document/journal.h"
#include "edit/document/undo_internal.h"
#include "program/own_commands.h"

#include <cstdint>
#include <string>
#include <vector>

namespace {

void show_jump()
{
    redraw_all();
    display_status();
}

void command_redo()
{
    if (!journal_redo()) {
        display_message("nothing to redo.");
        return;
    }
    show_jump();
    display_message("redo done");
}

void command_step_back()
{
    if (!journal_back()) {
        display_message("nothing to undo.");
        return;
    }
    show_jump();
    display_message("undo done");
}

void command_undo_name()
{
    const char *label = journal_back_label();
    command_result_set(label != nullptr ? label : "");
}

// For each state: its place, its label, 1 for the present one, 1 for an operation of a plug-in.
void command_history_list()
{
    command_result_set("");
    int place = 0;
    for (const journal_item &item : journal_items()) {
        const std::string words = std::to_string(place++) + " " + list_element(item.label) +
                                  (item.current ? " 1" : " 0") + (item.foreign ? " 1" : " 0");
        command_result_append_element(std::string_view(words));
    }
}

void command_history_goto(int place)
{
    if (!journal_goto(place)) {
        display_message("no such place in the history: %d", place);
        return;
    }
    show_jump();
    display_message("history: %s", journal_items()[static_cast<std::size_t>(place)].label);
}

void command_history_limit(int megabytes)
{
    if (megabytes > 0)
        journal_set_limit(static_cast<std::size_t>(megabytes) << 20);
}

void command_repeat_last()
{
    // A copy: the words are noted anew while they run.
    std::vector<std::string> words;
    words = journal_repeat_words();
    if (words.empty()) {
        display_message("nothing to repeat.");
        return;
    }
    std::vector<const char *> pointers;
    pointers.reserve(words.size());
    for (const std::string &word : words)
        pointers.push_back(word.c_str());
    do_command(static_cast<int>(pointers.size()), pointers.data());
}

void command_can_repeat() { command_result_set(journal_repeat_words().empty() ? "0" : "1"); }

// 1 when the model is as it was before the command that faulted.
void command_take_back()
{
    const bool done = journal_take_back();
    if (done)
        show_jump();
    command_result_set(done ? "1" : "0");
}

// 1 after a command that faulted and left something changed.
void command_can_take_back() { command_result_set(journal_can_take_back() ? "1" : "0"); }

void command_change_count() { command_result_set(std::to_string(journal_change_number()).c_str()); }

} // namespace

std::span<const own_command_t> history_commands()
{
    using enum command_kind;
    static const own_command_t rows[] = {
        command_row("step_back", command_step_back, once, nullptr,
                    "undo the newest step of the history"),
        command_row("undo_name", command_undo_name, query, nullptr,
                    "returns what step_back takes back, nothing when there is no way back"),
        command_row("redo", command_redo, once, nullptr, "redo what was undone"),
        command_row("history_list", command_history_list, query, nullptr,
                    "returns place, label, present, plug-in of each state"),
        command_row("history_goto", command_history_goto, once, "<int place>",
                    "go to a state of the history"),
        command_row("history_limit", command_history_limit, view, "<int megabytes>",
                    "memory of the history"),
        command_row("repeat_last", command_repeat_last, once, nullptr, "repeat the last command"),
        command_row("can_repeat", command_can_repeat, query, nullptr,
                    "returns 1 while repeat_last has something to do"),
        command_row("take_back", command_take_back, once, nullptr,
                    "take back the command that faulted, returns 1 or 0"),
        command_row("can_take_back", command_can_take_back, query, nullptr,
                    "returns 1 while a command that faulted can be taken back"),
        command_row("change_count", command_change_count, query, nullptr,
                    "returns a number that names the content of the model"),
    };
    return rows;
}
