#ifndef VESK_EDIT_DRAG_TRANSFORM_H
#define VESK_EDIT_DRAG_TRANSFORM_H

#include "edit/mesh/affine.h"
#include "edit/symmetry.h"
#include "model/moved_vertices.h"
#include "model/vec3d.h"

#include <cstddef>
#include <functional>
#include <vector>

// A transform of the selection that follows the mouse: every step is computed from the positions at
// the press, so nothing accumulates, and taking it back gives the very same bits. Small selections
// are changed at each step, large ones once at the end. It takes along what soft selection adds, and
// the counterparts of symmetry.

struct drag_change_t {
    enum kind_t { MOVE, ROTATE, TURN, RESIZE, PLACE } kind = MOVE;
    point3_t offset = {0, 0, 0}; // MOVE
    point3_t centre = {0, 0, 0}; // ROTATE, TURN
    bool own_centres = false;    // ROTATE: each object about its own centre instead
    float degrees = 0;           // ROTATE, in the sense of rotate_selected
    int view = 0;                // ROTATE: about the axis that looks into it
    point3_t angles = {0, 0, 0}; // TURN: degrees about x, y and z, as rotate_selection
    point3_t from_min, from_max; // RESIZE: the box before
    point3_t to_min, to_max;     // RESIZE: the box after
    affine_t place;              // PLACE
    bool keeps_frames = false;   // PLACE: no rotation, the frames of objects stay as they are
    const char *label = "place"; // PLACE: of the undo record
};

// Where a deformer takes a point; its normal has the length 1 or 0.
using deform_t = std::function<vec3d(const vec3d &point, const vec3d &normal)>;

// Whether changes of the present selection move more than is selected.
bool transform_reaches_further();

// Where the change takes a point, as a matrix column by column. Not for own_centres.
void drag_matrix(const drag_change_t &change, float out[16]);

class drag_transform_t {
public:
    // Remembers the present selection.
    drag_transform_t();

    // The vertices that move. Large objects that move as a whole are asked for theirs now.
    const std::vector<vertex *> &moving();
    // What owns them, and the objects that move.
    [[nodiscard]] const std::vector<object_t *> &moving_objects() const { return owners; }
    // Calls visit(position) for each of them, as it was at the press.
    template <class Visit>
    void each_start(const Visit &visit) const
    {
        for (const whole_object_t &whole : wholes)
            for (const point3_t &p : *whole.positions)
                visit(p);
        for (const point3_t &p : positions)
            visit(p);
    }

    [[nodiscard]] bool empty() const
    {
        return vertices.empty() && wholes.empty() && objects.empty();
    }
    // Whether `change` is to turn objects about their own centres, and can.
    [[nodiscard]] bool turns_own(const drag_change_t &change) const
    {
        return change.kind == drag_change_t::ROTATE && change.own_centres && has_own_centres;
    }
    // Whether steps change the model; else only finish does.
    [[nodiscard]] bool is_live() const
    {
        return reaches_further() || (wholes.empty() && vertices.size() < live_limit);
    }
    // The change so far, from the press on.
    void step(const drag_change_t &change);
    // The same by a deformer.
    void deform(const deform_t &to);
    // As it was at the press.
    void take_back();
    // Makes the last change for good: one undo record with the tool's label.
    void finish();
    // The same with this label on a record of positions; null: no record.
    void finish_as(const char *label);

private:
    static constexpr size_t live_limit = 20000;
    struct moved_object_t {
        object_t *object;
        point3_t centre;
        float rotation[9];
        point3_t pivot;      // of the selected object that it moves with
        size_t first_vertex; // its own ones among `vertices`
        size_t end_vertex;
    };
    struct whole_object_t {
        object_t *object;
        flat_array<point3_t> positions; // at the press
    };
    [[nodiscard]] bool reaches_further() const { return shares.size() > 0 || is_symmetric; }
    void add_objects();
    [[nodiscard]] bool are_whole(bool have_owners) const;
    void gather();
    void add_further();
    void apply(const drag_change_t &change);
    void after_change();
    void open_record() const;
    void show_box(const drag_change_t &change) const;
    void mark();

    // All vertices of all owners move, and they are many: these are not asked for them, and records on demand
    // stay untouched. In the order of the owners.
    std::vector<whole_object_t> wholes;
    std::vector<vertex *> vertices;  // else, each once
    std::vector<point3_t> positions; // at the press
    std::vector<float> shares;       // of the change that each vertex takes; none: all of it
    std::size_t num_moving = 0;      // the vertices behind them are counterparts
    std::vector<point3_t> normals;   // of the moving ones, at the press, for a deformer
    deform_t deformer;
    symmetric_pairs pairs;
    bool is_symmetric = false;
    std::vector<moved_object_t> objects;
    std::vector<object_t *> owners; // of everything that moves
    std::vector<moved_ptr> parts;   // what each of them has of it, once a step was made
    point3_t box_min, box_max;      // of the selection, at the press
    drag_change_t last;
    bool has_own_centres = false; // only objects are selected
    bool changed = false;
};

// Where a point of one box lies in another; an axis of no extent is only moved.
point3_t map_between_boxes(const point3_t &p, const drag_change_t &change);

#endif
