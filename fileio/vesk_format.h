#ifndef VESK_FILEIO_VESK_FORMAT_H
#define VESK_FILEIO_VESK_FORMAT_H

// The text of a model file, piece by piece. `Out` takes the text: it has `+= char`,
// `+= const char *` and `append(const char *, size_t)`. A std::string has them, and the sink of the
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

// A text in double quotes, with a backslash before its own quotes and backslashes; line ends, which
// would end it, become blanks.
template <class Out>
void append_text_word(Out &out, const char *text)
{
    out += '"';
    for (const char *p = text; *p != '\0'; ++p) {
        if (*p == '\\' || *p == '"')
            out += '\\';
        out += *p == '\n' || *p == '\r' ? ' ' : *p;
    }
    out += '"';
}

// How a text stands on its line: as it is, or as a word in quotes.
enum class quoting { BARE, QUOTED };

template <class Out>
void append_line(Out &out, const char *keyword, quoting how, const char *text)
{
    out += keyword;
    out += ' ';
    if (how == quoting::QUOTED)
        append_text_word(out, text);
    else
        out += text;
    out += '\n';
}

template <class Out>
void append_line(Out &out, const char *keyword, const float *values, int n)
{
    out += keyword;
    out += ' ';
    append_floats(out, values, n);
    out += '\n';
}

// "numvert 8", "numsurf 6", "kids 0".
template <class Out>
void append_count(Out &out, const char *keyword, int count)
{
    out += keyword;
    out += ' ';
    append_int(out, count);
    out += '\n';
}

// `name` may be null and hold anything.
template <class Out>
void append_material(Out &out, const material &m, const char *name)
{
    out += "MATERIAL ";
    append_text_word(out, name == nullptr ? "" : name);
    out += " rgb ";
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

template <class Out>
void append_frame(Out &out, const local_frame_t &local)
{
    const float location[] = {local.location.x, local.location.y, local.location.z};
    if (location[0] != 0 || location[1] != 0 || location[2] != 0)
        append_line(out, "loc", location, 3);
    if (!local.has_rotation)
        return;
    out += "rot ";
    append_floats(out, local.rotation, 3);
    out += "  ";
    append_floats(out, local.rotation + 3, 3);
    out += "  ";
    append_floats(out, local.rotation + 6, 3);
    out += '\n';
}

// The lines before the geometry. Of the record only plain fields are read.
template <class Out>
void append_object_header(Out &out, const object_t &object, const object_texts_t &texts,
                          const local_frame_t &local)
{
    const auto has = [](const char *text) { return text != nullptr && text[0] != '\0'; };
    append_line(out, "OBJECT", quoting::BARE, object_type_word(object.type));
    if (has(texts.name))
        append_line(out, "name", quoting::QUOTED, texts.name);
    append_frame(out, local);
    // Deliberate: addresses and textures are not escaped; readers of this form take them as they
    // are.
    if (has(texts.url))
        append_line(out, "url", quoting::QUOTED, texts.url);
    if (has(texts.data)) {
        append_count(out, "data", static_cast<int>(std::strlen(texts.data)));
        out += texts.data;
        out += '\n';
    }
    if (texts.texture != nullptr)
        append_line(out, "texture", quoting::QUOTED, texts.texture);
    const float repeat[] = {object.texture_repeat_x, object.texture_repeat_y};
    if (repeat[0] != 1 || repeat[1] != 1)
        append_line(out, "texrep", repeat, 2);
    const float offset[] = {object.texture_offset_x, object.texture_offset_y};
    if (offset[0] != 0 || offset[1] != 0)
        append_line(out, "texoff", offset, 2);
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

// `place_of` gives a palette index's number in the file, `count_of` the number on a surface's refs
// line, from its place and its corners.
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
