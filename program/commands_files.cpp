// Commands about files of any format: writing by suffix, and the report of the last import.

#include "base/command_result.h"
#include "base/command_row.h"
#include "base/file_report.h"
#include "fileio/embedded_images.h"
#include "fileio/export_commands.h"
#include "fileio/vesk_old.h"
#include "model/palette_internal.h"
#include "model/textures/textures.h"
#include "plugin/exporters.h"
#include "program/own_commands.h"

#include <string>

namespace {

// A script's list, element by element.
class list_text {
public:
    std::string text;

    void add(const std::string &element)
    {
        text += (text.empty() ? "" : " ") + list_element(element);
    }
    void field(const char *name, const std::string &value)
    {
        add(name);
        add(value);
    }
    void field(const char *name, int value) { field(name, std::to_string(value)); }
};

template <class Items, class Show>
std::string list_of(const Items &items, Show &&show)
{
    list_text list;
    for (const auto &item : items)
        list.add(show(item));
    return list.text;
}

std::string shown(const file_report::count &count)
{
    return std::to_string(count.number) + " " + list_element(count.what);
}

void command_import_report()
{
    const file_report &report = last_file_report();
    list_text list;
    list.field("file", report.file);
    list.field("format", report.format);
    list.field("read", report.read ? 1 : 0);
    list.field("objects", report.objects);
    list.field("vertices", report.vertices);
    list.field("surfaces", report.surfaces);
    list.field("lights", report.lights);
    list.field("materials", report.materials);
    list.field("textures", list_of(report.textures, [](const file_report::texture &texture) {
                   return list_element(texture.name) + " " + list_element(texture.found);
               }));
    list.field("images", list_of(report.images, [](const std::string &name) { return name; }));
    list.field("merged_materials",
               list_of(report.merged_materials, [](const std::string &text) { return text; }));
    list.field("warnings", list_of(report.warnings, [](const file_report::complaint &complaint) {
                   return std::to_string(complaint.line) + " " + list_element(complaint.text);
               }));
    list.field("warnings_in_all", static_cast<int>(report.warnings_in_all));
    list.field("written", report.written);
    list.field("losses", list_of(report.losses, shown));
    list.field("notes", list_of(report.notes, shown));
    command_result_set(list.text.c_str());
}

void command_report_json() { command_result_set(file_report_json(last_file_report()).c_str()); }

void command_set_images_folder(const char *folder) { embedded_images_set_folder(folder); }

void command_export_model(const char *filename)
{
    command_result_set(vesk_export_file(filename) != 0 ? "1" : "0");
}

void command_write_vesk_old(const char *filename)
{
    command_result_set(write_vesk_old(filename) != 0 ? "1" : "0");
}

void command_keep_material_names(int on) { palette_adopts_names(on != 0); }

void command_get_exporters()
{
    command_result_set("");
    for (const listitem *at = file_exporters(); at != nullptr; at = at->next) {
        const auto *exporter = reinterpret_cast<const vesk_exporter_t *>(at->data);
        const std::string words =
            list_element(exporter->suffix) + " " + list_element(exporter->description);
        command_result_append_element(std::string_view(words));
    }
}

void command_get_texture_loaders()
{
    command_result_set("");
    for (const listitem *at = texture_loaders(); at != nullptr; at = at->next) {
        const auto *loader = reinterpret_cast<const texture_loader_t *>(at->data);
        const std::string words =
            list_element(loader->suffixes) + " " + list_element(loader->description);
        command_result_append_element(std::string_view(words));
    }
}

} // namespace

std::span<const own_command_t> file_commands()
{
    using enum command_kind;
    static const own_command_t rows[] = {
        command_row("export_model", command_export_model, query, "<filename>",
                    "write the scene by the file's suffix, returns 1 or 0"),
        command_row("write_vesk_old", command_write_vesk_old, query, "<filename>",
                    "write the scene as older versions read it, returns 1 or 0"),
        command_row("keep_material_names", command_keep_material_names, view, "<int on>",
                    "1: materials of a file give their names to equal palette entries"),
        command_row("write_dxf", write_dxf, query, "<filename>", "write the scene in DXF format"),
        command_row("write_vrml2_tree", write_vrml2_tree, query, "<filename>",
                    "write the scene in VRML 2 format, with its tree"),
        command_row("get_exporters", command_get_exporters, query, nullptr,
                    "returns suffix and description of each exporter"),
        command_row("get_texture_loaders", command_get_texture_loaders, query, nullptr,
                    "returns suffixes and description of each texture loader"),
        command_row("import_report", command_import_report, query, nullptr,
                    "returns keys and values: what the last import read and complained about"),
        command_row("report_json", command_report_json, query, nullptr,
                    "returns the report of the last import and export as JSON"),
        command_row("set_images_folder", command_set_images_folder, view, "<string folder>",
                    "folder for pictures within model files, empty: ask"),
    };
    return rows;
}
