// Commands that keep work from getting lost: autosave, copies of earlier sessions, backups.

#include "base/command_result.h"
#include "base/command_row.h"
#include "fileio/backup.h"
#include "fileio/rescue.h"
#include "program/own_commands.h"

#include <string>

namespace {

// 1 when a copy is being written, 0 when the last one still is, or there is nothing to write.
void command_autosave(const char *file) { command_result_set(autosave_start(file) ? "1" : "0"); }

// 1 when the copy that was begun last is whole, 0 when it failed, nothing while it is written.
void command_autosave_result()
{
    const autosave_state state = autosave_last();
    if (state != autosave_state::writing)
        command_result_set(state == autosave_state::whole ? "1" : "0");
}

// For each copy: file, seconds since 1970, the file that was being edited, its kind, whether that file
// is newer.
void command_recovery_list()
{
    command_result_set("");
    for (const recovery_copy &copy : recovery_copies()) {
        const std::string words = list_element(copy.file) + " " + std::to_string(copy.written) +
                                  " " + list_element(copy.original) + " " + copy.kind +
                                  (copy.original_is_newer ? " 1" : " 0");
        command_result_append_element(std::string_view(words));
    }
}

void command_recovery_drop(const char *file)
{
    command_result_set(recovery_drop(file) ? "1" : "0");
}

} // namespace

std::span<const own_command_t> recovery_commands()
{
    using enum command_kind;
    static const own_command_t rows[] = {
        command_row("autosave", command_autosave, query, "<filename>",
                    "write a copy of the model beside the work, empty name: the session's copy"),
        command_row("autosave_result", command_autosave_result, query, nullptr,
                    "returns 1 when the copy begun last is whole, 0 when it failed, else nothing"),
        command_row("recovery_list", command_recovery_list, query, nullptr,
                    "returns file, time, original, kind, original is newer of copies left behind"),
        command_row("recovery_drop", command_recovery_drop, view, "<filename>",
                    "remove a copy that was left behind, returns 1 or 0"),
        command_row("set_backup_versions", set_backup_versions, view, "<int versions>",
                    "previous versions that file_save keeps"),
    };
    return rows;
}
