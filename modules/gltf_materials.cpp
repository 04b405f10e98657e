#include "modules/gltf_materials.h"

#include "modules/assimp_materials.h"
#include "plugins/interchange/gltf_look.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

using namespace gltf_look;

void set_colour(const float *linear, float *to)
{
    for (int i = 0; i < 3; ++i)
        to[i] = shown_of(linear[i]);
}

// The width of a mirror's highlight is 0; 1 stands for none.
float factor(double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); }

// Strengths keep their hue where the strongest is beyond 1.
void set_specular(const float *wanted, float *to)
{
    const float most = std::max({wanted[0], wanted[1], wanted[2], 1.0f});
    for (int i = 0; i < 3; ++i)
        to[i] = rounded(static_cast<double>(std::max(wanted[i], 0.0f) / most));
}

bool has_picture(const json &of, const char *name) { return json_member(of, name).is_object(); }

bool has_other_pictures(const json &source)
{
    for (const char *name : {"normalTexture", "occlusionTexture", "emissiveTexture"})
        if (has_picture(source, name))
            return true;
    if (has_picture(json_member(source, "pbrMetallicRoughness"), "metallicRoughnessTexture"))
        return true;
    const json &specular = json_extension(source, "KHR_materials_specular");
    const json &glossy = json_extension(source, "KHR_materials_pbrSpecularGlossiness");
    return has_picture(specular, "specularTexture") ||
           has_picture(specular, "specularColorTexture") ||
           has_picture(glossy, "specularGlossinessTexture");
}

// The suffix of a picture's bytes.
std::string suffix_of(std::string_view bytes)
{
    if (bytes.substr(0, 4) == "\x89PNG")
        return "png";
    return bytes.substr(0, 3) == "\xFF\xD8\xFF" ? "jpg" : "img";
}

} // namespace

void gltf_paint::place(float *uv) const
{
    const double u = static_cast<double>(uv[0]) * static_cast<double>(scale[0]);
    const double v = static_cast<double>(uv[1]) * static_cast<double>(scale[1]);
    const double s = std::sin(turn);
    const double c = std::cos(turn);
    uv[0] = static_cast<float>(c * u + s * v) + offset[0];
    uv[1] = 1 - (static_cast<float>(c * v - s * u) + offset[1]);
}

std::vector<gltf_paint> gltf_painter::paints()
{
    std::vector<gltf_paint> all;
    const json &materials = json_member(file_.top(), "materials");
    std::size_t others = 0;
    for (std::size_t i = 0; materials.is_array() && i < materials.size(); ++i) {
        all.push_back(paint(materials[i]));
        others += all.back().other_pictures ? 1 : 0;
    }
    if (others > 0)
        out_.warnings.push_back(std::to_string(others) +
                                " materials' pictures for bumps, shine and the like were left out");
    return all;
}

gltf_paint gltf_painter::paint(const json &source)
{
    gltf_paint paint;
    paint.look.name = json_string(source, "name");
    paint.twosided = json_is_true(source, "doubleSided");
    paint.other_pictures = has_other_pictures(source);
    const json &glossy = json_extension(source, "KHR_materials_pbrSpecularGlossiness");
    if (glossy.is_object())
        glossy_look(glossy, &paint.look);
    else
        plain_look(source, &paint.look);
    if (json_string(source, "alphaMode").empty() || json_string(source, "alphaMode") == "OPAQUE")
        paint.look.transparency = 0;
    json_reals(json_member(source, "extras"), "ambient", paint.look.ambient, 3);
    float glow[3] = {0, 0, 0};
    json_reals(source, "emissiveFactor", glow, 3);
    const double strength =
        json_real(json_extension(source, "KHR_materials_emissive_strength"), "emissiveStrength", 1);
    for (float &part : glow)
        part *= static_cast<float>(strength);
    set_colour(glow, paint.look.emissive);
    const json &plain = json_member(source, "pbrMetallicRoughness");
    take_picture(json_member(glossy.is_object() ? glossy : plain,
                             glossy.is_object() ? "diffuseTexture" : "baseColorTexture"),
                 &paint);
    return paint;
}

void gltf_painter::plain_look(const json &source, plain_material *m) const
{
    const json &plain = json_member(source, "pbrMetallicRoughness");
    float base[4] = {1, 1, 1, 1};
    json_reals(plain, "baseColorFactor", base, 4);
    set_colour(base, m->diffuse);
    m->transparency = 1 - base[3];
    // A texture would say it point by point: most of those surfaces are no metal.
    const bool textured = has_picture(plain, "metallicRoughnessTexture");
    const float metal = textured ? 0 : factor(json_real(plain, "metallicFactor", 1));
    m->shininess = shininess_of(factor(json_real(plain, "roughnessFactor", 1)));

    const json &about = json_extension(source, "KHR_materials_specular");
    const double index =
        json_real(json_extension(source, "KHR_materials_ior"), "ior", 1.5); // of refraction
    const double root = (index - 1) / (index + 1);
    const double strength = json_real(about, "specularFactor", 1) *
                            (index >= 1 ? root * root / static_cast<double>(plain_reflectance) : 1);
    float colour[3] = {1, 1, 1};
    json_reals(about, "specularColorFactor", colour, 3);
    float specular[3];
    for (int i = 0; i < 3; ++i)
        specular[i] = static_cast<float>(strength) * colour[i] * plain_specular;
    if (json_extension(source, "KHR_materials_unlit").is_object())
        std::fill_n(specular, 3, 0.0f);
    // A metal's highlight has its colour. Its diffuse colour stays: there are no surroundings to be
    // mirrored, without which it would be black.
    for (int i = 0; i < 3; ++i)
        specular[i] += metal * (m->diffuse[i] - specular[i]);
    set_specular(specular, m->specular);
}

// The older form of shine. This program once wrote its own numbers into it as they were.
void gltf_painter::glossy_look(const json &glossy, plain_material *m) const
{
    const bool own = json_string(json_member(file_.top(), "asset"), "generator") == "VESK";
    float diffuse[4] = {1, 1, 1, 1};
    float specular[3] = {1, 1, 1};
    json_reals(glossy, "diffuseFactor", diffuse, 4);
    json_reals(glossy, "specularFactor", specular, 3);
    const float gloss = factor(json_real(glossy, "glossinessFactor", 1));
    m->transparency = 1 - diffuse[3];
    if (own) {
        std::copy_n(diffuse, 3, m->diffuse);
        std::copy_n(specular, 3, m->specular);
        m->shininess = gloss * most_shininess;
        return;
    }
    set_colour(diffuse, m->diffuse);
    for (float &part : specular)
        part *= plain_specular / plain_reflectance;
    set_specular(specular, m->specular);
    m->shininess = shininess_of(1 - gloss);
}

void gltf_painter::take_picture(const json &texture, gltf_paint *paint)
{
    if (!texture.is_object())
        return;
    const json &about =
        json_element(json_member(file_.top(), "textures"), json_whole(texture, "index", -1));
    paint->look.picture = picture_of(json_whole(about, "source", -1));
    const json &moved = json_extension(texture, "KHR_texture_transform");
    const std::int64_t set = json_whole(moved, "texCoord", json_whole(texture, "texCoord", 0));
    paint->coordinates = static_cast<int>(std::clamp(set, std::int64_t{0}, std::int64_t{1000}));
    json_reals(moved, "offset", paint->offset, 2);
    json_reals(moved, "scale", paint->scale, 2);
    paint->turn = json_real(moved, "rotation", 0);
}

// The file's name, or "*2" for the third picture within the file.
std::string gltf_painter::picture_of(std::int64_t image)
{
    const json &about = json_element(json_member(file_.top(), "images"), image);
    const auto [entry, fresh] = pictures_.emplace(image, "");
    if (!about.is_object() || !fresh)
        return entry->second;
    const std::string address = json_string(about, "uri");
    std::string bytes;
    if (!data_of_address(address, &bytes)) {
        if (!address.empty())
            return entry->second = without_escapes(address);
        std::string_view within;
        if (file_.view(json_whole(about, "bufferView", -1), &within))
            bytes = within;
    }
    std::string name = json_string(about, "name");
    name.erase(0, name.find_last_of("/\\") + 1);
    if (bytes.empty()) {
        out_.warnings.push_back("the picture " + name + " within the file is damaged");
        return "";
    }
    if (name.find('.') == std::string::npos) {
        const std::string file = file_.name().substr(file_.name().find_last_of('/') + 1);
        name = file.substr(0, file.rfind('.')) + "_" +
               (name.empty() ? "image" + std::to_string(image) : name) + "." + suffix_of(bytes);
    }
    out_.images.push_back({name, bytes});
    return entry->second = "*" + std::to_string(out_.images.size() - 1);
}
