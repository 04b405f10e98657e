#ifndef VESK_MODEL_DEFERRED_RECORDS_H
#define VESK_MODEL_DEFERRED_RECORDS_H

// Records on demand: after an operation of our own that knows a whole object as a flat mesh, that is the
// truth, and the lists have their addresses only; pages of them are written when somebody walks or
// changes them. What reads the flat mesh costs no records.

#include "model/flat_mesh.h"

#include <cstddef>
#include <span>
#include <vector>

class deferred_records;

// Whether the records of so many are to be deferred: they are many, and it is possible here.
bool records_can_be_deferred(int num_vertices, int num_surfaces);

// The same for those that take the place of others: no plug-in is on the stack, which could hold these.
bool records_can_be_renewed(int num_vertices, int num_surfaces);

// Frees the object's lists, announced, and makes them those of a flat mesh that is complete but for its
// arrays of records, which are set: deferred where they are many and there is room for their addresses,
// else at once. The flat mesh is the object's from now on. It may lack normals: they are what new records
// have.
void object_set_whole(object_t *object, std::shared_ptr<flat_mesh> flat);

// The object's flat mesh where none of its own records was ever touched: then it is what these will say.
// Else null.
flat_ptr untouched_flat(const object_t *object);

// The object's elements in their order, where nobody could have changed that list since it was deferred,
// whatever became of the elements. Else null.
const std::vector<vertex *> *untouched_vertices(const object_t *object);
const std::vector<surface_t *> *untouched_surfaces(const object_t *object);

// The records of an untouched object will be made of this flat mesh, its own from now on, which differs
// in values of these aspects alone.
void object_defer_values(object_t *object, std::shared_ptr<flat_mesh> flat, unsigned aspects);

// Gives the corners of an object whose flat mesh is whole these coordinates, one a corner, and marks it:
// those of these surfaces' corners (ascending; none: of all), the others are as they were. Records that are
// deferred stay so.
void object_set_texture_coords(object_t *object, const flat_array<flat_uv> &coords,
                               std::span<const int> surfaces);
// The same, but the caller marks: `flat`, complete, is what the records say then.
void object_write_texture_coords(object_t *object, const flat_ptr &flat,
                                 std::span<const int> surfaces);

// Its lists are those that were deferred, touched or not, in their order: object_free_deferred frees them
// and their records in one go, and announces nothing. It does nothing, and is false, for others.
bool object_is_deferred(const object_t *object);
bool object_free_deferred(object_t *object);

// Elements of the deferred objects under `top`, found by their addresses alone: no record is touched. It
// serves until anything changes.
class deferred_elements {
public:
    struct place_t {
        object_t *object = nullptr; // of an element that is not found
        const flat_mesh *flat =
            nullptr;   // the object's; where values are marked, not up to date in these
        int index = 0; // in its list
    };
    //   untouched  only objects none of whose vertices and corners was ever touched: the flat mesh says what
    //              these say, whatever is marked
    explicit deferred_elements(const object_t *top, bool untouched = false);
    [[nodiscard]] place_t find(const vertex *point) const;
    [[nodiscard]] place_t find(const surface_t *surface) const;
    [[nodiscard]] bool any() const { return !sets_.empty(); }

private:
    struct set_t {
        const deferred_records *records;
        object_t *object;
        const flat_mesh *flat;
    };
    [[nodiscard]] place_t find(int run, const void *element) const;
    void expect_next(int run) const;

    std::vector<set_t> sets_;
    // What was found last, and the element after it, which mostly is asked for next.
    mutable std::size_t last_ = 0;
    mutable place_t found_ = {};
    mutable const void *next_ = nullptr;
};

// For tests: the number of vertices and surfaces from which on a mesh is large; returns what it was.
int deferred_records_set_least(int least);

#endif
