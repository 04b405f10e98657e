#ifndef VESK_EDIT_MESH_SOLID_FACES_H
#define VESK_EDIT_MESH_SOLID_FACES_H

// Some solids at once: their polygons cut along all lines where they meet, and for each piece which
// solids it lies in. All decisions are exact.

#include "base/progress.h"
#include "edit/mesh/crossings.h"
#include "edit/mesh/solid_meshes.h"

#include <span>
#include <utility>
#include <vector>

// How often a face lies in each solid: the solid, and how many of its layers are around.
using windings_t = std::vector<std::pair<int, int>>;

class solid_faces {
public:
    // `share` of the progress is what this work is.
    solid_faces(solid_meshes &solids, progress_t &progress);
    // False when the user cancelled.
    bool compute();

    struct face_t {
        int unit;
        int triangle; // -1: the whole polygon, which nothing crosses
        int first, end;
        int patch = -1;
        int twin = -1; // the first of the faces that cover the same area, when it is not this
        bool opposite = false; // to that one
    };
    [[nodiscard]] const std::vector<face_t> &faces() const { return faces_; }
    [[nodiscard]] std::span<const int> outline(const face_t &face) const
    {
        return std::span(outlines_).subspan(face.first, face.end - face.first);
    }
    [[nodiscard]] const std::vector<self_crossing_t> &self_crossings() const
    {
        return crossings_.self;
    }
    // Just in front of the face, and just behind it. Not of a twin.
    [[nodiscard]] const windings_t &in_front(int face) const;
    void behind(int face, windings_t *out) const;

private:
    struct line_t {
        int from, to;
        exact_plane plane;
        bool side; // of the triangle
    };
    bool find_faces();
    void add_whole(int unit);
    void cut_triangle(int triangle, std::span<const meeting_t> meetings);
    void split_lines(const solid_triangle &t, std::vector<line_t> &lines,
                     std::vector<std::vector<int>> &splits);
    void meet_lines(const solid_triangle &t, const line_t &a, const line_t &b,
                    std::vector<int> &a_splits, std::vector<int> &b_splits);
    void find_twins();
    [[nodiscard]] std::vector<int> whole_faces() const;
    [[nodiscard]] std::vector<bool> points_of_cuts() const;
    void join_patches();
    bool find_windings();
    [[nodiscard]] bool wind(int face, int attempt, windings_t *out);
    [[nodiscard]] int point_inside(int face, int attempt);
    [[nodiscard]] int triangle_of(const face_t &face) const;

    solid_meshes &solids_;
    progress_t &progress_;
    crossings_t crossings_;
    std::vector<bool> touched_; // of the units
    std::vector<bool> covered_; // triangles that share an area with others
    std::vector<face_t> faces_;
    std::vector<int> outlines_;
    std::vector<windings_t> patches_;
    std::vector<std::vector<int>> twins_; // of the first face of each group
    std::vector<int> group_of_;
};

#endif
