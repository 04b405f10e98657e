#include "program/command_watch.h"

#include "base/command_registry.h"
#include "base/crash_guard.h"
#include "base/filename.h"
#include "base/session_state.h"
#include "edit/document/journal.h"
#include "edit/document/step.h"
#include "edit/document/undo_internal.h"
#include "fileio/rescue.h"
#include "model/change_marks.h"
#include "model/freed.h"
#include "model/world.h"
#include "model/world_check.h"
#include "plugin/loader.h"
#include "view/tools.h"
#include "view/uv_drag.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct watch_t {
    unsigned serial = 0; // of the undo records, when the running command began
    std::optional<step_t> step;
    std::string label;              // of the step, when the command opens no record
    std::vector<std::string> words; // that repeat it
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
        running().step.emplace(step_t::of::command);
        running().serial = undo_last_serial();
        running().label = label_of(command, count, words);
        running().words.clear();
    }
    if (command_kind_of(command) == command_kind::edit &&
        (outermost || std::string_view(session().command) == "repeat_last"))
        running().words.assign(words, words + count);
}

void after_command(const vesk_command_t *command, bool whole)
{
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
