// Formats that are read and written through the public interface: readers of its own for OBJ, PLY,
// STL and 3MF, the program's Assimp process for the others; all writers are its own.
#include "formats.h"

#include <string>

namespace {

object_t *import_by_suffix(const char *filename)
{
    const char *suffix = string_get_suffix(filename);
    return vesk_assimp_import(filename, suffix == nullptr ? "" : suffix + 1);
}

// Each format's commands: "export_x" asks for a file, "write_x" is given its name.
using writer_t = int (*)(const char *);

template <writer_t write>
void write_command(const char *filename)
{
    command_result_append_int(write(filename));
}

struct format {
    const char *suffix, *description, *name; // name: in menus
    vesk_import_func_t read;
    writer_t write;
    const char *write_name, *export_name;
    void (*write_command)(const char *);
    void (*export_command)();
};

template <int row>
void export_command();

template <int row, writer_t write>
constexpr format format_of(const char *suffix, const char *description, const char *name,
                           vesk_import_func_t read, const char *write_name, const char *export_name)
{
    return {suffix,
            description,
            name,
            read,
            write,
            write_name,
            export_name,
            write_command<write>,
            export_command<row>};
}

// A description without a reader is that of a second form of the row before.
// clang-format off
const format formats[] = {
    format_of<0, obj_export>(".obj", "OBJ files", "OBJ...", obj_import, "write_obj", "export_obj"),
    format_of<1, ply_export>(".ply", "PLY files", "PLY...", ply_import, "write_ply", "export_ply"),
    format_of<2, ply_text_export>(".ply", "PLY text files", "PLY as text...", nullptr, "write_ply_text", "export_ply_text"),
    format_of<3, stl_export>(".stl", "STL files", "STL...", stl_import, "write_stl", "export_stl"),
    format_of<4, stl_text_export>(".stl", "STL text files", "STL as text...", nullptr, "write_stl_text", "export_stl_text"),
    format_of<5, gltf_export>(".gltf", "glTF files", "glTF...", import_by_suffix, "write_gltf", "export_gltf"),
    format_of<6, glb_export>(".glb", "Binary glTF files", "Binary glTF...", import_by_suffix, "write_glb", "export_glb"),
    format_of<7, collada_export>(".dae", "COLLADA files", "COLLADA...", import_by_suffix, "write_collada", "export_collada"),
    format_of<8, fbx_export>(".fbx", "FBX files", "FBX...", import_by_suffix, "write_fbx", "export_fbx"),
    format_of<9, threemf_export>(".3mf", "3MF files", "3MF...", threemf_import, "write_3mf", "export_3mf"),
};
// clang-format on

template <int row>
void export_command()
{
    const format &f = formats[row];
    const char *const filters[] = {f.description, f.suffix, "All files", "*", nullptr};
    const std::string title = std::string("Export ") + f.description;
    const char *name = vesk_get_export_filename(title.c_str(), filters);
    if (name != nullptr && *name != '\0')
        f.write(name);
}

} // namespace

int VESKPluginInit(void)
{
    static const char info[] = "interchange 1.1";
    for (const format &f : formats) {
        if (f.read != nullptr) {
            vesk_register_file_importer(f.suffix, f.description, f.read, info);
            vesk_register_file_exporter(f.suffix, f.description, f.write, info);
        }
        const std::string help =
            std::string("write the scene as ") + f.description + ", returns 1 or 0";
        vesk_add_command_full(f.write_name, reinterpret_cast<vesk_command_func_t>(f.write_command),
                              1, "s", "<filename>", help.c_str());
        vesk_add_command(f.export_name, f.export_command);
        const std::string script = std::string("vesk ") + f.export_name;
        vesk_add_export_menu_item(f.name, script.c_str());
    }
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
