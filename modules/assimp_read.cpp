// Scenes that the Assimp library reads, as the plain arrays that the program makes objects of.

#include "modules/assimp_read.h"

#include "modules/assimp_materials.h"
#include "modules/assimp_meshes.h"

#include <algorithm>
#include <assimp/BaseImporter.h>
#include <assimp/DefaultIOSystem.h>
#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <cmath>
#include <cstring>
#include <fstream>
#include <map>
#include <set>
#include <string_view>

namespace {

constexpr int most_levels = 1000;

// A COLLADA text whose colours have one blank between their numbers and none around them: other
// white space is as good, but the library's reader stops at it.
std::string with_plain_colours(const std::string &text)
{
    constexpr std::string_view blanks = " \t\r\n";
    std::string plain;
    std::size_t done = 0;
    for (std::size_t at = 0; (at = text.find("<color", at)) != std::string::npos;) {
        const std::size_t first = text.find('>', at), end = text.find('<', at + 1);
        at += 6;
        if (first == std::string::npos || end == std::string::npos || end < first)
            continue; // without an end, or without numbers
        plain.append(text, done, first + 1 - done);
        for (std::size_t i = first + 1; i < end;) {
            i = std::min(text.find_first_not_of(blanks, i), end);
            const std::size_t after = std::min(text.find_first_of(blanks, i), end);
            if (i < after)
                plain.append(plain.back() == '>' ? "" : " ").append(text, i, after - i);
            i = after;
        }
        done = end;
    }
    return plain.append(text, done);
}

// A file of that text in place of the one on the disk.
class text_stream : public Assimp::IOStream {
public:
    explicit text_stream(std::string text) : text_(std::move(text)) {}
    std::size_t Read(void *to, std::size_t size, std::size_t count) override
    {
        const std::size_t whole = size == 0 ? 0 : std::min(count, (text_.size() - at_) / size);
        std::memcpy(to, text_.data() + at_, whole * size);
        at_ += whole * size;
        return whole;
    }
    std::size_t Write(const void *, std::size_t, std::size_t) override { return 0; }
    aiReturn Seek(std::size_t offset, aiOrigin origin) override
    {
        const std::size_t base = origin == aiOrigin_SET   ? 0
                                 : origin == aiOrigin_CUR ? at_
                                                          : text_.size() - offset;
        const std::size_t to = origin == aiOrigin_END ? base : base + offset;
        if (to > text_.size())
            return aiReturn_FAILURE;
        at_ = to;
        return aiReturn_SUCCESS;
    }
    [[nodiscard]] std::size_t Tell() const override { return at_; }
    [[nodiscard]] std::size_t FileSize() const override { return text_.size(); }
    void Flush() override {}

private:
    std::string text_;
    std::size_t at_ = 0;
};

// Finds files whose names are addresses, too.
class address_files : public Assimp::DefaultIOSystem {
public:
    bool Exists(const char *file) const override
    {
        return DefaultIOSystem::Exists(file) ||
               DefaultIOSystem::Exists(without_escapes(file).c_str());
    }
    Assimp::IOStream *Open(const char *file, const char *mode) override
    {
        if (std::string_view(file).ends_with(".dae")) {
            std::ifstream opened(file, std::ios::binary);
            if (opened)
                return new text_stream(
                    with_plain_colours({std::istreambuf_iterator<char>(opened), {}}));
        }
        Assimp::IOStream *stream = DefaultIOSystem::Open(file, mode);
        return stream != nullptr ? stream
                                 : DefaultIOSystem::Open(without_escapes(file).c_str(), mode);
    }
};

// ---- the tree ----

class scene_converter {
public:
    scene_converter(const aiScene &scene, const std::string &suffix, bool fans, plain_scene *out)
        : scene_(scene), suffix_(suffix), fans_(fans), out_(*out)
    {
    }

    void run()
    {
        const material_reader reader(scene_, suffix_);
        for (unsigned i = 0; i < scene_.mNumMaterials; ++i) {
            out_.materials.push_back(reader.read(*scene_.mMaterials[i]));
            twosided_.push_back(reader.twosided(*scene_.mMaterials[i]));
        }
        if (out_.materials.empty()) {
            out_.materials.emplace_back();
            twosided_.push_back(true);
        }
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
        return !is_one_of(suffix_, {"dae", "fbx"}) &&
               !(is_one_of(suffix_, {"gltf", "glb"}) &&
                 std::strcmp(top.mName.C_Str(), "ROOT") == 0);
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

    // One object for each picture that the node's meshes have.
    std::map<std::string, mesh_builder> meshes(const aiNode &source, const aiMatrix4x4 &frame)
    {
        std::map<std::string, mesh_builder> built;
        for (unsigned i = 0; i < source.mNumMeshes; ++i) {
            if (source.mMeshes[i] >= scene_.mNumMeshes)
                continue;
            const aiMesh &mesh = *scene_.mMeshes[source.mMeshes[i]];
            const std::size_t material =
                mesh.mMaterialIndex < out_.materials.size() ? mesh.mMaterialIndex : 0;
            const std::string &picture = out_.materials[material].picture;
            mesh_builder &part = built[picture];
            part.node.kind = PLAIN_POLY;
            part.node.picture = picture.empty() ? -1 : static_cast<int>(material);
            part.add(mesh, frame, static_cast<int>(material), twosided_[material], fans_);
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
    const bool fans_; // of triangles are polygons
    plain_scene &out_;
    std::vector<bool> twosided_;
    std::multimap<std::string, unsigned> waiting_lights_;
    std::size_t bad_points_ = 0;
    int level_ = 0;
    bool too_deep_ = false;
};

// ---- losses ----

void tell_count(std::size_t count, const char *what, plain_scene *out)
{
    if (count > 0)
        out->warnings.push_back(std::to_string(count) + " " + what + " were left out");
}

// Whether a material has a picture of another use than that for its colour.
bool has_other_pictures(const aiMaterial &source)
{
    for (int type = aiTextureType_DIFFUSE + 1; type <= AI_TEXTURE_TYPE_MAX; ++type)
        if (type != aiTextureType_BASE_COLOR &&
            source.GetTextureCount(static_cast<aiTextureType>(type)) > 0)
            return true;
    return false;
}

// A warning for each kind of element that the program has no place for.
void tell_what_is_not_read(const aiScene &scene, plain_scene *out)
{
    std::size_t pictures = 0;
    for (unsigned i = 0; i < scene.mNumMaterials; ++i)
        pictures += has_other_pictures(*scene.mMaterials[i]) ? 1 : 0;
    std::size_t bones = 0;
    std::size_t forms = 0;
    std::size_t colours = 0;
    std::size_t coordinates = 0;
    std::size_t points = 0;
    for (unsigned i = 0; i < scene.mNumMeshes; ++i) {
        const aiMesh &mesh = *scene.mMeshes[i];
        bones += mesh.mNumBones > 0 ? 1 : 0;
        forms += mesh.mNumAnimMeshes;
        colours += mesh.HasVertexColors(0) ? 1 : 0;
        coordinates += mesh.GetNumUVChannels() > 1 ? 1 : 0;
        for (unsigned k = 0; k < mesh.mNumFaces; ++k)
            points += mesh.mFaces[k].mNumIndices == 1 ? 1 : 0;
    }
    tell_count(pictures, "materials' pictures for bumps, shine and the like", out);
    tell_count(scene.mNumAnimations, "animations", out);
    tell_count(scene.mNumCameras, "cameras", out);
    tell_count(bones, "meshes' bones", out);
    tell_count(forms, "further forms of meshes", out);
    tell_count(colours, "meshes' colours of corners", out);
    tell_count(coordinates, "meshes' further texture coordinates", out);
    tell_count(points, "points", out);
}

// ---- pictures ----

// The suffix of a picture's bytes; the file's hint when they have no known beginning.
std::string suffix_of(const aiTexture &texture)
{
    const auto *bytes = reinterpret_cast<const char *>(texture.pcData);
    if (texture.mHeight == 0 && texture.mWidth > 3) {
        if (std::memcmp(bytes, "\x89PNG", 4) == 0)
            return "png";
        if (std::memcmp(bytes, "\xFF\xD8\xFF", 3) == 0)
            return "jpg";
    }
    const std::string hint(texture.achFormatHint,
                           strnlen(texture.achFormatHint, sizeof texture.achFormatHint));
    return hint.empty() ? "img" : hint;
}

// Pictures within the file, those that are files themselves.
void take_images(const aiScene &scene, const std::string &filename, plain_scene *out)
{
    const std::string plain = filename.substr(filename.find_last_of('/') + 1);
    const std::string base = plain.substr(0, plain.rfind('.'));
    for (unsigned i = 0; i < scene.mNumTextures; ++i) {
        const aiTexture &texture = *scene.mTextures[i];
        plain_image image;
        const std::string named = texture.mFilename.C_Str();
        image.name = named.substr(named.find_last_of("/\\") + 1);
        if (image.name.find('.') == std::string::npos)
            image.name = base + "_" +
                         (image.name.empty() ? "image" + std::to_string(i) : image.name) + "." +
                         suffix_of(texture);
        if (texture.mHeight == 0)
            image.bytes.assign(reinterpret_cast<const char *>(texture.pcData), texture.mWidth);
        else
            out->warnings.push_back("the picture " + image.name + " within the file is no file");
        out->images.push_back(image);
    }
}

// The text of a glTF file; in a binary one it is the first part.
std::string gltf_text(const std::string &filename)
{
    std::ifstream file(filename, std::ios::binary);
    char head[20] = {};
    if (file.read(head, sizeof head) && std::memcmp(head, "glTF", 4) == 0) {
        std::uint32_t length = 0;
        std::memcpy(&length, head + 12, sizeof length);
        file.seekg(0, std::ios::end);
        const auto all = static_cast<std::size_t>(file.tellg());
        std::string text(std::min(all - sizeof head, std::size_t{length}), ' ');
        file.seekg(sizeof head).read(text.data(), static_cast<std::streamsize>(text.size()));
        return text;
    }
    file.clear();
    file.seekg(0);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Whether a glTF file says of all its triangles that fans of them are polygons: by an extension
// that it names once in its head and once with each mesh. The library does not report it.
bool has_fans(const aiScene &scene, const std::string &filename)
{
    const std::string name = "\"FB_ngon_encoding\"";
    const std::string text = gltf_text(filename);
    std::size_t found = 0;
    for (std::size_t at = 0; (at = text.find(name, at)) != std::string::npos; at += name.size())
        ++found;
    std::size_t meshes = 0;
    for (unsigned i = 0; i < scene.mNumMeshes; ++i)
        meshes += (scene.mMeshes[i]->mPrimitiveTypes & aiPrimitiveType_TRIANGLE) != 0 ? 1 : 0;
    return found > 1 && found == meshes + 1;
}

// Takes out every reader but those of the suffix: the content of a file never chooses another.
// Two versions of one format may have a reader each.
bool keep_readers_of(Assimp::Importer &importer, const char *suffix)
{
    bool any = false;
    for (std::size_t i = importer.GetImporterCount(); i-- > 0;) {
        Assimp::BaseImporter *reader = importer.GetImporter(i);
        std::set<std::string> suffixes;
        reader->GetExtensionList(suffixes);
        if (suffixes.count(suffix) != 0) {
            any = true;
            continue;
        }
        importer.UnregisterLoader(reader);
        delete reader;
    }
    return any;
}

} // namespace

std::string helper_read(const char *filename, const char *suffix, plain_scene *scene)
{
    Assimp::Importer importer;
    std::string lower = suffix;
    for (char &c : lower)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (!keep_readers_of(importer, lower.c_str()))
        return "the Assimp library does not know this format";
    importer.SetIOHandler(new address_files); // the importer's from now on
    importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_COLLADA_USE_COLLADA_NAMES, true);
    const aiScene *read = importer.ReadFile(filename, 0);
    if (read == nullptr || read->mRootNode == nullptr) {
        const std::string reason = importer.GetErrorString();
        return reason.empty() ? "its reader gave no reason" : reason;
    }
    if (read->mNumMeshes == 0 && read->mNumLights == 0)
        return "there is no geometry in it";
    const bool gltf = is_one_of(lower, {"gltf", "glb"});
    scene_converter(*read, lower, gltf && has_fans(*read, filename), scene).run();
    tell_what_is_not_read(*read, scene);
    take_images(*read, filename, scene);
    return "";
}
