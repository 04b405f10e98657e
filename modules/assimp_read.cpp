// What the Assimp library reads, as the plain arrays that the program makes objects of.

#include "modules/assimp_losses.h"

#include <algorithm>
#include <array>
#include <assimp/BaseImporter.h>
#include <assimp/DefaultIOSystem.h>
#include <assimp/Importer.hpp>
#include <assimp/commonMetaData.h>
#include <assimp/config.h>
#include <assimp/importerdesc.h>
#include <assimp/scene.h>
#include <cmath>
#include <cstring>
#include <fstream>
#include <map>
#include <set>
#include <unordered_map>

namespace {

constexpr int most_levels = 1000;
constexpr float gltf_shininess = 1000; // the reader's value of a perfect mirror

bool is_one_of(const std::string &word, std::initializer_list<const char *> words)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

// ---- materials ----

void take_colour(const aiMaterial &source, const char *key, unsigned type, unsigned index,
                 float *to)
{
    aiColor3D colour;
    if (source.Get(key, type, index, colour) != AI_SUCCESS)
        return;
    to[0] = colour.r;
    to[1] = colour.g;
    to[2] = colour.b;
}

// "my%20wood.png" as it is in the folder.
std::string without_escapes(const std::string &address)
{
    std::string name;
    for (std::size_t i = 0; i < address.size(); ++i) {
        const bool escape = address[i] == '%' && i + 2 < address.size() &&
                            std::isxdigit(static_cast<unsigned char>(address[i + 1])) != 0 &&
                            std::isxdigit(static_cast<unsigned char>(address[i + 2])) != 0;
        name += escape ? static_cast<char>(std::stoi(address.substr(i + 1, 2), nullptr, 16))
                       : address[i];
        i += escape ? 2 : 0;
    }
    return name;
}

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
        Assimp::IOStream *stream = DefaultIOSystem::Open(file, mode);
        return stream != nullptr ? stream
                                 : DefaultIOSystem::Open(without_escapes(file).c_str(), mode);
    }
};

class material_reader {
public:
    material_reader(const aiScene &scene, const std::string &suffix)
        : scene_(scene), gltf_(is_one_of(suffix, {"gltf", "glb"})),
          tells_sides_(gltf_ || (suffix == "dae" && generator() == "VESK"))
    {
    }

    plain_material read(const aiMaterial &source) const
    {
        plain_material m;
        take_colour(source, AI_MATKEY_COLOR_DIFFUSE, m.diffuse);
        take_colour(source, AI_MATKEY_COLOR_AMBIENT, m.ambient);
        take_colour(source, AI_MATKEY_COLOR_SPECULAR, m.specular);
        take_colour(source, AI_MATKEY_COLOR_EMISSIVE, m.emissive);
        float value = 0;
        if (source.Get(AI_MATKEY_SHININESS, value) == AI_SUCCESS && value >= 0)
            m.shininess = std::min(gltf_ ? value / gltf_shininess * 128 : value, 128.0f);
        if (source.Get(AI_MATKEY_OPACITY, value) == AI_SUCCESS)
            m.transparency = 1 - value;
        aiString name;
        if (source.Get(AI_MATKEY_NAME, name) == AI_SUCCESS)
            m.name = name.C_Str();
        take_picture(source, &m);
        return m;
    }

    // Only there do files say which sides are drawn; COLLADA by an extra that many programs leave
    // out.
    bool twosided(const aiMaterial &source) const
    {
        int both = 1;
        return !tells_sides_ || source.Get(AI_MATKEY_TWOSIDED, both) != AI_SUCCESS || both != 0;
    }

private:
    void take_picture(const aiMaterial &source, plain_material *m) const
    {
        aiString path;
        for (const aiTextureType type : {aiTextureType_DIFFUSE, aiTextureType_BASE_COLOR}) {
            if (source.GetTexture(type, 0, &path) != AI_SUCCESS || path.length == 0)
                continue;
            const auto within = scene_.GetEmbeddedTextureAndIndex(path.C_Str());
            if (within.second >= 0)
                m->picture = "*" + std::to_string(within.second);
            else
                m->picture = gltf_ ? without_escapes(path.C_Str()) : path.C_Str();
            aiUVTransform placed;
            if (source.Get(AI_MATKEY_UVTRANSFORM(type, 0), placed) == AI_SUCCESS) {
                m->repeat[0] = placed.mScaling.x;
                m->repeat[1] = placed.mScaling.y;
                m->offset[0] = placed.mTranslation.x;
                m->offset[1] = placed.mTranslation.y;
            }
            return;
        }
    }

    [[nodiscard]] std::string generator() const
    {
        aiString name;
        const bool told = scene_.mMetaData != nullptr &&
                          scene_.mMetaData->Get(AI_METADATA_SOURCE_GENERATOR, name);
        return told ? name.C_Str() : "";
    }

    const aiScene &scene_;
    const bool gltf_;
    const bool tells_sides_;
};

// ---- meshes ----

struct place_hash {
    std::size_t operator()(const std::array<float, 3> &p) const
    {
        std::size_t sum = 0;
        for (const float value : p) {
            std::uint32_t bits = 0;
            std::memcpy(&bits, &value, sizeof bits);
            sum = (sum ^ bits) * 0x9E3779B97F4A7C15u;
            sum ^= sum >> 29;
        }
        return sum;
    }
};

// The arrays of one object, from all meshes that share its picture.
class mesh_builder {
public:
    plain_node node;
    std::size_t bad_points = 0;

    // `fans`: triangles that follow each other with one first vertex are a polygon.
    void add(const aiMesh &mesh, const aiMatrix4x4 &frame, int material, bool twosided, bool fans)
    {
        known_.reserve(known_.size() + mesh.mNumVertices);
        std::vector<int> places;
        places.reserve(mesh.mNumVertices);
        for (unsigned i = 0; i < mesh.mNumVertices; ++i)
            places.push_back(place_of(frame * mesh.mVertices[i]));
        for (unsigned i = 0; i < mesh.mNumFaces; ++i) {
            const aiFace &face = mesh.mFaces[i];
            outline_.assign(face.mIndices, face.mIndices + face.mNumIndices);
            while (fans && i + 1 < mesh.mNumFaces && goes_on(mesh.mFaces[i + 1]))
                outline_.push_back(mesh.mFaces[++i].mIndices[2]);
            add_face(mesh, places, material, twosided);
        }
        end_line();
    }

private:
    // Readers part vertices that differ in anything; here only the place counts.
    int place_of(const aiVector3D &p)
    {
        std::array<float, 3> key = {p.x, p.y, p.z};
        for (float &value : key) {
            bad_points += std::isfinite(value) ? 0 : 1;
            value = std::isfinite(value) ? value + 0.0f : 0.0f;
        }
        const auto found = known_.emplace(key, static_cast<int>(node.points.size() / 3));
        if (found.second)
            node.points.insert(node.points.end(), key.begin(), key.end());
        return found.first->second;
    }

    void add_corner(const aiMesh &mesh, unsigned index, int place)
    {
        const bool has_uv = mesh.HasTextureCoords(0);
        const aiVector3D uv = has_uv ? mesh.mTextureCoords[0][index] : aiVector3D();
        node.corners.push_back(place);
        node.uv.push_back(std::isfinite(uv.x) ? uv.x : 0);
        node.uv.push_back(std::isfinite(uv.y) ? uv.y : 0);
    }

    void end_surface(int material, int flags)
    {
        node.offsets.push_back(static_cast<int>(node.corners.size()));
        node.materials.push_back(material);
        node.flags.push_back(flags);
    }

    // Whether the next triangle belongs to the outline's fan.
    [[nodiscard]] bool goes_on(const aiFace &next) const
    {
        return outline_.size() > 2 && next.mNumIndices == 3 &&
               next.mIndices[0] == outline_.front() && next.mIndices[1] == outline_.back();
    }

    void add_face(const aiMesh &mesh, const std::vector<int> &places, int material, bool twosided)
    {
        for (const unsigned index : outline_)
            if (index >= mesh.mNumVertices)
                return;
        if (outline_.size() == 2) {
            add_segment(mesh, places, material);
            return;
        }
        end_line();
        if (outline_.size() < 3)
            return;
        for (const unsigned index : outline_)
            add_corner(mesh, index, places[index]);
        end_surface(material,
                    (twosided ? PLAIN_TWOSIDED : 0) | (is_smooth(mesh) ? PLAIN_SMOOTH : 0));
    }

    // Segments that go on where the last one ended are one line.
    void add_segment(const aiMesh &mesh, const std::vector<int> &places, int material)
    {
        const int from = places[outline_[0]];
        const int to = places[outline_[1]];
        if (!line_open_ || node.corners.back() != from || line_material_ != material) {
            end_line();
            line_open_ = true;
            line_material_ = material;
            add_corner(mesh, outline_[0], from);
        }
        add_corner(mesh, outline_[1], to);
    }

    void end_line()
    {
        if (!line_open_)
            return;
        line_open_ = false;
        const auto first = static_cast<std::size_t>(node.offsets.back());
        const bool closed =
            node.corners.size() - first > 3 && node.corners[first] == node.corners.back();
        if (closed) {
            node.corners.pop_back();
            node.uv.resize(node.uv.size() - 2);
        }
        end_surface(line_material_, PLAIN_TWOSIDED | (closed ? PLAIN_CLOSED_LINE : PLAIN_LINE));
    }

    // A face with a corner whose normal is not the face's.
    [[nodiscard]] bool is_smooth(const aiMesh &mesh) const
    {
        if (!mesh.HasNormals())
            return false;
        aiVector3D sum; // Newell's
        for (std::size_t k = 0; k < outline_.size(); ++k) {
            const aiVector3D &p = mesh.mVertices[outline_[k]];
            const aiVector3D &q = mesh.mVertices[outline_[(k + 1) % outline_.size()]];
            sum += aiVector3D((p.y - q.y) * (p.z + q.z), (p.z - q.z) * (p.x + q.x),
                              (p.x - q.x) * (p.y + q.y));
        }
        const float length = sum.Length();
        if (!(length > 0))
            return false;
        for (const unsigned index : outline_) {
            const aiVector3D &normal = mesh.mNormals[index];
            const float size = normal.Length();
            // Some files' normals all look the other way; a degree and a half is rounding.
            if (size > 0 && std::fabs(normal * sum) < 0.9997f * size * length)
                return true;
        }
        return false;
    }

    std::unordered_map<std::array<float, 3>, int, place_hash> known_;
    std::vector<unsigned> outline_; // of the face at hand: vertices of the mesh
    bool line_open_ = false;
    int line_material_ = 0;
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

    // FBX tells its unit in centimetres; ours is the metre of the others.
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

// The suffix of a picture's bytes; what the file says of them when they have no known beginning.
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

// Whether a glTF file says of all its triangles that fans of them are polygons: by an extension that
// it names once in its head and once with each mesh. The library does not tell.
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

// Takes out every reader but those of the suffix: what a file looks like never chooses another.
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
