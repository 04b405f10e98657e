#include "fileio/export_plain.h"

#include "model/object_notes.h"
#include "model/palette.h"

#include <algorithm>
#include <cstdio>

namespace {

// ---- triangle lists, in the form that fileio/import_text.cpp reads ----

void put_triangles(export_text &out, const export_object &object)
{
    if (object.parts.empty())
        return;
    // A line that begins with a letter names the object; "#" begins a comment.
    std::string name = object.name;
    std::replace(name.begin(), name.end(), '#', '_');
    const unsigned char first = name.empty() ? '\0' : static_cast<unsigned char>(name[0]);
    const bool letter =
        (first >= 'a' && first <= 'z') || (first >= 'A' && first <= 'Z') || first >= 0x80;
    out.add(letter ? "" : "object ", name, '\n');
    for (const export_part &part : object.parts) {
        const float *rgb = part.look->diffuse;
        unsigned packed = 0;
        for (int i = 0; i < 3; ++i)
            packed =
                packed << 8 | static_cast<unsigned>(std::clamp(rgb[i], 0.0f, 1.0f) * 255 + 0.5f);
        char colour[16];
        snprintf(colour, sizeof colour, " 0x%06x\n", packed);
        const std::vector<int> corners = export_triangles(object, part);
        for (size_t i = 0; i < corners.size(); ++i)
            out.add(i % 3 == 0 ? "" : " ",
                    object.point((*object.flat->corners)[static_cast<size_t>(corners[i])]),
                    i % 3 == 2 ? colour : "");
    }
}

// ---- the plain scene text ----

void colour(export_text &out, const char *word, const float *rgb)
{
    out.add("  ", word, ' ', point3_t{rgb[0], rgb[1], rgb[2]}, '\n');
}

// The whole palette: surfaces name materials by their places in it.
void materials(export_text &out)
{
    for (int i = 0; i < vesk_get_num_palette(); ++i) {
        const material &m = *vesk_palette_get_material(i);
        out.add("material {\n  index ", i, "\n  name ", export_quoted(m.name), '\n');
        colour(out, "diffuse", m.diffuse);
        colour(out, "ambient", m.ambient);
        colour(out, "specular", m.specular);
        colour(out, "emissive", m.emissive);
        out.add("  shininess ", m.shininess, "\n  transparency ", m.transparency, "\n}\n");
    }
}

void write_light(export_text &out, const object_t &light, const std::string &name)
{
    out.add("light {\n  name ", export_quoted(name.c_str()), "\n  position ", light.centre,
            "\n}\n");
}

void surfaces(export_text &out, const export_object &object, const export_part &part)
{
    const char *kinds[] = {"polygons", "closed_lines", "lines"};
    out.add(kinds[part.type], " {\n  material ", part.index, "\n  smooth ", part.smooth ? 1 : 0,
            "\n  twosided ", part.twosided ? 1 : 0, '\n');
    for (const int surface : part.surfaces) {
        const auto corners = object.flat->surface_corners(surface);
        const int first = object.first_corner(surface);
        out.add("  corners ", static_cast<int>(corners.size()));
        for (size_t i = 0; i < corners.size(); ++i) {
            out.add(' ', static_cast<int>(corners[i]));
            if (!object.picture.empty())
                out.add(' ', object.uv(first + static_cast<int>(i)));
        }
        out.add('\n');
    }
    out.add("}\n");
}

void open(export_text &out, const export_object &object)
{
    const object_t &o = *object.object;
    out.add("object {\nname ", export_quoted(object.name.c_str()), "\ncentre ", o.centre, '\n');
    if (is_set(o.url))
        out.add("url ", export_quoted(o.url), '\n');
    if (const std::string data = object_user_data(&o); !data.empty())
        out.add("data ", export_quoted(data.c_str()), '\n');
    if (object.parts.empty())
        return;
    if (!object.picture.empty())
        out.add("texture ", export_quoted(object.picture.c_str()), '\n');
    out.add("vertices ", object.flat->num_vertices(), " {\n");
    for (int i = 0; i < object.flat->num_vertices(); ++i)
        out.add("  ", object.point(i), "  ", object.normal(i), '\n');
    out.add("}\n");
    for (const export_part &part : object.parts)
        surfaces(out, object, part);
}

void close(export_text &out, const object_t & /*object*/) { out.add("}\n"); }

void begin(export_text &out, const char *program)
{
    out.add("# VESK plain scene 1 for ", program, '\n');
    materials(out);
}
void begin_dive(export_text &out) { begin(out, "Dive"); }
void begin_dvs(export_text &out) { begin(out, "dVS"); }
void begin_massive(export_text &out) { begin(out, "MASSIVE"); }

} // namespace

const export_format triangle_format = {.name = "the triangle list",
                                       .lines = false,
                                       .lights = false,
                                       .pictures = false,
                                       .smooth = false,
                                       .points = false,
                                       .urls = false,
                                       .data = false,
                                       .empty_objects = false,
                                       .open = put_triangles};
const export_format dive_format = {
    .name = "Dive", .begin = begin_dive, .light = write_light, .open = open, .close = close};
const export_format dvs_format = {
    .name = "dVS", .begin = begin_dvs, .light = write_light, .open = open, .close = close};
const export_format massive_format = {
    .name = "MASSIVE", .begin = begin_massive, .light = write_light, .open = open, .close = close};
