#include "edit/mesh/tessellator.h"

#include "base/messages.h"

#include <GL/glu.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr int num_quad_kinds = 1 << 12;

bool is_finite(const point3_t &p)
{
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

} // namespace

// The tessellator takes the polygon's longest normal over three corners, drops that normal's
// largest coordinate, turns the rest so that the outline goes round counterclockwise, and sweeps
// over it from left to right, lower corners first. All that it asks then is which of two corners
// comes first and on which side of two corners a third one lies. When all normals over three
// corners agree on the coordinate to drop and the quad is clearly convex without it, the second
// question always has the same answer: so the order of the corners, and which lie above each other,
// decide what it does. Returns that as a number, -1 for all other quads.
int tessellator_t::kind_of_quad(std::span<const point3_t> quad)
{
    double p[4][3], cross[4][3];
    for (std::size_t i = 0; i < 4; ++i) {
        p[i][0] = quad[i].x;
        p[i][1] = quad[i].y;
        p[i][2] = quad[i].z;
    }
    double longest = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const double *before = p[(i + 3) % 4], *at = p[i], *after = p[(i + 1) % 4];
        const double a[3] = {at[0] - before[0], at[1] - before[1], at[2] - before[2]};
        const double b[3] = {after[0] - at[0], after[1] - at[1], after[2] - at[2]};
        for (std::size_t k = 0; k < 3; ++k)
            cross[i][k] = a[(k + 1) % 3] * b[(k + 2) % 3] - a[(k + 2) % 3] * b[(k + 1) % 3];
        longest = std::max(longest, a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
    }
    std::size_t axis = 0;
    for (std::size_t k = 1; k < 3; ++k)
        axis = std::fabs(cross[0][k]) > std::fabs(cross[0][axis]) ? k : axis;
    const double sign = cross[0][axis] < 0 ? -1 : 1;
    const std::size_t s = (axis + 1) % 3, t = (axis + 2) % 3;
    for (const auto &normal : cross) {
        const double up = sign * normal[axis];
        const double across = std::max(std::fabs(normal[s]), std::fabs(normal[t]));
        if (!(up > 1e-6 * longest && up > 1.00001 * across)) // false for what is no number, too
            return -1;
    }
    int kind = 0, bit = 1;
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = i + 1; j < 4; ++j) {
            const bool above = p[i][s] == p[j][s];
            const bool first = above ? sign * p[i][t] <= sign * p[j][t] : p[i][s] < p[j][s];
            kind |= first ? bit : 0;
            kind |= above ? bit << 6 : 0;
            bit <<= 1;
        }
    }
    return kind;
}

// The edge-flag callback makes it report separate triangles only; without a combine callback
// outlines that cross themselves are errors.
tessellator_t::tessellator_t() : tess_(gluNewTess()), quads_(num_quad_kinds)
{
    gluTessCallback(tess_, GLU_TESS_VERTEX_DATA, reinterpret_cast<_GLUfuncptr>(on_vertex));
    gluTessCallback(tess_, GLU_TESS_EDGE_FLAG, reinterpret_cast<_GLUfuncptr>(on_edge_flag));
    gluTessCallback(tess_, GLU_TESS_ERROR_DATA, reinterpret_cast<_GLUfuncptr>(on_error));
}

tessellator_t::~tessellator_t() { gluDeleteTess(tess_); }

void tessellator_t::on_vertex(void *corner, void *self)
{
    static_cast<tessellator_t *>(self)->triangles_.push_back(
        static_cast<const corner_t *>(corner)->index);
}

void tessellator_t::on_edge_flag(unsigned char) {}

void tessellator_t::on_error(unsigned code, void *self)
{
    console_printf("triangulation error (%d) probably overlapping polygon edges (%s)\n",
                   static_cast<int>(code), gluErrorString(code));
    static_cast<tessellator_t *>(self)->failed_ = true;
}

bool tessellator_t::cut_slowly(std::span<const point3_t> outline)
{
    triangles_.clear();
    failed_ = false;
    coordinates_.resize(outline.size());
    gluTessBeginPolygon(tess_, this);
    gluTessBeginContour(tess_);
    for (std::size_t i = 0; i < outline.size(); ++i) {
        corner_t &corner = coordinates_[i];
        corner = {{outline[i].x, outline[i].y, outline[i].z}, static_cast<int>(i)};
        gluTessVertex(tess_, corner.at, &corner);
    }
    gluTessEndContour(tess_);
    gluTessEndPolygon(tess_);
    return !failed_ && !triangles_.empty() && triangles_.size() % 3 == 0;
}

bool tessellator_t::cut_quad(std::span<const point3_t> outline, int kind)
{
    quad_answer &answer = quads_[kind];
    if (answer.known) {
        triangles_.assign(std::begin(answer.corners), std::end(answer.corners));
        return true;
    }
    const bool done = cut_slowly(outline);
    if (done && triangles_.size() == std::size(answer.corners)) {
        std::transform(triangles_.begin(), triangles_.end(), answer.corners,
                       [](int corner) { return static_cast<std::int8_t>(corner); });
        answer.known = true;
    }
    return done;
}

bool tessellator_t::cut(std::span<const point3_t> outline)
{
    // The library does not survive coordinates that are no numbers.
    if (!std::all_of(outline.begin(), outline.end(), is_finite)) {
        console_printf("triangulation error: coordinates that are no numbers\n");
        return false;
    }
    const int kind = outline.size() == 4 ? kind_of_quad(outline) : -1;
    return kind < 0 ? cut_slowly(outline) : cut_quad(outline, kind);
}
