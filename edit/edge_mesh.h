#ifndef VESK_EDIT_EDGE_MESH_H
#define VESK_EDIT_EDGE_MESH_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* An edge mesh: positions, polygons with texture coordinates, and the edges between them, apart
   from any object. */
typedef struct vesk_mesh vesk_mesh_t;

/* The polygons of the object's own geometry; lines are left out. Vertex i of the mesh is vertex i
   of the object. The caller frees the mesh. */
VESK_API vesk_mesh_t *vesk_object_to_mesh(object_t *object);
VESK_API void vesk_mesh_free(vesk_mesh_t *mesh);

/* Makes the mesh the object's geometry: its polygons replace the object's, with the properties of
   those they came from; its first vertices are the object's, moved, the others new ones; vertices
   that lost their last surface are removed. Lines stay. The object must be the one that the mesh
   was made of, unchanged since. Computes no normals. */
VESK_API void vesk_mesh_to_object(const vesk_mesh_t *mesh, object_t *object);

/* Appends n vertices from 3n floats x y z; returns the first one's index. */
VESK_API int vesk_mesh_add_vertices(vesk_mesh_t *mesh, const float *xyz, int n);
/* Appends a polygon of n vertex indices; `uv` holds two floats a corner, or is null. `like` is a
   polygon of the mesh whose properties it takes (-1: a new surface's). Returns its index, or -1
   when an index is out of range or n is below 3. */
VESK_API int vesk_mesh_add_face(vesk_mesh_t *mesh, const int *vertices, int n, const float *uv,
                                int like);

VESK_API int vesk_mesh_num_vertices(const vesk_mesh_t *mesh);
VESK_API int vesk_mesh_num_faces(const vesk_mesh_t *mesh);
/* Edges are found at the first question after a change: linear in the mesh. */
VESK_API int vesk_mesh_num_edges(vesk_mesh_t *mesh);
/* Three floats a vertex, valid until the next change. */
VESK_API const float *vesk_mesh_positions(const vesk_mesh_t *mesh);
/* The vertices of a polygon, valid until the next change; `n` is set to their number. */
VESK_API const int *vesk_mesh_face(const vesk_mesh_t *mesh, int face, int *n);
/* Vertices a < b of an edge, and the first two polygons it belongs to (-1 for none); returns to how
   many it belongs. */
VESK_API int vesk_mesh_edge(vesk_mesh_t *mesh, int edge, int out_vertices[2], int out_faces[2]);

VESK_END_DECLS

#endif
