#include "fileio/finite_numbers.h"

#include "model/change_marks.h"
#include "model/deferred_records.h"
#include "model/each.h"
#include "model/matrix.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <iterator>

namespace {

int make_finite(std::initializer_list<float *> numbers)
{
    int found = 0;
    for (float *number : numbers) {
        if (std::isfinite(*number))
            continue;
        *number = 0;
        ++found;
    }
    return found;
}

int make_finite(point3_t *p) { return make_finite({&p->x, &p->y, &p->z}); }

int make_record_finite(object_t *object)
{
    int found = make_finite(&object->centre) +
                make_finite({&object->texture_repeat_x, &object->texture_repeat_y,
                             &object->texture_offset_x, &object->texture_offset_y});
    if (!std::all_of(std::begin(object->rotation), std::end(object->rotation),
                     [](float number) { return std::isfinite(number); })) {
        matrix_set_identity(object->rotation);
        ++found;
    }
    return found;
}

bool is_finite(const flat_mesh &flat)
{
    const auto is_point = [](const point3_t &p) {
        return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
    };
    const auto is_uv = [](const flat_uv &uv) { return std::isfinite(uv.u) && std::isfinite(uv.v); };
    return std::all_of(flat.positions->begin(), flat.positions->end(), is_point) &&
           std::all_of(flat.texture_coords->begin(), flat.texture_coords->end(), is_uv);
}

} // namespace

int numbers_make_finite(object_t *top)
{
    int found = 0;
    for_each_object(top, [&](object_t *object) {
        int here = make_record_finite(object);
        if (const flat_ptr flat = untouched_flat(object); !flat || !is_finite(*flat)) {
            for (vertex *point : each<vertex>(object->vertices))
                here += make_finite(&point->position);
            for (const surface_t *surface : each<surface_t>(object->surfaces)) {
                for (svertex *corner : each<svertex>(surface->refs))
                    here += make_finite({&corner->u, &corner->v});
            }
        }
        if (here > 0)
            object_mark(object, CHANGED_ALL);
        found += here;
    });
    return found;
}
