// Reads files through the Assimp library into objects of the scene. A library of its own, opened at
// the first file that needs it, so that Assimp costs nothing at the start of the program. It builds
// the objects by the interface that plug-ins have.

#include <array>
#include <assimp/BaseImporter.h>
#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/importerdesc.h>
#include <assimp/scene.h>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <plugin/vesk.h>
#include <string>
#include <vector>

extern "C" VESK_API object_t *vesk_assimp_read(const char *filename, const char *suffix,
                                               char *reason, int size);

namespace {

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

int palette_index(const aiMaterial &source)
{
    material m;
    material_init(&m);
    take_colour(source, AI_MATKEY_COLOR_DIFFUSE, m.diffuse);
    take_colour(source, AI_MATKEY_COLOR_AMBIENT, m.ambient);
    take_colour(source, AI_MATKEY_COLOR_SPECULAR, m.specular);
    take_colour(source, AI_MATKEY_COLOR_EMISSIVE, m.emissive);
    float value = 0;
    if (source.Get(AI_MATKEY_SHININESS, value) == AI_SUCCESS && value >= 0)
        m.shininess = value > 128 ? 128 : value;
    if (source.Get(AI_MATKEY_OPACITY, value) == AI_SUCCESS)
        m.transparency = 1 - value;
    aiString name;
    if (source.Get(AI_MATKEY_NAME, name) == AI_SUCCESS && name.length > 0)
        m.name = name.data; // the palette keeps a copy
    return vesk_palette_get_new_material_index(&m);
}

std::string texture_name(const aiMaterial &source)
{
    aiString path;
    for (const aiTextureType type : {aiTextureType_DIFFUSE, aiTextureType_BASE_COLOR})
        if (source.GetTexture(type, 0, &path) == AI_SUCCESS && path.length > 0 &&
            path.data[0] != '*') // within the file
            return path.C_Str();
    return "";
}

// ---- meshes ----

// The arrays of one object, from all meshes that share its picture.
class mesh_builder {
public:
    void add(const aiMesh &mesh, const aiMatrix4x4 &frame, int material)
    {
        std::vector<int> places;
        for (unsigned i = 0; i < mesh.mNumVertices; ++i)
            places.push_back(place_of(frame * mesh.mVertices[i]));
        for (unsigned i = 0; i < mesh.mNumFaces; ++i)
            add_face(mesh, mesh.mFaces[i], places, material);
    }

    void fill(object_t *object) const
    {
        const int n = static_cast<int>(attributes_.size());
        vesk_object_add_vertices_from_float_array(object, points_.data(),
                                                  static_cast<int>(points_.size() / 3));
        const int first = vesk_object_add_surfaces_from_arrays(object, n, offsets_.data(),
                                                               corners_.data(), uv_.data(), 1);
        vesk_object_set_surface_attributes(object, first, n, attributes_.data());
    }

private:
    // Readers part vertices that differ in anything; here only the place counts.
    int place_of(const aiVector3D &p)
    {
        const std::array<float, 3> key = {p.x + 0.0f, p.y + 0.0f, p.z + 0.0f};
        const auto found = known_.emplace(key, static_cast<int>(points_.size() / 3));
        if (found.second)
            points_.insert(points_.end(), key.begin(), key.end());
        return found.first->second;
    }

    void add_face(const aiMesh &mesh, const aiFace &face, const std::vector<int> &places,
                  int material)
    {
        if (face.mNumIndices < 2)
            return;
        for (unsigned k = 0; k < face.mNumIndices; ++k)
            if (face.mIndices[k] >= mesh.mNumVertices)
                return;
        for (unsigned k = 0; k < face.mNumIndices; ++k) {
            const unsigned index = face.mIndices[k];
            corners_.push_back(places[index]);
            const bool has_uv = mesh.HasTextureCoords(0);
            uv_.push_back(has_uv ? mesh.mTextureCoords[0][index].x : 0);
            uv_.push_back(has_uv ? mesh.mTextureCoords[0][index].y : 0);
        }
        offsets_.push_back(static_cast<int>(corners_.size()));
        const bool line = face.mNumIndices == 2;
        attributes_.push_back(
            {material, SURFACE_TWOSIDED | (line                    ? SURFACE_LINE
                                           : is_smooth(mesh, face) ? SURFACE_SMOOTH
                                                                   : 0)});
    }

    // A face whose corners have different normals.
    static bool is_smooth(const aiMesh &mesh, const aiFace &face)
    {
        if (!mesh.HasNormals())
            return false;
        const aiVector3D &first = mesh.mNormals[face.mIndices[0]];
        for (unsigned k = 1; k < face.mNumIndices; ++k)
            if ((mesh.mNormals[face.mIndices[k]] - first).SquareLength() > 1e-6f)
                return true;
        return false;
    }

    std::map<std::array<float, 3>, int> known_;
    std::vector<float> points_, uv_;
    std::vector<int> offsets_ = {0}, corners_;
    std::vector<vesk_surface_attributes_t> attributes_;
};

// ---- the tree ----

class scene_converter {
public:
    scene_converter(const aiScene &scene, const char *filename) : scene_(scene), filename_(filename)
    {
        for (unsigned i = 0; i < scene.mNumMaterials; ++i) {
            materials_.push_back(palette_index(*scene.mMaterials[i]));
            textures_.push_back(texture_name(*scene.mMaterials[i]));
        }
    }

    object_t *run()
    {
        object_t *top = convert(*scene_.mRootNode, aiMatrix4x4());
        object_calc_normals_force(top);
        return top;
    }

private:
    static constexpr int most_levels = 1000;

    object_t *new_part(const char *name, int type)
    {
        object_t *object = new_object(type);
        object_set_name(object, name);
        return object;
    }

    // One object for each picture that the node's meshes have.
    std::vector<object_t *> convert_meshes(const aiNode &node, const aiMatrix4x4 &frame)
    {
        std::map<std::string, mesh_builder> builders;
        for (unsigned i = 0; i < node.mNumMeshes; ++i) {
            if (node.mMeshes[i] >= scene_.mNumMeshes)
                continue;
            const aiMesh &mesh = *scene_.mMeshes[node.mMeshes[i]];
            const bool known = mesh.mMaterialIndex < materials_.size();
            builders[known ? textures_[mesh.mMaterialIndex] : ""].add(
                mesh, frame, known ? materials_[mesh.mMaterialIndex] : 0);
        }
        std::vector<object_t *> objects;
        for (const auto &built : builders) {
            object_t *object = new_part(node.mName.C_Str(), OBJECT_POLY);
            built.second.fill(object);
            if (!built.first.empty())
                search_and_set_texture(object, filename_, built.first.c_str());
            objects.push_back(object);
        }
        return objects;
    }

    object_t *convert(const aiNode &node, const aiMatrix4x4 &outer)
    {
        const aiMatrix4x4 frame = outer * node.mTransformation;
        const std::vector<object_t *> parts = convert_meshes(node, frame);
        const bool alone = parts.size() == 1;
        object_t *object = alone ? parts[0] : new_part(node.mName.C_Str(), OBJECT_GROUP);
        if (!alone)
            for (object_t *part : parts)
                object_add_child(object, part);
        ++level_;
        for (unsigned i = 0; i < node.mNumChildren && level_ < most_levels; ++i)
            object_add_child(object, convert(*node.mChildren[i], frame));
        --level_;
        return object;
    }

    const aiScene &scene_;
    const char *filename_;
    std::vector<int> materials_;
    std::vector<std::string> textures_;
    int level_ = 0;
};

// Takes out every reader but that of the suffix: what a file looks like never chooses one.
bool keep_one_reader(Assimp::Importer &importer, const char *suffix)
{
    const std::size_t wanted = importer.GetImporterIndex(suffix);
    if (wanted == static_cast<std::size_t>(-1))
        return false;
    Assimp::BaseImporter *kept = importer.GetImporter(wanted);
    for (std::size_t i = importer.GetImporterCount(); i-- > 0;) {
        Assimp::BaseImporter *other = importer.GetImporter(i);
        if (other != kept) {
            importer.UnregisterLoader(other);
            delete other;
        }
    }
    return true;
}

// A light of the file becomes a light object under the top.
void add_lights(const aiScene &scene, object_t *top)
{
    for (unsigned i = 0; i < scene.mNumLights; ++i) {
        const aiLight &light = *scene.mLights[i];
        aiVector3D place = light.mPosition;
        for (const aiNode *node = scene.mRootNode->FindNode(light.mName); node != nullptr;
             node = node->mParent)
            place = node->mTransformation * place;
        object_t *object = new_light();
        object_set_name(object, light.mName.C_Str());
        vesk_object_set_centre(object, place.x, place.y, place.z);
        object_add_child(top, object);
    }
}

} // namespace

object_t *vesk_assimp_read(const char *filename, const char *suffix, char *reason, int size)
{
    const auto fail = [&](const char *text) -> object_t * {
        std::snprintf(reason, static_cast<std::size_t>(size), "%s", text);
        return nullptr;
    };
    Assimp::Importer importer;
    if (!keep_one_reader(importer, suffix))
        return fail("the Assimp library does not know this format");
    importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
    const aiScene *scene = importer.ReadFile(filename, 0);
    if (scene == nullptr || scene->mRootNode == nullptr)
        return fail(importer.GetErrorString());
    if (scene->mNumMeshes == 0 && scene->mNumLights == 0)
        return fail("there is no geometry in it");
    object_t *top = scene_converter(*scene, filename).run();
    add_lights(*scene, top);
    return top;
}
