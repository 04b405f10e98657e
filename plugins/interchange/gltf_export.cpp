// glTF 2.0, as JSON with a .bin beside it, or as one binary file. A mesh has a primitive for each
// material; flat surfaces have corners of their own, smooth ones share theirs. A polygon is a fan
// of triangles with one first vertex, which is not that of the polygon before it: so says the
// extension FB_ngon_encoding, by which readers that know it have the polygons again.
#include "formats.h"
#include "json.h"
#include "model.h"

#include <algorithm>
#include <cctype>
#include <limits>
#include <map>
#include <tuple>

namespace {

enum { VERTICES = 34962, INDICES = 34963, REAL = 5126, UNSIGNED = 5125 };
enum { LINES = 1, TRIANGLES = 4 };

point3_t unit(const point3_t &n)
{
    const float length = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
    if (!(length > 0) || !std::isfinite(length))
        return {0, 0, 1}; // a normal must have a direction
    return {n.x / length, n.y / length, n.z / length};
}

point3_t finite(point3_t p)
{
    for (float *value : {&p.x, &p.y, &p.z})
        *value = std::isfinite(*value) ? *value : 0;
    return p;
}

// The vertices of one mesh and the indices of its primitives.
class mesh_data {
public:
    std::vector<point3_t> points, normals;
    std::vector<float> uv;
    std::map<int, std::vector<std::uint32_t>> triangles; // by material
    std::vector<point3_t> line_points;
    std::map<int, std::vector<std::uint32_t>> lines;
    int cut = 0; // polygons that are no fan

    mesh_data(job &work, const model_node &node) : node_(node)
    {
        for (const model_surface &surface : node.surfaces) {
            if (!work.step())
                return;
            if (is_line(surface))
                add_line(surface);
            else
                add_polygon(surface);
        }
    }

private:
    [[nodiscard]] std::size_t point_at(int corner) const
    {
        return static_cast<std::size_t>(node_.corners[static_cast<std::size_t>(corner)]);
    }

    std::uint32_t vertex(const model_surface &surface, int corner)
    {
        const std::size_t point = point_at(corner);
        const std::size_t at = 2 * static_cast<std::size_t>(corner);
        const float u = node_.textured ? node_.uv[at] : 0;
        const float v = node_.textured ? node_.uv[at + 1] : 0;
        const auto fresh = static_cast<std::uint32_t>(points.size());
        const std::uint32_t place =
            surface.smooth ? shared_.emplace(std::tuple(point, u, v), fresh).first->second : fresh;
        if (place == fresh) {
            points.push_back(finite(node_.points[point]));
            normals.push_back(unit(surface.smooth ? node_.normals[point] : surface.normal));
            uv.push_back(std::isfinite(u) ? u : 0);
            uv.push_back(std::isfinite(v) ? 1 - v : 0); // rows from the top
        }
        return place;
    }

    void add_polygon(const model_surface &surface)
    {
        places_.clear();
        for (int k = 0; k < surface.count; ++k)
            places_.push_back(vertex(surface, surface.first + k));
        std::vector<std::uint32_t> &to = triangles[surface.material];
        const std::size_t count = places_.size();
        if (const std::size_t start = fan_start(surface, to); start < count) {
            for (std::size_t i = 1; i + 1 < count; ++i)
                to.insert(to.end(), {places_[start], places_[(start + i) % count],
                                     places_[(start + i + 1) % count]});
            return;
        }
        corners_.clear();
        cut_surface(node_, surface, corners_);
        cut += count > 3 ? 1 : 0;
        for (std::size_t i = 0; i + 2 < corners_.size(); i += 3) {
            std::uint32_t triangle[3];
            for (std::size_t k = 0; k < 3; ++k)
                triangle[k] = places_[static_cast<std::size_t>(corners_[i + k] - surface.first)];
            if (is_last_first(to, triangle[0])) // a triangle of its own
                std::rotate(triangle, triangle + 1, triangle + 3);
            to.insert(to.end(), triangle, triangle + 3);
        }
    }

    static bool is_last_first(const std::vector<std::uint32_t> &to, std::uint32_t place)
    {
        return to.size() > 2 && to[to.size() - 3] == place;
    }

    // The corner that sees all others, counted within the surface; their number when there is none.
    [[nodiscard]] std::size_t fan_start(const model_surface &surface,
                                        const std::vector<std::uint32_t> &to) const
    {
        const std::size_t count = places_.size();
        const std::size_t tries = count <= most_tried ? count : 8;
        double normal[3] = {}; // Newell's
        for (std::size_t k = 0; k < count; ++k) {
            double part[3];
            cross(surface, 0, k, (k + 1) % count, part);
            for (int i = 0; i < 3; ++i)
                normal[i] += part[i];
        }
        for (std::size_t start = 0; start < tries; ++start) {
            bool sees = !is_last_first(to, places_[start]);
            for (std::size_t i = 1; i + 1 < count && sees; ++i) {
                double part[3];
                cross(surface, start, (start + i) % count, (start + i + 1) % count, part);
                sees = part[0] * normal[0] + part[1] * normal[1] + part[2] * normal[2] > 0;
            }
            if (sees)
                return start;
        }
        return count;
    }

    // The product of the ways from corner `from` to two others.
    void cross(const model_surface &surface, std::size_t from, std::size_t to, std::size_t next,
               double *out) const
    {
        const auto at = [&](std::size_t k) -> const point3_t & {
            return node_.points[point_at(surface.first + static_cast<int>(k))];
        };
        const auto way = [&](std::size_t k, double *d) {
            const point3_t &p = at(k);
            const point3_t &q = at(from);
            d[0] = static_cast<double>(p.x) - static_cast<double>(q.x);
            d[1] = static_cast<double>(p.y) - static_cast<double>(q.y);
            d[2] = static_cast<double>(p.z) - static_cast<double>(q.z);
        };
        double a[3];
        double b[3];
        way(to, a);
        way(next, b);
        for (int i = 0; i < 3; ++i)
            out[i] = a[(i + 1) % 3] * b[(i + 2) % 3] - a[(i + 2) % 3] * b[(i + 1) % 3];
    }

    void add_line(const model_surface &surface)
    {
        const auto first = static_cast<std::uint32_t>(line_points.size());
        const auto count = static_cast<std::uint32_t>(surface.count);
        for (int i = 0; i < surface.count; ++i)
            line_points.push_back(finite(node_.points[point_at(surface.first + i)]));
        std::vector<std::uint32_t> &to = lines[surface.material];
        for (std::uint32_t i = 0; i + 1 < count; ++i)
            to.insert(to.end(), {first + i, first + i + 1});
        if (surface.kind == SURFACE_CLOSED_LINE)
            to.insert(to.end(), {first + count - 1, first});
    }

    const model_node &node_;
    std::map<std::tuple<std::size_t, float, float>, std::uint32_t> shared_;
    std::vector<std::uint32_t> places_; // of the surface at hand: its corners' vertices
    std::vector<int> corners_;

    static constexpr std::size_t most_tried = 64; // corners that may see all others
};

class gltf_writer {
public:
    gltf_writer(job &work, const model &scene) : work_(work), scene_(scene) {}

    // The JSON text; `bin` gets the numbers. `uri` names the file of them, "" for the binary form.
    std::string run(const std::string &uri, std::string *bin)
    {
        work_.phase(0.9, scene_.elements);
        for (const model_material &m : scene_.materials)
            add_material(m);
        for (const model_node &node : scene_.nodes)
            add_node(node);
        vesk_report_note(cut_, "polygons cut into triangles");
        json_list top(true);
        top.field("asset", R"({"version": "2.0", "generator": "VESK"})");
        top.field("scene", 0);
        json_list scene;
        scene.field_of_array("nodes", tops_);
        top.field("scenes", '[', scene.object(), ']');
        top.field_of_array("nodes", nodes_);
        top.field_of_array("meshes", meshes_);
        top.field_of_array("materials", materials_);
        top.field_of_array("textures", textures_);
        top.field_of_array("images", images_);
        top.field_of_array("accessors", accessors_);
        top.field_of_array("bufferViews", views_);
        if (!bin_.empty()) {
            json_list buffer;
            buffer.field("byteLength", bin_.size());
            if (!uri.empty())
                buffer.field("uri", json_text(url_text(uri)));
            top.field("buffers", '[', buffer.object(), ']');
        }
        if (lights_.count() > 0)
            top.field("extensions", R"({"KHR_lights_punctual": {"lights": )", lights_.array(),
                      "}}");
        top.field_of_array("extensionsUsed", extensions());
        *bin = std::move(bin_);
        return top.object() + '\n';
    }

private:
    [[nodiscard]] json_list extensions() const
    {
        json_list used;
        if (materials_.count() > 0)
            used.add("\"KHR_materials_pbrSpecularGlossiness\"");
        if (lights_.count() > 0)
            used.add("\"KHR_lights_punctual\"");
        if (has_polygons_)
            used.add("\"FB_ngon_encoding\"");
        return used;
    }

    void add_material(const model_material &m)
    {
        const float gloss = std::min(std::max(m.look.shininess / 128, 0.0f), 1.0f);
        json_list diffuse = colour(m.look.diffuse);
        diffuse.add(1 - m.look.transparency);
        std::string texture;
        if (!m.picture.empty())
            texture = "{\"index\": " + std::to_string(texture_of(m.picture)) + "}";
        json_list rough;
        rough.field("baseColorFactor", diffuse.array());
        if (!texture.empty())
            rough.field("baseColorTexture", texture);
        rough.field("metallicFactor", 0);
        rough.field("roughnessFactor", 1 - gloss);
        json_list glossy;
        glossy.field("diffuseFactor", diffuse.array());
        if (!texture.empty())
            glossy.field("diffuseTexture", texture);
        glossy.field("specularFactor", colour(m.look.specular).array());
        glossy.field("glossinessFactor", gloss);
        json_list out;
        out.field("name", json_text(m.name));
        out.field("pbrMetallicRoughness", rough.object());
        out.field("emissiveFactor", colour(m.look.emissive).array());
        if (m.twosided)
            out.field("doubleSided", "true");
        if (m.look.transparency > 0)
            out.field("alphaMode", "\"BLEND\"");
        out.field("extensions", R"({"KHR_materials_pbrSpecularGlossiness": )", glossy.object(),
                  '}');
        materials_.add(out.object());
    }

    // Each part from 0 to 1.
    static json_list colour(const float *rgb)
    {
        json_list parts;
        for (int i = 0; i < 3; ++i)
            parts.add(std::min(std::max(rgb[i], 0.0f), 1.0f));
        return parts;
    }

    int texture_of(const std::string &picture)
    {
        const auto found = known_textures_.find(picture);
        if (found != known_textures_.end())
            return found->second;
        images_.add("{\"uri\": ", json_text(url_text(picture)), '}');
        textures_.add("{\"source\": ", images_.count() - 1, '}');
        return known_textures_[picture] = textures_.count() - 1;
    }

    void add_node(const model_node &node)
    {
        if (node.parent < 0)
            tops_.add(nodes_.count());
        json_list out;
        out.field("name", json_text(node.name));
        if (!node.surfaces.empty())
            out.field("mesh", add_mesh(node));
        if (node.light) {
            lights_.add(R"({"type": "point", "name": )", json_text(node.name), '}');
            out.field("extensions", R"({"KHR_lights_punctual": {"light": )", lights_.count() - 1,
                      "}}");
        }
        if (node.moved) {
            const float *r = node.rotation;
            json_list matrix;
            for (int i = 0; i < 9; i += 3)
                matrix.add(r[i], ", ", r[i + 1], ", ", r[i + 2], ", ", 0);
            matrix.add(node.place.x, ", ", node.place.y, ", ", node.place.z, ", ", 1);
            out.field("matrix", matrix.array());
        }
        json_list children;
        for (const int child : node.children)
            children.add(child);
        out.field_of_array("children", children);
        nodes_.add(out.object());
    }

    int add_mesh(const model_node &node)
    {
        const mesh_data data(work_, node);
        cut_ += data.cut;
        json_list primitives;
        if (!data.points.empty()) {
            json_list attributes;
            const int normals = add_points(data.normals, false);
            attributes.field("POSITION", add_points(data.points, true));
            attributes.field("NORMAL", normals);
            if (node.textured || has_picture(data.triangles))
                attributes.field("TEXCOORD_0", add_uv(data.uv));
            add_primitives(TRIANGLES, data.triangles, attributes, primitives);
        }
        if (!data.line_points.empty()) {
            json_list attributes;
            attributes.field("POSITION", add_points(data.line_points, true));
            if (has_picture(data.lines))
                attributes.field("TEXCOORD_0",
                                 add_uv(std::vector<float>(2 * data.line_points.size())));
            add_primitives(LINES, data.lines, attributes, primitives);
        }
        meshes_.add("{\"name\": ", json_text(node.name), ", \"primitives\": ", primitives.array(),
                    '}');
        return meshes_.count() - 1;
    }

    // A material with a texture may be used only where there are texture coordinates.
    [[nodiscard]] bool
    has_picture(const std::map<int, std::vector<std::uint32_t>> &by_material) const
    {
        return std::any_of(by_material.begin(), by_material.end(), [&](const auto &part) {
            return part.first >= 0 &&
                   static_cast<std::size_t>(part.first) < scene_.materials.size() &&
                   !scene_.materials[static_cast<std::size_t>(part.first)].picture.empty();
        });
    }

    // One for each material.
    void add_primitives(int mode, const std::map<int, std::vector<std::uint32_t>> &indices,
                        const json_list &attributes, json_list &primitives)
    {
        for (const auto &[material, list] : indices) {
            json_list primitive;
            has_polygons_ = has_polygons_ || mode == TRIANGLES;
            if (mode == TRIANGLES)
                primitive.field("extensions", "{\"FB_ngon_encoding\": {}}");
            primitive.field("mode", mode);
            primitive.field("material", material);
            primitive.field("indices", add_indices(list));
            primitive.field("attributes", attributes.object());
            primitives.add(primitive.object());
        }
    }

    // A view of the last `size` bytes, and one accessor for all of it, whose bounds, if it has any,
    // are those of points.
    int add_accessor(std::size_t size, std::size_t count, int target, int component,
                     const char *type, const json_list &low, const json_list &high)
    {
        json_list view;
        view.field("buffer", 0);
        view.field("byteOffset", bin_.size() - size);
        view.field("byteLength", size);
        view.field("target", target);
        views_.add(view.object());
        json_list accessor;
        accessor.field("bufferView", views_.count() - 1);
        accessor.field("componentType", component);
        accessor.field("count", count);
        accessor.field("type", '"', type, '"');
        accessor.field_of_array("min", low);
        accessor.field_of_array("max", high);
        accessors_.add(accessor.object());
        return accessors_.count() - 1;
    }

    int add_points(const std::vector<point3_t> &points, bool with_bounds)
    {
        const float far = std::numeric_limits<float>::max();
        point3_t low = {far, far, far};
        point3_t high = {-far, -far, -far};
        for (const point3_t &p : points) {
            add_bytes(bin_, p.x);
            add_bytes(bin_, p.y);
            add_bytes(bin_, p.z);
            low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
            high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
        }
        json_list least;
        json_list most;
        if (with_bounds) {
            least.add(low.x, ", ", low.y, ", ", low.z);
            most.add(high.x, ", ", high.y, ", ", high.z);
        }
        return add_accessor(12 * points.size(), points.size(), VERTICES, REAL, "VEC3", least, most);
    }

    int add_uv(const std::vector<float> &uv)
    {
        for (const float value : uv)
            add_bytes(bin_, value);
        return add_accessor(4 * uv.size(), uv.size() / 2, VERTICES, REAL, "VEC2", {}, {});
    }

    int add_indices(const std::vector<std::uint32_t> &indices)
    {
        for (const std::uint32_t index : indices)
            add_bytes(bin_, index);
        return add_accessor(4 * indices.size(), indices.size(), INDICES, UNSIGNED, "SCALAR", {},
                            {});
    }

    job &work_;
    const model &scene_;
    std::string bin_;
    json_list tops_;
    json_list nodes_{true}, meshes_{true}, materials_{true}, textures_{true}, images_{true};
    json_list accessors_{true}, views_{true}, lights_{true};
    std::map<std::string, int> known_textures_;
    bool has_polygons_ = false;
    int cut_ = 0;
};

model_wishes wishes()
{
    model_wishes w;
    w.sides = true;
    w.ambient = false;
    return w;
}

void add_chunk(std::string &out, const char *kind, std::string bytes, char filler)
{
    bytes.resize((bytes.size() + 3) / 4 * 4, filler);
    add_bytes(out, static_cast<std::uint32_t>(bytes.size()));
    out.append(kind, 4);
    out += bytes;
}

// The text form: the numbers lie in a file beside it.
void make_gltf(job &work, const model &scene, export_files &files, const std::string &name)
{
    std::string bin_name = base_name(name) + ".bin"; // some readers know no escapes
    for (char &c : bin_name)
        if (std::isalnum(static_cast<unsigned char>(c)) == 0 && c != '-' && c != '.')
            c = '_';
    std::string bin;
    const std::string json = gltf_writer(work, scene).run(bin_name, &bin);
    const std::string folder = vesk_filename_get_path(name.c_str());
    if (!bin.empty())
        files.add(vesk_filename_concat_path_file(folder.c_str(), bin_name.c_str()), bin);
    files.begin(name);
    files.write(json);
}

void make_glb(job &work, const model &scene, export_files &files, const std::string &name)
{
    std::string bin;
    std::string chunks;
    add_chunk(chunks, "JSON", gltf_writer(work, scene).run("", &bin), ' ');
    if (!bin.empty())
        add_chunk(chunks, "BIN\0", std::move(bin), '\0');
    std::string bytes = "glTF";
    add_bytes(bytes, std::uint32_t{2});
    add_bytes(bytes, static_cast<std::uint32_t>(chunks.size() + 12));
    files.add(name, bytes + chunks);
}

} // namespace

int gltf_export(const char *filename)
{
    return export_scene(filename, "glTF", wishes(), make_gltf);
}

int glb_export(const char *filename) { return export_scene(filename, "glTF", wishes(), make_glb); }
