#include "fileio/export_inventor.h"

#include "fileio/vrml_names.h"
#include "model/palette.h"

#include <algorithm>

namespace {

void colour(export_text &out, const char *field, const float *rgb)
{
    out.add("  ", field, ' ', point3_t{rgb[0], rgb[1], rgb[2]}, '\n');
}

void write_material(export_text &out, const export_part &part)
{
    const material &m = *part.look;
    const bool line = part.type != SURFACE_POLYGON;
    const std::string name = vrml1_node_name(vesk_material_get_name_index(part.index));
    if (!name.empty())
        out.add("DEF ", name, ' ');
    out.add("Material {\n");
    colour(out, "ambientColor", m.ambient);
    colour(out, "diffuseColor", m.diffuse);
    colour(out, "specularColor", m.specular);
    colour(out, "emissiveColor", line ? m.diffuse : m.emissive); // lines are not lit
    out.add("  shininess ", within_one(m.shininess / 128), "\n  transparency ",
            within_one(m.transparency), "\n}\n");
}

// Indices of all corners, -1 after each surface.
template <class Index>
void indices(export_text &out, const export_object &object, const export_part &part,
             const char *field, Index &&index)
{
    out.add("  ", field, " [\n");
    for (const int surface : part.surfaces) {
        const int first = object.first_corner(surface);
        const auto corners = object.flat->surface_corners(surface);
        for (size_t i = 0; i < corners.size(); ++i)
            out.add(index(first + static_cast<int>(i)), ", ");
        if (part.type == SURFACE_CLOSED_LINE)
            out.add(index(first), ", ");
        out.add("-1,\n");
    }
    out.add("  ]\n");
}

// Of smooth surfaces the indices of the points are those of the normals, too.
void write_vertex_normals(export_text &out, const export_object &object)
{
    out.add("Normal {\n  vector [\n");
    for (const point3_t &normal : *object.flat->normals)
        out.add(normal, ",\n");
    out.add("  ]\n}\nNormalBinding { value PER_VERTEX_INDEXED }\n");
}

void write_face_normals(export_text &out, const export_object &object, const export_part &part)
{
    out.add("Normal {\n  vector [\n");
    for (const int surface : part.surfaces)
        out.add(object.face_normal(surface), ",\n");
    out.add("  ]\n}\nNormalBinding { value PER_FACE }\n");
}

void write_part(export_text &out, const export_object &object, const export_part &part)
{
    write_material(out, part);
    const auto place = [&object](int corner) {
        return (*object.flat->corners)[static_cast<size_t>(corner)];
    };
    if (part.type != SURFACE_POLYGON) {
        out.add("IndexedLineSet {\n");
        indices(out, object, part, "coordIndex", place);
        out.add("}\n");
        return;
    }
    out.add("ShapeHints {\n  vertexOrdering COUNTERCLOCKWISE\n  shapeType ",
            part.twosided ? "UNKNOWN_SHAPE_TYPE" : "SOLID", "\n  faceType UNKNOWN_FACE_TYPE\n}\n");
    if (!part.smooth)
        write_face_normals(out, object, part);
    out.add("IndexedFaceSet {\n");
    indices(out, object, part, "coordIndex", place);
    if (!object.picture.empty())
        indices(out, object, part, "textureCoordIndex", [](int corner) { return corner; });
    out.add("}\n");
}

void write_texture(export_text &out, const export_object &object)
{
    out.add("Texture2 { filename ", export_quoted(object.picture.c_str()),
            " }\nTextureCoordinate2 {\n  point [\n");
    for (int corner = 0; corner < object.flat->num_corners(); ++corner)
        out.add(object.uv(corner), ",\n");
    out.add("  ]\n}\n");
}

// Vertices that no surface has, as sets of those that follow each other.
void write_loose_points(export_text &out, const export_object &object)
{
    const std::vector<int> loose = flat_loose_vertices(*object.flat);
    for (std::size_t i = 0; i < loose.size();) {
        int count = 1;
        while (i + static_cast<std::size_t>(count) < loose.size() &&
               loose[i + static_cast<std::size_t>(count)] == loose[i] + count)
            ++count;
        out.add("PointSet { startIndex ", loose[i], " numPoints ", count, " }\n");
        i += static_cast<std::size_t>(count);
    }
}

void open(export_text &out, const export_object &object)
{
    if (is_set(object.object->url))
        out.add("WWWAnchor {\nname ", export_quoted(object.object->url), '\n');
    const std::string name = vrml1_node_name(object.name);
    if (!name.empty())
        out.add("DEF ", name, ' ');
    out.add("Separator {\n");
    if (name != object.name)
        out.add("Info { string ", export_quoted(object.name.c_str()), " }\n");
    if (object.object->type == OBJECT_LIGHT)
        out.add("PointLight { location ", object.object->centre, " }\n");
    if (object.parts.empty() && flat_loose_points(*object.flat) == 0)
        return;
    // The state ends here: children start without this object's points and texture.
    out.add("Separator {\nCoordinate3 {\n  point [\n");
    for (const point3_t &p : *object.flat->positions)
        out.add(p, ",\n");
    out.add("  ]\n}\n");
    // Lines come before the texture, which would cover them, and smooth parts before flat ones,
    // whose normals take the place of the vertices'.
    const auto write_parts = [&](bool polygons, bool smooth) {
        for (const export_part &part : object.parts)
            if ((part.type == SURFACE_POLYGON) == polygons && part.smooth == smooth)
                write_part(out, object, part);
    };
    write_loose_points(out, object);
    write_parts(false, false);
    if (!object.picture.empty())
        write_texture(out, object);
    if (std::any_of(object.parts.begin(), object.parts.end(),
                    [](const export_part &part) { return part.smooth; })) {
        write_vertex_normals(out, object);
        write_parts(true, true);
    }
    write_parts(true, false);
    out.add("}\n");
}

void close(export_text &out, const object_t &object)
{
    out.add(is_set(object.url) ? "}\n}\n" : "}\n");
}

void begin_vrml(export_text &out) { out.add("#VRML V1.0 ascii\n\nSeparator {\n"); }
void begin_inventor(export_text &out) { out.add("#Inventor V2.1 ascii\n\nSeparator {\n"); }
void end(export_text &out) { out.add("}\n"); }

} // namespace

const export_format vrml1_format = {.name = "VRML 1.0",
                                    .data = false,
                                    .shown_picture = export_picture_beside,
                                    .begin = begin_vrml,
                                    .open = open,
                                    .close = close,
                                    .end = end};
const export_format inventor_format = {.name = "Inventor",
                                       .data = false,
                                       .shown_picture = export_picture_beside,
                                       .begin = begin_inventor,
                                       .open = open,
                                       .close = close,
                                       .end = end};
