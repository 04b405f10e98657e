// The writer of the older line vocabulary; its grammar stands in vesk_old.cpp.

#include "base/atomic_file.h"
#include "base/file_report.h"
#include "base/messages_internal.h"
#include "base/progress.h"
#include "fileio/vesk_format.h"
#include "fileio/write_report.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/palette.h"
#include "model/textures/textures.h"
#include "model/world.h"

#include <algorithm>
#include <cstdio>
#include <set>
#include <string_view>

namespace {

void append_line(std::string &out, const char *word, const float *values, int n)
{
    out += word;
    append_floats(out, values, n);
    out += '\n';
}

void append_text(std::string &out, const char *word, const char *text)
{
    if (text == nullptr || text[0] == '\0')
        return;
    out += word;
    append_quoted(out, text);
    out += '\n';
}

void append_count(std::string &out, const char *word, size_t n)
{
    out += word + std::to_string(n) + '\n';
}

void append_surface(std::string &out, const flat_mesh &mesh, size_t i)
{
    const flat_surface &surface = (*mesh.surfaces)[i];
    if (surface.type != SURFACE_POLYGON)
        append_count(out, "type ", surface.type);
    char colour[32];
    std::snprintf(colour, sizeof colour, "rgb 0x%x\n",
                  static_cast<unsigned>(index_to_rgb(surface.material)));
    out += colour;
    out += surface.smooth != 0 ? "shaded\n" : "";
    out += surface.twosided != 0 ? "twosided\n" : "";
    const auto first = static_cast<size_t>((*mesh.corner_offsets)[i]);
    const auto last = static_cast<size_t>((*mesh.corner_offsets)[i + 1]);
    append_count(out, "points ", last - first);
    for (size_t corner = first; corner < last; ++corner) {
        const flat_uv &uv = (*mesh.texture_coords)[corner];
        const float values[] = {uv.u, uv.v};
        out += std::to_string((*mesh.corners)[corner]) + ' ';
        append_line(out, "", values, 2);
    }
}

struct work_t {
    const char *filename;
    progress_t progress;
    double done = 0;
};

void append_object(std::string &out, object_t *object, const local_frame_t &frame, work_t &work)
{
    out += "OBJECT ";
    append_quoted(out, object->name == nullptr ? "" : object->name);
    out += "\ntype " + std::to_string(object->type) + '\n';
    const float location[] = {frame.location.x, frame.location.y, frame.location.z};
    if (location[0] != 0 || location[1] != 0 || location[2] != 0)
        append_line(out, "translation ", location, 3);
    if (frame.has_rotation)
        append_line(out, "rotation ", frame.rotation, 9);
    const char *texture = object->has_texture != 0 ? texture_id_to_name(object->texture)
                                                   : object_missing_texture(object);
    if (texture != nullptr && object->has_texture != 0)
        texture = search_texture_save(work.filename, texture);
    append_text(out, "texture ", texture);
    const float repeat[] = {object->texture_repeat_x, object->texture_repeat_y};
    if (repeat[0] != 1 || repeat[1] != 1)
        append_line(out, "texturerep ", repeat, 2);
    append_text(out, "url ", object->url);
    if (object->data != nullptr && object->data[0] != '\0') {
        const std::string_view data = object->data;
        out += "dataitems 1\n";
        append_count(out, "string ", data.size());
        out += data;
        out += '\n';
    }
    const flat_ptr mesh = object_flat(object);
    if (mesh->num_vertices() != 0)
        append_count(out, "points ", mesh->positions->size());
    for (const point3_t &position : *mesh->positions) {
        append_point(out, frame.local(position));
        out += '\n';
    }
    if (mesh->num_surfaces() != 0)
        append_count(out, "surfaces ", mesh->surfaces->size());
    for (size_t i = 0; i < mesh->surfaces->size() && work.progress.step(++work.done); ++i)
        append_surface(out, *mesh, i);
    append_count(out, "children ", static_cast<size_t>(list_count(object->children)));
}

// Surfaces have a plain colour only: of how many materials the rest is left out.
int poorer_materials()
{
    material plain;
    material_init(&plain);
    std::set<int> poorer;
    for_each_object(vesk_get_world(), [&](const object_t *object) {
        int last = -1;
        for (const surface_t *surface : each<surface_t>(object->surfaces)) {
            const material *m = vesk_palette_get_material(surface->material);
            if (m == nullptr || surface->material == last)
                continue;
            last = surface->material;
            std::copy_n(m->diffuse, 3, plain.diffuse);
            if (material_compare(m, &plain) == 0)
                poorer.insert(last);
        }
    });
    return static_cast<int>(poorer.size());
}

} // namespace

int write_vesk_old(const char *filename)
{
    const std::string name = filename; // the messages let scripts run
    vesk_report_export(name.c_str());
    std::string text = "VESKa\n";
    double surfaces = 0;
    for_each_object(vesk_get_world(),
                    [&](const object_t *object) { surfaces += object->num_surfaces; });
    work_t work = {name.c_str(), progress_t(surfaces)};
    for_each_written(vesk_get_world(), [&](object_t *object, const local_frame_t &frame) {
        append_object(text, object, frame, work);
    });
    if (work.progress.cancelled()) {
        display_message("write VESK - cancelled");
        return 0;
    }
    atomic_writer_t file(name.c_str());
    if (!file.opened()) {
        windows_message_dialog("can't open file '%s' for writing", name.c_str());
        tell_write_reason(name.c_str());
        return 0;
    }
    file.write(text);
    if (!file.commit()) {
        windows_message_dialog("An error occured when writing the .vesk file \"%s\"", name.c_str());
        tell_write_reason(name.c_str());
        return 0;
    }
    debugf("written file %s OK\n", name.c_str());
    vesk_report_loss(poorer_materials(), "shining colours");
    display_message("written file %s%s", name.c_str(), vesk_report_losses("the older VESK"));
    return 1;
}
