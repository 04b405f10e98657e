// Materials of Wavefront OBJ files.
#ifndef INTERCHANGE_OBJ_MATERIALS_H
#define INTERCHANGE_OBJ_MATERIALS_H

#include <cstdlib>
#include <map>
#include <plugin/vesk.h>
#include <string>

// A material of an .mtl file.
struct obj_material {
    int palette_index = 0;
    std::string picture; // file name as written; "" for none
    float repeat[2] = {1, 1}, offset[2] = {0, 0};
};

// The number that a word holds, 0 for none.
inline float obj_number(const std::string &word) { return std::strtof(word.c_str(), nullptr); }

// Adds the materials of a file that an OBJ file names in that line; a missing one is a warning.
void obj_read_materials(const std::string &obj_file, const std::string &name, int line,
                        std::map<std::string, obj_material> &materials);

#endif
