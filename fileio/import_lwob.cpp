// Points, polygons, and surfaces with colour, picture and a few values. Left-handed: z is turned
// round, and so are the outlines.

#include "fileio/import_lwob.h"

#include "fileio/import_mesh.h"
#include "model/palette.h"
#include "model/textures/textures.h"

#include <cstdint>
#include <cstring>

namespace {

class iff_bytes {
public:
    explicit iff_bytes(std::string_view bytes) : bytes_(bytes) {}

    [[nodiscard]] bool at_end() const { return bytes_.empty(); }
    [[nodiscard]] std::size_t size() const { return bytes_.size(); }
    std::string_view take(std::size_t count)
    {
        const std::string_view out = bytes_.substr(0, count);
        bytes_.remove_prefix(out.size());
        return out;
    }
    // Big end first; missing bytes count as 0.
    std::uint32_t number(std::size_t count)
    {
        const std::string_view digits = take(count);
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < count; ++i)
            value = value << 8 | (i < digits.size() ? static_cast<unsigned char>(digits[i]) : 0U);
        return value;
    }
    float real()
    {
        const std::uint32_t bits = number(4);
        float value = 0;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }
    // Up to its zero, padded to an even length.
    std::string text()
    {
        const std::size_t length = std::min(bytes_.find('\0'), bytes_.size());
        const std::string out(take(length));
        take(length % 2 == 0 ? 2 : 1);
        return out;
    }
    // A chunk's name and its content; the size has `count` bytes.
    std::string_view chunk(std::size_t count, iff_bytes *content)
    {
        const std::string_view name = take(4);
        const std::size_t length = number(count);
        const std::string_view inside = take(length);
        take(length % 2);
        *content = iff_bytes(inside);
        return name;
    }

private:
    std::string_view bytes_;
};

struct lwob_surface {
    std::string name;
    int palette_index = 0;
    bool smooth = false;
    bool known = false;
    std::string picture;
};

struct lwob_polygon {
    std::vector<int> corners;
    std::size_t surface;
};

struct lwob_file {
    std::vector<point3_t> points;
    std::vector<lwob_polygon> polygons;
    std::vector<lwob_surface> surfaces;
};

void read_polygons(iff_bytes chunk, lwob_file &file)
{
    while (!chunk.at_end()) {
        const std::uint32_t count = chunk.number(2);
        lwob_polygon polygon = {{}, 0};
        for (std::uint32_t i = 0; i < count && !chunk.at_end(); ++i)
            polygon.corners.push_back(static_cast<int>(chunk.number(2)));
        int surface = static_cast<std::int16_t>(chunk.number(2));
        if (surface < 0) { // polygons that lie on this one follow; each counts for itself
            surface = -surface;
            chunk.number(2);
        }
        polygon.surface = static_cast<std::size_t>(std::max(surface, 1)) - 1;
        file.polygons.push_back(std::move(polygon));
    }
}

void read_surface(iff_bytes chunk, lwob_file &file)
{
    std::string name = chunk.text();
    material m;
    material_init(&m);
    m.name = name.data(); // the palette keeps a copy
    lwob_surface surface = {name, 0, false, true, ""};
    while (!chunk.at_end()) {
        iff_bytes part("");
        const std::string_view kind = chunk.chunk(2, &part);
        if (kind == "COLR") {
            for (std::size_t i = 0; i < 3; ++i)
                m.diffuse[i] = static_cast<float>(part.number(1)) / 255;
        } else if (kind == "FLAG") {
            surface.smooth = (part.number(2) & 4) != 0;
        } else if (kind == "TRAN") {
            m.transparency = static_cast<float>(part.number(2)) / 256;
        } else if (kind == "TIMG") {
            surface.picture = part.text();
        }
    }
    surface.palette_index = vesk_palette_get_new_material_index(&m);
    for (lwob_surface &known : file.surfaces)
        if (known.name == surface.name)
            known = surface;
}

lwob_file read_file(iff_bytes bytes)
{
    lwob_file file;
    while (bytes.size() >= 8) {
        iff_bytes chunk("");
        const std::string_view kind = bytes.chunk(4, &chunk);
        if (kind == "PNTS") {
            while (chunk.size() >= 12) {
                point3_t p = {chunk.real(), 0, 0};
                p.y = chunk.real();
                p.z = -chunk.real();
                file.points.push_back(p);
            }
        } else if (kind == "SRFS") {
            while (!chunk.at_end())
                file.surfaces.push_back({chunk.text(), 0, false, false, ""});
        } else if (kind == "POLS") {
            read_polygons(chunk, file);
        } else if (kind == "SURF") {
            read_surface(chunk, file);
        }
    }
    return file;
}

import_mesh make_mesh(const lwob_file &file)
{
    import_mesh mesh;
    for (const point3_t &p : file.points)
        mesh.add_point(p.x, p.y, p.z);
    for (const lwob_polygon &polygon : file.polygons) {
        for (const int corner : polygon.corners) // clockwise, seen in a mirror
            if (corner < mesh.num_points())
                mesh.add_corner(corner);
        const bool known = polygon.surface < file.surfaces.size();
        const bool line = polygon.corners.size() == 2;
        mesh.end_surface(known ? file.surfaces[polygon.surface].palette_index : 0,
                         SURFACE_TWOSIDED |
                             (line                                             ? int{SURFACE_LINE}
                              : known && file.surfaces[polygon.surface].smooth ? int{SURFACE_SMOOTH}
                                                                               : 0));
    }
    return mesh;
}

} // namespace

object_t *import_lwob(const char *filename, std::string_view bytes)
{
    const lwob_file file = read_file(iff_bytes(bytes.substr(12)));
    const import_mesh mesh = make_mesh(file);
    if (mesh.empty())
        return import_refused(filename, "there is no geometry in it");
    object_t *object = mesh.make_object(import_base_name(filename));
    for (const lwob_surface &surface : file.surfaces)
        if (!surface.picture.empty()) {
            search_and_set_texture(object, filename, surface.picture.c_str());
            break;
        }
    return object;
}
