#include "fileio/scene_stream.h"
#include "fileio/vesk_old.h"
#include "tests/fileio/foreign_files.h"
#include "tests/fuzz/targets.h"
#include "tests/model/textures/image_writer.h"
#include "tests/support/scene_test.h"

#include <cstring>
#include <filesystem>
#include <map>
#include <zip.h>
#include <zlib.h>

namespace {

// A scene of everything that a file can hold, in few bytes.
void make_scene()
{
    run("clear_all");
    add_cube("one \"quoted\"");
    run("create", "box");
    run("create", "light");
    run("create", "line");
    run("select_all");
    run("group");
}

std::string exported(const char *suffix)
{
    make_scene();
    const std::string file = temporary_file(std::string("seed") + suffix);
    run("export_model", file);
    return std::filesystem::exists(file) ? read_text(file) : "";
}

std::string saved()
{
    make_scene();
    const std::string file = temporary_file("seed.vesk");
    run("save_vesk", file);
    return std::filesystem::exists(file) ? read_text(file) : "";
}

std::vector<std::string> models()
{
    return {
        saved(),
        "VESKb\nOBJECT world\nkids 1\nOBJECT poly\nname \"a\"\ndata 3\nabc\ntexture \"b.gif\"\n"
        "texrep 2 2\nrot 1 0 0 0 1 0 0 0 1\nloc 1 2 3\nurl \"c\"\nnumvert 3\n0 0 0\n1 0 0\n0 1 0\n"
        "numsurf 1\nSURF 0x30\nmat 0\nrefs 3\n0 0 0\n1 1 0\n2 0 1\nkids 0\n"};
}

std::vector<std::string> sample_gifs()
{
    return {write_gif(sample_picture(9, 7, 16), {}),
            write_gif(sample_picture(9, 7, 4), {"87a", true, true, true, true})};
}

std::vector<std::string> sample_bmps()
{
    bmp_options_t runs;
    runs.bits = 8;
    runs.compression = 1;
    bmp_options_t few;
    few.bits = 1;
    return {write_bmp(sample_picture(9, 7, 0), {}), write_bmp(sample_picture(9, 7, 16), runs),
            write_bmp(sample_picture(9, 7, 2), few)};
}

std::vector<std::string> sample_sgis()
{
    return {write_sgi(sample_picture(9, 7, 0), {}),
            write_sgi(sample_picture(9, 7, 0), {true, 1, 4})};
}

// The smallest pictures of the formats whose readers a library has.
std::string bytes_of(std::initializer_list<int> values)
{
    std::string bytes;
    for (const int value : values)
        bytes += static_cast<char>(value);
    return bytes;
}

std::string small_png()
{
    return bytes_of({0x89, 'P', 'N', 'G',  13,   10,   26,   10,   0,    0, 0, 13,
                     'I',  'H', 'D', 'R',  0,    0,    0,    1,    0,    0, 0, 1,
                     8,    0,   0,   0,    0,    0x3a, 0x7e, 0x9b, 0x55, 0, 0, 0,
                     10,   'I', 'D', 'A',  'T',  0x78, 0x9c, 0x63, 0x60, 0, 0, 0,
                     2,    0,   1,   0x48, 0xaf, 0xa4, 0x71, 0,    0,    0, 0, 'I',
                     'E',  'N', 'D', 0xae, 0x42, 0x60, 0x82});
}

std::string small_tga()
{
    std::string bytes = bytes_of({0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 2, 0, 24, 0});
    return bytes + std::string(12, 'x');
}

std::string small_jpeg()
{
    return bytes_of({0xff, 0xd8, 0xff, 0xe0, 0, 16,   'J', 'F',  'I',  'F',  0,    1,
                     1,    0,    0,    1,    0, 1,    0,   0,    0xff, 0xc0, 0,    11,
                     8,    0,    1,    0,    1, 1,    1,   0x11, 0,    0xff, 0xda, 0,
                     8,    1,    1,    0,    0, 0x3f, 0,   0x7f, 0xff, 0xd9});
}

std::string packed(const std::string &text)
{
    std::string bytes(text.size() + 256, '\0');
    z_stream stream = {};
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef *>(bytes.data());
    stream.avail_out = static_cast<uInt>(bytes.size());
    deflateInit2(&stream, 9, Z_DEFLATED, 16 + MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
    deflate(&stream, Z_FINISH);
    bytes.resize(stream.total_out);
    deflateEnd(&stream);
    return bytes;
}

// Three points with everything that a primitive and a material may have, in numbers that overlap.
std::string gltf_text()
{
    return R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"name":"a","mesh":0,
"translation":[1,2,3],"rotation":[0,0,0,1],"scale":[1,1,1],"children":[1]},{"matrix":[1,0,0,0,0,1,0,0,0,0,
1,0,0,0,0,1],"mesh":0,"extensions":{"KHR_lights_punctual":{"light":0}}}],"meshes":[{"primitives":[{
"attributes":{"POSITION":0,"NORMAL":0,"TEXCOORD_0":1,"COLOR_0":0},"indices":2,"material":0,"mode":4}]}],
"accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3","sparse":{"count":1,"indices":{
"bufferView":1,"componentType":5121},"values":{"bufferView":0}}},{"bufferView":0,"componentType":5126,
"count":3,"type":"VEC2"},{"bufferView":1,"componentType":5121,"count":3,"type":"SCALAR"}],"bufferViews":[{
"buffer":0,"byteOffset":0,"byteLength":36,"byteStride":12},{"buffer":0,"byteOffset":36,"byteLength":3}],
"buffers":[{"byteLength":39,"uri":"data:;base64,AAAAAAAAAAAAAAAAAACAPwAAAAAAAAAAAAAAAAAAgD8AAAAAAAEC"}],
"materials":[{"name":"m","doubleSided":true,"alphaMode":"BLEND","pbrMetallicRoughness":{"baseColorFactor":[
1,0,0,0.5],"metallicFactor":0.5,"roughnessFactor":0.5,"baseColorTexture":{"index":0,"extensions":{
"KHR_texture_transform":{"scale":[2,2],"offset":[1,1],"rotation":1}}}},"emissiveFactor":[0,1,0]}],
"textures":[{"source":0}],"images":[{"uri":"data:image/png;base64,iVBORw0KGgo="}],"extensions":{
"KHR_lights_punctual":{"lights":[{"type":"point","color":[1,1,1]}]}},"extensionsUsed":["KHR_lights_punctual"]})";
}

} // namespace

std::string zip_of(const std::string &name, std::string_view content)
{
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t *bytes = zip_source_buffer_create(nullptr, 0, 0, &error);
    zip_source_keep(bytes);
    zip_t *archive = zip_open_from_source(bytes, ZIP_TRUNCATE, &error);
    const zip_int64_t at = zip_file_add(
        archive, name.c_str(), zip_source_buffer(archive, content.data(), content.size(), 0),
        ZIP_FL_OVERWRITE);
    zip_set_file_compression(archive, static_cast<zip_uint64_t>(at), ZIP_CM_STORE, 0);
    zip_close(archive);
    std::string file;
    zip_source_open(bytes);
    zip_source_seek(bytes, 0, SEEK_END);
    file.resize(static_cast<std::size_t>(zip_source_tell(bytes)));
    zip_source_seek(bytes, 0, SEEK_SET);
    zip_source_read(bytes, file.data(), file.size());
    zip_source_close(bytes);
    zip_source_free(bytes);
    return file;
}

std::vector<std::string> fuzz_seeds(const fuzz_target &target)
{
    const std::map<std::string_view, std::vector<std::string> (*)()> makers = {
        {"vesk", models},
        {"vesk_header", models},
        {"clipboard", models},
        {"vesk_old",
         [] {
             make_scene();
             const std::string file = temporary_file("seed_old.vesk");
             write_vesk_old(file.c_str());
             return std::vector<std::string>{read_text(file)};
         }},
        {"obj", [] { return std::vector<std::string>{exported(".obj")}; }},
        {"mtl",
         [] {
             return std::vector<std::string>{
                 "newmtl a\nKd 1 0 0\nKa 0 0 0\nKs 1 1 1\nKe 0 0 0\nNs 10\nd 0.5\nTr 0.5\nillum 2\n"
                 "map_Kd -s 1 2 3 -o 1 2 3 -clamp on a.bmp\n"};
         }},
        {"ply",
         [] {
             return std::vector<std::string>{
                 exported(".ply"),
                 "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\n"
                 "property float z\nelement face 1\nproperty list uchar int vertex_indices\n"
                 "end_header\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n"};
         }},
        {"stl",
         [] {
             return std::vector<std::string>{
                 exported(".stl"),
                 "solid a\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 "
                 "0\nvertex 0 1 0\nendloop\nendfacet\nendsolid a\n"};
         }},
        {"threemf", [] { return std::vector<std::string>{exported(".3mf")}; }},
        {"threemf_model",
         [] {
             return std::vector<std::string>{
                 "<model unit=\"meter\"><resources><basematerials id=\"1\"><base name=\"a\" "
                 "displaycolor=\"#ff0000\"/></basematerials><object id=\"2\" name=\"b\" pid=\"1\" "
                 "pindex=\"0\"><mesh><vertices><vertex x=\"0\" y=\"0\" z=\"0\"/><vertex x=\"1\" "
                 "y=\"0\" z=\"0\"/><vertex x=\"0\" y=\"1\" "
                 "z=\"0\"/></vertices><triangles><triangle "
                 "v1=\"0\" v2=\"1\" v3=\"2\"/></triangles></mesh></object><object "
                 "id=\"3\"><components>"
                 "<component objectid=\"2\" transform=\"1 0 0 0 1 0 0 0 1 4 5 6\"/></components>"
                 "</object></resources><build><item objectid=\"3\"/></build></model>"};
         }},
        {"lwob", [] { return std::vector<std::string>{make_lwob()}; }},
        {"lws", [] { return std::vector<std::string>{make_lws("none.lwo")}; }},
        {"tri",
         [] {
             return std::vector<std::string>{
                 "# x\n0 0 0 2 0 0 2 1 0 0xff8000\nname\n0 0 0 1 0 0 0 0 3\n"};
         }},
        {"vrml1",
         [] {
             return std::vector<std::string>{make_vrml1(), exported(".wrl")};
         }},
        {"vrml2",
         [] {
             return std::vector<std::string>{
                 "#VRML V2.0 utf8\nDEF a Transform { translation 1 2 3 rotation 0 1 0 1 scale 1 2 "
                 "1 "
                 "children [ Shape { appearance Appearance { material Material { diffuseColor 1 0 "
                 "0 } "
                 "texture ImageTexture { url \"a.png\" } } geometry IndexedFaceSet { coord "
                 "Coordinate "
                 "{ point [ 0 0 0, 1 0 0, 0 1 0 ] } coordIndex [ 0 1 2 -1 ] } } USE a ] }\n"
                 "PROTO P [ field SFFloat r 1 ] { Shape { geometry Sphere { radius IS r } } } P { "
                 "r 2 }"};
         }},
        {"vec", [] { return std::vector<std::string>{"3\n0 0\n2 0\n2 1\n\n0 0 0\n1 0 0\n"}; }},
        {"3ds",
         [] {
             return std::vector<std::string>{make_3ds(), make_3ds_with_keys()};
         }},
        {"vrml_packed", [] { return std::vector<std::string>{packed(make_vrml1())}; }},
        {"gltf",
         [] {
             return std::vector<std::string>{gltf_text(), exported(".gltf")};
         }},
        {"glb", [] { return std::vector<std::string>{exported(".glb")}; }},
        {"arguments",
         [] {
             return std::vector<std::string>{
                 "-debug\n-dynamic\n-noplugins\na.vesk\n/b.obj\n-script\nc.tcl",
                 "-convert\n-to\nglb\na.obj",
                 "-batch\na.tcl\n1 2",
                 "-thumbnail\n64\na.png",
                 "-pipe\na.vesk",
                 "-help",
                 "-version",
                 "-what"};
         }},
        {"recovery",
         [] {
             return std::vector<std::string>{"/home/a b.vesk\n" + saved(), "\n"};
         }},
        {"bsp", [] { return std::vector<std::string>{make_bsp()}; }},
        {"dxf",
         [] {
             return std::vector<std::string>{make_dxf(), exported(".dxf")};
         }},
        {"gif", sample_gifs},
        {"bmp", sample_bmps},
        {"sgi", sample_sgis},
        {"png", [] { return std::vector<std::string>{small_png()}; }},
        {"jpeg", [] { return std::vector<std::string>{small_jpeg()}; }},
        {"tga", [] { return std::vector<std::string>{small_tga()}; }},
        {"settings",
         [] {
             return std::vector<std::string>{
                 "VESKPR 12\nauto_backup TRUE\n#c\ntexture_path \"a\\\"b\"\n"};
         }},
        {"notes",
         [] {
             return std::vector<std::string>{"selection-set vertex 8/6 0-3 a\nselection-set "
                                             "surface 8/6 1 b\ndimension 8/6 0 1\n"};
         }},
        {"stream",
         [] {
             plain_scene scene;
             scene.materials.push_back({});
             scene.materials[0].name = "paint";
             scene.nodes.resize(2);
             scene.nodes[1].kind = PLAIN_POLY;
             scene.nodes[1].parent = 0;
             scene.nodes[1].picture = 0;
             scene.nodes[1].points = {0, 0, 0, 1, 0, 0, 0, 1, 0};
             scene.nodes[1].offsets = {0, 3};
             scene.nodes[1].corners = {0, 1, 2};
             scene.nodes[1].uv = {0, 0, 1, 0, 0, 1};
             scene.nodes[1].materials = {0};
             scene.nodes[1].flags = {PLAIN_SMOOTH};
             scene.images.push_back({"a.png", "bytes"});
             scene.warnings.emplace_back("a word");
             return std::vector<std::string>{encode_scene(scene)};
         }},
        {"words", [] { return std::vector<std::string>{"a \"b c\" d\\\"e \"f\\\"g\"\n"}; }},
    };
    const auto found = makers.find(target.name);
    std::vector<std::string> seeds =
        found == makers.end() ? std::vector<std::string>{} : found->second();
    std::erase_if(seeds, [&](const std::string &seed) { return !seed.starts_with(target.before); });
    return seeds;
}
