#ifndef VESK_DRAW_MESH_CHANGES_H
#define VESK_DRAW_MESH_CHANGES_H

// What of an object's buffers is written anew after some of its vertices moved: a drag of a few vertices
// costs what moves.

#include "draw/mesh_layout.h"

// Numbers of elements, ascending.
using changed_t = std::vector<std::int32_t>;

// The elements that differ.
changed_t changed_points(const std::vector<point3_t> &before, const std::vector<point3_t> &now);
// The same of positions; of a motion that is known it costs what moves.
changed_t changed_positions(const flat_mesh &before, const flat_mesh &now);
void add_changed(changed_t &all, const changed_t &more);

// Whether a layout with these concave surfaces still fits after these vertices moved: no polygon of theirs
// was cut into ears, or became one that would have to be.
bool layout_fits(const std::vector<std::int32_t> &concave, const flat_mesh &flat,
                 const changed_t &moved);

// The slots of moved vertices; those whose normal turned. A few in between are written along.
std::vector<slot_run_t> moved_slots(const mesh_layout_t &layout, const changed_t &moved);
std::vector<slot_run_t> turned_slots(const mesh_layout_t &layout, const changed_t &vertices,
                                     const changed_t &faces);

#endif
