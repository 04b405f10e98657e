// glTF by its own rules, and the forms of it that other programs write.

#include "base/file_report.h"
#include "model/change_marks.h"
#include "model/mesh_arrays.h"
#include "model/normals.h"
#include "model/palette.h"
#include "model/vertex_colours.h"
#include "tests/plugin/interchange_fixture.h"
#include "tests/plugin/json_values.h"
#include "tests/support/damage.h"

#include <cmath>
#include <cstring>
#include <filesystem>
#include <meshoptimizer.h>
#include <random>
#include <set>

namespace {

std::string base64(const std::string &bytes)
{
    static const char letters[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    for (size_t i = 0; i < bytes.size(); i += 3) {
        unsigned word = 0;
        for (size_t k = 0; k < 3; ++k)
            word =
                word << 8 | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0);
        for (size_t k = 0; k < 4; ++k)
            out += i + k > bytes.size() ? '=' : letters[word >> (18 - 6 * k) & 63];
    }
    return out;
}

template <class N>
std::string bytes_of(const std::vector<N> &numbers)
{
    return {reinterpret_cast<const char *>(numbers.data()), numbers.size() * sizeof(N)};
}

// ---- what is written ----

// A text or binary file and its numbers.
struct written_file {
    json_values json;
    std::string bin;

    explicit written_file(const std::string &name)
    {
        std::string text = read_text(name);
        if (text.compare(0, 4, "glTF") == 0) {
            std::uint32_t length = 0;
            std::memcpy(&length, &text[12], 4);
            bin = text.size() > 28 + length ? text.substr(28 + length) : "";
            text = text.substr(20, length);
        }
        EXPECT_TRUE(json.read(text)) << name;
        const std::string uri = json.values["buffers.0.uri"];
        if (!uri.empty())
            bin = read_text(temporary_file(uri));
        EXPECT_LE(json.number("buffers.0.byteLength", 0), static_cast<long>(bin.size()));
    }
    [[nodiscard]] long count(const std::string &list) const
    {
        long n = 0;
        while (json.has(list + "." + std::to_string(n)))
            ++n;
        return n;
    }
    [[nodiscard]] std::string at(const std::string &list, long i) const
    {
        return list + "." + std::to_string(i);
    }
};

// Accessors lie within their views, aligned, and tell true bounds; targets fit their use.
void expect_good_accessor(written_file &file, long index, bool indices)
{
    const std::map<std::string, long> widths = {
        {"SCALAR", 1}, {"VEC2", 2}, {"VEC3", 3}, {"VEC4", 4}};
    const std::map<long, long> sizes = {{5123, 2}, {5125, 4}, {5126, 4}};
    const std::string accessor = file.at("accessors", index);
    ASSERT_TRUE(file.json.has(accessor)) << accessor;
    const std::string view = file.at("bufferViews", file.json.number(accessor + ".bufferView"));
    const long width = widths.at(file.json.values[accessor + ".type"]);
    const long size = sizes.at(file.json.number(accessor + ".componentType"));
    const long count = file.json.number(accessor + ".count");
    const long offset = file.json.number(view + ".byteOffset");
    EXPECT_GT(count, 0);
    EXPECT_EQ(offset % 4, 0);
    EXPECT_EQ(size * width % 4, 0);
    EXPECT_EQ(file.json.number(view + ".byteLength"), size * width * count);
    EXPECT_EQ(file.json.number(view + ".target"), indices ? 34963 : 34962);
    ASSERT_LE(offset + size * width * count, static_cast<long>(file.bin.size()));
    if (file.json.number(accessor + ".componentType") != 5126)
        return;
    std::vector<float> low(static_cast<size_t>(width), INFINITY);
    std::vector<float> high(static_cast<size_t>(width), -INFINITY);
    for (long i = 0; i < width * count; ++i) {
        float value = NAN;
        std::memcpy(&value, &file.bin[static_cast<size_t>(offset + 4 * i)], 4);
        ASSERT_TRUE(std::isfinite(value));
        const auto k = static_cast<size_t>(i % width);
        low[k] = std::min(low[k], value);
        high[k] = std::max(high[k], value);
    }
    for (long k = 0; k < width && file.json.has(accessor + ".min"); ++k) {
        EXPECT_EQ(std::stof(file.json.values[file.at(accessor + ".min", k)]), low[size_t(k)]);
        EXPECT_EQ(std::stof(file.json.values[file.at(accessor + ".max", k)]), high[size_t(k)]);
    }
}

void expect_unit_normals(written_file &file, long accessor)
{
    const std::string at = file.at("accessors", accessor);
    const std::string view = file.at("bufferViews", file.json.number(at + ".bufferView"));
    for (long i = 0; i < file.json.number(at + ".count"); ++i) {
        float n[3];
        std::memcpy(
            n, &file.bin[static_cast<size_t>(file.json.number(view + ".byteOffset") + 12 * i)], 12);
        EXPECT_NEAR(std::hypot(n[0], n[1], n[2]), 1, 1e-3);
    }
}

// Numbers of what is referred to, by the name of the list.
using used_t = std::map<std::string, std::set<long>>;

void expect_good_primitive(written_file &file, const std::string &at, used_t &used)
{
    const auto refer = [&](const std::string &name, const char *list) {
        const long place = file.json.number(at + name);
        if (place >= 0)
            used[list].insert(place);
        return place;
    };
    const long positions = refer(".attributes.POSITION", "accessors");
    EXPECT_TRUE(file.json.has(file.at("accessors", positions) + ".min"));
    expect_good_accessor(file, positions, false);
    const long count = file.json.number(file.at("accessors", positions) + ".count");
    const long normals = refer(".attributes.NORMAL", "accessors");
    for (const long place : {normals, refer(".attributes.TEXCOORD_0", "accessors"),
                             refer(".attributes.COLOR_0", "accessors")}) {
        if (place < 0)
            continue;
        expect_good_accessor(file, place, false);
        EXPECT_EQ(file.json.number(file.at("accessors", place) + ".count"), count);
    }
    const long mode = file.json.number(at + ".mode");
    EXPECT_EQ(normals >= 0, mode == 4);
    if (normals >= 0)
        expect_unit_normals(file, normals);
    const long material = refer(".material", "materials");
    const std::string texture =
        file.at("materials", material) + ".pbrMetallicRoughness.baseColorTexture.index";
    if (file.json.has(texture)) {
        used["textures"].insert(file.json.number(texture));
        EXPECT_TRUE(file.json.has(at + ".attributes.TEXCOORD_0"));
    }
    const long indices = refer(".indices", "accessors");
    EXPECT_EQ(indices >= 0, mode != 0);
    if (indices < 0)
        return;
    expect_good_accessor(file, indices, true);
    const std::string about = file.at("accessors", indices);
    const std::string view = file.at("bufferViews", file.json.number(about + ".bufferView"));
    EXPECT_EQ(file.json.number(about + ".count") % (mode == 4 ? 3 : 2), 0);
    for (long k = 0; k < file.json.number(about + ".count"); ++k) {
        std::uint32_t index = 0;
        const long offset = file.json.number(view + ".byteOffset") + 4 * k;
        std::memcpy(&index, &file.bin[static_cast<size_t>(offset)], 4);
        ASSERT_LT(index, count);
    }
}

void expect_good_file(const std::string &name, bool packed)
{
    SCOPED_TRACE(name);
    written_file file(name);
    used_t used;
    for (long mesh = 0; mesh < file.count("meshes"); ++mesh) {
        const std::string list = file.at("meshes", mesh) + ".primitives";
        EXPECT_GT(file.count(list), 0);
        for (long i = 0; i < file.count(list); ++i)
            expect_good_primitive(file, file.at(list, i), used);
    }
    for (long node = 0; node < file.count("nodes"); ++node)
        if (const long mesh = file.json.number(file.at("nodes", node) + ".mesh"); mesh >= 0)
            used["meshes"].insert(mesh);
    for (long i = 0; i < file.count("textures"); ++i)
        used["images"].insert(file.json.number(file.at("textures", i) + ".source"));
    for (const char *list : {"accessors", "materials", "meshes", "textures", "images"})
        EXPECT_EQ(static_cast<long>(used[list].size()), file.count(list)) << list;
    for (long i = 0; i < file.count("images"); ++i) {
        const std::string image = file.at("images", i);
        EXPECT_EQ(file.json.has(image + ".bufferView"), packed);
        EXPECT_EQ(file.json.has(image + ".mimeType"), packed);
        EXPECT_NE(file.json.values[image + ".uri"].substr(0, 1), "/");
    }
}

object_t *add_object(const char *name, const std::vector<float> &points,
                     const std::vector<std::vector<int>> &outlines, int colour)
{
    object_t *object = new_object(OBJECT_POLY);
    object_set_name(object, name);
    std::vector<int> offsets = {0};
    std::vector<int> corners;
    for (const std::vector<int> &outline : outlines) {
        corners.insert(corners.end(), outline.begin(), outline.end());
        offsets.push_back(static_cast<int>(corners.size()));
    }
    vesk_object_add_vertices_from_float_array(object, points.data(),
                                              static_cast<int>(points.size() / 3));
    vesk_object_add_surfaces_from_arrays(object, static_cast<int>(outlines.size()), offsets.data(),
                                         corners.data(), nullptr, colour);
    object_add_child(vesk_get_world(), object);
    return object;
}

// Whatever may lead a writer astray: no coordinates under a picture, lines with one, surfaces
// without an area, corners that are no numbers, names of nothing, loose points with colours.
void add_odd_things()
{
    object_t *pictured =
        add_object("", {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 5}, {{0, 1, 2}, {2, 3}}, 2);
    surface_set_type(object_get_surface_at(pictured, 1), SURFACE_LINE);
    object_set_init_texture(pictured, temporary_file("wood.bmp").c_str(), "wood.bmp");
    add_object("flat", {0, 0, 0, 1, 0, 0, 2, 0, 0, 3, 0, 0}, {{0, 1, 2, 3}}, 7);
    object_t *odd = add_object("odd", {NAN, INFINITY, 0, 1, 0, 0, 1, 1, 0}, {{0, 1, 2}}, 3);
    surface_set_shading(object_get_surface_at(odd, 0), 1);
    object_t *cloud = add_object("cloud", {0, 0, 0, 5, 5, 5}, {}, 0);
    const unsigned char colours[] = {255, 0, 1, 2, 128, 254};
    vesk_object_set_vertex_colours(cloud, colours);
    object_add_child(vesk_get_world(), new_group());
    object_mark_tree(vesk_get_world(), CHANGED_ALL);
}

TEST_F(Interchange, GltfFilesKeepToTheRules)
{
    add_odd_things();
    for (const bool packed : {false, true}) {
        const std::string file = temporary_file(packed ? "odd things.glb" : "odd things.gltf");
        ASSERT_EQ(run("export_model", file), "1");
        expect_good_file(file, packed);
    }
}

// Pictures that the format cannot show become PNG files beside the model, once each.
TEST_F(Interchange, GltfPicturesLieBesideOrWithin)
{
    ASSERT_EQ(plugin_load(bundled_plugin("images").c_str()), 1);
    add_odd_things();
    std::filesystem::create_directory(temporary_file("there"));
    for (const char *name : {"there/a.gltf", "there/b.gltf"})
        ASSERT_EQ(run("export_model", temporary_file(name)), "1");
    EXPECT_EQ(read_text(temporary_file("there/wood.png")).substr(0, 4), "\x89PNG");
    EXPECT_FALSE(std::filesystem::exists(temporary_file("there/wood_1.png")));
    EXPECT_NE(read_text(temporary_file("there/b.gltf")).find("\"uri\": \"wood.png\""),
              std::string::npos);

    ASSERT_EQ(run("export_model", temporary_file("there/c.glb")), "1");
    std::filesystem::create_directory(temporary_file("taken out"));
    run("clear_all");
    run("set_images_folder", temporary_file("taken out"));
    ASSERT_EQ(run("file_load", temporary_file("there/c.glb")), "1");
    run("set_images_folder", "");
    EXPECT_EQ(last_file_report().images, std::vector{temporary_file("taken out/wood.png")});
    EXPECT_EQ(complaints(), "");
}

// ---- materials ----

struct look {
    const char *name, *material;
    float shininess, specular[3], diffuse[3];
};

// The exponent of a highlight from the roughness: 2 / r^4 - 2.
TEST_F(Interchange, GltfFactorsBecomeHighlights)
{
    // clang-format off
    const look looks[] = {
        {"plain",    R"("pbrMetallicRoughness": {"metallicFactor": 0, "roughnessFactor": 0.5})",
            30, {0.5f, 0.5f, 0.5f}, {1, 1, 1}},
        {"linear",   R"("pbrMetallicRoughness": {"metallicFactor": 0, "baseColorFactor": [0.214041, 1, 0, 1]})",
            0, {0.5f, 0.5f, 0.5f}, {0.5f, 1, 0}},
        {"metal",    R"("pbrMetallicRoughness": {"roughnessFactor": 0.1, "baseColorFactor": [1, 0.214041, 0, 1]})",
            128, {1, 0.5f, 0}, {1, 0.5f, 0}},
        {"specular", R"("pbrMetallicRoughness": {"metallicFactor": 0},
            "extensions": {"KHR_materials_specular": {"specularFactor": 0.5, "specularColorFactor": [2, 1, 0]}})",
            0, {0.5f, 0.25f, 0}, {1, 1, 1}},
        {"older",    R"("extensions": {"KHR_materials_pbrSpecularGlossiness":
            {"glossinessFactor": 0.5, "specularFactor": [0.04, 0.04, 0.08]}})",
            30, {0.5f, 0.5f, 1}, {1, 1, 1}},
        {"own_older", R"("extensions": {"KHR_materials_pbrSpecularGlossiness":
            {"diffuseFactor": [0.25, 1, 1, 1], "glossinessFactor": 0.5, "specularFactor": [0.3, 0.2, 0.1]}})",
            64, {0.3f, 0.2f, 0.1f}, {0.25f, 1, 1}},
    };
    // clang-format on
    for (const look &wanted : looks) {
        SCOPED_TRACE(wanted.name);
        run("clear_all");
        create_palette();
        const std::string text =
            std::string(R"({"asset": {"version": "2.0", "generator": ")") +
            (std::string(wanted.name) == "own_older" ? "VESK" : "other") +
            R"("}, "nodes": [{"mesh": 0}], "materials": [{)" + std::string(wanted.material) +
            R"(}], "meshes": [{"primitives": [{"attributes": {"POSITION": 0}, "material": 0}]}],
            "accessors": [{"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3"}],
            "bufferViews": [{"buffer": 0, "byteLength": 36}], "buffers": [{"byteLength": 36,
            "uri": "data:application/octet-stream;base64,)" +
            base64(bytes_of(std::vector<float>{0, 0, 0, 1, 0, 0, 0, 1, 0})) + "\"}]}";
        ASSERT_EQ(load("look.gltf", text), "1");
        ASSERT_EQ(parts().size(), 1U);
        const material *m =
            vesk_palette_get_material(object_get_surface_at(parts()[0], 0)->material);
        EXPECT_NEAR(m->shininess, wanted.shininess, 1e-2);
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(m->specular[i], wanted.specular[i], 1e-5);
            EXPECT_NEAR(m->diffuse[i], wanted.diffuse[i], 1e-5);
        }
    }
}

TEST_F(Interchange, HighlightsComeBackFromGltfAsTheyWere)
{
    int surfaces = 0;
    std::vector<std::pair<float, float>> looks;
    for (const float shininess : {0.0f, 1.0f, 10.0f, 77.5f, 128.0f})
        for (const float specular : {0.0f, 0.3f, 0.5f, 1.0f}) {
            material m;
            material_init(&m);
            m.shininess = shininess;
            m.specular[1] = specular;
            m.diffuse[2] = 0.2f;
            m.ambient[0] = 0.1f;
            const int index = vesk_palette_get_new_material_index(&m);
            add_object("a", {0, 0, static_cast<float>(surfaces), 1, 0, 0, 0, 1, 0}, {{0, 1, 2}},
                       index);
            looks.emplace_back(shininess, specular);
            ++surfaces;
        }
    object_mark_tree(vesk_get_world(), CHANGED_ALL);
    ASSERT_EQ(run("export_model", temporary_file("shiny.glb")), "1");
    run("clear_all");
    create_palette();
    ASSERT_EQ(run("file_load", temporary_file("shiny.glb")), "1");
    ASSERT_EQ(parts().size(), looks.size());
    for (size_t i = 0; i < looks.size(); ++i) {
        const material *m =
            vesk_palette_get_material(object_get_surface_at(parts()[i], 0)->material);
        EXPECT_NEAR(m->shininess, looks[i].first, 1e-3);
        EXPECT_NEAR(m->specular[1], looks[i].second, 1e-6);
        EXPECT_NEAR(m->diffuse[2], 0.2f, 1e-6);
        EXPECT_EQ(m->ambient[0], 0.1f);
    }
}

// ---- forms of other programs ----

// One mesh of five points; `primitive` is the rest of its only primitive.
std::string small_file(const std::string &primitive, const std::string &more = "")
{
    const std::string points =
        bytes_of(std::vector<float>{0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0, 2, 1});
    const std::string colours = bytes_of(std::vector<unsigned char>{
        255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 0, 0, 0, 255, 255, 255, 255, 255});
    const std::string uv = bytes_of(std::vector<float>{0, 0, 1, 0, 1, 1, 0, 1, 0, 0});
    return R"({"asset": {"version": "2.0"}, "nodes": [{"mesh": 0, "name": "a"}], "meshes": [{"primitives": [{)" +
           primitive + R"(}]}],
        "accessors": [{"bufferView": 0, "componentType": 5126, "count": 5, "type": "VEC3"},
            {"bufferView": 1, "componentType": 5121, "normalized": true, "count": 5, "type": "VEC4"},
            {"bufferView": 2, "componentType": 5126, "count": 5, "type": "VEC2"}],
        "bufferViews": [{"buffer": 0, "byteLength": 60}, {"buffer": 0, "byteOffset": 60, "byteLength": 20},
            {"buffer": 0, "byteOffset": 80, "byteLength": 40}],
        "buffers": [{"byteLength": 120, "uri": "data:application/octet-stream;base64,)" +
           base64(points + colours + uv) + "\"}]" + more + "}";
}

TEST_F(Interchange, GltfModesBecomeSurfacesLinesAndPoints)
{
    const struct {
        int mode, vertices, surfaces, corners, type; // of the first surface
    } modes[] = {{0, 5, 0, 0, 0},
                 {1, 4, 2, 2, SURFACE_LINE}, // pairs
                 {2, 5, 1, 5, SURFACE_CLOSED_LINE},
                 {3, 5, 1, 5, SURFACE_LINE},
                 {4, 3, 1, 3, SURFACE_POLYGON},
                 {5, 5, 3, 3, SURFACE_POLYGON},
                 {6, 5, 3, 3, SURFACE_POLYGON}};
    for (const auto &wanted : modes) {
        SCOPED_TRACE(wanted.mode);
        run("clear_all");
        ASSERT_EQ(load("modes.gltf", small_file("\"attributes\": {\"POSITION\": 0}, \"mode\": " +
                                                std::to_string(wanted.mode))),
                  "1");
        EXPECT_EQ(complaints(), "");
        const auto *object = item_of<object_t>(vesk_get_world()->children);
        EXPECT_EQ(object->num_vertices, wanted.vertices);
        EXPECT_EQ(object->num_surfaces, wanted.surfaces);
        if (const auto *first =
                object->surfaces == nullptr ? nullptr : item_of<surface_t>(object->surfaces);
            first != nullptr) {
            EXPECT_EQ(first->num_refs, wanted.corners);
            EXPECT_EQ(first->type, wanted.type);
        }
    }
}

TEST_F(Interchange, GltfColoursOfPointsComeAndGo)
{
    ASSERT_EQ(load("colours.gltf",
                   small_file(R"("attributes": {"POSITION": 0, "COLOR_0": 1}, "mode": 6)")),
              "1");
    EXPECT_EQ(complaints(), "");
    const auto check = [] {
        const auto *object = item_of<object_t>(vesk_get_world()->children);
        const unsigned char *rgb = vesk_object_get_vertex_colours(object);
        ASSERT_NE(rgb, nullptr);
        EXPECT_EQ(std::string(rgb, rgb + 9), std::string("\xFF\0\0\0\xFF\0\0\0\xFF", 9));
    };
    check();
    ASSERT_EQ(run("export_model", temporary_file("colours.glb")), "1");
    EXPECT_EQ(last_file_report().losses.size(), 0U);
    expect_good_file(temporary_file("colours.glb"), true);
    run("clear_all");
    ASSERT_EQ(run("file_load", temporary_file("colours.glb")), "1");
    check();
}

// A quarter turn, half the size, and moved: u' = 0.25 + v / 2, v' = 0.5 - u / 2, from the top.
TEST_F(Interchange, GltfTexturesAreTransformed)
{
    const std::string material =
        R"(, "materials": [{"pbrMetallicRoughness": {"baseColorTexture": {"index": 0, "extensions":
        {"KHR_texture_transform": {"offset": [0.25, 0.5], "rotation": 1.5707963, "scale": [0.5, 0.5]}}}}}],
        "textures": [{"source": 0}], "images": [{"uri": "wood.bmp"}])";
    ASSERT_EQ(
        load("moved.gltf",
             small_file(
                 R"("attributes": {"POSITION": 0, "TEXCOORD_0": 2}, "material": 0, "mode": 6)",
                 material)),
        "1");
    ASSERT_EQ(parts().size(), 1U);
    const float uv[3][2] = {{0.25f, 0.5f}, {0.25f, 1}, {0.75f, 1}};
    int i = 0;
    for (const svertex *corner : each<svertex>(object_get_surface_at(parts()[0], 0)->refs)) {
        EXPECT_NEAR(corner->u, uv[i][0], 1e-6) << i;
        EXPECT_NEAR(corner->v, uv[i][1], 1e-6) << i;
        ++i;
    }
}

TEST_F(Interchange, GltfExtensionsThatAreNeededMustBeKnown)
{
    const std::string points = R"("attributes": {"POSITION": 0}, "mode": 6)";
    EXPECT_EQ(
        load("need.gltf", small_file(points, R"(, "extensionsUsed": ["EXT_texture_webp", "X_y"],
        "extensionsRequired": ["KHR_texture_transform", "X_y"])")),
        "0");
    EXPECT_NE(recording().boxes.back().find("it needs the extension X_y"), std::string::npos);
    EXPECT_EQ(last_file_report().error, "it needs the extension X_y, which is not known here");
    EXPECT_EQ(load("use.gltf", small_file(points, R"(, "extensionsUsed": ["X_y"])")), "1");
    EXPECT_EQ(complaints(), "0 the extension X_y is not read\n");
}

// ---- packed numbers ----

std::string packed_points_and_triangles(std::string *bytes)
{
    const std::vector<float> points = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
    const std::vector<unsigned> corners = {0, 1, 2, 0, 2, 3};
    std::vector<unsigned char> first(meshopt_encodeVertexBufferBound(4, 12));
    first.resize(meshopt_encodeVertexBuffer(first.data(), first.size(), points.data(), 4, 12));
    std::vector<unsigned char> second(meshopt_encodeIndexBufferBound(6, 4));
    second.resize(meshopt_encodeIndexBuffer(second.data(), second.size(), corners.data(), 6));
    *bytes = bytes_of(first) + bytes_of(second);
    const std::string a = std::to_string(first.size());
    const std::string b = std::to_string(second.size());
    return R"({"asset": {"version": "2.0"}, "extensionsRequired": ["EXT_meshopt_compression"], "nodes": [{"mesh": 0}],
        "meshes": [{"primitives": [{"attributes": {"POSITION": 0}, "indices": 1}]}],
        "accessors": [{"bufferView": 0, "componentType": 5126, "count": 4, "type": "VEC3"},
            {"bufferView": 1, "componentType": 5125, "count": 6, "type": "SCALAR"}],
        "bufferViews": [{"buffer": 1, "byteLength": 48, "extensions": {"EXT_meshopt_compression":
                {"buffer": 0, "byteLength": )" +
           a + R"(, "byteStride": 12, "count": 4, "mode": "ATTRIBUTES"}}},
            {"buffer": 1, "byteLength": 24, "extensions": {"EXT_meshopt_compression":
                {"buffer": 0, "byteOffset": )" +
           a + ", \"byteLength\": " + b +
           R"(, "byteStride": 4, "count": 6, "mode": "TRIANGLES"}}}],
        "buffers": [{"byteLength": 0, "uri": "packed.bin"}, {"byteLength": 72}]})";
}

// By the encoder of the Draco library, with coordinates of a texture.
const char *const draco_quad =
    "RFJBQ08CAgEBAAAABAIBAgAAAR//ARH/AREC/wAAAAAAAQAJAwAAAgEDCQIAAQIBAQEADAMBIAEQHwEQAwAUkAjA/wEg"
    "AAAAAAD/BwAAAAAAAAAAAAAAAAAAAAAAQAsBAQEAAwMBIAEgAwDwg6YAAAAAAP8DAAAAAAAAAAAAAAAAgD8K";

std::string draco_file(const std::string &bytes)
{
    return R"({"asset": {"version": "2.0"}, "extensionsRequired": ["KHR_draco_mesh_compression"], "nodes": [{"mesh": 0}],
        "meshes": [{"primitives": [{"attributes": {"POSITION": 0, "TEXCOORD_0": 1}, "indices": 2, "extensions":
            {"KHR_draco_mesh_compression": {"bufferView": 0, "attributes": {"POSITION": 0, "TEXCOORD_0": 1}}}}]}],
        "accessors": [{"componentType": 5126, "count": 4, "type": "VEC3"},
            {"componentType": 5126, "count": 4, "type": "VEC2"}, {"componentType": 5125, "count": 6, "type": "SCALAR"}],
        "bufferViews": [{"buffer": 0, "byteLength": 132}],
        "buffers": [{"byteLength": 132, "uri": "data:;base64,)" +
           bytes + "\"}]}";
}

TEST_F(Interchange, PackedGltfIsUnpacked)
{
    std::string bytes;
    const std::string text = packed_points_and_triangles(&bytes);
    write_text(temporary_file("packed.bin"), bytes);
    ASSERT_EQ(load("packed.gltf", text), "1");
    ASSERT_EQ(parts().size(), 1U);
    EXPECT_EQ(parts()[0]->num_vertices, 4);
    EXPECT_EQ(parts()[0]->num_surfaces, 2);

    run("clear_all");
    ASSERT_EQ(load("draco.gltf", draco_file(draco_quad)), "1");
    ASSERT_EQ(parts().size(), 1U);
    EXPECT_EQ(parts()[0]->num_vertices, 4);
    for (const surface_t *surface : each<surface_t>(parts()[0]->surfaces))
        for (const svertex *corner : each<svertex>(surface->refs)) {
            EXPECT_NEAR(corner->u, corner->vertex->position.x / 2, 1e-3);
            EXPECT_NEAR(corner->v, corner->vertex->position.y, 1e-3);
        }
}

TEST_F(Interchange, DamagedGltfIsReadOrRefused)
{
    std::string bytes;
    const std::string packed = packed_points_and_triangles(&bytes);
    write_text(temporary_file("packed.bin"), bytes);
    const std::string texts[] = {
        packed, draco_file(draco_quad),
        small_file(R"("attributes": {"POSITION": 0, "COLOR_0": 1, "TEXCOORD_0": 2}, "mode": 5)")};
    std::mt19937 random(static_cast<unsigned>(damage_setting("VESK_DAMAGE_SEED", 3)));
    for (int i = damage_setting("VESK_DAMAGE_FILES", 300) / 10; i > 0; --i) {
        for (const std::string &text : texts)
            load("d.gltf", damaged(text, random));
        write_text(temporary_file("packed.bin"), damaged(bytes, random));
        load("d.gltf", packed);
    }
    expect_refusals_only();
}

} // namespace
