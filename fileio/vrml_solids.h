#ifndef VESK_FILEIO_VRML_SOLIDS_H
#define VESK_FILEIO_VRML_SOLIDS_H

// The solids of VRML, of both versions, as meshes about the origin of a frame.

#include "fileio/import_mesh.h"
#include "fileio/vrml_frame.h"

struct vrml_brush {
    import_mesh &mesh;
    const vrml_matrix &frame;
    // Palette indices: one for everything, or one a part (faces of a box; sides, top, bottom).
    std::vector<int> materials;

    [[nodiscard]] int material(std::size_t part) const
    {
        return materials[part < materials.size() ? part : materials.size() - 1];
    }
    [[nodiscard]] int point(double x, double y, double z) const
    {
        const point3_t p = vrml_place(frame, x, y, z);
        return mesh.add_point(p.x, p.y, p.z);
    }
};

// The parts of a cone or a cylinder that are there.
struct vrml_parts {
    bool sides = true, top = true, bottom = true;
};

void vrml_add_box(const vrml_brush &brush, double width, double height, double depth);
void vrml_add_sphere(const vrml_brush &brush, double radius);
void vrml_add_cone(const vrml_brush &brush, double radius, double height, const vrml_parts &parts);
void vrml_add_cylinder(const vrml_brush &brush, double radius, double height,
                       const vrml_parts &parts);

#endif
