// STL: triangles without anything else, as text ("solid" to "endsolid", several of them) or binary.
#include "formats.h"
#include "mesh.h"
#include "model.h"
#include "text.h"
#include "work.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <strings.h>
#include <unordered_map>

namespace {

constexpr std::size_t header_size = 84; // and the number of triangles
constexpr std::size_t triangle_size = 50;

struct place_hash {
    std::size_t operator()(const std::array<float, 3> &p) const
    {
        return std::hash<std::string_view>()({reinterpret_cast<const char *>(p.data()), sizeof p});
    }
};

// Corners at one place are one vertex.
class part_reader {
public:
    void corner(std::array<float, 3> p)
    {
        for (float &value : p)
            value = std::isfinite(value) ? value + 0.0f : 0.0f;
        const auto found = known_.emplace(p, mesh.num_points());
        if (found.second)
            mesh.points.insert(mesh.points.end(), p.begin(), p.end());
        mesh.add_corner(found.first->second);
    }
    mesh_arrays mesh;

private:
    std::unordered_map<std::array<float, 3>, int, place_hash> known_;
};

class stl_reader {
public:
    stl_reader(job &work, const std::string &name)
        : work_(work), top_(new_group()), base_(base_name(name))
    {
        object_set_name(top_, base_.c_str());
    }

    void binary(const std::string &bytes, std::size_t count)
    {
        work_.phase(share_of_parsing, static_cast<double>(count));
        for (std::size_t i = 0; i < count && work_.step(); ++i) {
            float values[12]; // the normal first
            std::memcpy(values, &bytes[header_size + triangle_size * i], sizeof values);
            for (int k = 3; k < 12; k += 3)
                part_.corner({values[k], values[k + 1], values[k + 2]});
            part_.mesh.end_surface(no_material, SURFACE_TWOSIDED);
        }
        finish_part(base_);
    }

    void text(const std::string &bytes)
    {
        std::string name = base_;
        int number = 0;
        work_.phase(share_of_parsing, static_cast<double>(bytes.size()));
        for (std::size_t at = 0; at < bytes.size() && work_.at(static_cast<double>(at));) {
            const std::size_t end = std::min(bytes.find('\n', at), bytes.size());
            const std::size_t first = bytes.find_first_not_of(" \t\r", at);
            ++number;
            if (first < end)
                line(bytes.substr(first, end - first), number, name);
            at = end + 1;
        }
        finish_part(name);
    }

    object_t *finish()
    {
        if (parts_ == 1) { // a group of one is none
            auto *only = reinterpret_cast<object_t *>(top_->children->data);
            object_remove_child_nocleanup(top_, only);
            object_free(top_);
            top_ = only;
        }
        object_calc_normals_force(top_);
        return top_;
    }
    [[nodiscard]] bool empty() const { return parts_ == 0; }
    void drop() { object_free(top_); }

private:
    void line(const std::string &words, int number, std::string &name)
    {
        const auto begins = [&](const char *word) {
            return strncasecmp(words.c_str(), word, std::strlen(word)) == 0;
        };
        if (begins("vertex")) {
            std::array<float, 3> p = {};
            const char *at = words.c_str() + 6;
            for (float &value : p) {
                char *after = nullptr;
                value = std::strtof(at, &after);
                if (after == at) {
                    vesk_report_warning(number, "a corner needs three numbers");
                    return;
                }
                at = after;
            }
            part_.corner(p);
        } else if (begins("endloop") || begins("endfacet")) {
            if (!part_.mesh.end_surface(no_material, SURFACE_TWOSIDED) && begins("endloop"))
                vesk_report_warning(number, "a triangle with too few corners was left out");
        } else if (begins("solid")) {
            finish_part(name);
            const std::size_t from = words.find_first_not_of(" \t", 5);
            const std::size_t to = words.find_last_not_of(" \t\r");
            name =
                from == std::string::npos || to < from ? base_ : words.substr(from, to - from + 1);
        }
    }

    void finish_part(const std::string &name)
    {
        if (!part_.mesh.surfaces.empty() && !work_.cancelled()) {
            object_add_child(top_, part_.mesh.make_object(name));
            ++parts_;
        }
        part_ = part_reader();
    }

    job &work_;
    object_t *top_;
    const std::string base_;
    part_reader part_;
    int parts_ = 0;
};

// Whether it may be a text: no zero bytes at its beginning, which holds one of the words.
bool is_text(const std::string &bytes)
{
    std::string begin = bytes.substr(0, 1 << 16);
    for (char &c : begin)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 'a' - 'A') : c;
    return begin.find('\0') == std::string::npos &&
           (begin.find("facet") != std::string::npos || begin.find("solid") != std::string::npos);
}

// The number of triangles of a binary file, 0 for a text. Neither can be told by its first word, which
// some binary files share and some texts lack: the size decides, then the words.
std::size_t binary_count(const std::string &bytes)
{
    if (bytes.size() < header_size)
        return 0;
    std::uint32_t count = 0;
    std::memcpy(&count, &bytes[header_size - 4], sizeof count);
    if (bytes.size() == header_size + triangle_size * count)
        return count;
    const std::size_t held = (bytes.size() - header_size) / triangle_size;
    if (held == 0 || is_text(bytes))
        return 0;
    if (count <= held)
        return count;
    vesk_report_warning(0, "%u triangles are announced, %u are there", count,
                        static_cast<unsigned>(held));
    return held;
}

// ---- out ----

model_wishes wishes()
{
    model_wishes w;
    w.lines = w.lights = w.pictures = w.smooth = w.groups = w.polygons = false;
    w.colours = w.normals = false;
    return w;
}

const point3_t &point_of(const model_node &node, int corner)
{
    return node.points[static_cast<std::size_t>(node.corners[static_cast<std::size_t>(corner)])];
}

template <class Each>
void each_triangle(job &work, const model_node &node, Each &&each)
{
    std::vector<int> corners;
    for (const model_surface &surface : node.surfaces) {
        if (!work.step())
            return;
        corners.clear();
        cut_surface(node, surface, corners);
        for (std::size_t i = 0; i + 2 < corners.size(); i += 3)
            each(surface.normal, &corners[i]);
    }
}

void report_colours(const model &scene)
{
    vesk_report_loss(scene.materials.size() > 1 ? static_cast<int>(scene.materials.size()) : 0,
                     "materials");
}

void make_text(job &work, const model &scene, export_files &files, const std::string &name)
{
    report_colours(scene);
    text_out out;
    work.phase(0.9, scene.elements);
    for (const model_node &node : scene.nodes) {
        const std::string title = vesk_utf8(node.name.c_str());
        out.add("solid ", title, '\n');
        each_triangle(work, node, [&](const point3_t &normal, const int *corners) {
            out.add("facet normal ", normal, "\nouter loop\n");
            for (int k = 0; k < 3; ++k)
                out.add("vertex ", point_of(node, corners[k]), '\n');
            out.add("endloop\nendfacet\n");
        });
        out.add("endsolid ", title, '\n');
    }
    files.add(name, out.text);
}

void make_binary(job &work, const model &scene, export_files &files, const std::string &name)
{
    report_colours(scene);
    vesk_report_loss(scene.nodes.size() > 1 ? static_cast<int>(scene.nodes.size()) : 0,
                     "objects of their own");
    std::string bytes = "VESK";
    bytes.resize(header_size, '\0');
    std::uint32_t count = 0;
    work.phase(0.9, scene.elements);
    const auto add = [&bytes](const point3_t &p) {
        for (const float value : {p.x, p.y, p.z})
            add_bytes(bytes, value);
    };
    for (const model_node &node : scene.nodes) {
        each_triangle(work, node, [&](const point3_t &normal, const int *corners) {
            add(normal);
            for (int k = 0; k < 3; ++k)
                add(point_of(node, corners[k]));
            add_bytes(bytes, std::uint16_t{0});
            ++count;
        });
    }
    std::memcpy(&bytes[header_size - 4], &count, sizeof count);
    files.add(name, bytes);
}

} // namespace

object_t *stl_import(const char *filename)
{
    const std::string name = filename;
    std::string bytes;
    job work;
    if (!read_file(name, &bytes, &work))
        return refuse(work, name, std::strerror(errno));
    stl_reader reader(work, name);
    if (const std::size_t count = binary_count(bytes); count > 0)
        reader.binary(bytes, count);
    else
        reader.text(bytes);
    if (!work.cancelled() && !reader.empty())
        return reader.finish();
    reader.drop();
    return refuse(work, name, "there are no triangles in it");
}

int stl_text_export(const char *filename)
{
    return export_scene(filename, "STL", wishes(), make_text);
}

int stl_export(const char *filename)
{
    return export_scene(filename, "STL", wishes(), make_binary);
}
