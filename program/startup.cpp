#include "program/startup.h"

#include "base/crash_guard.h"
#include "base/filename.h"
#include "base/home.h"
#include "base/linked_vars.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/prefs_file.h"
#include "base/redraw.h"
#include "base/ui_port.h"
#include "base/version.h"
#include "edit/document/journal.h"
#include "edit/document/modes.h"
#include "edit/document/undo.h"
#include "fileio/rescue.h"
#include "model/alloc_internal.h"
#include "model/object_internal.h"
#include "model/palette.h"
#include "model/record_pages.h"
#include "model/textures/textures.h"
#include "model/world.h"
#include "plugin/exporters.h"
#include "plugin/filters.h"
#include "plugin/importers.h"
#include "plugin/loader.h"
#include "program/command_table.h"
#include "view/camera_eye.h"
#include "view/camera_internal.h"
#include "view/tools.h"
#include "view/uv_drag.h"
#include "view/views_internal.h"

#include <climits>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <sys/auxv.h>
#include <system_error>
#include <unistd.h>

namespace {

struct start_t {
    std::string directory;
    char *file_name = nullptr; // the last command-line file that loaded
    char *version_text = nullptr;
    double version_number = 0;
    int unsaved_changes = 0;
    int escape_pressed = 0;
};
start_t start;

void read_start_directory()
{
    std::error_code failed;
    start.directory = std::filesystem::current_path(failed).string(); // "" when that fails
}

std::string executable_path()
{
    char buffer[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", buffer, sizeof buffer);
    if (length > 0)
        return {buffer, static_cast<size_t>(length)};
    // Without /proc (a bare chroot): the name that it was started by.
    const auto *started = reinterpret_cast<const char *>(getauxval(AT_EXECFN)); // NOLINT
    return started != nullptr && realpath(started, buffer) != nullptr ? buffer : std::string();
}

void find_home()
{
    const char *named = getenv("VESK_HOME");
    const std::string home = named != nullptr && *named != '\0'
                                 ? absolute_from_start(named)
                                 : directory_of_executable(executable_path());
    vesk_set_homedir(home.c_str());
}

// Options that end in a script without a window, to which all further words belong: a script that
// is named, or one of the home directory.
struct batch_option {
    std::string_view name;
    const char *script;
};
constexpr batch_option batch_options[] = {{"-batch", nullptr},
                                          {"-thumbnail", "tcl/thumbnail.tcl"},
                                          {"-convert", "tcl/convert.tcl"},
                                          {"-pipe", "tcl/pipe.tcl"}};

// The option at `i`; -batch is one only with a script behind it.
const batch_option *batch_option_at(int i, int argc, char **argv)
{
    for (const batch_option &option : batch_options)
        if (option.name == argv[i] && (option.script != nullptr || i + 1 < argc))
            return &option;
    return nullptr;
}

void print_banner()
{
    console_printf("%s - interactive polygon modeller\n", vesk_get_version_string());
}

void print_help(const command_line_t &line)
{
    print_banner();
    console_printf("Build %s %s\n\n", __DATE__, __TIME__);
    console_printf("usage: %s [-debug] [-dynamic] [file ...] \n\n", line.program.c_str());
    console_printf(
        "also: -noplugins            start without the plug-ins\n"
        "      -script FILE          evaluate a script once the window is there\n"
        "      -batch FILE [args]    run a script without a window and exit\n"
        "      -thumbnail SIZE OUT.png FILE ...\n"
        "                            write a picture of the files without a window\n"
        "      -convert IN OUT       convert a model without a window; -convert -to SUFFIX\n"
        "                            FILE ... converts several (docs/batch.md)\n"
        "      -pipe [FILE ...]      commands from standard input, answers in JSON "
        "(docs/batch.md)\n"
        "      -version              print the version and exit\n");
}

void link_program_variables()
{
    start.version_number = vesk_get_version_number();
    start.version_text = ui_port().alloc_text(vesk_get_version_string());
    *views_viewsetting() = ui_port().alloc_text("all");
    using enum link_kind;
    // clang-format off
    static const linked_var_t rows[] = {
        {"vesk_version_string", text,    true,  &start.version_text},
        {"vesk_version_number", real,    true,  &start.version_number},
        {"VESK_HOME",           text,    false, vesk_homedir_address()},
        {"viewsetting",         text,    false, views_viewsetting()},
        {"undo_count",          integer, true,  undo_count_address()},
        {"objects_are_hidden",  boolean, true,  &objects_marks().hidden},
        {"objects_are_locked",  boolean, true,  &objects_marks().locked},
        {"person_walk_vehicle", boolean, false, camera_walk_indicator()},
        {"unsaved_changes",     boolean, false, &start.unsaved_changes},
        {"escape_pressed",      integer, false, &start.escape_pressed},
    };
    // clang-format on
    linked_vars_install(rows);
}

void import_files(const std::vector<std::string> &files)
{
    for (int view = 0; view < num_views && !files.empty(); ++view)
        redraw_view(view); // a large model takes a while: the grids are there meanwhile
    for (const std::string &file : files) {
        const std::string name = absolute_from_start(file);
        console_printf("importing %s\n", name.c_str());
        if (vesk_world_import_file(name.c_str()) != 0)
            start.file_name = strdup(name.c_str()); // an earlier copy may still be in use
    }
    journal_step("load"); // before the scripts hear of it and change the selection
    if (start.file_name != nullptr) {
        std::string shown = start.file_name;
        vesk_unbackslash_string(shown.data());
        tcl_command("update_savefile_name %s", script_word(shown).c_str());
    }
}

bool start_scene(const command_line_t &line, const startup_toolkit_t &toolkit)
{
    register_commands();
    new_world();
    if (!toolkit.init_tcl(line)) {
        ui_port().message_box("Error starting VESK", "Failed to start TCL/TK - exiting.");
        console_printf("failed to start TCL/TK - exiting\n");
        return false;
    }
    if (line.batch)
        views_take_geometry_from_prefs();
    else
        toolkit.create_windows();
    init_view3d();
    camera_look_from_corner();
    create_palette();
    set_new_select_mode(0);
    set_new_draw_mode(0);
    tools_install();
    uv_drag_install();
    vesk_register_builtin_texture_loaders();
    vesk_register_internal_surface_filters();
    vesk_register_internal_file_importers();
    vesk_register_internal_file_exporters();
    if (line.plugins)
        load_all_plugins();
    journal_restart();
    import_files(line.files);
    display_status();
    tcl_update();
    return true;
}

int run_batch_script(const command_line_t &line, const startup_toolkit_t &toolkit)
{
    const std::string script =
        line.own_script
            ? vesk_filename_concat_path_file(vesk_get_vesk_homedir(), line.script.c_str())
            : absolute_from_start(line.script);
    // The script works where its user stands; start-up needed the home directory.
    if (!start.directory.empty() && chdir(start.directory.c_str()) != 0)
        console_printf("can't change to %s\n", start.directory.c_str());
    return toolkit.run_script(script.c_str()) ? 0 : 1;
}

} // namespace

command_line_t parse_command_line(int argc, char **argv)
{
    command_line_t line;
    line.program = argc > 0 ? argv[0] : "vesk";
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        const bool more = i + 1 < argc;
        if (word == "-debug") {
            line.debug = true;
            set_debug_mode(true);
            console_printf("DEBUG mode enabled\n");
        } else if (word == "-dynamic") {
            console_printf("DYNAMIC TCL enabled\n");
        } else if (word == "-help") {
            line.help = true;
            return line;
        } else if (word == "-version") {
            line.version = true;
            return line;
        } else if (word == "-noplugins") {
            line.plugins = false;
        } else if (word == "-script" && more) {
            line.script = argv[++i];
        } else if (const batch_option *option = batch_option_at(i, argc, argv)) {
            line.batch = true;
            line.own_script = option->script != nullptr;
            line.script = line.own_script ? option->script : argv[++i];
            line.script_arguments.assign(argv + i + 1, argv + argc);
            return line;
        } else if (word == "-batch" || word == "-script") {
            console_printf("%s needs a file\n", argv[i]);
            line.incomplete = true;
        } else if (word.starts_with("-")) {
            console_printf("unknown argument '%s'\n", argv[i]);
        } else {
            line.files.emplace_back(word);
        }
    }
    return line;
}

const std::string &start_directory() { return start.directory; }

std::string absolute_from_start(const std::string &name)
{
    if (filename_is_absolute(name.c_str()))
        return name;
    return vesk_filename_concat_path_file(start.directory.c_str(), name.c_str());
}

std::string directory_of_executable(const std::string &path)
{
    const size_t cut = path.rfind('/');
    return cut == std::string::npos ? path : path.substr(0, cut);
}

void init_view3d(void) { person_reset(); }

int vesk_run(int argc, char **argv, const startup_toolkit_t &toolkit)
{
    bool batch = false;
    for (int i = 1; i < argc; ++i)
        batch = batch || batch_option_at(i, argc, argv) != nullptr;
    toolkit.install_port(batch);
    crash_guard::install();
    rescue_keep_written_in_place();
    read_start_directory();

    const command_line_t line = parse_command_line(argc, argv);
    if (line.help || line.incomplete) {
        print_help(line);
        return line.help ? 0 : 1;
    }
    if (line.version) {
        console_printf("%s\n", vesk_get_version_string());
        return 0;
    }
    alloc_use_big_pages();
    record_pages_reserve();
    find_home();
    print_banner();
    console_printf("VESK_HOME is %s\n", vesk_get_vesk_homedir());
    init_prefs();
    // Modes that would surprise at the next start.
    prefs.soft_selection = prefs.symmetry_axis = 0;
    alloc_set_mode(debug_mode(), prefs.memory_checks != 0); // before the first block is taken
    if (prefs.windows_show_console == 0)
        console_release();
    link_program_variables();
    if (!start_scene(line, toolkit))
        return 1;
    if (line.batch)
        return run_batch_script(line, toolkit);
    rescue_start();
    tcl_set_int("start_is_over", 1); // questions to the user may be asked now
    if (prefs.show_startup_tips != 0)
        tcl_command("show_tip");
    if (!line.script.empty())
        toolkit.run_script(absolute_from_start(line.script).c_str());
    toolkit.loop();
    return 0;
}
