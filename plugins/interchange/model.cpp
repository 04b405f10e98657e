#include "model.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>
#include <tuple>

namespace {

constexpr double share_of_taking = 0.25; // of an export

struct frame {
    float rotation[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    point3_t centre = {0, 0, 0};
};

point3_t row(const float *m, int i) { return {m[3 * i], m[3 * i + 1], m[3 * i + 2]}; }

float dot(const point3_t &a, const point3_t &b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

// A file may hold any nine numbers; only rotations can be undone by their transpose.
bool is_rotation(const float *m)
{
    for (int i = 0; i < 3; ++i)
        for (int k = 0; k <= i; ++k)
            if (!(std::fabs(dot(row(m, i), row(m, k)) - (i == k ? 1.0f : 0.0f)) < 1e-3f))
                return false;
    const point3_t x = row(m, 0);
    const point3_t y = row(m, 1);
    const point3_t z = {x.y * y.z - x.z * y.y, x.z * y.x - x.x * y.z, x.x * y.y - x.y * y.x};
    return dot(z, row(m, 2)) > 0;
}

frame frame_of(const object_t *object)
{
    frame f;
    if (object->type == OBJECT_WORLD)
        return f;
    if (std::isfinite(dot(object->centre, object->centre)))
        f.centre = object->centre;
    if (is_rotation(object->rotation))
        std::copy_n(object->rotation, 9, f.rotation);
    return f;
}

// A direction of the world, in a frame.
point3_t turned_into(const frame &f, const point3_t &d)
{
    return {dot(d, row(f.rotation, 0)), dot(d, row(f.rotation, 1)), dot(d, row(f.rotation, 2))};
}

point3_t moved_into(const frame &f, const point3_t &p)
{
    return turned_into(f, {p.x - f.centre.x, p.y - f.centre.y, p.z - f.centre.z});
}

class taker {
public:
    taker(job &work, const char *filename, const model_wishes &wishes)
        : work_(work), filename_(filename), wishes_(wishes)
    {
    }

    model run()
    {
        const frame world;
        count_elements();
        work_.phase(share_of_taking, out_.elements);
        push_children(vesk_get_world(), -1, world);
        while (!waiting_.empty() && !work_.cancelled()) {
            const waiting_node next = waiting_.back();
            waiting_.pop_back();
            take(next);
        }
        vesk_report_loss(lines_, "lines");
        vesk_report_loss(lights_, "lights");
        vesk_report_loss(pictures_, "textures");
        vesk_report_loss(smooth_, "smooth surfaces");
        vesk_report_loss(coloured_, "shining colours");
        vesk_report_loss(points_, "loose points");
        vesk_report_loss(urls_, "addresses");
        vesk_report_loss(data_, "data texts");
        vesk_report_loss(tinted_, "colours under textures");
        vesk_report_loss(point_colours_, "objects with colours of points");
        vesk_report_note(groups_, "groups dissolved");
        vesk_report_note(ambient_, "ambient colours left to the viewer");
        vesk_report_note(one_sided_, "surfaces of one side left to the viewer");
        vesk_report_note(cut_, "polygons cut into triangles");
        return std::move(out_);
    }

private:
    struct waiting_node {
        object_t *object;
        int parent;
        frame outer;
    };

    void count_elements()
    {
        std::vector<const object_t *> below(1, vesk_get_world());
        while (!below.empty()) {
            const object_t *object = below.back();
            below.pop_back();
            out_.elements += 1.0 + object->num_vertices + object->num_surfaces;
            for (const listitem *at = object->children; at != nullptr; at = at->next)
                below.push_back(reinterpret_cast<const object_t *>(at->data));
        }
    }

    // The last child is pushed first.
    void push_children(const object_t *object, int place, const frame &f)
    {
        std::vector<object_t *> children;
        for (const listitem *at = object->children; at != nullptr; at = at->next)
            children.push_back(reinterpret_cast<object_t *>(at->data));
        for (std::size_t i = children.size(); i > 0; --i)
            waiting_.push_back({children[i - 1], place, f});
    }

    void take(const waiting_node &next)
    {
        object_t *object = next.object;
        const bool light = object->type == OBJECT_LIGHT;
        urls_ += object->url != nullptr && *object->url != '\0' ? 1 : 0;
        data_ += vesk_object_has_user_data(object);
        const bool bare =
            object->num_surfaces == 0 && (object->num_vertices == 0 || !wishes_.points);
        if (!wishes_.groups && bare) {
            points_ += object->num_vertices;
            point_colours_ += vesk_object_has_vertex_colours(object);
            lights_ += light ? 1 : 0;
            groups_ += !light && object->num_vertices == 0 ? 1 : 0;
            push_children(object, -1, frame());
            return;
        }
        if (light && !wishes_.lights)
            ++lights_;
        const frame own = wishes_.groups ? frame_of(object) : frame();
        model_node node;
        node.name = object->name;
        node.parent = wishes_.groups ? next.parent : -1;
        node.light = light && wishes_.lights;
        node.place = moved_into(next.outer, own.centre);
        for (int i = 0; i < 3; ++i) {
            const point3_t axis = turned_into(next.outer, row(own.rotation, i));
            node.rotation[3 * i] = axis.x;
            node.rotation[3 * i + 1] = axis.y;
            node.rotation[3 * i + 2] = axis.z;
        }
        const float still[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
        node.moved = dot(node.place, node.place) != 0;
        for (int i = 0; i < 9; ++i)
            node.moved = node.moved || node.rotation[i] != still[i];
        geometry(object, own, node);
        const int place = static_cast<int>(out_.nodes.size());
        if (node.parent >= 0)
            out_.nodes[static_cast<std::size_t>(node.parent)].children.push_back(place);
        out_.nodes.push_back(std::move(node));
        push_children(object, place, own);
    }

    void geometry(object_t *object, const frame &own, model_node &node)
    {
        const vesk_mesh_arrays_t mesh = vesk_object_get_mesh_arrays(object);
        const auto count = static_cast<std::size_t>(mesh.num_vertices);
        node.points.resize(count);
        node.normals.resize(wishes_.normals ? count : 0);
        for (std::size_t i = 0; i < count; ++i)
            node.points[i] = moved_into(own, mesh.positions[i]);
        for (std::size_t i = 0; i < node.normals.size(); ++i)
            node.normals[i] = turned_into(own, mesh.normals[i]);
        work_.step(1 + static_cast<double>(count));
        node.corners.assign(mesh.corners, mesh.corners + mesh.num_corners);
        loose_points(node);
        point_colours(object, node);
        node.textured =
            std::any_of(mesh.uv, mesh.uv + 2 * static_cast<std::size_t>(mesh.num_corners),
                        [](float value) { return value != 0; });
        if (node.textured)
            texture_coordinates(object, mesh, node);
        const std::string picture = object_texture_beside(object, filename_.c_str());
        bool shown = false;
        node.surfaces.reserve(static_cast<std::size_t>(mesh.num_surfaces));
        for (int i = 0; i < mesh.num_surfaces && work_.step(); ++i)
            shown = surface(object, own, mesh, i, wishes_.pictures ? picture : "", node) || shown;
        pictures_ += shown && !picture.empty() && !wishes_.pictures ? 1 : 0;
    }

    void loose_points(model_node &node)
    {
        std::vector<bool> used(node.points.size());
        for (const int corner : node.corners)
            used[static_cast<std::size_t>(corner)] = true;
        for (std::size_t i = 0; i < used.size(); ++i) {
            if (used[i])
                continue;
            if (wishes_.points)
                node.loose.push_back(static_cast<int>(i));
            else
                ++points_;
        }
    }

    void point_colours(const object_t *object, model_node &node)
    {
        const bool shown = wishes_.points || object->num_surfaces > 0;
        const unsigned char *rgb =
            wishes_.point_colours && shown ? vesk_object_get_vertex_colours(object) : nullptr;
        if (rgb != nullptr)
            node.colours.assign(rgb, rgb + 3 * node.points.size());
        else
            point_colours_ += vesk_object_has_vertex_colours(object);
    }

    void texture_coordinates(const object_t *object, const vesk_mesh_arrays_t &mesh,
                             model_node &node) const
    {
        node.uv.assign(mesh.uv, mesh.uv + 2 * static_cast<std::size_t>(mesh.num_corners));
        for (std::size_t i = 0; i < node.uv.size() && !wishes_.placing; i += 2) {
            node.uv[i] = node.uv[i] * object->texture_repeat_x + object->texture_offset_x;
            node.uv[i + 1] = node.uv[i + 1] * object->texture_repeat_y + object->texture_offset_y;
        }
    }

    bool surface(const object_t *object, const frame &own, const vesk_mesh_arrays_t &mesh, int i,
                 const std::string &picture, model_node &node)
    {
        const int flags = mesh.surfaces[i].flags;
        model_surface s = {};
        s.kind = flags & SURFACE_TYPE_MASK;
        s.kind = s.kind == SURFACE_LINE || s.kind == SURFACE_CLOSED_LINE ? s.kind : 0;
        s.first = mesh.corner_offsets[i];
        s.count = mesh.corner_offsets[i + 1] - s.first;
        if (s.count < (is_line(s) ? 2 : 3))
            return false;
        if (is_line(s) && !wishes_.lines) {
            ++lines_;
            return false;
        }
        s.smooth = !is_line(s) && (flags & SURFACE_SMOOTH) != 0;
        smooth_ += s.smooth && !wishes_.smooth ? 1 : 0;
        cut_ += !wishes_.polygons && !is_line(s) && s.count > 3 ? 1 : 0;
        s.normal = turned_into(own, mesh.face_normals[i]);
        const bool front_only = !is_line(s) && (flags & SURFACE_TWOSIDED) == 0;
        const bool twosided = !wishes_.sides || (flags & SURFACE_TWOSIDED) != 0;
        one_sided_ += front_only && !wishes_.sides ? 1 : 0;
        if (mesh.surfaces[i].material != last_index_ || twosided != last_twosided_ ||
            object != last_object_) {
            last_index_ = mesh.surfaces[i].material;
            last_twosided_ = twosided;
            last_object_ = object;
            last_place_ = material_place(last_index_, object, picture, twosided);
        }
        s.material = last_place_;
        node.surfaces.push_back(s);
        return true;
    }

    // The material of a palette entry with a texture, described when it is first used.
    int material_place(int index, const object_t *object, const std::string &picture, bool twosided)
    {
        if (index < 0 || index >= vesk_get_num_palette())
            index = 0;
        std::array<float, 4> place = {1, 1, 0, 0};
        if (wishes_.placing && !picture.empty())
            place = {object->texture_repeat_x, object->texture_repeat_y, object->texture_offset_x,
                     object->texture_offset_y};
        const material_key key(index, picture, twosided, place);
        const auto found = known_.find(key);
        if (found != known_.end())
            return found->second;
        model_material m;
        m.look = *vesk_palette_get_material(index);
        m.twosided = twosided;
        std::copy_n(place.begin(), 2, m.repeat);
        std::copy_n(place.begin() + 2, 2, m.offset);
        const char *name = vesk_material_get_name_index(index);
        std::string wanted = name == nullptr || *name == '\0' ? "material" : name;
        for (char &c : wanted) // some formats have it on a line
            c = static_cast<unsigned char>(c) < ' ' ? ' ' : c;
        m.name = wanted;
        for (int number = 1; !names_.insert(m.name).second; ++number)
            m.name = wanted + "_" + std::to_string(number);
        m.texture = picture.empty() || object->has_texture == 0 ? -1 : object->texture;
        m.picture = picture;
        if (!wishes_.colours) {
            bool differs = m.look.shininess != plain_.shininess;
            for (int i = 0; i < 3; ++i)
                differs = differs || m.look.specular[i] != plain_.specular[i] ||
                          m.look.emissive[i] != plain_.emissive[i];
            coloured_ += differs ? 1 : 0;
        }
        const float *rgb = m.look.diffuse;
        tinted_ += !wishes_.tints && !m.picture.empty() && !is_white(rgb) ? 1 : 0;
        const bool ambient = !std::equal(plain_.ambient, plain_.ambient + 3, m.look.ambient);
        ambient_ += !wishes_.ambient && ambient ? 1 : 0;
        out_.materials.push_back(m);
        return known_[key] = static_cast<int>(out_.materials.size()) - 1;
    }

    static bool is_white(const float *rgb)
    {
        return std::all_of(rgb, rgb + 3, [](float value) { return value >= 1; });
    }

    job &work_;
    const std::string filename_;
    const model_wishes wishes_;
    material_values plain_;
    model out_;
    std::vector<waiting_node> waiting_;
    using material_key = std::tuple<int, std::string, bool, std::array<float, 4>>;
    std::map<material_key, int> known_;
    std::set<std::string> names_;
    int last_index_ = -1, last_place_ = 0; // of the surface before
    bool last_twosided_ = false;
    const object_t *last_object_ = nullptr;
    int lines_ = 0, lights_ = 0, pictures_ = 0, smooth_ = 0, groups_ = 0, cut_ = 0, coloured_ = 0;
    int ambient_ = 0, tinted_ = 0, points_ = 0, urls_ = 0, data_ = 0, one_sided_ = 0,
        point_colours_ = 0;
};

} // namespace

model take_model(job &work, const char *filename, const model_wishes &wishes)
{
    vesk_report_export(filename);
    return taker(work, filename, wishes).run();
}

void cut_surface(const model_node &node, const model_surface &surface, std::vector<int> &out)
{
    const std::size_t before = out.size();
    if (surface.count == 3) {
        out.insert(out.end(), {surface.first, surface.first + 1, surface.first + 2});
        return;
    }
    std::vector<point3_t> outline;
    for (int i = 0; i < surface.count; ++i)
        outline.push_back(node.points[static_cast<std::size_t>(
            node.corners[static_cast<std::size_t>(surface.first + i)])]);
    out.resize(before + 3 * static_cast<std::size_t>(surface.count - 2));
    const int triangles = vesk_cut_polygon(outline.data(), surface.count, &out[before]);
    out.resize(before + 3 * static_cast<std::size_t>(triangles));
    for (std::size_t i = before; i < out.size(); ++i)
        out[i] += surface.first;
}
