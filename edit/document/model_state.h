#ifndef VESK_EDIT_DOCUMENT_MODEL_STATE_H
#define VESK_EDIT_DOCUMENT_MODEL_STATE_H

// One picture of the whole model: tree, records, texts, geometry, palette and selection. Undo, the
// journal, rescue copies and autosave are made of these. A picture is immutable and shared: taking
// one costs the objects that changed since the last, and their unchanged arrays are shared too.
// Objects are named by their identities, elements of the selection by their places.

#include "edit/document/object_image.h"
#include "edit/document/selection_internal.h"
#include "model/material.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

struct state_entry {
    image_ptr image;
    int parent; // place of the parent, -1 for the world
    int num_children;
    bool operator==(const state_entry &) const = default;
};

struct material_image {
    material values; // its pointers are null
    std::optional<std::string> name;
    std::vector<property_image> properties;
};

// Selected elements that follow each other in their owner's list, in the order of the selection.
struct selection_run {
    int identity;
    int first;
    int count;
    bool operator==(const selection_run &) const = default;
};
// An edge that was chosen: its ends by their places.
struct selected_edge {
    int identity;
    int a, b;
    bool operator==(const selected_edge &) const = default;
};
struct selection_image {
    int mode = SELECT_TREE;
    std::vector<selection_run> vertices, surfaces;
    std::vector<int> objects;                        // identities
    std::optional<std::vector<selected_edge>> edges; // none: those between the vertices
    bool operator==(const selection_image &) const = default;
};

struct model_state {
    static constexpr int block_size = 128;
    using block = std::vector<state_entry>; // block_size entries, the last block fewer

    int num_objects = 0; // the world included; depth first
    std::vector<std::shared_ptr<const block>> blocks;
    std::shared_ptr<const std::vector<material_image>> palette;
    std::shared_ptr<const selection_image> selection;

    [[nodiscard]] const state_entry &entry(int i) const
    {
        return (*blocks[i / block_size])[i % block_size];
    }
    // The same images: captured without a change in between.
    bool operator==(const model_state &) const = default;
};
using state_ptr = std::shared_ptr<const model_state>;

// The model as it is. Unchanged since the last call: the same pointer.
state_ptr model_state_capture();

// True when both hold the same model to the bit, whatever is selected; a palette that only grew is
// the same, for entries are never taken away. Its cost is that of the arrays that are not shared.
bool model_state_same(const model_state &a, const model_state &b);

// True when both have the same objects, lists and texts, and all numbers agree but for rounding.
// `reach` is the largest coordinate that was in between: coordinates of that size were rounded to
// its steps.
bool model_state_nearly_equal(const model_state &a, const model_state &b, float reach = 0);
// The largest coordinate; infinite when one is no number.
float model_state_reach(const model_state &state);

// Bytes of the arrays that images hold, each counted once however many share it.
std::size_t model_state_bytes();

void model_state_reset_for_test();

#endif
