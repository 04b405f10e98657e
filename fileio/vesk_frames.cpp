#include "fileio/vesk_frames.h"

#include "model/each.h"
#include "model/matrix.h"

#include <vector>

local_frame_t frame_of(const object_t *object, const rebuilt_t *parent)
{
    local_frame_t frame = {};
    // Deliberate: the test is made on the world matrix, as the form of the file demands.
    frame.has_rotation = matrix_is_identity(object->rotation) == 0;
    frame.top = parent == nullptr;
    if (frame.top) {
        matrix_set_identity(frame.rotation);
        matrix_set_identity(frame.rebuilt.rotation);
        return frame;
    }
    point_transform_global_to_local(&frame.location, parent->rotation, &parent->centre,
                                    &object->centre);
    frame.rebuilt = {{}, object->centre};
    matrix_copy(frame.has_rotation ? object->rotation : parent->rotation, frame.rebuilt.rotation);
    if (frame.has_rotation) {
        float inverse[9];
        rotinvert(inverse, parent->rotation);
        matrix_multiply(inverse, object->rotation, frame.rotation);
    }
    return frame;
}

point3_t local_frame_t::local(const point3_t &world) const
{
    point3_t p = world;
    if (!top)
        point_transform_global_to_local(&p, rebuilt.rotation, &rebuilt.centre, &world);
    return p;
}

void for_each_written(object_t *top,
                      const std::function<void(object_t *, const local_frame_t &)> &visit)
{
    struct level_t {
        rebuilt_t frame;
        const listitem *next_child;
    };
    std::vector<level_t> stack;
    const auto enter = [&](object_t *object, const rebuilt_t *parent) {
        const local_frame_t frame = frame_of(object, parent);
        visit(object, frame);
        stack.push_back({frame.rebuilt, object->children});
    };
    enter(top, nullptr);
    while (!stack.empty()) {
        level_t &level = stack.back();
        if (level.next_child == nullptr) {
            stack.pop_back();
            continue;
        }
        auto *child = item_of<object_t>(level.next_child);
        level.next_child = level.next_child->next;
        const rebuilt_t parent = level.frame;
        enter(child, &parent);
    }
}
