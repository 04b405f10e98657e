#include "fileio/export_vrml2.h"

#include "base/atomic_file.h"
#include "base/file_report.h"
#include "base/filename.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/progress.h"
#include "fileio/export_scene.h"
#include "fileio/output.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/lights.h"
#include "model/palette.h"
#include "model/textures/textures.h"
#include "model/vertex_colours.h"
#include "model/world.h"

#include <cstdio>
#include <string>

namespace {

// ---- numbers and texts ----

void append_f(std::string &out, float value)
{
    char buffer[64];
    out.append(buffer, static_cast<size_t>(
                           snprintf(buffer, sizeof buffer, "%f", static_cast<double>(value))));
}

// A name in a comment stays on its line.
std::string one_line(const char *text)
{
    std::string line = text == nullptr ? "" : text;
    for (char &c : line)
        if (c == '\n' || c == '\r')
            c = ' ';
    return line;
}

// ---- one shape ----

struct work_t {
    progress_t progress;
    double done = 0;

    // One surface more; false when the user cancelled.
    bool step() { return progress.step(++done); }
};

struct shape_t {
    const object_t *object;
    const flat_mesh *flat;
    work_t *work;
    std::vector<int> surfaces;
    int material; // of all of the object's surfaces, or -1
    bool lines;
};

void append_colour(std::string &out, const char *key, const float *colour)
{
    out += key;
    append_floats(out, colour, 3);
    out += '\n';
}

void append_material(std::string &out, const shape_t &shape)
{
    if (shape.material < 0) {
        out += " material Material {  }\n";
        return;
    }
    const material &m = written_material(shape.material);
    out += " material Material {\n";
    if (shape.lines) {
        append_colour(out, "  emissiveColor ", m.diffuse);
    } else {
        append_colour(out, "  diffuseColor ", m.diffuse);
        append_colour(out, "  specularColor ", m.specular);
        append_colour(out, "  emissiveColor ", m.emissive);
        out += "  shininess ";
        append_f(out, m.shininess);
        out += "\n  transparency ";
        append_f(out, m.transparency);
        out += '\n';
    }
    out += "}\n";
}

void append_pair(std::string &out, const char *key, float x, float y)
{
    out += key;
    append_f(out, x);
    out += ' ';
    append_f(out, y);
    out += '\n';
}

void append_texture(std::string &out, const object_t &object)
{
    if (prefs.vrml_output_textures == 0 || object.has_texture == 0)
        return;
    const char *name = texture_id_to_name(object.texture);
    if (name == nullptr)
        return;
    out += "texture ImageTexture { url ";
    append_quoted(out, vesk_filename_get_file(name));
    out += " }\n";
    out += "textureTransform TextureTransform {\n";
    if (object.texture_repeat_x != 1 || object.texture_repeat_y != 1)
        append_pair(out, "  scale ", object.texture_repeat_x, object.texture_repeat_y);
    if (object.texture_offset_x != 0 || object.texture_offset_y != 0)
        append_pair(out, "  translation ", object.texture_offset_x, object.texture_offset_y);
    out += "}\n";
}

void append_coordinates(std::string &out, const flat_mesh &flat)
{
    out += "coord Coordinate { \npoint [\n";
    for (const point3_t &p : *flat.positions) {
        append_point(out, p);
        out += '\n';
    }
    out += "]\n}\n";
}

// Calls `each` for the shape's surfaces, with `between` in the text; false when the user cancelled.
template <class Each>
bool each_surface(std::string &out, const shape_t &shape, const char *between, Each &&each)
{
    bool first = true;
    for (const int surface : shape.surfaces) {
        if (!shape.work->step())
            return false;
        if (!std::exchange(first, false))
            out += between;
        each(surface);
    }
    return true;
}

void append_coordinate_indices(std::string &out, const shape_t &shape)
{
    out += "\ncoordIndex [\n ";
    each_surface(out, shape, ",\n ", [&](int surface) {
        const std::span<const std::int32_t> corners = shape.flat->surface_corners(surface);
        for (const std::int32_t corner : corners) {
            append_int(out, corner);
            out += ", ";
        }
        const flat_surface &record = (*shape.flat->surfaces)[static_cast<size_t>(surface)];
        if (record.type == SURFACE_CLOSED_LINE && !corners.empty()) {
            append_int(out, corners[0]);
            out += ", ";
        }
        out += "-1";
    });
    out += ']';
}

// A list of running numbers, one a corner, each surface closed by -1.
void append_running_indices(std::string &out, const shape_t &shape, const char *head)
{
    out += head;
    int number = 0;
    each_surface(out, shape, ",\n", [&](int surface) {
        for (size_t i = shape.flat->surface_corners(surface).size(); i > 0; --i) {
            append_int(out, number++);
            out += ", ";
        }
        out += "-1";
    });
    out += "]\n";
}

void append_normals(std::string &out, const shape_t &shape)
{
    const flat_mesh &flat = *shape.flat;
    out += "\nnormal Normal {\n    vector [ \n";
    int count = 0;
    const bool complete = each_surface(out, shape, ",\n", [&](int surface) {
        const auto place = static_cast<size_t>(surface);
        const char *separator = "";
        for (const std::int32_t corner : flat.surface_corners(surface)) {
            const point3_t &n = (*flat.surfaces)[place].smooth != 0
                                    ? (*flat.normals)[static_cast<size_t>(corner)]
                                    : (*flat.face_normals)[place];
            out += std::exchange(separator, ", ");
            append_point(out, n);
            ++count;
        }
    });
    if (!complete)
        return;
    out += "\n]\n}\n";
    console_printf("number of normals output = %d\n", count);
    append_running_indices(out, shape, "\n    normalIndex [ ");
}

void append_texture_coordinates(std::string &out, const shape_t &shape)
{
    const flat_mesh &flat = *shape.flat;
    out += "\n texCoord TextureCoordinate {\n    point [ \n";
    const char *separator = "";
    each_surface(out, shape, "", [&](int surface) {
        const auto place = static_cast<size_t>(surface);
        for (int i = (*flat.corner_offsets)[place]; i < (*flat.corner_offsets)[place + 1]; ++i) {
            const flat_uv &at = (*flat.texture_coords)[static_cast<size_t>(i)];
            const float values[] = {at.u, at.v};
            out += std::exchange(separator, ", ");
            append_floats(out, values, 2);
        }
    });
    out += "\n]\n}\n";
    append_running_indices(out, shape, "\n    texCoordIndex [ ");
}

void append_colours(std::string &out, const shape_t &shape)
{
    if (shape.material >= 0)
        return;
    out += "\n    color Color { \n    color [ ";
    each_surface(out, shape, ",\n", [&](int surface) {
        const flat_surface &record = (*shape.flat->surfaces)[static_cast<size_t>(surface)];
        append_floats(out, written_material(record.material).diffuse, 3);
    });
    out += "]\n}\ncolorPerVertex FALSE\n";
}

void append_shape(std::string &out, const shape_t &shape)
{
    if (shape.surfaces.empty())
        return;
    out += "Shape {\nappearance Appearance { \n";
    if (!shape.lines)
        append_texture(out, *shape.object);
    append_material(out, shape);
    out += "}\n";
    if (shape.lines) {
        out += "geometry IndexedLineSet {\n";
    } else {
        out += "geometry IndexedFaceSet {\nsolid FALSE\ncreaseAngle 0.5\n";
        if (prefs.vrml_output_normals != 0)
            out += "\nnormalPerVertex TRUE\n";
    }
    append_coordinates(out, *shape.flat);
    append_coordinate_indices(out, shape);
    if (!shape.lines && prefs.vrml_output_normals != 0)
        append_normals(out, shape);
    if (!shape.lines && prefs.vrml_output_textures != 0)
        append_texture_coordinates(out, shape);
    append_colours(out, shape);
    out += "}\n}\n";
}

// ---- objects ----

void append_shapes(std::string &out, object_t *object, work_t *work)
{
    const flat_ptr flat = object_flat(object);
    const int same = object_surfaces_find_same_material(object);
    shape_t lines = {object, flat.get(), work, {}, same, true};
    shape_t polygons = {object, flat.get(), work, {}, same, false};
    for (int surface = 0; surface < flat->num_surfaces(); ++surface)
        (is_line((*flat->surfaces)[static_cast<size_t>(surface)].type) ? lines : polygons)
            .surfaces.push_back(surface);
    append_shape(out, lines);
    append_shape(out, polygons);
}

void open_object(std::string &out, object_t *object, work_t *work)
{
    out += '\n';
    if (is_set(object->url)) {
        out += "Anchor { url ";
        append_quoted(out, object->url);
        out += "\nchildren [\n";
    }
    if (is_set(object->name))
        out += "# Object \"" + one_line(object->name) + "\" \n";
    append_shapes(out, object, work);
}

void close_object(std::string &out, const object_t *object)
{
    if (is_set(object->url))
        out += "]\n}\n";
}

// An object with everything below it; no recursion, because trees may be deep.
void append_object(std::string &out, object_t *top, work_t *work)
{
    struct level_t {
        object_t *object;
        const listitem *next;
    };
    std::vector<level_t> levels;
    open_object(out, top, work);
    levels.push_back({top, top->children});
    while (!levels.empty()) {
        level_t &level = levels.back();
        if (level.next == nullptr) {
            close_object(out, level.object);
            levels.pop_back();
            continue;
        }
        auto *child = item_of<object_t>(level.next);
        level.next = level.next->next;
        open_object(out, child, work);
        levels.push_back({child, child->children});
    }
}

void append_lights(std::string &out)
{
    for (const object_t *light : each<object_t>(world_lights())) {
        out += "# Light " + one_line(light->name) + "\nTransform {\n\ttranslation ";
        append_point(out, light->centre);
        out += "\n\tchildren [\n\t\tPointLight\n\t\t{\n\t\ton TRUE\n\t\tintensity 1\n"
               "\t\tcolor 1 1 1\n\t\t}\n\t\t]\n}\n\n";
    }
}

std::vector<object_t *> top_objects()
{
    std::vector<object_t *> tops;
    for (object_t *object : each<object_t>(vesk_get_world()->children))
        if (object->type != OBJECT_LIGHT)
            tops.push_back(object);
    return tops;
}

void append_prototypes_comment(std::string &out, const std::string &filename)
{
    std::string group = "#Group { children [ ";
    for (const object_t *object : top_objects()) {
        const std::string name = one_line(object->name);
        out += "#EXTERNPROTO " + name + " [] \"" + filename + "#" + name + "\"\n";
        group += name + " {} ";
    }
    out += group + "]}\n\n";
}

std::string world_text(const std::string &filename, bool prototypes, work_t *work)
{
    std::string out = "#VRML V2.0 utf8\n\n";
    if (prototypes)
        append_prototypes_comment(out, filename);
    else
        out += "Group {\nchildren [\n";
    append_lights(out);
    for (object_t *object : top_objects()) {
        if (prototypes)
            out += "PROTO " + one_line(object->name) + " [] {\n";
        append_object(out, object, work);
        if (prototypes)
            out += "}\n\n";
    }
    if (!prototypes)
        out += "]\n}\n";
    return out;
}

// How often its surfaces are gone through.
double work_of_world()
{
    const bool normals = prefs.vrml_output_normals != 0;
    const bool textures = prefs.vrml_output_textures != 0;
    return surfaces_of_world() * (1 + (normals ? 2 : 0) + (textures ? 2 : 0));
}

// The losses of the form: texture files are named without their folders, and where an object has
// several materials only their colours stand with its surfaces.
void report_losses(const std::string &filename)
{
    const bool textures = prefs.vrml_output_textures != 0;
    int pictures = 0;
    int folders = 0;
    int materials = 0;
    int data = 0;
    for_each_object(vesk_get_world(), [&](const object_t *object) {
        data += vesk_object_has_user_data(object);
        if (object->num_surfaces == 0)
            return;
        materials += object_surfaces_find_same_material(object) < 0 ? 1 : 0;
        if (object->has_texture == 0)
            return;
        const std::string picture = object_texture_beside(object, filename.c_str());
        pictures += textures ? 0 : 1;
        folders += textures && picture.find('/') != std::string::npos ? 1 : 0;
    });
    vesk_report_loss(pictures, "textures");
    vesk_report_loss(folders, "folders of textures");
    vesk_report_loss(materials, "materials beside others");
    vesk_report_loss(data, "data texts");
    report_lost_vertex_colours();
}

int write_world(const char *filename, bool prototypes)
{
    const std::string name = filename; // the messages let scripts run
    vesk_report_export(name.c_str());
    console_printf("Generating VRML (%s, %s)\n",
                   prefs.vrml_output_normals != 0 ? "with normals" : "no normals",
                   prefs.vrml_output_textures != 0 ? "with texture support" : "no texture support");
    work_t work = {progress_t(work_of_world())};
    const std::string text = world_text(name, prototypes, &work);
    const bool cancelled = work.progress.cancelled();
    const bool written = !cancelled && atomic_file_write(name.c_str(), text);
    if (written) {
        console_printf("written file %s\n", name.c_str());
        report_losses(name);
    } else if (!cancelled) {
        console_printf("can't open file for writing\n");
    }
    return export_end(name, "VRML 2.0", cancelled, written);
}

} // namespace

int object_surfaces_find_same_material(const object_t *object)
{
    int same = -1;
    for (const surface_t *surface : each<surface_t>(object->surfaces)) {
        if (same >= 0 && surface->material != same)
            return -1;
        same = surface->material;
    }
    return same;
}

// ---- commands ----

int write_vrml2(const char *filename) { return write_world(filename, false); }

int write_vrml2_proto(const char *filename) { return write_world(filename, true); }
