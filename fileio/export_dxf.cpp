#include "fileio/export_dxf.h"

#include "base/file_report.h"
#include "fileio/dxf_scan.h"
#include "model/world.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace {

// Shortest text from which the same number is read.
std::string number_text(float value)
{
    std::array<char, 32> text = {};
    const float finite = std::isfinite(value) ? value + 0.0f : 0.0f; // no -0
    const auto end = std::to_chars(text.data(), text.data() + text.size(), finite).ptr;
    return {text.data(), end};
}

std::string point_text(int number, const point3_t &p)
{
    const std::string n = std::to_string(number);
    return "1" + n + "\n" + number_text(p.x) + "\n2" + n + "\n" + number_text(-p.z) + "\n3" + n +
           "\n" + number_text(p.y) + "\n";
}

// The outermost group around an object, or itself. A group that holds the whole scene is none.
const object_t *outermost(const object_t *object)
{
    const object_t *world = vesk_get_world();
    const object_t *scene = world;
    if (world->num_children == 1) {
        const auto *only = reinterpret_cast<const object_t *>(world->children->data);
        scene = only->type == OBJECT_GROUP ? only : world;
    }
    while (object->parent != nullptr && object->parent != scene && object->parent != world)
        object = object->parent;
    return object;
}

// Letters that end a name elsewhere become "_", those beyond ASCII their numbers.
std::string layer_name(const object_t *object)
{
    const std::string name = export_one_line(outermost(object)->name);
    std::string text;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const auto c = static_cast<unsigned char>(name[i]);
        if (c < 0x80) {
            text += std::string_view("<>/\\\":;?*|=`,").find(name[i]) == std::string_view::npos
                        ? name[i]
                        : '_';
            continue;
        }
        // Of two or three bytes; what is beyond the format's four digits is "_".
        const std::size_t more = c >= 0xF0 ? 3 : c >= 0xE0 ? 2 : 1;
        unsigned code = c & (0x3Fu >> more);
        for (std::size_t k = 1; k <= more && i + k < name.size(); ++k)
            code = code << 6 | (static_cast<unsigned char>(name[i + k]) & 0x3F);
        i += more;
        std::array<char, 12> digits = {};
        std::snprintf(digits.data(), digits.size(), "\\U+%04X", code);
        text += code <= 0xFFFF ? digits.data() : "_";
    }
    return text.find_first_not_of(' ') == std::string::npos ? "0" : text;
}

// What follows an entity's type.
std::string head_of(const std::string &layer, const export_part &part)
{
    const auto byte = [](float share) {
        return static_cast<std::uint8_t>(within_one(share) * 255 + 0.5f);
    };
    const float *rgb = part.look->diffuse;
    const int colour = dxf_nearest_colour({byte(rgb[0]), byte(rgb[1]), byte(rgb[2])});
    return "8\n" + layer + "\n62\n" + std::to_string(colour) + "\n";
}

void put_line(export_text &out, const export_object &object, const export_part &part, int surface,
              const std::string &head, const std::string &layer)
{
    const auto corners = object.flat->surface_corners(surface);
    const bool closed = part.type == SURFACE_CLOSED_LINE && corners.size() > 2;
    if (corners.size() == 2) {
        out.add("0\nLINE\n", head, point_text(0, object.point(static_cast<int>(corners[0]))),
                point_text(1, object.point(static_cast<int>(corners[1]))));
        return;
    }
    out.add("0\nPOLYLINE\n", head, "66\n1\n10\n0\n20\n0\n30\n0\n70\n", closed ? 9 : 8, '\n');
    for (const auto corner : corners)
        out.add("0\nVERTEX\n8\n", layer, '\n',
                point_text(0, object.point(static_cast<int>(corner))), "70\n32\n");
    out.add("0\nSEQEND\n");
}

// A face of three or four corners; `hidden` has a bit for each side that is not to be seen.
void put_face(export_text &out, const export_object &object, std::span<const int> corners,
              int hidden, const std::string &head)
{
    out.add("0\n3DFACE\n", head);
    for (int i = 0; i < 4; ++i) // the last one twice for a triangle
        out.add(point_text(
            i,
            object.point(
                corners[std::min<std::size_t>(static_cast<std::size_t>(i), corners.size() - 1)])));
    if (hidden != 0)
        out.add("70\n", hidden, '\n');
}

void put_polygon(export_text &out, const export_object &object, const export_part &part,
                 int surface, const std::string &head)
{
    const auto corners = object.flat->surface_corners(surface);
    if (corners.size() <= 4) {
        std::array<int, 4> face = {};
        std::transform(corners.begin(), corners.end(), face.begin(),
                       [](auto corner) { return static_cast<int>(corner); });
        put_face(out, object, std::span(face).first(corners.size()), 0, head);
        return;
    }
    export_part alone = part;
    alone.surfaces = {surface};
    const std::vector<int> triangles = export_triangles(object, alone);
    const int first = object.first_corner(surface), count = static_cast<int>(corners.size());
    for (std::size_t i = 0; i + 3 <= triangles.size(); i += 3) {
        std::array<int, 3> face = {};
        int hidden = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            const int from = triangles[i + k] - first, to = triangles[i + (k + 1) % 3] - first;
            face[k] = static_cast<int>(corners[static_cast<std::size_t>(from)]);
            if (to != (from + 1) % count)
                hidden |= 1 << k;
        }
        put_face(out, object, face, hidden, head);
    }
    vesk_report_note(1, "polygons cut into triangles");
}

void begin(export_text &out) { out.add("0\nSECTION\n2\nENTITIES\n"); }

void open(export_text &out, const export_object &object)
{
    const std::string layer = layer_name(object.object);
    for (const export_part &part : object.parts) {
        const std::string head = head_of(layer, part);
        for (const int surface : part.surfaces) {
            if (is_line(part.type))
                put_line(out, object, part, surface, head, layer);
            else
                put_polygon(out, object, part, surface, head);
        }
    }
    for (const int v : flat_loose_vertices(*object.flat))
        out.add("0\nPOINT\n8\n", layer, '\n', point_text(0, object.point(v)));
}

void end(export_text &out) { out.add("0\nENDSEC\n0\nEOF\n"); }

} // namespace

const export_format dxf_format = {.name = "DXF",
                                  .lights = false,
                                  .pictures = false,
                                  .smooth = false,
                                  .urls = false,
                                  .data = false,
                                  .begin = begin,
                                  .open = open,
                                  .end = end};
