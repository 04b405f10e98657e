#include "fileio/export_rib.h"

#include "base/prefs.h"
#include "model/lights.h"
#include "model/object_notes.h"

#include <algorithm>
#include <numbers>

namespace {

constexpr int picture_width = 640;
constexpr int picture_height = 480;
constexpr float ambient_light = 0.2f;
constexpr float line_width = 1 / 500.0f; // of the scene's size

std::string colour(const float *rgb)
{
    export_text out;
    out.add('[', within_one(rgb[0]), ' ', within_one(rgb[1]), ' ', within_one(rgb[2]), ']');
    return out.text;
}

float dot(const point3_t &a, const point3_t &b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

// World to camera: x to the right, y up, z away from the viewer.
void write_camera(export_text &out)
{
    const export_eye eye = export_view_eye();
    if (eye.perspective)
        out.add("Projection \"perspective\" \"fov\" [",
                2 * std::atan(eye.half_height) * 180 / std::numbers::pi, "]\n");
    else
        out.add("Projection \"orthographic\"\nScreenWindow ",
                -eye.half_height * picture_width / picture_height, ' ',
                eye.half_height * picture_width / picture_height, ' ', -eye.half_height, ' ',
                eye.half_height, '\n');
    const point3_t &r = eye.right;
    const point3_t &u = eye.up;
    const point3_t &d = eye.direction;
    out.add("ConcatTransform [", point3_t{r.x, u.x, d.x}, " 0 ", point3_t{r.y, u.y, d.y}, " 0 ",
            point3_t{r.z, u.z, d.z}, " 0 ",
            point3_t{-dot(r, eye.location), -dot(u, eye.location), -dot(d, eye.location)}, " 1]\n");
}

void begin(export_text &out)
{
    out.add("##RenderMan RIB-Structure 1.0\nversion 3.03\n");
    if (prefs.output_rib_header == 0)
        return;
    out.add("Display \"vesk.tif\" \"file\" \"rgb\"\nFormat ", picture_width, ' ', picture_height,
            " 1\n");
    write_camera(out);
    out.add("WorldBegin\nLightSource \"ambientlight\" 0 \"intensity\" [", ambient_light, "]\n");
    // Shines from the viewer, as the 3D view's own light.
    const export_eye eye = export_view_eye();
    if (world_lights() == nullptr)
        out.add("LightSource \"distantlight\" 1 \"intensity\" [1] \"from\" [", eye.location,
                "] \"to\" [", eye.target(), "]\n");
}

// Lights count upwards from 1: 0 is the ambient one. Their strength falls with the square of the
// distance; at the scene's size it is 1.
void write_light(export_text &out, const object_t &light, const std::string &name)
{
    const float size = out.scene_size;
    out.add("# Light ", name, "\nLightSource \"pointlight\" ", out.lights, " \"intensity\" [",
            size * size, "] \"from\" [", light.centre, "]\n");
}

template <class List, class Item>
void write_list(export_text &out, const char *head, const List &list, Item &&item)
{
    out.add(head, '[');
    const char *separator = "";
    for (const auto &element : list) {
        out.add(separator, item(element));
        separator = " ";
    }
    out.add("]\n");
}

void write_look(export_text &out, const export_object &object, const export_part &part,
                bool textured)
{
    const material &m = *part.look;
    const float opacity = 1 - within_one(m.transparency);
    out.add("Color ", colour(m.diffuse), "\nOpacity [", opacity, ' ', opacity, ' ', opacity, "]\n");
    if (part.type != SURFACE_POLYGON) {
        out.add("Surface \"constant\"\n");
        return;
    }
    out.add("Sides ", part.twosided ? 2 : 1, "\nSurface \"",
            textured ? "paintedplastic" : "plastic",
            "\" \"Ka\" [1] \"Kd\" [1] \"Ks\" [1] "
            "\"specularcolor\" ",
            colour(m.specular), " \"roughness\" [", 1 / std::max(m.shininess, 1.0f), ']');
    if (textured)
        out.add(" \"texturename\" [", export_quoted(object.picture.c_str()), ']');
    out.add('\n');
}

void write_polygons(export_text &out, const export_object &object, const export_part &part,
                    const export_vertices &vertices, bool textured)
{
    const auto corners_of = [&](int surface) { return object.flat->surface_corners(surface); };
    // General polygons may be concave; each has one outline.
    write_list(out, "PointsGeneralPolygons ", part.surfaces, [](int) { return 1; });
    write_list(out, " ", part.surfaces,
               [&](int surface) { return static_cast<int>(corners_of(surface).size()); });
    std::vector<int> places;
    for (const int surface : part.surfaces)
        for (const std::int32_t index : corners_of(surface))
            places.push_back(vertices.place(index));
    write_list(out, " ", places, [](int place) { return place; });
    write_list(out, " \"P\" ", vertices.used, [&](int index) { return object.point(index); });
    if (part.smooth)
        write_list(out, " \"N\" ", vertices.used, [&](int index) { return object.normal(index); });
    if (!textured)
        return;
    out.add(" \"facevarying float[2] st\" [");
    for (const int surface : part.surfaces) {
        const int first = object.first_corner(surface);
        for (int i = 0; i < static_cast<int>(corners_of(surface).size()); ++i) {
            const flat_uv at = object.uv(first + i);
            out.add(' ', at.u, ' ', 1 - at.v); // t runs downwards
        }
    }
    out.add("]\n");
}

void write_lines(export_text &out, const export_object &object, const export_part &part)
{
    const bool closed = part.type == SURFACE_CLOSED_LINE;
    write_list(out, "Curves \"linear\" ", part.surfaces, [&](int surface) {
        return static_cast<int>(object.flat->surface_corners(surface).size());
    });
    out.add(" \"", closed ? "periodic" : "nonperiodic", "\" \"P\" [");
    for (const int surface : part.surfaces)
        for (const std::int32_t index : object.flat->surface_corners(surface))
            out.add(' ', object.point(index));
    out.add("]\n \"constantwidth\" [", out.scene_size * line_width, "]\n");
}

void open(export_text &out, const export_object &object)
{
    out.add("AttributeBegin\nAttribute \"identifier\" \"name\" [",
            export_quoted(object.name.c_str()), "]\n");
    const std::string data = object_user_data(object.object);
    if (prefs.rib_use_object_data != 0 && !data.empty())
        out.add(data, '\n');
    for (const export_part &part : object.parts) {
        const bool textured = prefs.rib_textures != 0 && !object.picture.empty();
        write_look(out, object, part, textured);
        if (part.type == SURFACE_POLYGON)
            write_polygons(out, object, part, export_used_vertices(object, part), textured);
        else
            write_lines(out, object, part);
    }
}

void close(export_text &out, const object_t & /*object*/) { out.add("AttributeEnd\n"); }

void end(export_text &out)
{
    if (prefs.output_rib_header != 0)
        out.add("WorldEnd\n");
}

} // namespace

const export_format rib_format = {.name = "RIB",
                                  .points = false,
                                  .urls = false,
                                  .empty_objects = false,
                                  .begin = begin,
                                  .light = write_light,
                                  .open = open,
                                  .close = close,
                                  .end = end};
