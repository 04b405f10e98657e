#ifndef VESK_TESTS_FILEIO_FILE_CASES_H
#define VESK_TESTS_FILEIO_FILE_CASES_H

#include "model/each.h"
#include "model/object_internal.h"

#include <cstdio>
#include <string>

// A tree as one line of text: `type'name'`, then its vertices in world coordinates, its surfaces
// (flags, palette index, corners), its texts and, in braces, its children.
inline std::string describe(const object_t *object)
{
    char text[128];
    std::string all = object_type_word(object->type);
    all += std::string("'") + object->name + "'";
    for (const vertex *point : each<vertex>(object->vertices)) {
        const auto shown = [](float value) { // rounding of a turn is not what is looked at
            return static_cast<double>(
                static_cast<float>(static_cast<int>(value * 1e4f + (value < 0 ? -0.5f : 0.5f))) /
                1e4f);
        };
        std::snprintf(text, sizeof text, "(%g %g %g)", shown(point->position.x) + 0.0,
                      shown(point->position.y) + 0.0, shown(point->position.z) + 0.0);
        all += text;
    }
    for (const surface_t *surface : each<surface_t>(object->surfaces)) {
        std::snprintf(text, sizeof text, "[%X m%d",
                      static_cast<unsigned>(vesk_surface_get_flags(surface)), surface->material);
        all += text;
        for (const svertex *corner : each<svertex>(surface->refs)) {
            std::snprintf(text, sizeof text, " %d",
                          vesk_object_get_vertex_index(object, corner->vertex));
            all += text;
            if (corner->u != 0 || corner->v != 0) {
                std::snprintf(text, sizeof text, "/%g/%g", static_cast<double>(corner->u),
                              static_cast<double>(corner->v));
                all += text;
            }
        }
        all += "]";
    }
    all += object->data ? std::string(" data=") + object->data : "";
    all += object->url ? std::string(" url=") + object->url : "";
    if (object->children) {
        all += "{";
        for (const object_t *child : each<object_t>(object->children))
            all += (all.back() == '{' ? "" : ",") + describe(child);
        all += "}";
    }
    return all;
}

#endif
