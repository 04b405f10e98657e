#include "fileio/export_commands.h"

#include "base/atomic_file.h"
#include "base/file_report.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "fileio/export_dxf.h"
#include "fileio/export_inventor.h"
#include "fileio/export_plain.h"
#include "fileio/export_pov.h"
#include "fileio/export_rib.h"
#include "fileio/export_vrml2_tree.h"
#include "fileio/output.h"
#include "fileio/vrml_names.h"
#include "model/bounds.h"
#include "model/each.h"
#include "model/lights.h"
#include "model/palette.h"
#include "model/textures/textures.h"
#include "model/vertex_colours.h"
#include "model/world.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <tuple>

namespace {

constexpr size_t piece_size = 1 << 20; // bytes written at once
constexpr float smallest_scene = 1e-6f;

// ---- the written parts of an object ----

// The elements that a format may have no place for, as the report names them.
enum loss { LINES, LIGHTS, PICTURES, SMOOTH, POINTS, URLS, DATA };
constexpr const char *loss_names[] = {"lines",        "lights",    "textures",  "smooth surfaces",
                                      "loose points", "addresses", "data texts"};
using losses_t = std::array<int, std::size(loss_names)>;

std::vector<export_part> parts_of(const flat_mesh &flat, const export_format &format,
                                  losses_t *losses)
{
    std::map<std::tuple<int, int, bool, bool>, size_t> known;
    std::vector<export_part> parts;
    for (int surface = 0; surface < flat.num_surfaces(); ++surface) {
        const flat_surface &record = (*flat.surfaces)[static_cast<size_t>(surface)];
        const bool line = is_line(record.type);
        if (flat.surface_corners(surface).size() < (line ? 2u : 3u))
            continue; // nothing to be seen
        if (line && !format.lines) {
            ++(*losses)[LINES];
            continue;
        }
        const bool smooth = !line && record.smooth != 0;
        (*losses)[SMOOTH] += smooth && !format.smooth ? 1 : 0;
        const int index = written_index(record.material);
        const int type = line ? int{record.type} : int{SURFACE_POLYGON};
        const bool twosided = line || record.twosided != 0;
        const auto found = known.emplace(std::tuple(index, type, smooth, twosided), parts.size());
        if (found.second)
            parts.push_back({vesk_palette_get_material(index), type, smooth, twosided, index, {}});
        parts[found.first->second].surfaces.push_back(surface);
    }
    return parts;
}

// Counts the losses besides surfaces.
void count_losses(const object_t *object, const flat_mesh &flat, const export_format &format,
                  losses_t *losses)
{
    (*losses)[POINTS] += format.points ? 0 : flat_loose_points(flat);
    (*losses)[URLS] += !format.urls && is_set(object->url) ? 1 : 0;
    (*losses)[DATA] += !format.data ? vesk_object_has_user_data(object) : 0;
}

// The names by which pictures are written, by their files.
using pictures_t = std::map<std::string, std::string>;

export_object described(object_t *object, const export_format &format, const std::string &filename,
                        pictures_t *pictures, losses_t *losses)
{
    export_object out = {object, object_flat(object), export_one_line(object->name), {}, {}};
    out.parts = parts_of(*out.flat, format, losses);
    count_losses(object, *out.flat, format, losses);
    if (out.parts.empty())
        return out;
    out.picture = object_texture_beside(object, filename.c_str());
    if (out.picture.empty())
        return out;
    if (!format.pictures)
        out.picture.clear();
    else if (format.shown_picture != nullptr) {
        const auto [entry, fresh] = pictures->try_emplace(out.picture);
        if (fresh)
            entry->second = format.shown_picture(*object, out.picture, filename);
        out.picture = entry->second;
    }
    (*losses)[PICTURES] += out.picture.empty() ? 1 : 0;
    return out;
}

// ---- the walk ----

// The tree below the world, parents before their children; `holds`: there are surfaces in the
// object or below it.
struct node_t {
    object_t *object;
    int parent; // index, -1 for the world
    bool holds;
    int children = 0; // that hold some
};

std::vector<node_t> nodes_of_world(const export_format &format)
{
    std::vector<node_t> nodes;
    std::vector<node_t> stack;
    const auto push_children = [&stack](const object_t *object, int parent) {
        const size_t first = stack.size();
        for (object_t *child : each<object_t>(object->children))
            stack.push_back({child, parent, false});
        std::reverse(stack.begin() + static_cast<std::ptrdiff_t>(first), stack.end());
    };
    push_children(vesk_get_world(), -1);
    while (!stack.empty()) {
        nodes.push_back(stack.back());
        stack.pop_back();
        push_children(nodes.back().object, static_cast<int>(nodes.size()) - 1);
    }
    for (size_t i = nodes.size(); i > 0; --i) {
        node_t &node = nodes[i - 1];
        losses_t ignored = {};
        node.holds = node.holds || !parts_of(*object_flat(node.object), format, &ignored).empty();
        if (node.holds && node.parent >= 0) {
            node_t &parent = nodes[static_cast<size_t>(node.parent)];
            parent.holds = true;
            ++parent.children;
        }
    }
    return nodes;
}

class writer {
public:
    writer(const export_format &format, const char *filename)
        : format_(format), filename_(filename), file_(filename)
    {
    }

    // False when the user cancelled.
    bool scene()
    {
        const point3_t size = find_object_size(vesk_get_world());
        out_.scene_size = std::max({size.x, size.y, size.z, smallest_scene});
        if (format_.begin != nullptr)
            format_.begin(out_);
        lights();
        const bool complete = objects();
        if (complete && format_.end != nullptr)
            format_.end(out_);
        return complete;
    }

    bool commit()
    {
        file_.write(out_.text);
        return file_.commit();
    }

    [[nodiscard]] const losses_t &losses() const { return losses_; }

private:
    void lights()
    {
        for (const object_t *light : each<object_t>(world_lights())) {
            if (!format_.lights) {
                ++losses_[LIGHTS];
                continue;
            }
            if (format_.light == nullptr)
                continue;
            ++out_.lights;
            format_.light(out_, *light, export_one_line(light->name));
        }
    }

    bool objects()
    {
        const std::vector<node_t> nodes = nodes_of_world(format_);
        progress_t progress(work_of(nodes));
        out_.work = &progress;
        std::vector<int> open;
        for (size_t i = 0; i < nodes.size(); ++i) {
            const node_t &node = nodes[i];
            out_.done = out_.next;
            out_.next += work_of(node);
            if (!progress.step(out_.done))
                return false;
            // Lights may have been written as such; their surfaces and children are an object like others.
            export_object object = described(node.object, format_, filename_, &pictures_, &losses_);
            object.children = node.children;
            const bool written = node.object->type == OBJECT_LIGHT && format_.light != nullptr;
            if (!node.holds && (!format_.empty_objects || written))
                continue;
            close_until(nodes, &open, node.parent);
            format_.open(out_, object);
            open.push_back(static_cast<int>(i));
            if (out_.text.size() > piece_size) {
                file_.write(out_.text);
                out_.text.clear();
            }
        }
        close_until(nodes, &open, -1);
        out_.work = nullptr;
        return !progress.cancelled();
    }

    static double work_of(const node_t &node)
    {
        return 1.0 + node.object->num_vertices + node.object->num_surfaces;
    }
    static double work_of(const std::vector<node_t> &nodes)
    {
        double sum = 0;
        for (const node_t &node : nodes)
            sum += work_of(node);
        return sum;
    }

    void close_until(const std::vector<node_t> &nodes, std::vector<int> *open, int parent)
    {
        while (!open->empty() && open->back() != parent) {
            if (format_.close != nullptr)
                format_.close(out_, *nodes[static_cast<size_t>(open->back())].object);
            open->pop_back();
        }
    }

    const export_format &format_;
    const std::string filename_;
    atomic_writer_t file_;
    export_text out_;
    losses_t losses_ = {};
    pictures_t pictures_;
};

int write_scene(const char *filename, const export_format &format)
{
    const std::string name = filename; // the messages let scripts run
    vesk_report_export(name.c_str());
    writer scene(format, name.c_str());
    const bool complete = scene.scene();
    const bool written = complete && scene.commit();
    for (size_t i = 0; i < std::size(loss_names) && written; ++i)
        vesk_report_loss(scene.losses()[i], loss_names[i]);
    if (written && !format.vertex_colours)
        report_lost_vertex_colours();
    return export_end(name, format.name, !complete, written);
}

int write_first_vrml(const char *filename, const export_format &format)
{
    const int written = write_scene(filename, format);
    if (written != 0)
        vrml_material_notes(vrml1_node_name, false);
    return written;
}

} // namespace

// ---- commands ----

int write_vrml(const char *filename) { return write_first_vrml(filename, vrml1_format); }
int write_vrml2_tree(const char *filename)
{
    export_format format = vrml2_tree_format;
    format.pictures = prefs.vrml_output_textures != 0;
    const int written = write_scene(filename, format);
    if (written != 0)
        vrml_material_notes(vrml2_node_name, true);
    return written;
}
int write_inventor(const char *filename) { return write_first_vrml(filename, inventor_format); }
int write_POV(const char *filename)
{
    export_format format = pov_format;
    format.data = prefs.pov_use_object_data != 0 || prefs.pov_object_data != 0;
    return write_scene(filename, format);
}
int write_rib(const char *filename)
{
    export_format format = rib_format;
    format.data = prefs.rib_use_object_data != 0;
    return write_scene(filename, format);
}
int write_dxf(const char *filename) { return write_scene(filename, dxf_format); }
int write_tri(const char *filename) { return write_scene(filename, triangle_format); }
int write_dive(const char *filename) { return write_scene(filename, dive_format); }
int write_dvs(const char *filename) { return write_scene(filename, dvs_format); }
int write_massive(const char *filename) { return write_scene(filename, massive_format); }
