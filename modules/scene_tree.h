#ifndef VESK_MODULES_SCENE_TREE_H
#define VESK_MODULES_SCENE_TREE_H

#include "fileio/scene_stream.h"

#include <assimp/scene.h>
#include <set>
#include <string>
#include <vector>

// The nodes of a scene as objects: one for each node and picture, with its frame and its geometry.
struct scene_tree {
    std::vector<bool> twosided; // by material; those beyond it are
    std::set<unsigned> fans;    // meshes whose triangles that share a first vertex are polygons

    // The scene's materials stand in `out` already. In a file of COLLADA, FBX or glTF (`suffix`) the
    // root is the reader's own.
    void convert(const aiScene &scene, const std::string &suffix, plain_scene *out) const;
};

#endif
