#ifndef VESK_EDIT_CHECK_MODEL_CHECK_H
#define VESK_EDIT_CHECK_MODEL_CHECK_H

// Looks for problems of a model: open edges, cracks, doubled and degenerate elements. Reads flat
// meshes, changes nothing; the findings of an object are kept until the object changes.

#include "model/object.h"

#include <array>
#include <string>
#include <vector>

enum class model_problem {
    open_edge,         // of one polygon only
    crowded_edge,      // of more than two polygons
    t_vertex,          // a vertex on the middle of an open edge it is no end of
    duplicate_vertex,  // at the place of an earlier vertex
    duplicate_surface, // of the same vertices as an earlier one, whichever way round
    zero_area,         // a polygon without area
    non_planar,        // a polygon whose corners lie in no plane
    flipped,           // a polygon that faces against its neighbour
    unused_vertex,     // of no surface
    missing_texture,   // of the object: its file was not found
    crossing,          // two polygons that go through each other
};
constexpr int num_model_problems = 11;

struct found_problem {
    model_problem kind;
    object_t *object;
    // Places in the object's lists. Edges: both vertices; t_vertex: the vertex and one end of the
    // edge; duplicates: the later and the earlier one; flipped: the polygon and its neighbour; crossing:
    // both polygons;
    // else one place and -1 (missing_texture: two times -1).
    int first, second;
    // The surface that has the edge (open, crowded, t_vertex), else -1.
    int surface = -1;
    bool note = false; // there on purpose, as it seems: see model_check_notes.h
};

struct model_findings {
    std::array<int, num_model_problems> totals = {};
    std::array<int, num_model_problems> notes = {}; // of these, how many are notes only
    std::vector<found_problem> problems; // by kind within an object; the first ones of each kind

    [[nodiscard]] int total(model_problem kind) const
    {
        return totals[static_cast<std::size_t>(kind)];
    }
};

constexpr int problems_shown = 1000; // of each kind

// Of one object's own geometry, its children not.
model_findings object_find_problems(object_t *object, int most_of_each = problems_shown);

// Of all objects below `top`, hidden ones too, in tree order. Waits for the worker that is at them.
model_findings model_find_problems(object_t *top, int most_of_each = problems_shown);

// Has what changed below `top` looked at by a worker. True when there is nothing to wait for:
// model_find_problems answers at once, or in less time than anybody notices. Else the script
// "model_check_ended" is called when the worker ends, and this is to be asked again. Throws what the
// last worker has thrown.
bool model_check_begin(object_t *top);

// Gives up what the worker is at, when that has changed meanwhile. Costs next to nothing.
void model_check_follow();

// Gives up all of it and waits for the worker's end: before the program ends.
void model_check_end();

// "open_edge", ...; null for none of that number, and back (false for an unknown name).
const char *model_problem_name(model_problem kind);
bool model_problem_of_name(const char *name, model_problem *kind);

// "edge 3-7 belongs to surface 5 only", on one line.
std::string problem_text(const found_problem &problem);

// The places that a problem names, as one word: "3-7" for an edge, "-" for an object, else "5".
std::string problem_element(const found_problem &problem);

#endif
