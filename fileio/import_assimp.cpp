#include "fileio/import_assimp.h"

#include "fileio/foreign_scene.h"
#include "fileio/import_mesh.h"

#include <string>

object_t *vesk_import_md2(const char *filename)
{
    const std::string name = filename;
    object_t *object = vesk_assimp_import(name.c_str(), "md2");
    // The format has no name for the model, the library one of its own for its top.
    if (object != nullptr && (*object->name == '\0' || *object->name == '<'))
        object_set_name(object, import_base_name(name.c_str()).c_str());
    return object;
}
