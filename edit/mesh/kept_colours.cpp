#include "edit/mesh/kept_colours.h"

#include "edit/mesh/nearest_points.h"
#include "model/each.h"
#include "model/vertex_colours.h"

#include <algorithm>

kept_colours::kept_colours(object_t *object) : object_(object), rgb_(object_vertex_colours(object))
{
    if (rgb_.empty())
        return;
    for (const vertex *point : each<vertex>(object->vertices))
        places_.push_back(point->position);
}

void kept_colours::give_back() const
{
    if (rgb_.empty())
        return;
    const nearest_points nearest(places_);
    std::vector<unsigned char> rgb;
    for (const vertex *point : each<vertex>(object_->vertices)) {
        const std::ptrdiff_t at = 3 * std::ptrdiff_t{std::max(nearest.nearest(point->position), 0)};
        rgb.insert(rgb.end(), rgb_.begin() + at, rgb_.begin() + at + 3);
    }
    vesk_object_set_vertex_colours(object_, rgb.data());
}
