#ifndef VESK_EDIT_DOCUMENT_OBJECT_IMAGE_H
#define VESK_EDIT_DOCUMENT_OBJECT_IMAGE_H

// An object of a state of the history. There is one for each state that changed it, of a hundred thousand
// objects perhaps, so it holds little of its own: what seldom changes is shared with the image
// before, or with that of another object that is alike; the geometry of a small one is its flat mesh.

#include "model/flat_mesh.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct property_image {
    std::string name, kind, value;
};
std::vector<property_image> properties_of(const listitem *list);
bool properties_equal(const std::vector<property_image> &a, const std::vector<property_image> &b);

std::optional<std::string> optional_text(const char *text);

struct object_details {
    object_t record = {}; // the plain fields; its pointers, counts, frame and scratch word are zero
    std::optional<std::string> data, url;
    std::optional<std::string> texture_file; // of the texture table, when the object has one
    std::vector<property_image> properties;
};

struct object_image {
    int identity = 0;
    point3_t centre = {};
    float rotation[9] = {};
    std::string name;
    std::shared_ptr<const object_details> details; // never null
    // Never null. Its records may be gone, or it has none: nobody reads them. Face normals are null when each
    // follows from its corners.
    flat_ptr geometry;

    object_image() = default;
    object_image(const object_image &) = delete;
    object_image &operator=(const object_image &) = delete;
    ~object_image();

    // The plain fields, with the frame; pointers and counts are zero.
    [[nodiscard]] object_t record() const;
};
using image_ptr = std::shared_ptr<const object_image>;

// The object as it is. `before` is an earlier image of it, or null; `alike` one of another object that may have the
// same details, or null.
image_ptr image_of(object_t *object, const object_image *before, const object_image *alike);

// Whether an object that was marked as changed is as it was, to the bit: a drag was taken back.
// `face_normals` are those that `now` was made from.
bool is_unchanged(const object_image &now, const flat_array<point3_t> &face_normals,
                  const object_image &before);
// Whether they differ by rounding at most. `slack` is the loss allowed at any scale; an infinite one allows
// every difference of positions.
bool images_near(const object_image &a, const object_image &b, float slack = 0);

// Bytes of the arrays that images hold, each counted once however many share it.
std::size_t images_bytes();

#endif
