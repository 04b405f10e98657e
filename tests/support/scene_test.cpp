#include "tests/support/scene_test.h"

#include "base/command_result.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/session_state.h"
#include "base/ui_port.h"
#include "edit/boolean_live.h"
#include "edit/check/model_check.h"
#include "edit/document/journal.h"
#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "edit/document/undo.h"
#include "edit/primitives.h"
#include "edit/uv/uv_editor.h"
#include "edit/uv/uv_keep.h"
#include "fileio/clipboard.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/normals.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/world.h"
#include "plugin/exporters.h"
#include "plugin/importers.h"
#include "program/command_table.h"
#include "view/uv_drag.h"
#include "view/uv_view.h"

#include <atomic>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

recording_t record;
std::atomic<void (*)()> woken = nullptr;

const char *answer_to(const char *script)
{
    for (const auto &[start, answer] : record.answers) {
        if (std::strncmp(script, start.c_str(), start.size()) == 0)
            return answer.c_str();
    }
    return "";
}

// A message is one word in quotes: other quotes in it would end the script with an error.
bool is_one_message(std::string_view script)
{
    if (!script.starts_with("display_message "))
        return true;
    int quotes = 0;
    for (std::size_t i = 0; i < script.size(); ++i) {
        if (script[i] == '\\')
            ++i;
        else
            quotes += script[i] == '"' ? 1 : 0;
    }
    return quotes == 2 && script.back() == '"';
}

ui_port_t recording_port()
{
    ui_port_t port = ui_port_silent();
    port.eval = [](const char *script, bool *ok) {
        EXPECT_TRUE(is_one_message(script)) << script;
        record.scripts.emplace_back(script);
        *ok = true;
        return answer_to(script);
    };
    port.set_var = [](const char *name, const char *value) { record.variables[name] = value; };
    port.get_var = [](const char *name) -> const char * {
        const auto found = record.variables.find(name);
        return found == record.variables.end() ? nullptr : found->second.c_str();
    };
    port.message_box = [](const char *, const char *text) { record.boxes.emplace_back(text); };
    port.console_write = [](const char *text) { record.console += text; };
    port.pump_events = [] {
        if (record.while_pumping != nullptr)
            record.while_pumping();
    };
    port.busy_cursor = [](int on) { record.variables["busy cursor"] = on != 0 ? "on" : "off"; };
    port.now_seconds = [] { return record.clock += record.clock_step; };
    port.wake = [](void (*what)()) { woken = what; };
    port.clipboard_offer = [](std::string_view (*text)()) {
        record.offered = text;
        return true;
    };
    port.clipboard_offer_picture = [](std::string_view png) {
        record.picture = png;
        return true;
    };
    port.start_program = [](const char *line, void (*ended)(const char *, int)) {
        record.programs.emplace_back(line);
        record.program_ended = ended;
        return true;
    };
    port.open_address = [](const char *url) {
        record.programs.emplace_back(url);
        return true;
    };
    port.clipboard_get = [] { return record.others_clipboard; };
    return port;
}

const std::filesystem::path &temporary_folder()
{
    struct folder_t {
        std::filesystem::path path;
        folder_t()
        {
            std::string name = (std::filesystem::temp_directory_path() / "vesk-XXXXXX").string();
            path = mkdtemp(name.data());
        }
        ~folder_t()
        {
            std::error_code ignored;
            std::filesystem::remove_all(path, ignored);
        }
    };
    static const folder_t folder;
    return folder.path;
}

} // namespace

bool run_woken()
{
    void (*const what)() = woken.exchange(nullptr);
    if (what != nullptr)
        what();
    return what != nullptr;
}

void cancel_at_look(int number)
{
    static int left;
    left = number;
    recording().clock_step = number > 0 ? 1 : 0;
    recording().while_pumping = nullptr;
    if (number > 0)
        recording().while_pumping = [] {
            if (--left == 0)
                run("cancel");
        };
}

recording_t &recording() { return record; }

void SceneTest::SetUp()
{
    ui_port_install(recording_port());
    prefs_set_defaults();
    set_debug_mode(false);
    session() = {};
    command_registry_reset_for_test();
    register_commands();
    if (vesk_get_world() == nullptr)
        new_world();
    create_palette();
    importers_reset_for_test();
    vesk_register_internal_file_importers();
    exporters_reset_for_test();
    vesk_register_internal_file_exporters();
    selection_reset_for_test();
    modes_reset_for_test();
    uv_drag_forget();
    uv_view_reset_for_test();
    uv_editor_reset_for_test();
    uv_keep_set(false);
    journal_reset_for_test();
    boolean_live_reset_for_test();
    clipboard_reset_for_test();
    record = {};
    woken = nullptr;
}

void SceneTest::TearDown()
{
    model_check_end();
    EXPECT_EQ(marks_take_unmarked(), 0) << record.console; // a command forgot to mark a change
    clear_all_undos();
    while (vesk_get_world()->children != nullptr)
        object_delete(reinterpret_cast<object_t *>(vesk_get_world()->children->data));
    selection_reset_for_test();
    journal_reset_for_test();
}

std::string run_words(const std::vector<std::string> &words)
{
    std::vector<const char *> pointers;
    for (const std::string &word : words)
        pointers.push_back(word.c_str());
    do_command(static_cast<int>(pointers.size()), pointers.data());
    const char *result = command_result_get();
    return result == nullptr ? "" : result;
}

std::string last_call(const std::string &procedure)
{
    const std::string start = procedure + " ";
    for (auto script = record.scripts.rbegin(); script != record.scripts.rend(); ++script) {
        if (!script->starts_with(start))
            continue;
        std::string text = script->substr(start.size());
        if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
            text = text.substr(1, text.size() - 2);
        return text;
    }
    return "";
}

std::string last_message() { return last_call("display_message"); }

std::string last_undo() { return undo_label() == nullptr ? "" : undo_label(); }

object_t *add_square(float half_size)
{
    object_t *square = new_object(OBJECT_POLY);
    surface_t *surface = new_surface();
    const float corners[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
    for (const auto &corner : corners) {
        surface_add_vertex(
            surface, object_add_new_vertex(square, corner[0] * half_size, corner[1] * half_size, 0),
            0, 0);
    }
    object_add_surface(square, surface);
    object_calc_normals_force(square);
    object_add_child(vesk_get_world(), square);
    return square;
}

void object_mark_tree(object_t *top, unsigned aspects)
{
    for_each_object(top, [aspects](object_t *object) { object_mark(object, aspects); });
}

object_t *add_cube(const char *name)
{
    const point3_t origin = {0, 0, 0};
    object_t *cube = create_regular_cube(&origin);
    object_set_name(cube, name);
    object_add_child(vesk_get_world(), cube);
    return cube;
}

std::string temporary_file(const std::string &name) { return (temporary_folder() / name).string(); }

void write_text(const std::string &file, const std::string &text)
{
    std::ofstream(file, std::ios::binary) << text;
}

std::string read_text(const std::string &file)
{
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}
