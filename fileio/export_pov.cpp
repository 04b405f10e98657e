#include "fileio/export_pov.h"

#include "base/atomic_file.h"
#include "base/file_report.h"
#include "base/filename.h"
#include "base/image_png.h"
#include "base/prefs.h"
#include "model/bounds.h"
#include "model/lights.h"
#include "model/object_notes.h"
#include "model/textures/texture_preview.h"
#include "model/textures/textures.h"
#include "model/vertex_colours.h"
#include "model/world.h"

#include <algorithm>
#include <numbers>
#include <string_view>

namespace {

constexpr float scene_ambient = 0.2f; // as the 3D view lights it

std::string vector(const point3_t &p)
{
    export_text out;
    out.add('<', p.x, ", ", p.y, ", ", p.z, '>');
    return out.text;
}

point3_t colour(const float *rgb)
{
    return {within_one(rgb[0]), within_one(rgb[1]), within_one(rgb[2])};
}

void write_camera(export_text &out, const export_eye &eye)
{
    const double right = prefs.pov_right_aspect;
    const double up = prefs.pov_up_aspect;
    out.add("camera {\n");
    if (eye.perspective) {
        // The angle is that of the picture's width.
        const double half_width = eye.half_height * std::abs(up != 0 ? right / up : right);
        out.add("  location ", vector(eye.location), "\n  up <0, ", up, ", 0>\n  right <", right,
                ", 0, 0>\n  angle ", 2 * std::atan(half_width) * 180 / std::numbers::pi, '\n');
    } else {
        const double height = 2 * eye.half_height;
        out.add("  orthographic\n  location ", vector(eye.location), "\n  up <0, ", up * height,
                ", 0>\n  right <", right * height, ", 0, 0>\n");
    }
    out.add("  sky ", vector(eye.up), "\n  look_at ", vector(eye.target()), "\n}\n");
}

// Seen from the front, whole: where the viewer of the 3D view is not asked for.
export_eye front_eye()
{
    const point3_t low = find_object_min(vesk_get_world());
    const point3_t size = find_object_size(vesk_get_world());
    const float reach = std::max({size.x, size.y, size.z, 1.0f});
    return {.location = {low.x + size.x / 2, low.y + size.y / 2, low.z + size.z + 2 * reach},
            .right = {1, 0, 0},
            .up = {0, 1, 0},
            .direction = {0, 0, -1},
            .perspective = true,
            .half_height = 0.5};
}

void write_light(export_text &out, const point3_t &at)
{
    out.add("light_source { ", vector(at), " color rgb <1, 1, 1> }\n");
}

void begin(export_text &out)
{
    out.add("#version 3.5;\n");
    if (is_set(prefs.pov_file_header))
        out.add(prefs.pov_file_header, '\n');
    const export_eye eye = prefs.pov_active_pointer != 0 ? export_view_eye() : front_eye();
    write_camera(out, eye);
    if (world_lights() == nullptr)
        write_light(out, eye.location); // as the 3D view's own light
}

void write_named_light(export_text &out, const object_t &light, const std::string &name)
{
    out.add("// Light ", name, '\n');
    write_light(out, light.centre);
}

// The renderer's word for a picture's format, null for one that it cannot read.
const char *picture_kind(std::string_view file)
{
    const struct {
        std::string_view suffix;
        const char *kind;
    } kinds[] = {{"png", "png"}, {"jpg", "jpeg"}, {"jpeg", "jpeg"}, {"tga", "tga"},
                 {"gif", "gif"}, {"tif", "tiff"}, {"tiff", "tiff"}, {"ppm", "ppm"},
                 {"pgm", "pgm"}, {"iff", "iff"},  {"pot", "pot"}};
    std::string suffix(file.substr(std::min(file.rfind('.') + 1, file.size())));
    std::transform(suffix.begin(), suffix.end(), suffix.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    for (const auto &kind : kinds)
        if (suffix == kind.suffix)
            return kind.kind;
    return nullptr;
}

// A scene that names a picture which is not there, or of another format, cannot be rendered: the
// first is left out, the second copied as PNG beside the scene, under a name of the scene's own.
std::string shown_picture(const object_t &object, const std::string &picture,
                          const std::string &filename)
{
    const VESKImage *image =
        object.has_texture != 0 ? texture_id_to_image(object.texture) : nullptr;
    if (image == nullptr || image->data == nullptr)
        return "";
    if (picture_kind(picture) != nullptr)
        return picture;
    const auto base = [](const std::string &file) {
        const std::string name = file.substr(file.find_last_of('/') + 1);
        return name.substr(0, name.rfind('.'));
    };
    const std::string copy = base(filename) + "_" + base(picture) + ".png";
    const std::string folder = vesk_filename_get_path(filename.c_str());
    const std::string png = png_of_rgb(image->width, image->height,
                                       image_scaled(*image, image->width, image->height).data());
    atomic_writer_t file((folder.empty() ? copy : folder + "/" + copy).c_str());
    if (png.empty() || !file.write(png) || !file.commit())
        return "";
    vesk_report_note(1, "textures copied as PNG");
    return copy;
}

void write_look(export_text &out, const export_object &object, const export_part &part)
{
    const material &m = *part.look;
    const point3_t specular = colour(m.specular);
    const point3_t ambient = {within_one(m.ambient[0] * scene_ambient + m.emissive[0]),
                              within_one(m.ambient[1] * scene_ambient + m.emissive[1]),
                              within_one(m.ambient[2] * scene_ambient + m.emissive[2])};
    out.add("    texture {\n");
    if (!object.picture.empty())
        out.add("      uv_mapping\n      pigment { image_map { ", picture_kind(object.picture), ' ',
                export_quoted(object.picture.c_str()), " transmit all ", within_one(m.transparency),
                " } }\n");
    else
        out.add("      pigment { color rgb ", vector(colour(m.diffuse)), " transmit ",
                within_one(m.transparency), " }\n");
    out.add("      finish { ambient rgb ", vector(ambient), " diffuse 1 phong ",
            std::max({specular.x, specular.y, specular.z}), " phong_size ",
            std::max(m.shininess, 1.0f), " }\n    }\n");
}

// "name { count, a, b }", one line each.
template <class Line>
void write_list(export_text &out, const char *name, size_t count, Line &&line)
{
    out.add("    ", name, " {\n      ", static_cast<int>(count));
    for (size_t i = 0; i < count; ++i)
        out.add(",\n      ", line(i));
    out.add("\n    }\n");
}

std::string triple(int a, int b, int c)
{
    return '<' + std::to_string(a) + ", " + std::to_string(b) + ", " + std::to_string(c) + '>';
}

void write_part(export_text &out, const export_object &object, const export_part &part)
{
    const std::vector<int> corners = export_triangles(object, part);
    if (corners.empty())
        return;
    const export_vertices vertices = export_used_vertices(object, part);
    const auto place = [&](size_t i) {
        const int index = (*object.flat->corners)[static_cast<size_t>(corners[i])];
        return vertices.place(index);
    };
    out.add("  mesh2 {\n");
    write_list(out, "vertex_vectors", vertices.used.size(),
               [&](size_t i) { return vector(object.point(vertices.used[i])); });
    if (part.smooth)
        write_list(out, "normal_vectors", vertices.used.size(),
                   [&](size_t i) { return vector(object.normal(vertices.used[i])); });
    if (!object.picture.empty())
        write_list(out, "uv_vectors", corners.size(), [&](size_t i) {
            const flat_uv at = object.uv(corners[i]);
            export_text pair;
            pair.add('<', at.u, ", ", at.v, '>');
            return pair.text;
        });
    write_list(out, "face_indices", corners.size() / 3,
               [&](size_t i) { return triple(place(3 * i), place(3 * i + 1), place(3 * i + 2)); });
    if (!object.picture.empty())
        write_list(out, "uv_indices", corners.size() / 3, [](size_t i) {
            const int first = static_cast<int>(3 * i);
            return triple(first, first + 1, first + 2);
        });
    write_look(out, object, part);
    out.add("  }\n");
}

// The data text stands in the object as statements of the renderer, or else as comments.
void write_data(export_text &out, const char *data)
{
    if (!is_set(data))
        return;
    if (prefs.pov_use_object_data != 0) {
        out.add(data, '\n');
        return;
    }
    if (prefs.pov_object_data == 0)
        return;
    std::string_view rest = data;
    while (!rest.empty()) {
        const size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
        if (end > 0)
            out.add("// ", export_one_line(std::string(rest.substr(0, end)).c_str()), '\n');
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
}

// The renderer warns of a union of one thing, and reads no object of none.
bool is_one_thing(const export_object &object)
{
    const bool adds = // statements of its own, which may be shapes
        prefs.pov_use_object_data != 0 && vesk_object_has_user_data(object.object) != 0;
    if (adds || object.parts.size() + static_cast<size_t>(object.children) != 1)
        return false;
    return object.parts.empty() || !export_triangles(object, object.parts.front()).empty();
}

void open(export_text &out, const export_object &object)
{
    out.add(is_one_thing(object) ? "object" : "union", " { // ", object.name, '\n');
    for (const export_part &part : object.parts)
        write_part(out, object, part);
}

void close(export_text &out, const object_t &object)
{
    // After the shapes, where statements about the whole union may stand.
    write_data(out, object_user_data(&object).c_str());
    out.add("}\n");
}

} // namespace

const export_format pov_format = {.name = "POV",
                                  .lines = false,
                                  .points = false,
                                  .urls = false,
                                  .shown_picture = shown_picture,
                                  .empty_objects = false,
                                  .begin = begin,
                                  .light = write_named_light,
                                  .open = open,
                                  .close = close};
