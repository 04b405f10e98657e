#include "fileio/export_3ds.h"

#include "base/atomic_file.h"
#include "base/file_report.h"
#include "base/filename.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/progress.h"
#include "base/utf8.h"
#include "fileio/export_scene.h"
#include "fileio/output.h"
#include "model/each.h"
#include "model/ear_cut.h"
#include "model/flat_mesh.h"
#include "model/palette.h"
#include "model/textures/textures.h"
#include "model/vertex_colours.h"
#include "model/world.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <unordered_map>

namespace {

constexpr size_t most_vertices = 65000; // counts are 16-bit numbers
constexpr size_t most_faces = 65000;
constexpr size_t most_name = 10;
constexpr size_t most_material_name = 16;
constexpr std::uint32_t no_node = 0xFFFF;
constexpr const char *dummy = "$$$DUMMY"; // the mesh of an entry that has none

struct names_t {
    std::set<std::string> taken;
    std::unordered_map<std::string, int> numbers; // the last number behind a name
};

// ---- chunks ----

void put(std::string &out, std::uint32_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out += static_cast<char>(value >> 8 * i);
}

void put_real(std::string &out, float value)
{
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    put(out, bits, 4);
}

std::string chunk(unsigned id, const std::string &body)
{
    std::string out;
    put(out, id, 2);
    put(out, static_cast<std::uint32_t>(body.size() + 6), 4);
    return out + body;
}

std::string text(const std::string &words) { return words + '\0'; }

// As bytes, which every reader knows, and as reals, which are exact.
std::string colour(unsigned id, const float *rgb)
{
    std::string bytes;
    std::string reals;
    for (int i = 0; i < 3; ++i) {
        bytes += static_cast<char>(static_cast<int>(within_one(rgb[i]) * 255 + 0.5f));
        put_real(reals, within_one(rgb[i]));
    }
    return chunk(id, chunk(0x0011, bytes) + chunk(0x0010, reals));
}

std::string percent(unsigned id, float share)
{
    std::string whole;
    std::string real;
    put(whole, static_cast<std::uint32_t>(within_one(share) * 100 + 0.5f), 2);
    put_real(real, within_one(share));
    return chunk(id, chunk(0x0030, whole) + chunk(0x0031, real));
}

std::string real(unsigned id, float value)
{
    std::string bytes;
    put_real(bytes, value);
    return chunk(id, bytes);
}

// ---- meshes ----

// One mesh of the file: vertices are parted where their texture coordinates differ.
struct mesh_t {
    std::vector<point3_t> points;
    std::vector<flat_uv> uv;
    std::vector<std::array<std::uint32_t, 3>> faces;
    std::vector<bool> smooth;
    std::map<std::string, std::vector<std::uint32_t>> faces_of; // by material
    std::map<std::tuple<int, float, float>, std::uint32_t> known;

    [[nodiscard]] bool full() const
    {
        return points.size() + 3 > most_vertices || faces.size() + 1 > most_faces;
    }
};

// The glowing colour as a part of the diffuse one, which is how the format has it; -1 for another.
float share_of_diffuse(const material &m)
{
    const float sum = m.diffuse[0] + m.diffuse[1] + m.diffuse[2];
    const float glow = m.emissive[0] + m.emissive[1] + m.emissive[2];
    const float share = sum > 0 ? glow / sum : 0;
    for (int i = 0; i < 3; ++i)
        if (std::abs(m.emissive[i] - share * m.diffuse[i]) > 0.005f || share > 1)
            return -1;
    return share;
}

class writer {
public:
    writer(const std::string &filename, double surfaces) : progress_(surfaces), filename_(filename)
    {
    }

    void add(object_t *object)
    {
        if (object == vesk_get_world())
            return;
        node_ = no_node;
        const auto above = nodes_of_.find(object->parent);
        parent_ = above == nodes_of_.end() ? no_node : above->second;
        if (object->type == OBJECT_LIGHT)
            light(*object);
        picture_ = object_texture_beside(object, filename_.c_str());
        const flat_ptr flat = object_flat(object);
        count_losses(*object, *flat);
        mesh_t mesh;
        for (int surface = 0; surface < flat->num_surfaces() && progress_.step(++done_); ++surface)
            add_surface(*flat, surface, object, mesh);
        finish(object, mesh);
        if (node_ == no_node)
            add_node(0xB002, dummy, export_one_line(object->name));
        nodes_of_[object] = node_;
    }

    [[nodiscard]] bool cancelled() const { return progress_.cancelled(); }

    [[nodiscard]] std::string file() const
    {
        std::string version;
        put(version, 3, 4);
        return chunk(0x4D4D, chunk(0x0002, version) +
                                 chunk(0x3D3D, chunk(0x3D3E, version) + materials_ + objects_) +
                                 chunk(0xB000, nodes_));
    }

    void report() const
    {
        vesk_report_loss(lines_, "lines");
        vesk_report_loss(glowing_, "glowing colours");
        vesk_report_loss(points_, "loose points");
        vesk_report_loss(texts_, "addresses and data texts");
        report_lost_vertex_colours();
        vesk_report_note(polygons_, "polygons cut into triangles");
        vesk_report_note(shortened_, "names shortened");
    }

private:
    static point3_t stored(const point3_t &p)
    {
        return prefs.swap_3ds_yz != 0 ? point3_t{p.x, -p.z, p.y} : p;
    }

    void light(const object_t &object)
    {
        const point3_t at = stored(object.centre);
        const float white[3] = {1, 1, 1};
        std::string body;
        for (const float value : {at.x, at.y, at.z})
            put_real(body, value);
        std::string tint;
        for (const float value : white)
            put_real(tint, value);
        const std::string name = unique(&object_names_, object.name, "light", most_name);
        objects_ += chunk(0x4000, text(name) + chunk(0x4600, body + chunk(0x0010, tint)));
        add_node(0xB005, name);
    }

    // An entry in the tree of the file: of a mesh, a light, or of neither, with a name of its own.
    // The first of an object is its children's parent.
    void add_node(unsigned kind, const std::string &name, const std::string &instance = "")
    {
        std::string id;
        put(id, num_nodes_, 2);
        std::string node = text(name);
        put(node, 0, 4);
        put(node, parent_, 2);
        nodes_ +=
            chunk(kind, (num_nodes_ < no_node ? chunk(0xB030, id) : "") + chunk(0xB010, node) +
                            (instance.empty() ? "" : chunk(0xB011, text(instance))));
        if (node_ == no_node)
            node_ = std::min(num_nodes_, no_node);
        ++num_nodes_;
    }

    void count_losses(const object_t &object, const flat_mesh &flat)
    {
        points_ += flat_loose_points(flat);
        texts_ += (is_set(object.url) ? 1 : 0) + vesk_object_has_user_data(&object);
    }

    void add_surface(const flat_mesh &flat, int surface, object_t *object, mesh_t &mesh)
    {
        const flat_surface &record = (*flat.surfaces)[static_cast<size_t>(surface)];
        const std::span<const std::int32_t> corners = flat.surface_corners(surface);
        if (is_line(record.type)) {
            ++lines_;
            return;
        }
        if (corners.size() < 3)
            return;
        const std::vector<int> ears = surface_ears(flat, surface);
        polygons_ += corners.size() > 3 ? 1 : 0;
        const auto first =
            static_cast<size_t>((*flat.corner_offsets)[static_cast<size_t>(surface)]);
        const std::string name = material_name(record, object);
        for (size_t i = 0; i + 2 < ears.size(); i += 3) {
            if (mesh.full())
                finish(object, mesh);
            std::array<std::uint32_t, 3> face = {};
            for (size_t k = 0; k < 3; ++k) {
                const auto corner = static_cast<size_t>(ears[i + k]);
                const std::int32_t index = corners[corner];
                face[k] = vertex(mesh, index, (*flat.positions)[static_cast<size_t>(index)],
                                 (*flat.texture_coords)[first + corner]);
            }
            mesh.faces_of[name].push_back(static_cast<std::uint32_t>(mesh.faces.size()));
            mesh.faces.push_back(face);
            mesh.smooth.push_back(record.smooth != 0);
        }
    }

    static std::uint32_t vertex(mesh_t &mesh, int index, const point3_t &p, const flat_uv &uv)
    {
        const auto found = mesh.known.emplace(std::tuple(index, uv.u, uv.v),
                                              static_cast<std::uint32_t>(mesh.points.size()));
        if (found.second) {
            mesh.points.push_back(stored(p));
            mesh.uv.push_back(uv);
        }
        return found.first->second;
    }

    void finish(const object_t *object, mesh_t &mesh)
    {
        if (mesh.faces.empty())
            return;
        std::string points;
        std::string uv;
        put(points, static_cast<std::uint32_t>(mesh.points.size()), 2);
        put(uv, static_cast<std::uint32_t>(mesh.uv.size()), 2);
        for (size_t i = 0; i < mesh.points.size(); ++i) {
            for (const float value : {mesh.points[i].x, mesh.points[i].y, mesh.points[i].z})
                put_real(points, value);
            put_real(uv, mesh.uv[i].u);
            put_real(uv, mesh.uv[i].v);
        }
        const std::string name = unique(&object_names_, object->name, "object", most_name);
        objects_ +=
            chunk(0x4000, text(name) + chunk(0x4100, chunk(0x4110, points) + chunk(0x4140, uv) +
                                                         chunk(0x4120, faces(mesh))));
        add_node(0xB002, name);
        mesh = {};
    }

    static std::string faces(const mesh_t &mesh)
    {
        std::string out;
        std::string smoothing;
        put(out, static_cast<std::uint32_t>(mesh.faces.size()), 2);
        for (size_t i = 0; i < mesh.faces.size(); ++i) {
            for (const std::uint32_t index : mesh.faces[i])
                put(out, index, 2);
            put(out, 7, 2); // all edges are seen
            put(smoothing, mesh.smooth[i] ? 1 : 0, 4);
        }
        for (const auto &[name, list] : mesh.faces_of) {
            std::string group = text(name);
            put(group, static_cast<std::uint32_t>(list.size()), 2);
            for (const std::uint32_t face : list)
                put(group, face, 2);
            out += chunk(0x4130, group);
        }
        return out + chunk(0x4150, smoothing);
    }

    // Names are short; one that is taken gets a number.
    std::string unique(names_t *names, const char *wanted, const char *fallback, size_t most)
    {
        const std::string whole = is_set(wanted) ? wanted : fallback;
        shortened_ += whole.size() > most ? 1 : 0;
        const std::string start = first_letters(whole, most);
        int &number = names->numbers[start];
        std::string name = start;
        while (!names->taken.insert(name).second) {
            const std::string digits = std::to_string(++number);
            name = first_letters(start, most - std::min(digits.size(), most - 1)) + digits;
        }
        return name;
    }

    static std::string first_letters(const std::string &name, size_t bytes)
    {
        return name.substr(0, utf8_whole(name.c_str(), bytes));
    }

    // A palette entry together with the object's picture, described when it is first used.
    std::string material_name(const flat_surface &surface, const object_t *object)
    {
        const int index = written_index(surface.material);
        const auto key =
            std::tuple(index, picture_, object->texture_repeat_x, object->texture_repeat_y,
                       object->texture_offset_x, object->texture_offset_y, surface.twosided);
        const auto found = material_names_.find(key);
        if (found != material_names_.end())
            return found->second;
        const material &m = *vesk_palette_get_material(index);
        const std::string name = unique(&material_texts_, vesk_material_get_name_index(index),
                                        "material", most_material_name);
        material_names_[key] = name;
        const float glow = share_of_diffuse(m);
        glowing_ += glow < 0 ? 1 : 0;
        std::string body = chunk(0xA000, text(name)) + colour(0xA010, m.ambient) +
                           colour(0xA020, m.diffuse) + colour(0xA030, m.specular) +
                           percent(0xA040, m.shininess / 128) + percent(0xA050, m.transparency);
        if (glow > 0)
            body += percent(0xA084, glow);
        if (surface.twosided != 0)
            body += chunk(0xA081, "");
        if (!picture_.empty())
            body += chunk(0xA200, chunk(0xA300, text(picture_)) +
                                      real(0xA354, object->texture_repeat_x) +
                                      real(0xA356, object->texture_repeat_y) +
                                      real(0xA358, -object->texture_offset_x) +
                                      real(0xA35A, object->texture_offset_y));
        materials_ += chunk(0xAFFF, body);
        return name;
    }

    progress_t progress_;
    double done_ = 0;
    std::string materials_, objects_, nodes_;
    const std::string filename_;
    std::string picture_; // of the object at hand
    names_t object_names_, material_texts_;
    std::map<std::tuple<int, std::string, float, float, float, float, std::uint8_t>, std::string>
        material_names_;
    int lines_ = 0, glowing_ = 0, points_ = 0, texts_ = 0;
    int polygons_ = 0, shortened_ = 0;
    std::unordered_map<const object_t *, std::uint32_t> nodes_of_;
    std::uint32_t num_nodes_ = 0;
    std::uint32_t parent_ = no_node, node_ = no_node; // of the object at hand
};

} // namespace

// ---- commands ----

int write_3ds(const char *filename)
{
    const std::string name = filename; // the messages let scripts run
    vesk_report_export(name.c_str());
    writer scene(name, surfaces_of_world());
    for_each_object(vesk_get_world(), [&](object_t *object) { scene.add(object); });
    const bool written = !scene.cancelled() && atomic_file_write(name.c_str(), scene.file());
    if (written)
        scene.report();
    return export_end(name, "3DS", scene.cancelled(), written);
}
