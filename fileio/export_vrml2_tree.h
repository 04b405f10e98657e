#ifndef VESK_FILEIO_EXPORT_VRML2_TREE_H
#define VESK_FILEIO_EXPORT_VRML2_TREE_H

#include "fileio/export_scene.h"

// VRML 2.0 with the tree of the scene: a named group for each object, a shape for each of its
// materials. Import makes the same objects of it again.
extern const export_format vrml2_tree_format;

// Notes in the report about the materials that are written: what the format says otherwise.
void vrml2_tree_notes();

#endif
