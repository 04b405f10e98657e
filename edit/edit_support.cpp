#include "edit/edit_support.h"

#include "app/messages.h"
#include "edit/selection_scan.h"
#include "model/normals.h"
#include "view/redraw.h"

#include <unordered_set>

namespace {

std::vector<object_t *> without_descendants(const std::vector<object_t *> &objects)
{
    const std::unordered_set<const object_t *> all(objects.begin(), objects.end());
    std::vector<object_t *> top;
    for (object_t *object : unique_objects(objects)) {
        const object_t *above = object->parent;
        while (above != nullptr && all.count(above) == 0)
            above = above->parent;
        if (above == nullptr)
            top.push_back(object);
    }
    return top;
}

} // namespace

std::vector<object_t *> selected_objects() { return elements_of<object_t>(selection().objects); }

std::vector<object_t *> selected_top_objects() { return without_descendants(selected_objects()); }

void calc_normals_of(const std::vector<object_t *> &objects)
{
    for (object_t *object : without_descendants(objects))
        object_calc_normals(object);
}

void finish_edit()
{
    find_bounding_box();
    redraw_all();
    display_status();
}
