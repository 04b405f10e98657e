#include "fileio/export_vrml2_tree.h"

#include "base/file_report.h"
#include "fileio/vrml_names.h"
#include "model/each.h"
#include "model/palette.h"
#include "model/vertex_colours.h"
#include "model/world.h"

#include <cmath>
#include <set>
#include <utility>

namespace {

// The format has one number for all three.
float ambient_share(const material &m)
{
    const float diffuse = m.diffuse[0] + m.diffuse[1] + m.diffuse[2];
    return diffuse > 0 ? within_one((m.ambient[0] + m.ambient[1] + m.ambient[2]) / diffuse) : 0;
}

void colour(export_text &out, const char *field, const float *rgb)
{
    out.add("  ", field, ' ', point3_t{rgb[0], rgb[1], rgb[2]}, '\n');
}

void write_material(export_text &out, const material &m, int index, bool lines)
{
    const std::string name = vrml2_node_name(vesk_material_get_name_index(index));
    out.add("material ", name.empty() ? "" : "DEF " + name + ' ', "Material {\n");
    out.add("  ambientIntensity ", ambient_share(m), '\n');
    colour(out, "diffuseColor", m.diffuse);
    colour(out, "specularColor", m.specular);
    colour(out, "emissiveColor", lines ? m.diffuse : m.emissive); // lines are not lit
    out.add("  shininess ", within_one(m.shininess / 128), "\n  transparency ",
            within_one(m.transparency), "\n}\n");
}

// Whether repeats and offsets can stand beside the coordinates: the format scales what it has moved.
bool has_placing(const object_t &object)
{
    return object.texture_repeat_x != 0 && object.texture_repeat_y != 0;
}

void write_texture(export_text &out, const export_object &object)
{
    out.add("texture ImageTexture { url ", export_quoted(object.picture.c_str()), " }\n");
    const object_t &o = *object.object;
    const float sx = o.texture_repeat_x, sy = o.texture_repeat_y;
    const float x = o.texture_offset_x, y = o.texture_offset_y;
    if (has_placing(o) && (sx != 1 || sy != 1 || x != 0 || y != 0))
        out.add("textureTransform TextureTransform { scale ", sx, ' ', sy, " translation ", x / sx,
                ' ', y / sy, " }\n");
}

// The first shape has the points, the others use them again.
void write_points(export_text &out, const export_object &object, bool *written)
{
    if (std::exchange(*written, true)) {
        out.add("coord USE points_", out.numbered, '\n');
        return;
    }
    out.add("coord DEF points_", ++out.numbered, " Coordinate { point [\n");
    for (const point3_t &p : *object.flat->positions)
        out.add(p, ",\n");
    out.add("] }\n");
}

template <class Index>
void indices(export_text &out, const export_object &object, const export_part &part,
             const char *field, Index &&index)
{
    out.add(field, " [\n");
    for (const int surface : part.surfaces) {
        const int first = object.first_corner(surface);
        const auto count = static_cast<int>(object.flat->surface_corners(surface).size());
        for (int i = 0; i < count; ++i)
            out.add(index(first + i), ", ");
        if (part.type == SURFACE_CLOSED_LINE)
            out.add(index(first), ", ");
        out.add("-1,\n");
    }
    out.add("]\n");
}

// Those of one part, corner by corner.
void write_coordinates(export_text &out, const export_object &object, const export_part &part)
{
    const bool placed = has_placing(*object.object);
    out.add("texCoord TextureCoordinate { point [\n");
    for (const int surface : part.surfaces) {
        const int first = object.first_corner(surface);
        const auto count = static_cast<int>(object.flat->surface_corners(surface).size());
        for (int i = first; i < first + count; ++i)
            out.add(placed ? (*object.flat->texture_coords)[static_cast<size_t>(i)] : object.uv(i),
                    ",\n");
    }
    out.add("] }\n");
    int number = 0;
    indices(out, object, part, "texCoordIndex", [&number](int) { return number++; });
}

bool has_coordinates(const export_object &object)
{
    const std::vector<flat_uv> &all = *object.flat->texture_coords;
    return !object.picture.empty() || std::any_of(all.begin(), all.end(), [](const flat_uv &at) {
        return at.u != 0 || at.v != 0;
    });
}

// Of the part's vertices: they stand in the place of the diffuse colour.
void write_colours(export_text &out, const export_object &object, const export_part &part)
{
    const std::vector<unsigned char> all = object_vertex_colours(object.object);
    if (all.empty())
        return;
    const export_vertices vertices = export_used_vertices(object, part);
    out.add("color Color { color [\n");
    for (const int index : vertices.used) {
        const unsigned char *rgb = all.data() + 3 * static_cast<std::size_t>(index);
        const auto share = [&](int i) { return static_cast<float>(rgb[i]) / 255; };
        out.add(point3_t{share(0), share(1), share(2)}, ",\n");
    }
    out.add("] }\n");
    indices(out, object, part, "colorIndex", [&](int corner) {
        return vertices.place((*object.flat->corners)[static_cast<size_t>(corner)]);
    });
}

void write_point_colours(export_text &out, const export_object &object)
{
    const std::vector<unsigned char> all = object_vertex_colours(object.object);
    if (all.empty())
        return;
    out.add("color Color { color [\n");
    for (std::size_t i = 0; i + 2 < all.size(); i += 3)
        out.add(point3_t{static_cast<float>(all[i]) / 255, static_cast<float>(all[i + 1]) / 255,
                         static_cast<float>(all[i + 2]) / 255},
                ",\n");
    out.add("] }\n");
}

void write_part(export_text &out, const export_object &object, const export_part &part,
                bool *points_written)
{
    const bool lines = part.type != SURFACE_POLYGON;
    out.add("Shape {\nappearance Appearance {\n");
    write_material(out, *part.look, part.index, lines);
    if (!lines && !object.picture.empty())
        write_texture(out, object);
    out.add("}\n");
    if (lines)
        out.add("geometry IndexedLineSet {\n");
    else
        out.add("geometry IndexedFaceSet {\nconvex FALSE\nsolid ", part.twosided ? "FALSE" : "TRUE",
                "\ncreaseAngle ", part.smooth ? "3.14159" : "0", '\n');
    write_points(out, object, points_written);
    indices(out, object, part, "coordIndex",
            [&object](int corner) { return (*object.flat->corners)[static_cast<size_t>(corner)]; });
    if (!lines && has_coordinates(object))
        write_coordinates(out, object, part);
    if (!lines)
        write_colours(out, object, part);
    out.add("}\n}\n");
}

void open(export_text &out, const export_object &object)
{
    const object_t &o = *object.object;
    if (is_set(o.url))
        out.add("Anchor {\nurl ", export_quoted(o.url), "\nchildren [\n");
    const std::string name = vrml2_node_name(object.name);
    if (!name.empty())
        out.add("DEF ", name, ' ');
    const bool light = o.type == OBJECT_LIGHT;
    if (light || (o.centre.x == 0 && o.centre.y == 0 && o.centre.z == 0))
        out.add("Group {\nchildren [\n");
    else
        out.add("Transform {\ncenter ", o.centre, "\nchildren [\n");
    if (name != object.name)
        out.add("WorldInfo { title ", export_quoted(object.name.c_str()), " }\n");
    if (light)
        out.add("PointLight { location ", o.centre, " }\n");
    bool points_written = false;
    if (flat_loose_points(*object.flat) > 0) {
        out.add("Shape {\ngeometry PointSet {\n");
        write_points(out, object, &points_written);
        write_point_colours(out, object);
        out.add("}\n}\n");
    }
    for (const export_part &part : object.parts)
        write_part(out, object, part, &points_written);
}

void close(export_text &out, const object_t &object)
{
    out.add(is_set(object.url) ? "]\n}\n]\n}\n" : "]\n}\n");
}

void begin(export_text &out) { out.add("#VRML V2.0 utf8\n\n"); }

} // namespace

const export_format vrml2_tree_format = {.name = "VRML 2.0",
                                         .data = false,
                                         .vertex_colours = true,
                                         .shown_picture = export_picture_beside,
                                         .begin = begin,
                                         .open = open,
                                         .close = close};

void vrml_material_notes(std::string (*node_name)(const std::string &), bool one_ambient)
{
    std::set<int> used;
    for_each_object(vesk_get_world(), [&used](const object_t *object) {
        int last = -1;
        for (const surface_t *surface : each<surface_t>(object->surfaces))
            if (surface->material != last)
                used.insert(written_index(last = surface->material));
    });
    int tints = 0;
    int names = 0;
    for (const int index : used) {
        const material &m = *vesk_palette_get_material(index);
        const float share = ambient_share(m);
        bool same = true;
        for (int i = 0; i < 3; ++i)
            same = same && std::abs(m.ambient[i] - share * m.diffuse[i]) < 0.005f;
        tints += same || !one_ambient ? 0 : 1;
        const std::string name = vesk_material_get_name_index(index);
        names += node_name(name) == name ? 0 : 1;
    }
    vesk_report_note(tints, "ambient colours as a share of the diffuse ones");
    vesk_report_note(names, "names of materials without signs that the format has not");
}
