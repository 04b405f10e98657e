#ifndef VESK_FILEIO_EXPORT_VRML2_TREE_H
#define VESK_FILEIO_EXPORT_VRML2_TREE_H

#include "fileio/export_scene.h"

// VRML 2.0 with the tree of the scene: a named group for each object, a shape for each of its
// materials. Import makes the same objects of it again.
extern const export_format vrml2_tree_format;

// Notes in the report about the materials that are written: names that became others behind DEF, and,
// where the format has one number for the ambient colour, colours that it does not hold.
void vrml_material_notes(std::string (*node_name)(const std::string &), bool one_ambient);

#endif
