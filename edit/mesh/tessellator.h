#ifndef VESK_EDIT_MESH_TESSELLATOR_H
#define VESK_EDIT_MESH_TESSELLATOR_H

// Cutting polygons into triangles with GLU's tessellator: one for many polygons, with a short cut
// for convex quads that gives exactly what it would.

#include "base/types.h"

#include <cstdint>
#include <span>
#include <vector>

class tessellator_t {
public:
    tessellator_t();
    ~tessellator_t();
    tessellator_t(const tessellator_t &) = delete;
    tessellator_t &operator=(const tessellator_t &) = delete;

    // Fills triangles() with places in the outline, three for each. False when the outline is
    // refused (reported on the console), or too flat to give any.
    bool cut(std::span<const point3_t> outline);
    // A number for what cut() answers for a clearly convex quad, -1 for all others. On any thread.
    static int kind_of_quad(std::span<const point3_t> quad);
    // Places in a quad of this kind, three for each of two triangles; null while cut() had none.
    [[nodiscard]] const std::int8_t *quad_triangles(int kind) const
    {
        return quads_[kind].known ? quads_[kind].corners : nullptr;
    }
    // cut() without the short cut.
    bool cut_slowly(std::span<const point3_t> outline);
    [[nodiscard]] std::span<const int> triangles() const { return triangles_; }

private:
    struct corner_t {
        double at[3];
        int index;
    };
    // The tessellator's answer for quads of one kind; none while `known` is false.
    struct quad_answer {
        bool known;
        std::int8_t corners[6];
    };

    static void on_vertex(void *corner, void *self);
    static void on_edge_flag(unsigned char flag);
    static void on_error(unsigned code, void *self);
    bool cut_quad(std::span<const point3_t> outline, int kind);

    class GLUtesselator *tess_;
    std::vector<corner_t> coordinates_;
    std::vector<int> triangles_;
    std::vector<quad_answer> quads_;
    bool failed_ = false;
};

#endif
