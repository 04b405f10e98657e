#ifndef VESK_EDIT_SYMMETRY_ELEMENTS_H
#define VESK_EDIT_SYMMETRY_ELEMENTS_H

// Selected elements and their counterparts, for operations that symmetry repeats on the other side.

#include "edit/document/edge_selection.h"
#include "model/vec3d.h"

#include <functional>
#include <vector>

// Of the select mode's kind; the others are empty.
struct element_set {
    std::vector<vertex *> vertices; // in the order of the selection
    std::vector<edge_ends> edges;
    std::vector<surface_t *> surfaces;
    std::vector<object_t *> owners;
};
element_set elements_of_selection();
// Their counterparts; how many have none is added up. The order of vertices is reversed, so that a
// polygon through them faces as the mirror shows it.
element_set selected_counterparts(int *without);
// Of surfaces: those whose vertices are the counterparts of theirs, each once.
std::vector<surface_t *> counterparts_of(const listitem *surfaces, int *without);
bool same_elements(const element_set &a, const element_set &b);
// The selection becomes these, as far as they are still there.
void select_element_set(const element_set &set);

// Runs an operation on the selection. While symmetry acts, and unless the selection is its own
// counterpart, it is run once more on the counterparts, if each has one; both are one undo record,
// and what the first one selected is selected. It is not repeated when it changed nothing.
void on_both_sides(const std::function<void()> &operation);

// Of what is opened while it lives the first undo record stays, a whole-model one: it takes
// everything back.
class single_record {
public:
    single_record();
    ~single_record();
    single_record(const single_record &) = delete;
    single_record &operator=(const single_record &) = delete;
    [[nodiscard]] bool was_opened() const;
    // The model as it was, when something was opened.
    void take_back();

private:
    void join();

    unsigned serial_;
};

#endif
