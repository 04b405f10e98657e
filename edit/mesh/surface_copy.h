#ifndef VESK_EDIT_MESH_SURFACE_COPY_H
#define VESK_EDIT_MESH_SURFACE_COPY_H

#include "model/flat_mesh.h"

#include <span>
#include <vector>

// Copies of surfaces with the vertices they use: one new, free-standing object for each owner, in
// tree order, with the owner's name, texture, frame and centre. The caller owns them.
std::vector<object_t *> objects_of_surfaces(const listitem *surfaces);

// Name, texture, frame and centre.
void object_copy_header(object_t *to, const object_t *from);

// Makes many such objects of one owner, each in time of its own size. Colours that are kept with the
// vertices go along.
class surface_copier {
public:
    explicit surface_copier(object_t *owner);

    // Copies of these surfaces and of their vertices, and of vertices that need no surface; all by
    // their places, vertices in the owner's order.
    object_t *copy(std::span<const int> surfaces, std::span<const int> loose = {});
    [[nodiscard]] const flat_mesh &mesh() const { return *mesh_; }

private:
    object_t *owner_;
    flat_ptr mesh_;
    std::vector<unsigned char> colours_; // of the owner's vertices
    std::vector<vertex *> copies_;       // of the vertices of the object that is being made
};

#endif
