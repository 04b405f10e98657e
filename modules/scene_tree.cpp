#include "modules/scene_tree.h"

#include "modules/assimp_materials.h"
#include "modules/assimp_meshes.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace {

constexpr int most_levels = 1000;
constexpr float default_grey = 0.8f;

bool is_white(const float *rgb)
{
    return std::all_of(rgb, rgb + 3, [](float part) { return part >= 1; });
}

class scene_converter {
public:
    scene_converter(const aiScene &scene, const std::string &suffix, const scene_tree &about,
                    plain_scene *out)
        : scene_(scene), suffix_(suffix), about_(about), out_(*out)
    {
    }

    void run()
    {
        for (unsigned i = 0; i < scene_.mNumLights; ++i)
            waiting_lights_.emplace(scene_.mLights[i]->mName.C_Str(), i);
        if (top_is_of_the_file())
            convert(*scene_.mRootNode, axes(), -1);
        else
            for (unsigned i = 0; i < scene_.mRootNode->mNumChildren; ++i)
                convert(*scene_.mRootNode->mChildren[i], axes() * scene_.mRootNode->mTransformation,
                        -1);
        lights_without_nodes();
        if (bad_points_ > 0)
            out_.warnings.push_back(std::to_string(bad_points_) +
                                    " coordinates that are no numbers became 0");
        if (mixed_points_ > 0)
            out_.warnings.push_back(std::to_string(mixed_points_) +
                                    " points have several colours; one of each is kept");
        if (too_deep_)
            out_.warnings.push_back("objects below level " + std::to_string(most_levels) +
                                    " were left out");
    }

private:
    // Some readers put the nodes that stand beside each other below one of their own.
    bool top_is_of_the_file() const
    {
        const aiNode &top = *scene_.mRootNode;
        if (top.mNumMeshes > 0 || top.mNumChildren == 0)
            return true;
        return !is_one_of(suffix_, {"dae", "fbx", "gltf", "glb"});
    }

    // FBX gives its unit in centimetres; ours is the metre of the others.
    aiMatrix4x4 axes() const
    {
        aiMatrix4x4 turn;
        if (suffix_ == "fbx") {
            float unit = 1;
            if (scene_.mMetaData != nullptr)
                scene_.mMetaData->Get("UnitScaleFactor", unit);
            if (std::isfinite(unit) && unit > 0)
                aiMatrix4x4::Scaling(aiVector3D(unit / 100), turn);
        }
        return turn;
    }

    // The frame of a node that only turns and moves; of another one its place.
    static void set_frame(plain_node &node, const aiMatrix4x4 &m)
    {
        const float centre[3] = {m.a4, m.b4, m.c4};
        for (int i = 0; i < 3; ++i)
            node.centre[i] = std::isfinite(centre[i]) ? centre[i] : 0;
        const aiVector3D axis[3] = {{m.a1, m.b1, m.c1}, {m.a2, m.b2, m.c2}, {m.a3, m.b3, m.c3}};
        const float size = axis[0].Length();
        bool turns = size > 0 && std::isfinite(size) && (axis[0] ^ axis[1]) * axis[2] > 0;
        for (int i = 0; i < 3 && turns; ++i)
            turns = std::fabs(axis[i].Length() - size) < 1e-4f * size &&
                    std::fabs(axis[i] * axis[(i + 1) % 3]) < 1e-4f * size * size;
        if (!turns)
            return;
        for (int i = 0; i < 3; ++i)
            for (unsigned k = 0; k < 3; ++k)
                node.rotation[3 * i + static_cast<int>(k)] = axis[i][k] / size;
    }

    int add_node(const aiNode &source, plain_node &&node, const aiMatrix4x4 &frame, int parent)
    {
        node.name = source.mName.C_Str();
        node.parent = parent;
        set_frame(node, frame);
        out_.nodes.push_back(std::move(node));
        return static_cast<int>(out_.nodes.size()) - 1;
    }

    // That of meshes without one is the program's default.
    std::size_t material_of(const aiMesh &mesh)
    {
        if (mesh.mMaterialIndex < materials_of_file_)
            return mesh.mMaterialIndex;
        const bool coloured = mesh.HasVertexColors(0);
        const auto [entry, fresh] = plain_.emplace(coloured, out_.materials.size());
        if (fresh)
            std::fill_n(out_.materials.emplace_back().diffuse, 3, coloured ? 1.0f : default_grey);
        return entry->second;
    }

    // One object for each picture that the node's meshes have.
    std::map<std::string, mesh_builder> meshes(const aiNode &source, const aiMatrix4x4 &frame)
    {
        std::map<std::string, mesh_builder> built;
        for (unsigned i = 0; i < source.mNumMeshes; ++i) {
            if (source.mMeshes[i] >= scene_.mNumMeshes)
                continue;
            const aiMesh &mesh = *scene_.mMeshes[source.mMeshes[i]];
            const std::size_t material = material_of(mesh);
            const std::string picture = out_.materials[material].picture;
            mesh_builder &part = built[picture];
            part.node.kind = PLAIN_POLY;
            part.node.picture = picture.empty() ? -1 : static_cast<int>(material);
            const bool white = picture.empty() && is_white(out_.materials[material].diffuse);
            part.add(mesh, frame, static_cast<int>(material),
                     mesh.mMaterialIndex >= about_.twosided.size() ||
                         about_.twosided[mesh.mMaterialIndex],
                     about_.fans.count(source.mMeshes[i]) != 0, white ? &shades_ : nullptr);
        }
        return built;
    }

    void convert(const aiNode &source, const aiMatrix4x4 &outer, int parent)
    {
        if (level_ >= most_levels) {
            too_deep_ = true;
            return;
        }
        const aiMatrix4x4 frame = outer * source.mTransformation;
        std::map<std::string, mesh_builder> parts = meshes(source, frame);
        if (parts.size() != 1) {
            aiMatrix4x4 place = frame;
            plain_node node;
            node.kind = take_light(source, &place) ? PLAIN_LIGHT : PLAIN_GROUP;
            parent = add_node(source, std::move(node), place, parent);
        }
        for (auto &[picture, part] : parts) {
            bad_points_ += part.bad_points;
            mixed_points_ += part.mixed_points;
            const int place = add_node(source, std::move(part.node), frame, parent);
            if (parts.size() == 1)
                parent = place;
        }
        parts.clear();
        ++level_;
        for (unsigned i = 0; i < source.mNumChildren; ++i)
            convert(*source.mChildren[i], frame, parent);
        --level_;
    }

    // Whether a node is the place of a light, which becomes an object there.
    bool take_light(const aiNode &source, aiMatrix4x4 *frame)
    {
        const auto found = waiting_lights_.find(source.mName.C_Str());
        if (found == waiting_lights_.end())
            return false;
        const aiVector3D place = *frame * scene_.mLights[found->second]->mPosition;
        frame->a4 = place.x;
        frame->b4 = place.y;
        frame->c4 = place.z;
        waiting_lights_.erase(found);
        return true;
    }

    // The others stand below the top.
    void lights_without_nodes()
    {
        for (const auto &[name, i] : waiting_lights_) {
            const aiLight &light = *scene_.mLights[i];
            const aiNode *above = scene_.mRootNode->FindNode(light.mName);
            aiVector3D place = light.mPosition;
            for (const aiNode *node = above != nullptr ? above : scene_.mRootNode; node != nullptr;
                 node = node->mParent)
                place = node->mTransformation * place;
            place = axes() * place;
            plain_node node;
            node.kind = PLAIN_LIGHT;
            node.name = name;
            node.parent = top_is_of_the_file() && !out_.nodes.empty() ? 0 : -1;
            for (unsigned k = 0; k < 3; ++k)
                node.centre[k] = std::isfinite(place[k]) ? place[k] : 0;
            out_.nodes.push_back(node);
        }
    }

    const aiScene &scene_;
    const std::string suffix_;
    const scene_tree &about_;
    plain_scene &out_;
    const std::size_t materials_of_file_ = out_.materials.size();
    std::map<bool, std::size_t>
        plain_; // materials of meshes without one, by whether points have colours
    shade_materials shades_{&out_.materials};
    std::multimap<std::string, unsigned> waiting_lights_;
    std::size_t bad_points_ = 0, mixed_points_ = 0;
    int level_ = 0;
    bool too_deep_ = false;
};

} // namespace

void scene_tree::convert(const aiScene &scene, const std::string &suffix, plain_scene *out) const
{
    scene_converter(scene, suffix, *this, out).run();
}
