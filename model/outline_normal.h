#ifndef VESK_MODEL_OUTLINE_NORMAL_H
#define VESK_MODEL_OUTLINE_NORMAL_H

#include "model/flat_mesh.h"
#include "model/vec3d.h"

// Twice the area of an outline, as a vector that points where it faces; also where it is concave,
// bent, or begins with corners on one line. 0 0 0 for fewer than 3 corners.
inline vec3d outline_normal(const flat_mesh &mesh, std::span<const std::int32_t> corners)
{
    vec3d sum;
    for (std::size_t i = 1; i + 1 < corners.size(); ++i) {
        const point3_t &origin = mesh.position(corners[0]);
        sum += cross(between(origin, mesh.position(corners[i])),
                     between(origin, mesh.position(corners[i + 1])));
    }
    return sum;
}

#endif
