#ifndef VESK_FILEIO_EXPORT_SCENE_H
#define VESK_FILEIO_EXPORT_SCENE_H

// The text formats that the scene is written in, and the one walk that feeds them all: lights
// first, then the tree, each object cut into parts of one material, shading and kind. A format is a
// record of small functions that append text.

#include "base/progress.h"
#include "fileio/append_text.h"
#include "model/flat_mesh.h"
#include "model/material.h"

#include <algorithm>
#include <cmath>
#include <string>

// A text under construction. Numbers are written as "%g" writes them; infinite ones and those that
// are none become 0, which every format can read. With `work` set the bar moves while text is
// added, and nothing more is added once the user cancelled.
class export_text {
public:
    std::string text;
    float scene_size = 1; // largest side of the scene's box, above 0
    int lights = 0;       // written by now
    int numbered = 0;     // nodes that got a number for a name
    progress_t *work = nullptr;
    double done = 0, next = 0; // of the work: before and after the object at hand

    template <class... A>
    void add(const A &...parts)
    {
        if (work == nullptr || going()) [[likely]]
            (put(parts), ...);
    }

private:
    // The size of an object's text is not known before: the bar moves by a part of the rest each
    // time.
    bool going()
    {
        done += (next - done) / 65536;
        return work->step(done);
    }

    void put(const char *words) { text += words; }
    void put(const std::string &words) { text += words; }
    void put(char sign) { text += sign; }
    void put(int value) { append_int(text, value); }
    void put(float value) { append_g(text, std::isfinite(value) ? value : 0.0f); }
    void put(double value) { put(static_cast<float>(value)); }
    void put(const point3_t &p) { add(p.x, ' ', p.y, ' ', p.z); }
    void put(const flat_uv &at) { add(at.u, ' ', at.v); }
};

// Surfaces of one object that look alike: polygons of one material, shading and sidedness, or lines
// of one material.
struct export_part {
    const material *look;
    int type; // SURFACE_POLYGON, ...
    bool smooth;
    bool twosided;
    int index; // of the material in the palette
    std::vector<int> surfaces;
};

struct export_object {
    const object_t *object;
    flat_ptr flat;
    std::string name;    // on one line
    std::string picture; // the texture's file as seen from the file's folder, "" for none
    std::vector<export_part> parts;
    int children = 0; // that are written, too

    // As it stands on the object: repeats and offsets are applied.
    [[nodiscard]] flat_uv uv(int corner) const;
    // Number of a surface's first corner.
    [[nodiscard]] int first_corner(int surface) const
    {
        return (*flat->corner_offsets)[static_cast<size_t>(surface)];
    }
    [[nodiscard]] const point3_t &point(int index) const
    {
        return (*flat->positions)[static_cast<size_t>(index)];
    }
    [[nodiscard]] const point3_t &normal(int index) const
    {
        return (*flat->normals)[static_cast<size_t>(index)];
    }
    [[nodiscard]] const point3_t &face_normal(int surface) const
    {
        return (*flat->face_normals)[static_cast<size_t>(surface)];
    }
};

// The name under which a format can show an object's texture, "" when it cannot; may write a copy
// beside the file. `picture` is the texture's file as seen from the file's folder.
using export_picture_t = std::string (*)(const object_t &object, const std::string &picture,
                                         const std::string &filename);

struct export_format {
    const char *name; // in messages
    // The elements that it has a place for; the others are counted as losses.
    bool lines = true;
    bool lights = true;
    bool pictures = true;
    bool smooth = true;
    bool points = true; // that no surface uses
    bool urls = true;   // the addresses of objects
    bool data = true;   // their data texts
    bool vertex_colours = false;
    export_picture_t shown_picture = nullptr; // null: all pictures as they are
    bool empty_objects = true; // else objects without a surface below them are left out
    void (*begin)(export_text &out) = nullptr;
    // Null: `open` writes them where they stand in the tree.
    void (*light)(export_text &out, const object_t &light, const std::string &name) = nullptr;
    void (*open)(export_text &out, const export_object &object) = nullptr; // children follow
    void (*close)(export_text &out, const object_t &object) = nullptr;
    void (*end)(export_text &out) = nullptr;
};

// ---- parts that several formats need ----

// The `shown_picture` of formats that name any file: a picture to which no relative name leads is
// copied beside the file, and one that is not there loses its folders.
std::string export_picture_beside(const object_t &object, const std::string &picture,
                                  const std::string &filename);

inline bool is_set(const char *text) { return text != nullptr && *text != '\0'; }
inline float within_one(float value) { return std::clamp(value, 0.0f, 1.0f); }
inline bool is_line(int type) { return type == SURFACE_LINE || type == SURFACE_CLOSED_LINE; }

// The palette entry that a surface is written with: the first for one that is not there.
int written_index(int index);
const material &written_material(int index);

// The number of surfaces, for the progress bar.
double surfaces_of_world();

// Control characters become blanks, so that a name in a comment stays on its line.
std::string export_one_line(const char *text);
// Within double quotes: quotes and backslashes get a backslash, control characters become blanks.
std::string export_quoted(const char *text);

// The 3D view's eye.
struct export_eye {
    // A point before it.
    [[nodiscard]] point3_t target() const
    {
        return {location.x + direction.x, location.y + direction.y, location.z + direction.z};
    }
    point3_t location, right, up, direction; // the last three are unit vectors at right angles
    bool perspective;
    double half_height; // of the picture: at distance 1 with perspective, else in world units
};
export_eye export_view_eye();

// The vertices that a part uses, by rising index.
struct export_vertices {
    std::vector<int> used;
    // Where a vertex stands in `used`.
    [[nodiscard]] int place(int index) const;
};
export_vertices export_used_vertices(const export_object &object, const export_part &part);

// A part cut into triangles: three corner numbers each (of the object's flat mesh).
std::vector<int> export_triangles(const export_object &object, const export_part &part);

#endif
