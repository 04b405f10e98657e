// glTF 2.0. By an own reader, because that of the Assimp library knows neither the packed forms nor
// the colours of highlights, and does not say which extension a file would need.

#include "modules/gltf_read.h"

#include "modules/gltf_compressed.h"
#include "modules/gltf_materials.h"
#include "modules/scene_tree.h"
#include "plugins/interchange/gltf_look.h"

#include <algorithm>
#include <memory>

namespace {

enum { POINTS, LINES, LINE_LOOP, LINE_STRIP, TRIANGLES, TRIANGLE_STRIP, TRIANGLE_FAN };

constexpr int most_levels = 1000;

struct primitive {
    int mode = TRIANGLES;
    std::vector<float> points, normals, uv, colours;
    std::size_t colour_width = 3;
    std::vector<std::uint32_t> indices;
    [[nodiscard]] std::size_t count() const { return points.size() / 3; }
};

// The corners of each point, line or triangle, so many each, in the order of the file.
std::vector<std::uint32_t> separate(const primitive &from, unsigned *each)
{
    const std::vector<std::uint32_t> &in = from.indices;
    const std::size_t n = in.size();
    std::vector<std::uint32_t> out;
    *each = from.mode == POINTS ? 1 : from.mode <= LINE_STRIP ? 2 : 3;
    switch (from.mode) {
    case LINE_LOOP:
    case LINE_STRIP:
        for (std::size_t i = 0; i + 1 < n; ++i)
            out.insert(out.end(), {in[i], in[i + 1]});
        if (from.mode == LINE_LOOP && n > 2)
            out.insert(out.end(), {in[n - 1], in[0]});
        break;
    case TRIANGLE_STRIP:
        for (std::size_t i = 0; i + 2 < n; ++i)
            out.insert(out.end(), {in[i], in[i + 1 + i % 2], in[i + 2 - i % 2]});
        break;
    case TRIANGLE_FAN:
        for (std::size_t i = 1; i + 1 < n; ++i)
            out.insert(out.end(), {in[0], in[i], in[i + 1]});
        break;
    default:
        out.assign(in.begin(), in.end() - static_cast<std::ptrdiff_t>(n % *each));
    }
    return out;
}

class gltf_reader {
public:
    gltf_reader(gltf_file &file, plain_scene *out) : file_(file), out_(*out) {}

    std::string run()
    {
        paints_ = gltf_painter(file_, &out_).paints();
        for (const gltf_paint &paint : paints_) {
            out_.materials.push_back(paint.look);
            tree_.twosided.push_back(paint.twosided);
        }
        tree_.twosided.push_back(false); // a mesh without a material
        scene_->mRootNode = new aiNode("glTF");
        add_children(scene_->mRootNode, top_nodes());
        hand_over();
        if (!problem_.empty())
            return problem_;
        if (meshes_.empty() && lights_.empty())
            return too_deep_ ? "its objects lie too many levels deep"
                             : "there is no geometry in it";
        tree_.convert(*scene_, "gltf", &out_);
        for (plain_node &node : out_.nodes)
            if (node.kind == PLAIN_LIGHT)
                node.name.resize(std::min(node.name.rfind('\n'), node.name.size()));
        tell_what_is_not_read();
        return "";
    }

private:
    [[nodiscard]] const json &list(const char *name) const
    {
        return json_member(file_.top(), name);
    }

    // The numbers of nodes in an array.
    static std::vector<std::int64_t> numbers(const json &array)
    {
        std::vector<std::int64_t> all;
        for (std::size_t i = 0; array.is_array() && i < array.size(); ++i)
            if (array[i].is_number_integer())
                all.push_back(array[i].get<std::int64_t>());
        return all;
    }

    // Of the default scene; all that are no child where there are no scenes.
    [[nodiscard]] std::vector<std::int64_t> top_nodes() const
    {
        const json &scene = json_element(list("scenes"), json_whole(file_.top(), "scene", 0));
        if (scene.is_object())
            return numbers(json_member(scene, "nodes"));
        const json &nodes = list("nodes");
        std::vector<std::int64_t> tops;
        std::set<std::int64_t> below;
        for (std::size_t i = 0; nodes.is_array() && i < nodes.size(); ++i)
            for (const std::int64_t child : numbers(json_member(nodes[i], "children")))
                below.insert(child);
        for (std::int64_t i = 0; nodes.is_array() && i < std::int64_t(nodes.size()); ++i)
            if (below.count(i) == 0)
                tops.push_back(i);
        return tops;
    }

    // ---- nodes ----

    // A node stands in one place: a ring has no end.
    void add_children(aiNode *parent, const std::vector<std::int64_t> &places)
    {
        std::vector<aiNode *> children;
        for (const std::int64_t place : places) {
            const json &about = json_element(list("nodes"), place);
            if (!about.is_object() || !seen_.insert(place).second)
                continue;
            if (level_ > most_levels) {
                too_deep_ = true;
                break;
            }
            auto *node = new aiNode;
            children.push_back(node);
            node->mParent = parent;
            node->mTransformation = frame_of(about);
            const json &mesh = json_element(list("meshes"), json_whole(about, "mesh", -1));
            std::string name = json_string(about, "name");
            name = name.empty() ? json_string(mesh, "name") : name;
            node->mName = aiString(name);
            take_meshes(json_whole(about, "mesh", -1), node);
            std::vector<std::int64_t> below = numbers(json_member(about, "children"));
            ++level_;
            add_children(node, below);
            --level_;
            if (json_extension(about, "KHR_lights_punctual").is_object())
                add_light(json_extension(about, "KHR_lights_punctual"), node);
        }
        parent->addChildren(static_cast<unsigned>(children.size()), children.data());
    }

    static aiMatrix4x4 frame_of(const json &about)
    {
        aiMatrix4x4 frame;
        if (json_member(about, "matrix").is_array()) {
            float m[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
            json_reals(about, "matrix", m, 16);
            for (unsigned row = 0; row < 4; ++row)
                for (unsigned column = 0; column < 4; ++column)
                    frame[row][column] = m[4 * column + row];
            return frame;
        }
        float place[3] = {0, 0, 0};
        float turn[4] = {0, 0, 0, 1};
        float scale[3] = {1, 1, 1};
        json_reals(about, "translation", place, 3);
        json_reals(about, "rotation", turn, 4);
        json_reals(about, "scale", scale, 3);
        aiQuaternion rotation(turn[3], turn[0], turn[1], turn[2]);
        rotation.Normalize();
        return {aiVector3D(scale[0], scale[1], scale[2]), rotation,
                aiVector3D(place[0], place[1], place[2])};
    }

    // A light takes its node's place, or one below it when the node has more to show.
    void add_light(const json &about, aiNode *node)
    {
        const json &source =
            json_element(json_member(json_extension(file_.top(), "KHR_lights_punctual"), "lights"),
                         json_whole(about, "light", -1));
        if (!source.is_object())
            return;
        other_lights_ += json_string(source, "type") == "point" ? 0 : 1;
        std::string name = node->mName.C_Str();
        if (name.empty())
            name = json_string(source, "name");
        // By its name the light is found: one that no other node has.
        const std::string key = name + '\n' + std::to_string(lights_.size());
        if (node->mNumMeshes > 0) {
            auto *place = new aiNode(key);
            node->addChildren(1, &place);
        } else {
            node->mName = aiString(key);
        }
        auto *light = new aiLight;
        light->mName = aiString(key);
        lights_.push_back(light);
    }

    // ---- meshes ----

    void take_meshes(std::int64_t mesh, aiNode *node)
    {
        const auto [entry, fresh] = meshes_of_.try_emplace(mesh);
        if (fresh) {
            const json &primitives = json_member(json_element(list("meshes"), mesh), "primitives");
            for (std::size_t i = 0; primitives.is_array() && i < primitives.size(); ++i)
                if (problem_.empty())
                    add_mesh(primitives[i], &entry->second);
        }
        node->mNumMeshes = static_cast<unsigned>(entry->second.size());
        node->mMeshes = new unsigned[entry->second.size()];
        std::copy(entry->second.begin(), entry->second.end(), node->mMeshes);
    }

    void add_mesh(const json &about, std::vector<unsigned> *places)
    {
        primitive from;
        from.mode = static_cast<int>(json_whole(about, "mode", TRIANGLES));
        const std::int64_t material = json_whole(about, "material", -1);
        const bool painted = material >= 0 && static_cast<std::size_t>(material) < paints_.size();
        const gltf_paint plain;
        const gltf_paint &paint = painted ? paints_[static_cast<std::size_t>(material)] : plain;
        if (from.mode < POINTS || from.mode > TRIANGLE_FAN || !take_numbers(about, paint, &from)) {
            problem_ = "the numbers of its mesh " + std::to_string(meshes_.size()) +
                       " are damaged, or not there";
            return;
        }
        count_further(about, paint);
        if (from.count() == 0)
            return;
        auto *mesh = new aiMesh;
        meshes_.push_back(mesh);
        places->push_back(static_cast<unsigned>(meshes_.size() - 1));
        mesh->mMaterialIndex =
            static_cast<unsigned>(painted ? std::size_t(material) : paints_.size());
        if (json_extension(about, "FB_ngon_encoding").is_object())
            tree_.fans.insert(places->back());
        put_vertices(from, paint, mesh);
        put_faces(from, mesh);
    }

    bool take_numbers(const json &about, const gltf_paint &paint, primitive *to)
    {
        const json &attributes = json_member(about, "attributes");
        const std::string uv = "TEXCOORD_" + std::to_string(paint.coordinates);
        const struct {
            const char *name;
            std::size_t width;
            std::vector<float> *numbers;
        } wanted[] = {{"POSITION", 3, &to->points},
                      {"NORMAL", 3, &to->normals},
                      {uv.c_str(), 2, &to->uv},
                      {"COLOR_0", 0, &to->colours}};
        const json &packed = json_extension(about, "KHR_draco_mesh_compression");
        draco_triangles unpacked;
        for (const auto &[name, fixed, numbers] : wanted) {
            const std::int64_t accessor = json_whole(attributes, name, -1);
            if (accessor < 0)
                continue;
            const std::size_t width = fixed != 0 ? fixed : file_.width_of(accessor);
            if (fixed == 0)
                to->colour_width = width;
            const std::int64_t identity = json_whole(json_member(packed, "attributes"), name, -1);
            if (identity >= 0)
                unpacked.widths[identity] = width;
            else if (!file_.reals(accessor, width, numbers))
                return false;
        }
        if (packed.is_object()) {
            std::string_view bytes;
            if (!file_.view(json_whole(packed, "bufferView", -1), &bytes) ||
                !unpack_draco(bytes, &unpacked))
                return false;
            to->indices = std::move(unpacked.indices);
            for (const auto &[name, fixed, numbers] : wanted) {
                const std::int64_t identity =
                    json_whole(json_member(packed, "attributes"), name, -1);
                if (unpacked.numbers.count(identity) != 0)
                    *numbers = std::move(unpacked.numbers[identity]);
            }
        } else if (const std::int64_t indices = json_whole(about, "indices", -1); indices >= 0) {
            if (!file_.wholes(indices, &to->indices))
                return false;
        } else {
            for (std::uint32_t i = 0; i < to->count(); ++i)
                to->indices.push_back(i);
        }
        return fits(*to);
    }

    // One of each for each vertex, and no vertex that is not there.
    static bool fits(const primitive &from)
    {
        const std::size_t count = from.count();
        const bool widths = (from.colour_width == 3 || from.colour_width == 4);
        return (from.normals.empty() || from.normals.size() == 3 * count) &&
               (from.uv.empty() || from.uv.size() == 2 * count) &&
               (from.colours.empty() ||
                (widths && from.colours.size() == from.colour_width * count)) &&
               std::all_of(from.indices.begin(), from.indices.end(),
                           [&](std::uint32_t index) { return index < count; });
    }

    static void put_vertices(const primitive &from, const gltf_paint &paint, aiMesh *mesh)
    {
        const std::size_t count = from.count();
        mesh->mNumVertices = static_cast<unsigned>(count);
        const auto vectors = [count](const std::vector<float> &numbers) {
            auto *made = numbers.empty() ? nullptr : new aiVector3D[count];
            for (std::size_t i = 0; made != nullptr && i < count; ++i)
                made[i] = {numbers[3 * i], numbers[3 * i + 1], numbers[3 * i + 2]};
            return made;
        };
        mesh->mVertices = vectors(from.points);
        mesh->mNormals = vectors(from.normals);
        if (!from.uv.empty()) {
            mesh->mTextureCoords[0] = new aiVector3D[count];
            mesh->mNumUVComponents[0] = 2;
            for (std::size_t i = 0; i < count; ++i) {
                float uv[2] = {from.uv[2 * i], from.uv[2 * i + 1]};
                paint.place(uv);
                mesh->mTextureCoords[0][i] = {uv[0], uv[1], 0};
            }
        }
        if (!from.colours.empty()) {
            mesh->mColors[0] = new aiColor4D[count];
            float base[3]; // which they multiply
            for (int i = 0; i < 3; ++i)
                base[i] = gltf_look::linear_of(paint.look.diffuse[i]);
            for (std::size_t i = 0; i < count; ++i) {
                const float *rgb = &from.colours[from.colour_width * i];
                mesh->mColors[0][i] = {gltf_look::shown_of(rgb[0] * base[0]),
                                       gltf_look::shown_of(rgb[1] * base[1]),
                                       gltf_look::shown_of(rgb[2] * base[2]), 1};
            }
        }
    }

    static void put_faces(const primitive &from, aiMesh *mesh)
    {
        unsigned each = 3;
        const std::vector<std::uint32_t> corners = separate(from, &each);
        mesh->mNumFaces = static_cast<unsigned>(corners.size() / each);
        mesh->mFaces = new aiFace[mesh->mNumFaces];
        for (std::size_t i = 0; i < mesh->mNumFaces; ++i) {
            aiFace &face = mesh->mFaces[i];
            face.mNumIndices = each;
            face.mIndices = new unsigned[each];
            std::copy_n(&corners[each * i], each, face.mIndices);
        }
    }

    void hand_over()
    {
        scene_->mNumMeshes = static_cast<unsigned>(meshes_.size());
        scene_->mMeshes = new aiMesh *[meshes_.size()];
        std::copy(meshes_.begin(), meshes_.end(), scene_->mMeshes);
        scene_->mNumLights = static_cast<unsigned>(lights_.size());
        scene_->mLights = new aiLight *[lights_.size()];
        std::copy(lights_.begin(), lights_.end(), scene_->mLights);
    }

    // ---- losses ----

    void count_further(const json &about, const gltf_paint &paint)
    {
        const json &attributes = json_member(about, "attributes");
        if (!attributes.is_object())
            return;
        const std::string own = "TEXCOORD_" + std::to_string(paint.coordinates);
        bool further = false;
        for (const auto &entry : attributes.items()) {
            further =
                further || (entry.key().compare(0, 9, "TEXCOORD_") == 0 && entry.key() != own);
            further_colours_ +=
                entry.key().compare(0, 6, "COLOR_") == 0 && entry.key() != "COLOR_0" ? 1 : 0;
        }
        further_uv_ += further ? 1 : 0;
        bones_ += json_member(attributes, "JOINTS_0").is_null() ? 0 : 1;
        const json &targets = json_member(about, "targets");
        forms_ += targets.is_array() ? targets.size() : 0;
    }

    void tell_count(std::size_t count, const char *what)
    {
        if (count > 0)
            out_.warnings.push_back(std::to_string(count) + " " + what + " were left out");
    }

    void tell_what_is_not_read()
    {
        for (const std::string &name : file_.unknown_extensions("extensionsUsed"))
            out_.warnings.push_back("the extension " + name + " is not read");
        const auto size = [this](const char *name) {
            return list(name).is_array() ? list(name).size() : 0;
        };
        tell_count(size("animations"), "animations");
        tell_count(size("cameras"), "cameras");
        tell_count(bones_, "meshes' bones");
        tell_count(forms_, "further forms of meshes");
        tell_count(further_uv_, "meshes' further texture coordinates");
        tell_count(further_colours_, "meshes' further colours");
        if (other_lights_ > 0)
            out_.warnings.push_back(std::to_string(other_lights_) +
                                    " lights that shine one way became lights that shine all ways");
        if (too_deep_)
            out_.warnings.push_back("objects below level " + std::to_string(most_levels) +
                                    " were left out");
    }

    gltf_file &file_;
    plain_scene &out_;
    scene_tree tree_;
    std::vector<gltf_paint> paints_;
    const std::unique_ptr<aiScene> scene_ = std::make_unique<aiScene>();
    std::vector<aiMesh *> meshes_; // the scene's from hand_over on
    std::vector<aiLight *> lights_;
    std::map<std::int64_t, std::vector<unsigned>> meshes_of_;
    std::set<std::int64_t> seen_; // nodes
    int level_ = 0;
    bool too_deep_ = false;
    std::string problem_;
    std::size_t other_lights_ = 0, further_uv_ = 0, further_colours_ = 0, bones_ = 0, forms_ = 0;
};

} // namespace

std::string gltf_read(gltf_file &file, plain_scene *scene)
{
    return gltf_reader(file, scene).run();
}
