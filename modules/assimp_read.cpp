// Scenes that the Assimp library reads, as the plain arrays that the program makes objects of.

#include "modules/assimp_read.h"

#include "modules/assimp_materials.h"
#include "modules/gltf_read.h"
#include "modules/scene_tree.h"

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
    std::size_t coordinates = 0;
    for (unsigned i = 0; i < scene.mNumMeshes; ++i) {
        const aiMesh &mesh = *scene.mMeshes[i];
        bones += mesh.mNumBones > 0 ? 1 : 0;
        forms += mesh.mNumAnimMeshes;
        coordinates += mesh.GetNumUVChannels() > 1 ? 1 : 0;
    }
    tell_count(pictures, "materials' pictures for bumps, shine and the like", out);
    tell_count(scene.mNumAnimations, "animations", out);
    tell_count(scene.mNumCameras, "cameras", out);
    tell_count(bones, "meshes' bones", out);
    tell_count(forms, "further forms of meshes", out);
    tell_count(coordinates, "meshes' further texture coordinates", out);
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
    std::string lower = suffix;
    for (char &c : lower)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (is_one_of(lower, {"gltf", "glb"})) {
        gltf_file file;
        const std::string reason = file.open(filename);
        if (!reason.empty() || !file.is_first_version())
            return reason.empty() ? gltf_read(file, scene) : reason;
    }
    Assimp::Importer importer;
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
    const material_reader materials(*read, lower);
    scene_tree tree;
    for (unsigned i = 0; i < read->mNumMaterials; ++i) {
        scene->materials.push_back(materials.read(*read->mMaterials[i]));
        tree.twosided.push_back(materials.twosided(*read->mMaterials[i]));
    }
    tree.convert(*read, lower, scene);
    tell_what_is_not_read(*read, scene);
    take_images(*read, filename, scene);
    return "";
}
