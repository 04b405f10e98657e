// Formats that come and go through the public interface: OBJ in and out; PLY, STL, glTF, COLLADA and
// FBX in, by the program's Assimp module.
#include "obj.h"

namespace {

object_t *import_by_suffix(const char *filename)
{
    const char *suffix = string_get_suffix(filename);
    return vesk_assimp_import(filename, suffix == nullptr ? "" : suffix + 1);
}

void write_obj(const char *filename) { command_result_append_int(obj_export(filename)); }

void export_obj()
{
    const char *const filters[] = {"OBJ files", ".obj", "All files", "*", nullptr};
    const char *name = vesk_get_export_filename("Export OBJ", filters);
    if (name != nullptr && *name != '\0')
        obj_export(name);
}

} // namespace

int VESKPluginInit(void)
{
    static const char info[] = "interchange 1.0";
    vesk_register_file_importer(".obj", "OBJ files", obj_import, info);
    vesk_register_file_importer(".ply", "PLY files", import_by_suffix, info);
    vesk_register_file_importer(".stl", "STL files", import_by_suffix, info);
    vesk_register_file_importer(".gltf", "glTF files", import_by_suffix, info);
    vesk_register_file_importer(".glb", "Binary glTF files", import_by_suffix, info);
    vesk_register_file_importer(".dae", "COLLADA files", import_by_suffix, info);
    vesk_register_file_importer(".fbx", "FBX files", import_by_suffix, info);
    vesk_add_command_full("write_obj", reinterpret_cast<vesk_command_func_t>(write_obj), 1, "s",
                          "<filename>", "write the scene in OBJ format, returns 1 or 0");
    vesk_add_command("export_obj", export_obj);
    vesk_add_export_menu_item("OBJ...", "vesk export_obj");
    return 1;
}

void VESKPluginExit(void) {}

const char *VESKPluginInfo(void) { return "interchange 1.0: OBJ, PLY, STL, glTF, COLLADA, FBX"; }

const char *VESKPluginAbout(void)
{
    return "Reads and writes OBJ files with their materials and textures; reads PLY, STL, glTF, "
           "COLLADA and FBX files.";
}
