// Makes the font of text objects from a font file: make_font FONT OUT.
//
// A model file with one object for each printable character of ASCII and Latin-1, named by it
// (UTF-8). A glyph is filled polygons about 1 unit high in z = 0, facing +z, its left edge at x = 0
// and its base line at y = 0. Holes are bridged to the outline round them, so that each polygon is
// one ring of corners.

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

namespace {

struct point_t {
    double x, y;
    bool operator==(const point_t &) const = default;
};
using ring_t = std::vector<point_t>;

double area(const ring_t &ring)
{
    double sum = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const point_t &a = ring[i];
        const point_t &b = ring[(i + 1) % ring.size()];
        sum += a.x * b.y - b.x * a.y;
    }
    return sum / 2;
}

double turn(const point_t &a, const point_t &b, const point_t &c)
{
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

bool is_inside(const point_t &p, const ring_t &ring)
{
    bool inside = false;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const point_t &a = ring[i];
        const point_t &b = ring[(i + 1) % ring.size()];
        if ((a.y > p.y) != (b.y > p.y) && p.x < a.x + (p.y - a.y) / (b.y - a.y) * (b.x - a.x))
            inside = !inside;
    }
    return inside;
}

// ---- outlines ----

// Collects the contours of a glyph, curves as chords.
class contours_t {
public:
    explicit contours_t(double scale) : scale_(scale) {}

    std::vector<ring_t> of(FT_Outline *outline)
    {
        FT_Outline_Funcs functions = {};
        functions.move_to = [](const FT_Vector *to, void *self) {
            static_cast<contours_t *>(self)->rings_.emplace_back();
            return static_cast<contours_t *>(self)->add(to);
        };
        functions.line_to = [](const FT_Vector *to, void *self) {
            return static_cast<contours_t *>(self)->add(to);
        };
        functions.conic_to = [](const FT_Vector *control, const FT_Vector *to, void *self) {
            return static_cast<contours_t *>(self)->add_conic(control, to);
        };
        functions.cubic_to = [](const FT_Vector *control1, const FT_Vector *control2,
                                const FT_Vector *to, void *self) {
            return static_cast<contours_t *>(self)->add_cubic(control1, control2, to);
        };
        FT_Outline_Decompose(outline, &functions, this);
        for (ring_t &ring : rings_) {
            while (ring.size() > 1 && ring.front() == ring.back())
                ring.pop_back();
        }
        std::erase_if(rings_, [](const ring_t &ring) { return ring.size() < 3; });
        return rings_;
    }

private:
    static constexpr int chords = 4; // of one curve

    [[nodiscard]] point_t scaled(const FT_Vector *v) const
    {
        return {static_cast<double>(v->x) * scale_, static_cast<double>(v->y) * scale_};
    }
    int add(const FT_Vector *to)
    {
        if (rings_.back().empty() || rings_.back().back() != scaled(to))
            rings_.back().push_back(scaled(to));
        return 0;
    }
    int add_conic(const FT_Vector *control, const FT_Vector *to)
    {
        const point_t a = rings_.back().back(), b = scaled(control), c = scaled(to);
        for (int i = 1; i <= chords; ++i) {
            const double t = static_cast<double>(i) / chords, s = 1 - t;
            rings_.back().push_back({s * s * a.x + 2 * s * t * b.x + t * t * c.x,
                                     s * s * a.y + 2 * s * t * b.y + t * t * c.y});
        }
        return 0;
    }
    int add_cubic(const FT_Vector *control1, const FT_Vector *control2, const FT_Vector *to)
    {
        const point_t a = rings_.back().back(), b = scaled(control1), c = scaled(control2),
                      d = scaled(to);
        for (int i = 1; i <= 2 * chords; ++i) {
            const double t = static_cast<double>(i) / (2 * chords), s = 1 - t;
            const double p = s * s * s, q = 3 * s * s * t, r = 3 * s * t * t, u = t * t * t;
            rings_.back().push_back(
                {p * a.x + q * b.x + r * c.x + u * d.x, p * a.y + q * b.y + r * c.y + u * d.y});
        }
        return 0;
    }

    double scale_;
    std::vector<ring_t> rings_;
};

// ---- holes ----

// The corner of `outer` to which a hole whose rightmost corner is `from` is bridged: on the edge
// that a ray to the right meets first, unless another corner stands in between.
std::size_t bridge_corner(const ring_t &outer, const point_t &from)
{
    double nearest = std::numeric_limits<double>::max();
    std::size_t corner = 0;
    point_t meeting = from;
    for (std::size_t i = 0; i < outer.size(); ++i) {
        const point_t &a = outer[i];
        const point_t &b = outer[(i + 1) % outer.size()];
        if (a.y == b.y || from.y < std::min(a.y, b.y) || from.y > std::max(a.y, b.y))
            continue;
        const double x = a.x + (from.y - a.y) / (b.y - a.y) * (b.x - a.x);
        if (x < from.x || x >= nearest)
            continue;
        nearest = x;
        meeting = {x, from.y};
        corner = a.x > b.x ? i : (i + 1) % outer.size();
    }
    // Corners in the triangle from, meeting, corner hide the one chosen: the one that the ray would
    // have to turn least for is seen.
    const point_t chosen = outer[corner];
    double least = std::numeric_limits<double>::max();
    for (std::size_t i = 0; i < outer.size(); ++i) {
        const point_t &p = outer[i];
        if (p.x <= from.x || p == chosen || !is_inside(p, {from, meeting, chosen}))
            continue;
        const double slope = std::fabs(p.y - from.y) / (p.x - from.x);
        if (slope < least) {
            least = slope;
            corner = i;
        }
    }
    return corner;
}

// The outer ring goes in and round the hole and back.
void bridge(ring_t *outer, const ring_t &hole)
{
    const auto rightmost = std::max_element(
        hole.begin(), hole.end(), [](const point_t &a, const point_t &b) { return a.x < b.x; });
    const std::size_t corner = bridge_corner(*outer, *rightmost);
    ring_t inserted(rightmost, hole.end());
    inserted.insert(inserted.end(), hole.begin(), rightmost + 1);
    inserted.push_back((*outer)[corner]);
    outer->insert(outer->begin() + static_cast<std::ptrdiff_t>(corner) + 1, inserted.begin(),
                  inserted.end());
}

// Counter-clockwise polygons without holes.
std::vector<ring_t> filled(std::vector<ring_t> &&rings, bool outer_is_positive)
{
    std::vector<ring_t> outers, holes;
    for (ring_t &ring : rings) {
        const bool outer = (area(ring) > 0) == outer_is_positive;
        if ((area(ring) > 0) != outer)
            std::reverse(ring.begin(), ring.end()); // outlines turn left, holes right
        (outer ? outers : holes).push_back(std::move(ring));
    }
    const auto rightmost = [](const ring_t &ring) {
        double most = ring.front().x;
        for (const point_t &p : ring)
            most = std::max(most, p.x);
        return most;
    };
    // From the right: a bridge never crosses a hole that is still to come.
    std::sort(holes.begin(), holes.end(),
              [&](const ring_t &a, const ring_t &b) { return rightmost(a) > rightmost(b); });
    const std::vector<ring_t> alone = outers;
    for (const ring_t &hole : holes) {
        std::size_t owner = outers.size();
        for (std::size_t i = 0; i < alone.size(); ++i) {
            const bool smaller = owner == outers.size() || area(alone[i]) < area(alone[owner]);
            if (smaller && is_inside(hole.front(), alone[i]))
                owner = i;
        }
        if (owner < outers.size())
            bridge(&outers[owner], hole);
    }
    return outers;
}

// The first three corners give a polygon its facing: they are put at the sharpest left turn.
void start_at_left_turn(ring_t *ring)
{
    std::size_t best = 0;
    double most = 0;
    const std::size_t n = ring->size();
    for (std::size_t i = 0; i < n; ++i) {
        const double left = turn((*ring)[i], (*ring)[(i + 1) % n], (*ring)[(i + 2) % n]);
        if (left > most) {
            most = left;
            best = i;
        }
    }
    std::rotate(ring->begin(), ring->begin() + static_cast<std::ptrdiff_t>(best), ring->end());
}

// ---- the file ----

std::string utf8(unsigned code)
{
    if (code < 0x80)
        return {static_cast<char>(code)};
    return {static_cast<char>(0xC0 | (code >> 6)), static_cast<char>(0x80 | (code & 0x3F))};
}

struct glyph_t {
    std::string name;
    std::vector<ring_t> polygons;
};

void write_glyph(std::FILE *file, const glyph_t &glyph)
{
    ring_t vertices; // each place once
    std::vector<std::vector<std::size_t>> corners;
    for (const ring_t &polygon : glyph.polygons) {
        corners.emplace_back();
        for (const point_t &p : polygon) {
            const auto found = std::find(vertices.begin(), vertices.end(), p);
            corners.back().push_back(static_cast<std::size_t>(found - vertices.begin()));
            if (found == vertices.end())
                vertices.push_back(p);
        }
    }
    const bool escaped = glyph.name == "\"" || glyph.name == "\\";
    std::fprintf(file, "OBJECT poly\nname \"%s%s\"\nnumvert %zu\n", escaped ? "\\" : "",
                 glyph.name.c_str(), vertices.size());
    for (const point_t &p : vertices)
        std::fprintf(file, "%.5g %.5g 0\n", p.x, p.y);
    std::fprintf(file, "numsurf %zu\n", corners.size());
    for (const std::vector<std::size_t> &polygon : corners) {
        std::fprintf(file, "SURF 0x20\nmat 0\nrefs %zu\n", polygon.size());
        for (const std::size_t i : polygon)
            std::fprintf(file, "%zu %.5g %.5g\n", i, vertices[i].x, vertices[i].y);
    }
    std::fprintf(file, "kids 0\n");
}

bool write_font(const char *name, const std::vector<glyph_t> &glyphs)
{
    std::FILE *file = std::fopen(name, "w");
    if (!file)
        return false;
    std::fprintf(file, "VESKb\nMATERIAL \"veskmat1\" rgb 1 1 1  amb 0.2 0.2 0.2  emis 0 0 0  "
                       "spec 0.5 0.5 0.5  shi 10  trans 0\n");
    std::fprintf(file, "OBJECT world\nkids %zu\n", glyphs.size());
    for (const glyph_t &glyph : glyphs)
        write_glyph(file, glyph);
    return std::fclose(file) == 0;
}

// The height of capital letters becomes 1.
double scale_of(FT_Face face)
{
    FT_Load_Char(face, 'H', FT_LOAD_NO_SCALE);
    return 1.0 / static_cast<double>(face->glyph->metrics.height);
}

bool make_glyph(FT_Face face, unsigned code, double scale, glyph_t *glyph)
{
    const FT_UInt index = FT_Get_Char_Index(face, code);
    if (index == 0 || FT_Load_Glyph(face, index, FT_LOAD_NO_SCALE) != 0)
        return false;
    FT_Outline *outline = &face->glyph->outline;
    const bool outer_is_positive = FT_Outline_Get_Orientation(outline) == FT_ORIENTATION_POSTSCRIPT;
    *glyph = {utf8(code), filled(contours_t(scale).of(outline), outer_is_positive)};
    double left = std::numeric_limits<double>::max();
    for (const ring_t &polygon : glyph->polygons) {
        for (const point_t &p : polygon)
            left = std::min(left, p.x);
    }
    for (ring_t &polygon : glyph->polygons) {
        for (point_t &p : polygon)
            p.x -= left;
        start_at_left_turn(&polygon);
    }
    return !glyph->polygons.empty();
}

} // namespace

int main(int argc, char **argv)
{
    FT_Library library;
    FT_Face face;
    if (argc != 3 || FT_Init_FreeType(&library) != 0 ||
        FT_New_Face(library, argv[1], 0, &face) != 0) {
        std::fprintf(stderr, "usage: make_font FONT OUT\n");
        return 1;
    }
    std::vector<glyph_t> glyphs;
    const double scale = scale_of(face);
    for (unsigned code = 0x21; code <= 0xFF; ++code) {
        glyph_t glyph;
        const bool printable = code < 0x7F || (code > 0xA0 && code != 0xAD);
        if (printable && make_glyph(face, code, scale, &glyph))
            glyphs.push_back(std::move(glyph));
    }
    FT_Done_Face(face);
    FT_Done_FreeType(library);
    if (!write_font(argv[2], glyphs)) {
        std::fprintf(stderr, "can't write %s\n", argv[2]);
        return 1;
    }
    return 0;
}
