#include "modules/assimp_materials.h"

#include <algorithm>
#include <assimp/commonMetaData.h>
#include <cctype>

namespace {

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

} // namespace

bool is_one_of(const std::string &word, std::initializer_list<const char *> words)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

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

material_reader::material_reader(const aiScene &scene, const std::string &suffix)
    : scene_(scene), addresses_(is_one_of(suffix, {"gltf", "glb"})),
      tells_sides_(addresses_ || (suffix == "dae" && generator() == "VESK"))
{
}

plain_material material_reader::read(const aiMaterial &source) const
{
    plain_material m;
    take_colour(source, AI_MATKEY_COLOR_DIFFUSE, m.diffuse);
    take_colour(source, AI_MATKEY_COLOR_AMBIENT, m.ambient);
    take_colour(source, AI_MATKEY_COLOR_SPECULAR, m.specular);
    take_colour(source, AI_MATKEY_COLOR_EMISSIVE, m.emissive);
    float value = 0;
    if (source.Get(AI_MATKEY_SHININESS, value) == AI_SUCCESS && value >= 0)
        m.shininess = std::min(value, 128.0f);
    if (source.Get(AI_MATKEY_OPACITY, value) == AI_SUCCESS)
        m.transparency = 1 - value;
    aiString name;
    if (source.Get(AI_MATKEY_NAME, name) == AI_SUCCESS)
        m.name = name.C_Str();
    take_picture(source, &m);
    return m;
}

bool material_reader::twosided(const aiMaterial &source) const
{
    int both = 1;
    return !tells_sides_ || source.Get(AI_MATKEY_TWOSIDED, both) != AI_SUCCESS || both != 0;
}

void material_reader::take_picture(const aiMaterial &source, plain_material *m) const
{
    aiString path;
    for (const aiTextureType type : {aiTextureType_DIFFUSE, aiTextureType_BASE_COLOR}) {
        if (source.GetTexture(type, 0, &path) != AI_SUCCESS || path.length == 0 ||
            path == aiString("$texture_dummy.bmp")) // the library's, where a file has none
            continue;
        const auto within = scene_.GetEmbeddedTextureAndIndex(path.C_Str());
        if (within.second >= 0)
            m->picture = "*" + std::to_string(within.second);
        else
            m->picture = addresses_ ? without_escapes(path.C_Str()) : path.C_Str();
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

std::string material_reader::generator() const
{
    aiString name;
    const bool told =
        scene_.mMetaData != nullptr && scene_.mMetaData->Get(AI_METADATA_SOURCE_GENERATOR, name);
    return told ? name.C_Str() : "";
}
