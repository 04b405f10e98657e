// Readers and writers of this plug-in. Readers return a new tree, or null after telling why not;
// writers write the whole world and return 1, or 0 after telling why not.
#ifndef INTERCHANGE_FORMATS_H
#define INTERCHANGE_FORMATS_H

#include <plugin/vesk.h>

object_t *obj_import(const char *filename);
object_t *ply_import(const char *filename);
object_t *stl_import(const char *filename);
object_t *threemf_import(const char *filename);

int obj_export(const char *filename);
int ply_export(const char *filename); // binary
int ply_text_export(const char *filename);
int stl_export(const char *filename); // binary
int stl_text_export(const char *filename);
int gltf_export(const char *filename);
int glb_export(const char *filename);
int collada_export(const char *filename);
int fbx_export(const char *filename);
int threemf_export(const char *filename);

#endif
