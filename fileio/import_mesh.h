#ifndef VESK_FILEIO_IMPORT_MESH_H
#define VESK_FILEIO_IMPORT_MESH_H

// The arrays of one object while an importer fills them.

#include "model/mesh_arrays.h"

#include <string>
#include <unordered_map>
#include <vector>

class import_mesh {
public:
    // Returns the point's index.
    int add_point(float x, float y, float z);
    // The same for the point at a place of a longer list, which is added when it is first asked for.
    int add_point_of(int place, float x, float y, float z);
    void add_corner(int point, float u = 0, float v = 0);
    // Ends the surface whose corners were added since the last one; one with too few is dropped.
    void end_surface(int palette_index, int flags);

    // Drops the points that no surface has, but for those that `keep` names. Returns which points stay.
    std::vector<bool> drop_unused_points(const std::vector<bool> &keep = {});

    [[nodiscard]] bool empty() const { return attributes_.empty(); }
    [[nodiscard]] int num_points() const { return static_cast<int>(points_.size() / 3); }
    // A new object of everything that was added, with its normals.
    [[nodiscard]] object_t *make_object(const std::string &name) const;

private:
    std::vector<float> points_, uv_;
    std::vector<int> offsets_ = {0}, corners_;
    std::vector<vesk_surface_attributes_t> attributes_;
    std::unordered_map<int, int> known_; // indices by places
};

// The one message box about a file that cannot be read; returns null.
object_t *import_refused(const std::string &filename, const char *reason);

// The line about an import that the user ended; returns null.
object_t *import_cancelled();

// The name of a file without its folder and suffix.
std::string import_base_name(const char *filename);

// Makes the names of a tree fit on a line of a model file: control characters become blanks, long
// names are shortened with a complaint in the report.
void import_fit_names(object_t *top);

// Palette index of a plain colour; the other values are those of a new material.
int import_colour(float r, float g, float b);

#endif
