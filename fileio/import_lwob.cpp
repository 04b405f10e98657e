// Points, polygons, and surfaces with colour, a picture and a few values. The space is left-handed,
// outlines run clockwise: z is turned round, and so are the outlines.

#include "fileio/import_lwob.h"

#include "base/file_report.h"
#include "fileio/import_mesh.h"
#include "model/angle.h"
#include "model/material_values.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/textures/textures.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <vector>

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
    float real() { return std::bit_cast<float>(number(4)); }
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

// How a picture lies on a surface: along an axis, about a place, as long as a size.
struct lwob_picture {
    enum kind_t { NONE, PLANE, CYLINDER, SPHERE } kind = NONE;
    std::string name;
    int axis = 2; // 0 x, 1 y, 2 z
    double centre[3] = {0, 0, 0}, size[3] = {1, 1, 1};
    double around = 1, along = 1; // repeats of the round ones
};

struct lwob_surface {
    std::string name;
    int palette_index = 0;
    bool smooth = false, twosided = false;
    lwob_picture picture;
};

struct lwob_polygon {
    std::vector<int> corners;
    std::size_t surface;
};

struct lwob_file {
    std::vector<point3_t> points; // as they stand there
    std::vector<lwob_polygon> polygons;
    std::vector<lwob_surface> surfaces;
    int other_pictures = 0; // for bumps, shine and the like
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

// ---- surfaces ----

// The values of a surface while its parts are read; each share from 0 to 1.
struct lwob_values {
    float colour[3] = {0.78f, 0.78f, 0.78f};
    float glow = 0, diffuse = 1, shine = 0, transparency = 0;
    float exponent = 16;
    bool tinted = false; // highlights have the surface's colour
};

// A share as a whole number of 256ths, or, in the later parts that take their place, as a real one.
bool take_share(std::string_view kind, iff_bytes &part, lwob_values &values)
{
    const struct {
        const char *whole, *real;
        float lwob_values::*value;
    } rows[] = {{"LUMI", "VLUM", &lwob_values::glow},
                {"DIFF", "VDIF", &lwob_values::diffuse},
                {"SPEC", "VSPC", &lwob_values::shine},
                {"TRAN", "VTRN", &lwob_values::transparency}};
    for (const auto &row : rows) {
        if (kind != row.whole && kind != row.real)
            continue;
        const float share =
            kind == row.real ? part.real() : static_cast<float>(part.number(2)) / 256;
        values.*row.value = std::isfinite(share) ? std::clamp(share, 0.0f, 1.0f) : 0.0f;
        return true;
    }
    return false;
}

// The parts of the picture for the colour.
void take_picture(std::string_view kind, iff_bytes &part, lwob_picture &picture)
{
    const auto three = [&part](double *to) {
        for (int i = 0; i < 3; ++i)
            to[i] = part.real();
    };
    if (kind == "CTEX") {
        const std::string type = part.text();
        picture.kind = type.starts_with("Planar")        ? lwob_picture::PLANE
                       : type.starts_with("Cylindrical") ? lwob_picture::CYLINDER
                       : type.starts_with("Spherical")   ? lwob_picture::SPHERE
                                                         : lwob_picture::NONE;
    } else if (kind == "TIMG") {
        picture.name = part.text();
    } else if (kind == "TFLG") {
        const std::uint32_t flags = part.number(2);
        picture.axis = (flags & 1) != 0 ? 0 : (flags & 2) != 0 ? 1 : 2;
    } else if (kind == "TSIZ") {
        three(picture.size);
    } else if (kind == "TCTR") {
        three(picture.centre);
    } else if (kind == "TFP0") {
        picture.around = part.real();
    } else if (kind == "TFP1") {
        picture.along = part.real();
    }
}

int palette_index(const std::string &surface_name, const lwob_values &values)
{
    material_values m;
    vesk_material_set_name(&m, surface_name.c_str());
    for (std::size_t i = 0; i < 3; ++i) {
        m.diffuse[i] = values.diffuse * values.colour[i];
        m.emissive[i] = values.glow * values.colour[i];
        m.specular[i] = values.shine * (values.tinted ? values.colour[i] : 1);
    }
    m.shininess = std::clamp(values.exponent, 0.0f, 128.0f);
    m.transparency = values.transparency;
    return vesk_palette_get_new_material_index(&m);
}

void read_surface(iff_bytes chunk, lwob_file &file)
{
    constexpr std::uint32_t luminous = 1, smooth = 4, tinted = 8, twosided = 256;
    lwob_surface surface;
    surface.name = chunk.text();
    lwob_values values;
    bool of_colour = true; // a picture's parts follow the one that says what it is for
    while (!chunk.at_end()) {
        iff_bytes part("");
        const std::string_view kind = chunk.chunk(2, &part);
        if (kind == "COLR") {
            for (float &value : values.colour)
                value = static_cast<float>(part.number(1)) / 255;
        } else if (kind == "FLAG") {
            const std::uint32_t flags = part.number(2);
            surface.smooth = (flags & smooth) != 0;
            surface.twosided = (flags & twosided) != 0;
            values.tinted = (flags & tinted) != 0;
            values.glow = (flags & luminous) != 0 && values.glow == 0 ? 1 : values.glow;
        } else if (kind == "GLOS") {
            values.exponent = static_cast<float>(part.number(2));
        } else if (kind.size() == 4 && kind.substr(1) == "TEX") {
            of_colour = kind == "CTEX";
            file.other_pictures += of_colour ? 0 : 1;
        }
        if (!take_share(kind, part, values) && of_colour)
            take_picture(kind, part, surface.picture);
    }
    surface.palette_index = palette_index(surface.name, values);
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
                p.z = chunk.real();
                file.points.push_back(p);
            }
        } else if (kind == "SRFS") {
            while (!chunk.at_end()) {
                lwob_surface &surface = file.surfaces.emplace_back();
                surface.name = chunk.text();
                surface.palette_index = import_colour(0.78f, 0.78f, 0.78f);
            }
        } else if (kind == "POLS") {
            read_polygons(chunk, file);
        } else if (kind == "SURF") {
            read_surface(chunk, file);
        }
    }
    return file;
}

// ---- objects ----

struct place_t {
    double u, v;
};

// Where a point lies on the picture.
place_t place_on(const lwob_picture &picture, const point3_t &p)
{
    const double x = p.x - picture.centre[0];
    const double y = p.y - picture.centre[1];
    const double z = p.z - picture.centre[2];
    const double at[3] = {x, y, z};
    const auto share = [&](int axis) {
        return at[axis] / (picture.size[axis] != 0 ? picture.size[axis] : 1) + 0.5;
    };
    if (picture.kind == lwob_picture::PLANE) // across and up, seen along the axis
        return {share(picture.axis == 0 ? 2 : 0), share(picture.axis == 1 ? 2 : 1)};
    const double heading = picture.axis == 0   ? std::atan2(-z, -y)
                           : picture.axis == 1 ? std::atan2(x, z)
                                               : std::atan2(x, -y);
    const double turn = 1 - (heading < 0 ? heading / (2 * pi) + 1 : heading / (2 * pi));
    if (picture.kind == lwob_picture::CYLINDER)
        return {turn * picture.around, share(picture.axis)};
    const double length = std::hypot(x, y, z);
    const double rise = length > 0 ? std::asin(at[picture.axis] / length) : 0;
    return {turn * picture.around, (rise / pi + 0.5) * picture.along};
}

void add_polygon(const lwob_file &file, const lwob_polygon &polygon, const lwob_surface &surface,
                 import_mesh *mesh)
{
    const lwob_picture &picture = surface.picture;
    double last = 0;
    bool first = true;
    for (auto corner = polygon.corners.rbegin(); corner != polygon.corners.rend(); ++corner) {
        if (*corner >= static_cast<int>(file.points.size()))
            continue;
        const point3_t &p = file.points[static_cast<std::size_t>(*corner)];
        place_t at = {0, 0};
        if (picture.kind != lwob_picture::NONE)
            at = place_on(picture, p);
        // Over the seam of a round picture it goes on.
        if (picture.kind != lwob_picture::PLANE && picture.around != 0 && !first)
            at.u -= std::round((at.u - last) / picture.around) * picture.around;
        last = at.u;
        first = false;
        mesh->add_corner(mesh->add_point_of(*corner, p.x, p.y, -p.z), static_cast<float>(at.u),
                         static_cast<float>(at.v));
    }
    const bool line = polygon.corners.size() == 2;
    mesh->end_surface(surface.palette_index, line ? int{SURFACE_TWOSIDED} | SURFACE_LINE
                                                  : (surface.twosided ? SURFACE_TWOSIDED : 0) |
                                                        (surface.smooth ? SURFACE_SMOOTH : 0));
}

// An object has one picture: the surfaces of each are one.
std::vector<object_t *> make_objects(const char *filename, const lwob_file &file)
{
    std::vector<object_t *> objects;
    lwob_surface plain;
    plain.palette_index = import_colour(0.78f, 0.78f, 0.78f);
    const auto surface_of = [&](const lwob_polygon &polygon) -> const lwob_surface & {
        return polygon.surface < file.surfaces.size() ? file.surfaces[polygon.surface] : plain;
    };
    std::map<std::string, import_mesh> meshes; // by picture
    for (const lwob_polygon &polygon : file.polygons) {
        const lwob_surface &surface = surface_of(polygon);
        import_mesh &mesh = meshes[surface.picture.name];
        add_polygon(file, polygon, surface, &mesh);
    }
    for (auto &[picture, mesh] : meshes) {
        if (mesh.empty())
            continue;
        objects.push_back(mesh.make_object(import_base_name(filename)));
        if (!picture.empty())
            search_and_set_texture(objects.back(), filename, picture.c_str());
    }
    return objects;
}

} // namespace

object_t *import_lwob(const char *filename, std::string_view bytes)
{
    const lwob_file file = read_file(iff_bytes(bytes.substr(12)));
    const std::vector<object_t *> objects = make_objects(filename, file);
    if (objects.empty())
        return import_refused(filename, "there is no geometry in it");
    if (file.other_pictures > 0)
        vesk_report_warning(0, "%d pictures for bumps, shine and the like were left out",
                            file.other_pictures);
    if (objects.size() == 1)
        return objects[0];
    object_t *group = new_group();
    object_set_name(group, import_base_name(filename).c_str());
    for (object_t *object : objects)
        object_add_child(group, object);
    return group;
}
