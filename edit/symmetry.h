#ifndef VESK_EDIT_SYMMETRY_H
#define VESK_EDIT_SYMMETRY_H

// Symmetry: what is done to vertices, edges and surfaces on one side of a plane is done to their
// counterparts on the other. The preference symmetry_axis is 0 (off) or 1 to 3 for x to z, the plane goes
// through the origin or, with symmetry_at_centre, through the centre of each object.

#include "model/object.h"

#include <vector>

bool symmetry_is_on();
// Whether it holds for the present selection: it is on, and no objects are selected.
bool symmetry_acts();
// The axis, 0 to 2, and where an object's plane crosses it.
int symmetry_axis();
float symmetry_plane(const object_t *object);
// Where the plane is that the views show; false when there is none.
bool symmetry_shown(float *at);
// A point in the mirror of an object.
point3_t symmetric_point(const object_t *object, const point3_t &p);
// Within it places of an object count as the same.
float symmetry_closeness(object_t *object);

// Of each vertex of an object the place of its counterpart: itself on the plane, -1 for none.
std::vector<int> symmetric_places(object_t *object);
// The same for previews, which ask with every motion: found once for the object's shape and the plane,
// and kept until another object is asked for or they are forgotten. Nothing while symmetry is off.
const std::vector<int> &kept_symmetric_places(object_t *object);
void forget_symmetric_places();

// Vertices that change, and their counterparts: those of the same object at the mirrored places, found
// once. Of two that both change the one with the larger share leads, of equals the one on the
// positive side. What lies on the plane stays on it.
class symmetric_pairs {
public:
    symmetric_pairs() = default;
    // With the share of the change that each takes; none: all the same.
    symmetric_pairs(const std::vector<vertex *> &changing, const std::vector<float> &shares,
                    const std::vector<object_t *> &owners);

    // Counterparts that do not change by themselves, and have to be saved.
    [[nodiscard]] std::vector<vertex *> counterparts() const;
    // Of the changing vertices those that are neither on the plane nor have a counterpart.
    [[nodiscard]] int num_without() const { return num_without_; }
    // After the vertices were changed: the counterparts go where the mirror shows them.
    void follow() const;

private:
    struct pair_t {
        vertex *leader, *follower;
        float plane;
        bool follower_changes;
    };
    struct rest_t {
        vertex *point;
        float place; // on the axis
    };
    void pair_in(object_t *owner, const std::vector<float> &share_of);

    int axis_ = 0;
    std::vector<pair_t> pairs_;
    std::vector<rest_t> on_plane_;
    int num_without_ = 0;
};

// "symmetry - 3 without a counterpart", when there are any.
void tell_without_counterpart(int count);

// Command "symmetry": off, x, y or z, then origin or centre.
void command_symmetry(int count, const char *const *words);

#endif
