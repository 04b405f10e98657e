#include "edit/part_moves.h"

#include "base/messages.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo.h"
#include "edit/transform.h"
#include "model/bounds.h"
#include "model/change_marks.h"
#include "model/vector.h"

#include <cstring>

part_moves::part_moves()
{
    for (object_t *top : selected_top_objects()) {
        part_t part = {top, nullptr, {}, {}, {}};
        bounds_clear(&part.min, &part.max);
        for_each_object(top, [&](object_t *object) {
            for (const vertex *v : each<vertex>(object->vertices))
                bounds_add(v->position, &part.min, &part.max);
        });
        if (part.min.x > part.max.x) // a light, or a group of such
            part.min = part.max = top->centre;
        parts_.push_back(part);
    }
    if (!parts_.empty())
        return;
    for (vertex *v : each<vertex>(selection().vertices))
        parts_.push_back({nullptr, v, v->position, v->position, {}});
    for (vertex *v : vertices_of_selected_surfaces())
        parts_.push_back({nullptr, v, v->position, v->position, {}});
}

bool part_moves::any(const char *what) const
{
    if (parts_.empty())
        display_message("%s - nothing selected", what);
    return !parts_.empty();
}

void part_moves::commit(const char *what)
{
    std::erase_if(parts_, [](const part_t &part) { return point_equal(part.offset, {0, 0, 0}); });
    if (parts_.empty()) {
        display_message("%s - all stand there already", what);
        return;
    }
    open_world_undo(what);
    std::vector<vertex *> points;
    std::vector<object_t *> touched;
    for (const part_t &part : parts_) {
        if (part.object != nullptr) {
            translate_object(part.object, &part.offset);
            continue;
        }
        part.point->position = point_add(part.point->position, part.offset);
        points.push_back(part.point);
    }
    for (object_t *owner : unique_objects(owners_of_vertices(points))) {
        object_mark(owner, CHANGED_POSITIONS);
        touched.push_back(owner);
    }
    calc_normals_of(touched);
    finish_edit();
    display_message("%s - %d moved", what, count());
}

int part_axis(const char *what, const char *word)
{
    const char *const letters = "xyz012";
    const char *at = word[0] != '\0' && word[1] == '\0' ? std::strchr(letters, word[0]) : nullptr;
    if (at == nullptr) {
        display_message("%s - no axis '%s'", what, word);
        return -1;
    }
    return static_cast<int>(at - letters) % 3;
}
