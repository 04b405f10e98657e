// glTF 2.0, as JSON with a .bin beside it, or as one binary file. A mesh has a primitive for each
// material; flat surfaces have corners of their own, smooth ones share theirs. A polygon is a fan
// of triangles with one first vertex, which is not that of the polygon before it: so says the
// extension FB_ngon_encoding, by which readers that know it have the polygons again.
//
// Materials: gltf_look.h says what shininess and specular colours become. Texture coordinates of
// objects without a texture are kept, though checkers of the format remark that nothing uses them.
#include "formats.h"
#include "gltf_look.h"
#include "gltf_mesh.h"
#include "json.h"
#include "picture_file.h"

#include <algorithm>
#include <cctype>
#include <limits>
#include <map>

namespace {

enum { NO_TARGET = 0, VERTICES = 34962, INDICES = 34963 };
enum { SHORT = 5123, UNSIGNED = 5125, REAL = 5126 };
enum { POINTS = 0, LINES = 1, TRIANGLES = 4 };

constexpr float plain_ambient[] = {0.2f, 0.2f, 0.2f}; // of new materials

class gltf_writer {
public:
    gltf_writer(job &work, const model &scene, bool packed)
        : work_(work), scene_(scene), packed_(packed)
    {
        take_stand_ins();
    }

    // The JSON text; `bin` gets the numbers. `uri` names the file of them, "" for the binary form.
    std::string run(const std::string &uri, std::string *bin)
    {
        work_.phase(0.9, scene_.elements);
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
    // Where points have colours, these stand in place of the diffuse colour, which must be white:
    // the format multiplies the two. Materials that differed in nothing else are one.
    void take_stand_ins()
    {
        std::map<std::string, int> known;
        for (std::size_t i = 0; i < scene_.materials.size(); ++i) {
            model_material m = scene_.materials[i];
            std::fill_n(m.look.diffuse, 3, 1.0f);
            text_out key;
            for (const float *rgb : {m.look.specular, m.look.emissive, m.look.ambient})
                key.add(rgb[0], ' ', rgb[1], ' ', rgb[2], ' ');
            key.add(m.look.shininess, ' ', m.look.transparency, ' ', int{m.twosided}, ' ',
                    m.picture);
            const auto next = static_cast<int>(scene_.materials.size() + stand_ins_.size());
            const auto [entry, fresh] = known.emplace(key.text, next);
            if (fresh)
                stand_ins_.push_back(std::move(m));
            own_.push_back(static_cast<int>(i));
            below_colours_.push_back(entry->second);
        }
    }

    // One of the scene's, or of those that stand in.
    [[nodiscard]] const model_material &material_at(int index) const
    {
        const auto at = static_cast<std::size_t>(index);
        const std::size_t own = scene_.materials.size();
        return at < own ? scene_.materials[at] : stand_ins_[at - own];
    }

    [[nodiscard]] json_list extensions() const
    {
        json_list used;
        if (has_specular_)
            used.add("\"KHR_materials_specular\"");
        if (lights_.count() > 0)
            used.add("\"KHR_lights_punctual\"");
        if (has_polygons_)
            used.add("\"FB_ngon_encoding\"");
        return used;
    }

    // Only those that a primitive has are written.
    int material_of(int index)
    {
        const auto [entry, fresh] = known_materials_.emplace(index, materials_.count());
        if (fresh)
            add_material(material_at(index));
        return entry->second;
    }

    void add_material(const model_material &m)
    {
        json_list diffuse = colour(m.look.diffuse);
        const float alpha = std::min(std::max(1 - m.look.transparency, 0.0f), 1.0f);
        diffuse.add(alpha);
        json_list look;
        look.field("baseColorFactor", diffuse.array());
        if (const int texture = m.picture.empty() ? -1 : texture_of(m); texture >= 0)
            look.field("baseColorTexture", "{\"index\": ", texture, '}');
        look.field("metallicFactor", 0);
        look.field("roughnessFactor", gltf_look::roughness_of(m.look.shininess));
        json_list out;
        out.field("name", json_text(m.name));
        out.field("pbrMetallicRoughness", look.object());
        out.field("emissiveFactor", colour(m.look.emissive).array());
        if (m.twosided)
            out.field("doubleSided", "true");
        if (alpha < 1)
            out.field("alphaMode", "\"BLEND\"");
        json_list specular;
        bool plain = true;
        for (int i = 0; i < 3; ++i) {
            const float part = std::max(m.look.specular[i], 0.0f);
            plain = plain && part == gltf_look::plain_specular;
            specular.add(part / gltf_look::plain_specular);
        }
        if (!plain)
            out.field("extensions", R"({"KHR_materials_specular": {"specularColorFactor": )",
                      specular.array(), "}}");
        has_specular_ = has_specular_ || !plain;
        const float *ambient = m.look.ambient;
        if (!std::equal(ambient, ambient + 3, plain_ambient)) // only this program asks for it
            out.field("extras", R"({"ambient": [)", ambient[0], ", ", ambient[1], ", ", ambient[2],
                      "]}");
        materials_.add(out.object());
    }

    static json_list colour(const float *rgb)
    {
        json_list parts;
        for (int i = 0; i < 3; ++i)
            parts.add(gltf_look::linear_of(rgb[i]));
        return parts;
    }

    // -1 for a picture that is to be packed and is not there.
    int texture_of(const model_material &m)
    {
        const auto [entry, fresh] = known_textures_.emplace(m.picture, textures_.count());
        if (!fresh)
            return entry->second;
        if (!packed_) {
            images_.add("{\"uri\": ", json_text(url_text(m.picture)), '}');
        } else if (!add_packed_image(m)) {
            vesk_report_loss(1, "textures");
            return entry->second = -1;
        }
        textures_.add("{\"source\": ", images_.count() - 1, '}');
        return entry->second;
    }

    bool add_packed_image(const model_material &m)
    {
        const picture_file picture = picture_file_of(m.texture);
        if (picture.bytes.empty())
            return false;
        bin_ += picture.bytes;
        const int view = add_view(picture.bytes.size(), NO_TARGET);
        bin_.resize((bin_.size() + 3) / 4 * 4, '\0'); // numbers follow
        const std::string name = base_name(m.picture) + (picture.jpeg ? ".jpg" : ".png");
        images_.add("{\"name\": ", json_text(name), ", \"bufferView\": ", view,
                    ", \"mimeType\": \"image/", picture.jpeg ? "jpeg" : "png", "\"}");
        return true;
    }

    void add_node(const model_node &node)
    {
        if (node.parent < 0)
            tops_.add(nodes_.count());
        json_list out;
        out.field("name", json_text(node.name));
        if (const int mesh = add_mesh(node); mesh >= 0)
            out.field("mesh", mesh);
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

    // -1 when there is nothing to see.
    int add_mesh(const model_node &node)
    {
        const mesh_data data(work_, node, node.colours.empty() ? own_ : below_colours_);
        cut_ += data.cut;
        json_list primitives;
        if (any(data.triangles)) {
            json_list attributes = with_points(data.corners);
            attributes.field("NORMAL", add_points(data.normals, false));
            if (node.textured || has_picture(data.triangles))
                attributes.field("TEXCOORD_0", add_uv(data.uv));
            add_primitives(TRIANGLES, data.triangles, attributes, primitives);
        }
        if (any(data.lines)) {
            json_list attributes = with_points(data.ends);
            if (has_picture(data.lines))
                attributes.field("TEXCOORD_0",
                                 add_uv(std::vector<float>(2 * data.ends.points.size())));
            add_primitives(LINES, data.lines, attributes, primitives);
        }
        if (!data.loose.points.empty())
            primitives.add("{\"mode\": ", int{POINTS},
                           ", \"attributes\": ", with_points(data.loose).object(), '}');
        if (primitives.count() == 0)
            return -1;
        meshes_.add("{\"name\": ", json_text(node.name), ", \"primitives\": ", primitives.array(),
                    '}');
        return meshes_.count() - 1;
    }

    static bool any(const std::map<int, std::vector<std::uint32_t>> &by_material)
    {
        return std::any_of(by_material.begin(), by_material.end(),
                           [](const auto &part) { return !part.second.empty(); });
    }

    json_list with_points(const mesh_data::vertices &vertices)
    {
        json_list attributes;
        attributes.field("POSITION", add_points(vertices.points, true));
        if (!vertices.colours.empty())
            attributes.field("COLOR_0", add_colours(vertices.colours));
        return attributes;
    }

    // A material with a texture may be used only where there are texture coordinates.
    [[nodiscard]] bool
    has_picture(const std::map<int, std::vector<std::uint32_t>> &by_material) const
    {
        return std::any_of(by_material.begin(), by_material.end(), [&](const auto &part) {
            return !part.second.empty() && !material_at(part.first).picture.empty();
        });
    }

    // One for each material.
    void add_primitives(int mode, const std::map<int, std::vector<std::uint32_t>> &indices,
                        const json_list &attributes, json_list &primitives)
    {
        for (const auto &[material, list] : indices) {
            if (list.empty())
                continue;
            json_list primitive;
            has_polygons_ = has_polygons_ || mode == TRIANGLES;
            if (mode == TRIANGLES)
                primitive.field("extensions", "{\"FB_ngon_encoding\": {}}");
            primitive.field("mode", mode);
            primitive.field("material", material_of(material));
            primitive.field("indices", add_indices(list));
            primitive.field("attributes", attributes.object());
            primitives.add(primitive.object());
        }
    }

    // A view of the last `size` bytes.
    int add_view(std::size_t size, int target)
    {
        json_list view;
        view.field("buffer", 0);
        view.field("byteOffset", bin_.size() - size);
        view.field("byteLength", size);
        if (target != NO_TARGET)
            view.field("target", target);
        views_.add(view.object());
        return views_.count() - 1;
    }

    // Such a view and one accessor for all of it, whose bounds, if it has any, are those of points.
    int add_accessor(std::size_t size, std::size_t count, int target, int component,
                     const char *type, const json_list &low, const json_list &high)
    {
        json_list accessor;
        accessor.field("bufferView", add_view(size, target));
        accessor.field("componentType", component);
        if (component == SHORT)
            accessor.field("normalized", "true");
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

    // In linear light, for which bytes would be too coarse. The fourth part keeps rows at whole words.
    int add_colours(const std::vector<mesh_data::rgb> &colours)
    {
        constexpr std::uint16_t most = 65535;
        for (const mesh_data::rgb &colour : colours) {
            for (const unsigned char part : colour) {
                const float linear = gltf_look::linear_of(static_cast<float>(part) / 255);
                add_bytes(bin_, static_cast<std::uint16_t>(std::lround(linear * most)));
            }
            add_bytes(bin_, most);
        }
        return add_accessor(8 * colours.size(), colours.size(), VERTICES, SHORT, "VEC4", {}, {});
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
    const bool packed_; // pictures lie within the file
    std::string bin_;
    json_list tops_;
    json_list nodes_{true}, meshes_{true}, materials_{true}, textures_{true}, images_{true};
    json_list accessors_{true}, views_{true}, lights_{true};
    std::map<std::string, int> known_textures_;
    std::vector<model_material> stand_ins_;
    std::vector<int> own_, below_colours_; // by the scene's numbers
    std::map<int, int> known_materials_;   // by those, and the stand-ins' after them
    bool has_polygons_ = false, has_specular_ = false;
    int cut_ = 0;
};

model_wishes wishes(bool packed)
{
    model_wishes w;
    w.sides = w.points = w.point_colours = true;
    w.ambient = false;
    w.keeping = packed ? model_wishes::PACKED : model_wishes::NAMED_FOR_WEB;
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
    const std::string json = gltf_writer(work, scene, false).run(bin_name, &bin);
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
    add_chunk(chunks, "JSON", gltf_writer(work, scene, true).run("", &bin), ' ');
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
    return export_scene(filename, "glTF", wishes(false), make_gltf);
}

int glb_export(const char *filename)
{
    return export_scene(filename, "glTF", wishes(true), make_glb);
}
