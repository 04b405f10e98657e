#include "modules/assimp_losses.h"

#include <assimp/scene.h>
#include <string>

namespace {

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

} // namespace

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
