// Formats that are read and written through the public interface: readers of its own for OBJ, PLY,
// STL and 3MF, the program's Assimp process for the others; all writers are its own.
#include "formats.h"

#include <iterator>
#include <string>
#include <utility>

namespace {

object_t *import_by_suffix(const char *filename)
{
    const char *suffix = string_get_suffix(filename);
    return vesk_assimp_import(filename, suffix == nullptr ? "" : suffix + 1);
}

struct format {
    const char *suffix, *description, *name; // name: in menus
    vesk_import_func_t read;
    vesk_export_func_t write;
    const char *write_name, *export_name; // commands
};

// A description without a reader is that of a second form of the row before.
// clang-format off
const format formats[] = {
    {".obj",  "OBJ files",         "OBJ...",         obj_import,       obj_export,      "write_obj",      "export_obj"},
    {".ply",  "PLY files",         "PLY...",         ply_import,       ply_export,      "write_ply",      "export_ply"},
    {".ply",  "PLY text files",    "PLY as text...", nullptr,          ply_text_export, "write_ply_text", "export_ply_text"},
    {".stl",  "STL files",         "STL...",         stl_import,       stl_export,      "write_stl",      "export_stl"},
    {".stl",  "STL text files",    "STL as text...", nullptr,          stl_text_export, "write_stl_text", "export_stl_text"},
    {".gltf", "glTF files",        "glTF...",        import_by_suffix, gltf_export,     "write_gltf",     "export_gltf"},
    {".glb",  "Binary glTF files", "Binary glTF...", import_by_suffix, glb_export,      "write_glb",      "export_glb"},
    {".dae",  "COLLADA files",     "COLLADA...",     import_by_suffix, collada_export,  "write_collada",  "export_collada"},
    {".fbx",  "FBX files",         "FBX...",         import_by_suffix, fbx_export,      "write_fbx",      "export_fbx"},
    {".3mf",  "3MF files",         "3MF...",         threemf_import,   threemf_export,  "write_3mf",      "export_3mf"},
};
// clang-format on

// Each format's commands: "write_x" is given a file's name, "export_x" asks for it.
template <std::size_t row>
void write_command(const char *filename)
{
    command_result_append_int(formats[row].write(filename));
}

template <std::size_t row>
void export_command()
{
    const format &f = formats[row];
    const char *const filters[] = {f.description, f.suffix, "All files", "*", nullptr};
    const std::string title = std::string("Export ") + f.description;
    const char *name = vesk_get_export_filename(title.c_str(), filters);
    if (name != nullptr && *name != '\0')
        f.write(name);
}

template <std::size_t row>
void register_format()
{
    static const char info[] = "interchange 1.1";
    const format &f = formats[row];
    if (f.read != nullptr) {
        vesk_register_file_importer(f.suffix, f.description, f.read, info);
        vesk_register_file_exporter(f.suffix, f.description, f.write, info);
    }
    const std::string help =
        std::string("write the scene as ") + f.description + ", returns 1 or 0";
    vesk_add_command_full(f.write_name, reinterpret_cast<vesk_command_func_t>(write_command<row>),
                          1, "s", "<filename>", help.c_str());
    vesk_add_command(f.export_name, export_command<row>);
    const std::string script = std::string("vesk ") + f.export_name;
    vesk_add_export_menu_item(f.name, script.c_str());
}

template <std::size_t... rows>
void register_formats(std::index_sequence<rows...> /*all*/)
{
    (register_format<rows>(), ...);
}

} // namespace

int VESKPluginInit(void)
{
    register_formats(std::make_index_sequence<std::size(formats)>());
    return 1;
}

void VESKPluginExit(void) {}

const char *VESKPluginInfo(void)
{
    return "interchange 1.1: OBJ, PLY, STL, glTF, COLLADA, FBX, 3MF";
}

const char *VESKPluginAbout(void)
{
    return "Reads and writes OBJ, PLY, STL, glTF 2.0, COLLADA, FBX and 3MF files with what these "
           "formats can hold of objects, materials and textures.";
}
