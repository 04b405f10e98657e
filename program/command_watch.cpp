#include "program/command_watch.h"

#include "base/command_registry.h"
#include "base/crash_guard.h"
#include "base/filename.h"
#include "base/messages.h"
#include "base/redraw.h"
#include "base/session_state.h"
#include "edit/document/journal.h"
#include "edit/document/step.h"
#include "edit/document/undo_internal.h"
#include "edit/symmetry_scope.h"
#include "fileio/rescue.h"
#include "model/change_marks.h"
#include "model/freed.h"
#include "model/world.h"
#include "model/world_check.h"
#include "plugin/loader.h"
#include "view/tools.h"
#include "view/uv_drag.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

struct watch_t {
    unsigned serial = 0; // of the undo records, when the running command began
    std::optional<step_t> step;
    std::optional<symmetry_scope> both_sides;
    std::string label;              // of the step, when the command opens no record
    std::vector<std::string> words; // that repeat it
    state_ptr before;               // the model when it began
};
watch_t &running()
{
    static watch_t watch;
    return watch;
}

// "load cube.vesk" for a load, nothing for commands that are not meant to change anything.
std::string label_of(const vesk_command_t *command, int count, const char *const *words)
{
    const std::string_view name = command->name;
    if (count == 2 && (name == "load_file" || name == "load_vesk" || name == "file_load"))
        return std::string("load ") + vesk_filename_get_file(words[1]);
    if (command_kind_of(command) <= command_kind::view)
        return "change";
    std::string words_of_name = command->name;
    std::replace(words_of_name.begin(), words_of_name.end(), '_', ' ');
    return words_of_name;
}

void before_command(const vesk_command_t *command, int count, const char *const *words)
{
    if (!leaves_drag(command_kind_of(command))) {
        tools_interrupt();
        uv_drag_cancel();
    }
    const bool outermost = session().command_depth == 0;
    if (outermost) {
        running().step.emplace(changes_model(command_kind_of(command)) ? step_t::of::command
                                                                       : step_t::of::question);
        running().serial = undo_last_serial();
        running().label = label_of(command, count, words);
        running().words.clear();
        running().before = journal_state();
        running().both_sides.reset();
    }
    if (outermost || std::string_view(session().command) == "repeat_last")
        running().both_sides.emplace(command->name);
    if (command_kind_of(command) == command_kind::edit &&
        (outermost || std::string_view(session().command) == "repeat_last"))
        running().words.assign(words, words + count);
}

bool has_numbers(const point3_t &p)
{
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

// Whether all that `now` does not share with `before` has coordinates that are numbers.
bool new_parts_have_numbers(const model_state &now, const model_state &before)
{
    for (int i = 0; i < now.num_objects; ++i) {
        const auto block = static_cast<std::size_t>(i / model_state::block_size);
        if (i % model_state::block_size == 0 && block < before.blocks.size() &&
            now.blocks[block] == before.blocks[block]) {
            i += model_state::block_size - 1;
            continue;
        }
        const object_image &image = *now.entry(i).image;
        if (i < before.num_objects && before.entry(i).image.get() == &image)
            continue;
        const std::vector<point3_t> &positions = *image.geometry->positions;
        if (!has_numbers(image.centre) ||
            !std::all_of(positions.begin(), positions.end(), has_numbers))
            return false;
    }
    return true;
}

// A result with coordinates beyond a float's range is taken back: no operation survives it, and no
// undo brings the numbers back.
void refuse_infinite_result(const char *label)
{
    const state_ptr before = std::exchange(running().before, nullptr);
    const state_ptr now = journal_state();
    if (!before || !now || before == now || new_parts_have_numbers(*now, *before) ||
        !std::isfinite(model_state_reach(*before)))
        return;
    const std::vector<journal_item> items = journal_items();
    const auto present = std::find_if(items.begin(), items.end(),
                                      [](const journal_item &item) { return item.current; });
    if (present == items.begin() || !journal_goto(static_cast<int>(present - items.begin()) - 1))
        return;
    redraw_all();
    display_status();
    display_message("%s - the result is beyond what coordinates can hold: nothing was changed",
                    label);
}

void after_command(const vesk_command_t *command, bool whole)
{
    if (command_is_foreign(command) && whole)
        world_cut_rings(vesk_get_world(), command->name);
    if (session().command_depth == 0 && whole)
        running().both_sides->end();
    if (session().command_depth == 0)
        running().both_sides.reset();
    if (command_is_foreign(command) || !whole) {
        mark_all_suspect(); // those of a fault, too
        freed_filter_foreign();
    }
#ifdef VESK_CHECK_MARKS
    else
        marks_check(command->name);
#endif
    if (session().command_depth > 0)
        return;
    if (whole) {
        running().step->keep(running().label.c_str(), running().words);
        if (!command_is_foreign(command) && changes_model(command_kind_of(command)))
            refuse_infinite_result(running().label.c_str());
    } else {
        running().step->keep_faulted(running().label.c_str());
    }
    running().serial = undo_last_serial();
    rescue_tell_failure();
}

void after_fault(const fault_t &fault)
{
    tools_forget();
    uv_drag_forget();
    journal_reset_after_fault();
    world_check(vesk_get_world());
    undo_drop_unfilled(running().serial);
    rescue_write();
    if (fault.foreign != nullptr)
        plugin_tell_fault(fault.foreign);
}

} // namespace

void command_watch_install()
{
    command_registry_set_hooks({.before = before_command, .after = after_command});
    crash_guard::set_after_fault(after_fault);
}
