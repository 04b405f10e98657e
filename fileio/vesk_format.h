#ifndef VESK_FILEIO_VESK_FORMAT_H
#define VESK_FILEIO_VESK_FORMAT_H

// The text of a model file, piece by piece. `Out` is what takes the text: it has `+= char`,
// `+= const char *` and `append(const char *, size_t)`. A std::string does; so does the sink of the
// rescue copy, which works when nothing may be allocated any more.

#include "fileio/append_text.h"
#include "fileio/vesk_frames.h"
#include "fileio/vesk_place.h"
#include "model/flat_mesh.h"
#include "model/material.h"
#include "model/object_internal.h"

#include <cstring>

template <class Out>
void append_file_header(Out &out)
{
    out += "VESK";
    out += "0123456789abcdef"[vesk_revision];
    out += '\n';
}

// `name` may be null.
template <class Out>
void append_material(Out &out, const material &m, const char *name)
{
    out += "MATERIAL \"";
    out += name == nullptr ? "" : name; // Deliberate: not escaped
    out += "\" rgb ";
    append_floats(out, m.diffuse, 3);
    out += "  amb ";
    append_floats(out, m.ambient, 3);
    out += "  emis ";
    append_floats(out, m.emissive, 3);
    out += "  spec ";
    append_floats(out, m.specular, 3);
    out += "  shi ";
    append_g(out, m.shininess);
    out += "  trans ";
    append_g(out, m.transparency);
    out += '\n';
}

// Texts of an object; each may be null.
struct object_texts_t {
    const char *name, *url, *data, *texture;
};

// The lines before the geometry. Of the record only plain fields are read.
template <class Out>
void append_object_header(Out &out, const object_t &object, const object_texts_t &texts,
                          const local_frame_t &local)
{
    const auto has = [](const char *text) { return text != nullptr && text[0] != '\0'; };
    const auto pair = [&out](const char *keyword, float x, float y, float default_value) {
        if (x == default_value && y == default_value)
            return;
        const float values[] = {x, y};
        out += keyword;
        append_floats(out, values, 2);
        out += '\n';
    };
    out += "OBJECT ";
    out += object_type_word(object.type);
    out += '\n';
    if (has(texts.name)) {
        out += "name ";
        append_quoted(out, texts.name);
        out += '\n';
    }
    if (local.location.x != 0 || local.location.y != 0 || local.location.z != 0) {
        out += "loc ";
        append_point(out, local.location);
        out += '\n';
    }
    if (local.has_rotation) {
        out += "rot ";
        append_floats(out, local.rotation, 3);
        out += "  ";
        append_floats(out, local.rotation + 3, 3);
        out += "  ";
        append_floats(out, local.rotation + 6, 3);
        out += '\n';
    }
    if (has(texts.url)) {
        out += "url \""; // Deliberate: not escaped
        out += texts.url;
        out += "\"\n";
    }
    if (has(texts.data)) {
        out += "data ";
        append_int(out, static_cast<int>(std::strlen(texts.data)));
        out += '\n';
        out += texts.data;
        out += '\n';
    }
    if (texts.texture != nullptr) {
        out += "texture \""; // Deliberate: not escaped
        out += texts.texture;
        out += "\"\n";
    }
    pair("texrep ", object.texture_repeat_x, object.texture_repeat_y, 1);
    pair("texoff ", object.texture_offset_x, object.texture_offset_y, 0);
}

// "numvert 8", "numsurf 6", "kids 0".
template <class Out>
void append_count(Out &out, const char *keyword, int count)
{
    out += keyword;
    append_int(out, count);
    out += '\n';
}

template <class Out>
void append_vertices(Out &out, const flat_mesh &mesh, const local_frame_t &frame, int begin,
                     int end)
{
    for (int i = begin; i < end; ++i) {
        append_point(out, frame.local((*mesh.positions)[static_cast<std::size_t>(i)]));
        out += '\n';
    }
}

// `place_of` gives a palette index's number in the file, `count_of` how many references a surface
// tells to have, from its place and its corners.
template <class Out, class PlaceOf, class CountOf>
void append_surfaces(Out &out, const flat_mesh &mesh, int begin, int end, const PlaceOf &place_of,
                     const CountOf &count_of)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    auto corner = static_cast<std::size_t>((*mesh.corner_offsets)[static_cast<std::size_t>(begin)]);
    for (int i = begin; i < end; ++i) {
        const flat_surface &surface = (*mesh.surfaces)[static_cast<std::size_t>(i)];
        const int flags = (surface.type & SURFACE_TYPE_MASK) |
                          (surface.smooth != 0 ? SURFACE_SMOOTH : 0) |
                          (surface.twosided != 0 ? SURFACE_TWOSIDED : 0);
        out += "SURF 0x";
        if (flags > 15)
            out += digits[flags >> 4];
        out += digits[flags & 15];
        out += "\nmat ";
        append_int(out, place_of(surface.material));
        out += "\nrefs ";
        const auto vertices = mesh.surface_corners(i);
        append_int(out, count_of(i, static_cast<int>(vertices.size())));
        out += '\n';
        for (const int vertex_index : vertices) {
            const flat_uv &uv = (*mesh.texture_coords)[corner++];
            append_int(out, vertex_index);
            out += ' ';
            append_g(out, uv.u);
            out += ' ';
            append_g(out, uv.v);
            out += '\n';
        }
    }
}

#endif
