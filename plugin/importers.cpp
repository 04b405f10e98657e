#include "plugin/importers.h"

#include "base/crash_guard.h"
#include "base/current_file.h"
#include "base/file_report.h"
#include "base/filename.h"
#include "base/foreign.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/progress.h"
#include "base/redraw.h"
#include "base/ui_port.h"
#include "edit/document/selection.h"
#include "fileio/export_3ds.h"
#include "fileio/finite_numbers.h"
#include "fileio/import_3ds.h"
#include "fileio/import_assimp.h"
#include "fileio/import_bsp.h"
#include "fileio/import_dxf.h"
#include "fileio/import_lightwave.h"
#include "fileio/import_mesh.h"
#include "fileio/import_text.h"
#include "fileio/import_vrml.h"
#include "fileio/vesk_reader.h"
#include "model/change_marks_internal.h"
#include "model/deferred_records.h"
#include "model/freed.h"
#include "model/normals.h"
#include "model/object_tree.h"
#include "model/palette_internal.h"
#include "model/textures/textures.h"
#include "model/world.h"
#include "model/world_check.h"
#include "plugin/dialogs.h"
#include "plugin/format_table.h"
#include "plugin/menus.h"
#include "view/fit.h"
#include "view/tool_transform.h"

#include <cstring>
#include <fstream>
#include <set>
#include <string>
#include <string_view>
#include <strings.h>
#include <sys/stat.h>
#include <vector>

namespace {

listitem *importers = nullptr;

// Counts for the import report.
void count_import(object_t *top, double seconds)
{
    file_report &report = last_file_report();
    std::set<int> materials;
    for_each_object(top, [&](const object_t *object) {
        report.objects += object->type == OBJECT_WORLD ? 0 : 1;
        report.lights += object->type == OBJECT_LIGHT ? 1 : 0;
        report.vertices += object->num_vertices;
        report.surfaces += object->num_surfaces;
        int last = -1;
        const auto count = [&](int material) {
            if (material != last)
                materials.insert(last = material);
        };
        if (const flat_ptr flat = untouched_flat(object)) {
            for (const flat_surface &surface : *flat->surfaces)
                count(surface.material);
            return;
        }
        for (const surface_t *surface : each<surface_t>(object->surfaces))
            count(surface->material);
    });
    report.materials = static_cast<int>(materials.size());
    report.seconds = seconds;
    report.read = true;
}

// The name that a file really has. The interpreter takes the bytes of a name that is no UTF-8 for
// Latin-1, and hands it on as UTF-8.
std::string name_on_disk(const char *filename)
{
    struct stat about = {};
    if (stat(filename, &about) == 0)
        return filename;
    std::string bytes;
    for (const char *p = filename; *p != '\0'; ++p) {
        const auto c = static_cast<unsigned char>(*p);
        if (c < 0x80) {
            bytes += *p;
        } else if ((c == 0xC2 || c == 0xC3) && p[1] != '\0') {
            bytes += static_cast<char>((c & 3) << 6 | (static_cast<unsigned char>(*++p) & 0x3F));
        } else {
            return filename;
        }
    }
    return stat(bytes.c_str(), &about) == 0 ? bytes : filename;
}

// An importer may be a plug-in's: a fault in it costs a message, not the session.
object_t *load_guarded(const vesk_importer_t *importer, const char *filename)
{
    object_t *object = nullptr;
    fault_t fault;
    const texture_load_scope one_box; // about textures
    const palette_table by_hash;      // of the materials
    const bool whole = guarded_with_recovery(
        [&] {
            freed_batch at_once; // of the objects that an importer drops on its way
            const foreign_scope scope(code_of_function(importer->load));
            object = importer->load(filename);
        },
        &fault);
    vesk_progress_end();
    if (whole && is_foreign_code(code_of_function(importer->load)))
        world_cut_rings(vesk_get_world(), importer->description);
    if (whole && object != nullptr && !state_is_alive(object)) {
        windows_message_dialog("The importer for %s files returned no object for %s",
                               importer->suffix, filename);
        return nullptr;
    }
    if (whole && object != nullptr && is_foreign_code(code_of_function(importer->load)))
        world_cut_rings(object, importer->description);
    if (whole)
        return object;
    windows_message_dialog("The importer for %s files failed on %s\n%s", importer->suffix, filename,
                           fault.kind == fault_t::CODE ? vesk_exception_get_message(fault.code)
                                                       : fault.what.c_str());
    return nullptr;
}

// What no reader can make a model of, whatever the suffix says; null for all else.
const char *reason_of_refusal(const char *filename)
{
    struct stat about = {};
    if (stat(filename, &about) != 0)
        return nullptr; // the reader says why
    if (S_ISDIR(about.st_mode))
        return "it is a folder";
    if (!S_ISREG(about.st_mode))
        return "it is a pipe or a device, no file";
    char head[8] = {};
    std::ifstream(filename, std::ios::binary).read(head, sizeof head);
    const std::string_view start(head, sizeof head);
    const bool low_first = start.starts_with("\xFF\xFE") && head[3] == 0 && head[5] == 0;
    const bool high_first = start.starts_with("\xFE\xFF") && head[2] == 0 && head[4] == 0;
    return low_first || high_first ? "it is a text in UTF-16: save it as UTF-8" : nullptr;
}

// Of a world that was read; the container goes.
void adopt_children(object_t *container)
{
    const owned_list children(list_clone(container->children)); // the list changes on the way
    for (object_t *child : each<object_t>(children.get()))
        object_reparent(child, vesk_get_world());
    select_objectlist(children.get()); // at once: each selection measures all that is selected
    // The container itself stays as it is; nothing refers to it any more.
    object_free(container);
}

} // namespace

vesk_importer_t *vesk_register_file_importer(const char *suffix, const char *description,
                                             vesk_import_func_t load, const char *info)
{
    return format_table_add<vesk_importer_t>(&importers, suffix, description, info, load);
}

vesk_importer_t *vesk_replace_importer_function(const char *suffix, vesk_import_func_t load)
{
    for (vesk_importer_t *importer : each<vesk_importer_t>(importers)) {
        if (strcasecmp(importer->suffix, suffix) == 0) {
            importer->load = load;
            return importer;
        }
    }
    return nullptr;
}

vesk_importer_t *vesk_get_file_importer_by_suffix(const char *suffix)
{
    for (vesk_importer_t *importer : each<vesk_importer_t>(importers)) {
        if (strcasecmp(importer->suffix, suffix) == 0)
            return importer;
    }
    for (vesk_importer_t *importer : each<vesk_importer_t>(importers)) {
        if (std::strstr(importer->suffix, suffix) != nullptr)
            return importer;
    }
    return nullptr;
}

char *vesk_get_all_importer_info(void)
{
    std::string text = "Importers:\n\n";
    for (const vesk_importer_t *importer : each<vesk_importer_t>(importers)) {
        text += std::string(importer->suffix) + "\t\t" + importer->description + "\t\t" +
                importer->info + "\n";
    }
    return text_copy(text.c_str());
}

object_t *vesk_import_file(const char *given_name)
{
    file_report_begin(given_name);
    const std::string name = name_on_disk(given_name);
    const char *filename = name.c_str();
    const char *suffix = string_get_suffix(filename);
    if (suffix == nullptr) {
        windows_message_dialog(
            "import file: I need a filename with a suffix (e.g. file.vesk) - got '%s'", filename);
        return nullptr;
    }
    const vesk_importer_t *importer = vesk_get_file_importer_by_suffix(suffix);
    if (importer == nullptr) {
        windows_message_dialog("Sorry, there is no geometry importer for %s files\n%s", suffix,
                               format_table_text<vesk_importer_t>(importers, "import").c_str());
        return nullptr;
    }
    const double began = ui_port().now_seconds();
    last_file_report().format = importer->description;
    if (const char *reason = reason_of_refusal(filename); reason != nullptr)
        return import_refused(filename, reason);
    object_t *object = load_guarded(importer, filename);
    if (object == nullptr)
        return nullptr;
    if (importer->load != vesk_import_vesk && object != vesk_get_world()) {
        import_fit_names(object);
        if (const int wrong = numbers_make_finite(object); wrong > 0) {
            vesk_report_warning(0, "%d numbers are none or too large: 0 is taken", wrong);
            object_calc_normals_force(object);
        }
    }
    count_import(object, ui_port().now_seconds() - began);
    return object;
}

int world_adopt_import(object_t *object, const std::string &filename, bool model_file)
{
    if (object == nullptr)
        return 0;
    if (model_file && vesk_get_world()->children == nullptr)
        edited_file_set(filename);
    clear_selection();
    if (object_exists(object) != 0) { // the importer linked it itself, or returns the world
        if (object != vesk_get_world())
            select_object(object);
    } else if (object->type == OBJECT_WORLD) {
        adopt_children(object);
    } else {
        object_reparent(object, vesk_get_world());
        select_object(object);
    }
    find_bounding_box();
    note_loaded_selection();
    if (prefs.fit_view_after_load != 0) {
        fit_selected_all();
        redraw_3d();
    } else {
        redraw_all();
    }
    display_status();
    return 1;
}

int vesk_world_import_file(const char *filename)
{
    const std::string name = filename; // the messages let scripts run
    const char *suffix = string_get_suffix(name.c_str());
    const bool model_file = suffix != nullptr && strcasecmp(suffix, ".vesk") == 0;
    const int came = world_adopt_import(vesk_import_file(name.c_str()), name, model_file);
    if (came != 0 && !last_file_report().warnings.empty())
        tcl_command("show_import_report");
    return came;
}

void command_load_vesk(const char *filename)
{
    const std::string name = filename;
    static_cast<void>(world_adopt_import(vesk_import_vesk(name.c_str()), name, true));
}

const char *vesk_file_select_import_name(const char *title)
{
    std::string all_suffixes;
    for (const vesk_importer_t *importer : each<vesk_importer_t>(importers))
        all_suffixes += std::string(importer->suffix) + " ";
    std::vector<const char *> filters = {"Geometry files", all_suffixes.c_str()};
    for (const vesk_importer_t *importer : each<vesk_importer_t>(importers))
        filters.insert(filters.end(), {importer->description, importer->suffix});
    filters.insert(filters.end(), {"All files", "*", nullptr});
    return vesk_get_import_filename(title, filters.data());
}

const char *vesk_file_select_import(const char *title)
{
    const char *name = vesk_file_select_import_name(title);
    if (name == nullptr || name[0] == '\0')
        return name;
    static std::string kept; // the load lets scripts run, which replace the interpreter's result
    kept = name;
    vesk_world_import_file(kept.c_str());
    return kept.c_str();
}

void vesk_register_internal_file_importers(void)
{
    struct row_t {
        const char *suffix, *description;
        vesk_import_func_t load;
    };
    static const row_t rows[] = {
        {".vesk", "VESK files", vesk_import_vesk},
        {".3ds", "3D Studio files", vesk_import_3ds},
        {".dxf", "Autocad DXF files", vesk_import_dxf},
        {".lws", "Lightwave scene files", vesk_import_lightwave},
        {".lwo", "Lightwave object files", vesk_import_lightwave},
        {".tri", "Alias/Triangle files", vesk_import_aliastri},
        {".wrl", "VRML 1.0 files", vesk_import_vrml},
        {".vec .r2v", "Vector files", vesk_import_vector},
        {".md2", "MD2 files", vesk_import_md2},
        {".bsp", "Quake3 BSP files", vesk_import_quake3bsp},
        {".wrz .gz", "VRML files, packed", vesk_import_vrml},
    };
    for (const row_t &row : rows) {
        vesk_register_file_importer(row.suffix, row.description, row.load,
                                    "internal importer, version 3.6");
    }
    vesk_add_export_menu_item("3DS...", "vesk export_3ds");
}

void command_export_3ds(void)
{
    const char *const filters[] = {"3D Studio files", ".3ds", "All files", "*", nullptr};
    const char *name = vesk_get_export_filename("Export 3DS", filters);
    if (name != nullptr && name[0] != '\0')
        write_3ds(name);
}

void importers_reset_for_test() { format_table_free<vesk_importer_t>(&importers); }
