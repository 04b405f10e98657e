#include "tests/fileio/foreign_files.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace {

void put_le(std::string &out, std::uint64_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out += static_cast<char>(value >> 8 * i);
}

void put_be(std::string &out, std::uint64_t value, int bytes)
{
    for (int i = bytes; i-- > 0;)
        out += static_cast<char>(value >> 8 * i);
}

std::uint32_t bits_of(float value)
{
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

void put_floats(std::string &out, const std::vector<float> &values)
{
    for (const float value : values)
        put_le(out, bits_of(value), 4);
}

const std::vector<float> square = {0, 0, 0, 2, 0, 0, 2, 1, 0, 0, 1, 0};

// ---- 3DS ----

std::string chunk(unsigned id, const std::string &body)
{
    std::string out;
    put_le(out, id, 2);
    put_le(out, body.size() + 6, 4);
    return out + body;
}

std::string rgb_chunk(unsigned id, int r, int g, int b)
{
    return chunk(id,
                 chunk(0x0011, {static_cast<char>(r), static_cast<char>(g), static_cast<char>(b)}));
}

std::string z_string(const char *text) { return std::string(text) + '\0'; }

// ---- IFF, for LightWave ----

std::string iff(const char *id, std::string body)
{
    std::string out = id;
    put_be(out, body.size(), 4);
    if (body.size() % 2 != 0)
        body += '\0';
    return out + body;
}

std::string iff_small(const char *id, const std::string &body)
{
    std::string out = id;
    put_be(out, body.size(), 2);
    return out + body;
}

} // namespace

std::string make_3ds()
{
    std::string points;
    put_le(points, 4, 2);
    for (size_t i = 0; i < 4; ++i) // the square stands upright: the file's z is the height
        put_floats(points, {square[3 * i], 0, square[3 * i + 1]});
    std::string uv;
    put_le(uv, 4, 2);
    put_floats(uv, {0, 0, 1, 0, 1, 1, 0, 1});
    std::string faces;
    put_le(faces, 2, 2);
    for (const int corner : {0, 1, 2, 7, 0, 2, 3, 7})
        put_le(faces, static_cast<unsigned>(corner), 2);
    std::string used = z_string("paint");
    put_le(used, 2, 2);
    put_le(used, 0, 2);
    put_le(used, 1, 2);
    faces += chunk(0x4130, used);
    const std::string mesh =
        chunk(0x4100, chunk(0x4110, points) + chunk(0x4140, uv) + chunk(0x4120, faces));
    const std::string paint = chunk(0xA000, z_string("paint")) + rgb_chunk(0xA020, 255, 128, 0) +
                              chunk(0xA200, chunk(0xA300, z_string("wood.bmp")));
    std::string version;
    put_le(version, 3, 4);
    std::string node = z_string("wall");
    put_le(node, 0, 4);
    put_le(node, 0xFFFF, 2);
    const std::string nodes = chunk(0xB000, chunk(0xB002, chunk(0xB010, node)));
    return chunk(0x4D4D,
                 chunk(0x0002, version) +
                     chunk(0x3D3D, chunk(0xAFFF, paint) + chunk(0x4000, z_string("wall") + mesh)) +
                     nodes);
}

std::string make_3ds_with_keys()
{
    const auto reals = [](std::initializer_list<float> values) {
        std::string out;
        put_floats(out, values);
        return out;
    };
    const auto number = [](unsigned value, int bytes) {
        std::string out;
        put_le(out, value, bytes);
        return out;
    };
    const auto mesh = [&](const char *name, const std::string &frame) {
        const std::string points = number(3, 2) + reals({0, 0, 0, 2, 0, 0, 0, 1, 0});
        const std::string face =
            number(1, 2) + number(0, 2) + number(1, 2) + number(2, 2) + number(7, 2);
        return chunk(0x4000, z_string(name) +
                                 chunk(0x4100, chunk(0x4110, points) +
                                                   (frame.empty() ? "" : chunk(0x4160, frame)) +
                                                   chunk(0x4120, face)));
    };
    const auto track = [&](unsigned id, std::initializer_list<float> values) {
        return chunk(id, number(0, 2) + number(0, 4) + number(0, 4) + number(1, 4) + number(0, 4) +
                             number(0, 2) + reals(values));
    };
    const auto node = [&](unsigned id, const char *name, unsigned parent,
                          const std::string &tracks) {
        return chunk(0xB002, chunk(0xB030, number(id, 2)) +
                                 chunk(0xB010, z_string(name) + number(0, 4) + number(parent, 2)) +
                                 tracks);
    };
    const std::string nodes =
        node(0, "one", 0xFFFF,
             chunk(0xB013, reals({1, 2, 3})) + track(0xB020, {10, 20, 30}) +
                 track(0xB021, {0.5f, 0, 0, 1}) + track(0xB022, {2, 1, 1})) +
        node(1, "two", 0, track(0xB020, {1, 0, 0}) + track(0xB021, {0.25f, 1, 0, 0})) +
        node(2, "mirrored", 0xFFFF, track(0xB020, {3, 0, 0}));
    return chunk(
        0x4D4D,
        chunk(0x0002, number(3, 4)) +
            chunk(0x3D3D, mesh("one", reals({0, 1, 0, -1, 0, 0, 0, 0, 1, 5, 6, 7})) +
                              mesh("two", "") +
                              mesh("mirrored", reals({-1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 0, 0}))) +
            chunk(0xB000, nodes));
}

std::string make_dxf()
{
    return "0\nSECTION\n2\nENTITIES\n0\n3DFACE\n8\nlayer1\n10\n0\n20\n0\n30\n0\n11\n2\n21\n0\n31\n0"
           "\n"
           "12\n2\n22\n1\n32\n0\n13\n0\n23\n1\n33\n0\n0\nLINE\n8\nlayer1\n10\n0\n20\n0\n30\n0\n11\n"
           "5\n21\n0\n31\n0\n0\nENDSEC\n0\nEOF\n";
}

std::string make_lwo()
{
    std::string points;
    for (const float value : square)
        put_be(points, bits_of(value), 4);
    std::string layer(18, '\0'); // number, flags, pivot, name
    std::string polygon = "FACE";
    for (const int word : {4, 0, 3, 2, 1}) // clockwise
        put_be(polygon, static_cast<unsigned>(word), 2);
    const std::string tag = std::string("SURF\0\0\0\0", 8);
    std::string colour;
    for (const float value : {1.0f, 0.5f, 0.0f})
        put_be(colour, bits_of(value), 4);
    put_be(colour, 0, 2);
    const std::string surface = std::string("paint\0\0\0", 8) + iff_small("COLR", colour);
    return iff("FORM", "LWO2" + iff("TAGS", std::string("paint\0", 6)) + iff("LAYR", layer) +
                           iff("PNTS", points) + iff("POLS", polygon) + iff("PTAG", tag) +
                           iff("SURF", surface));
}

std::string make_lwob()
{
    std::string points;
    for (const float value : square)
        put_be(points, bits_of(value), 4);
    std::string polygon;
    for (const int word : {4, 0, 3, 2, 1, 1}) // clockwise; then the surface, from 1
        put_be(polygon, static_cast<unsigned>(word), 2);
    const auto share = [](const char *part, unsigned value) {
        std::string bytes;
        put_be(bytes, value, 2);
        return iff_small(part, bytes);
    };
    std::string size;
    std::string centre;
    for (const float value : {4.0f, 2.0f, 1.0f})
        put_be(size, bits_of(value), 4);
    for (const float value : {1.0f, 0.5f, 0.0f})
        put_be(centre, bits_of(value), 4);
    const std::string surface =
        std::string("paint\0", 6) + iff_small("COLR", std::string("\xFF\x80\0\0", 4)) +
        share("FLAG", 4) + share("LUMI", 64) + share("DIFF", 128) + share("SPEC", 256) +
        share("GLOS", 64) + share("TRAN", 128) +
        iff_small("CTEX", std::string("Planar Image Map\0\0", 18)) + share("TFLG", 4) +
        iff_small("TSIZ", size) + iff_small("TCTR", centre) +
        iff_small("TIMG", std::string("wood.bmp\0\0", 10));
    return iff("FORM", "LWOB" + iff("PNTS", points) + iff("SRFS", std::string("paint\0", 6)) +
                           iff("POLS", polygon) + iff("SURF", surface));
}

std::string make_lws(const std::string &object_file)
{
    return "LWSC\n1\n\nFirstFrame 0\nLastFrame 1\n\nAddNullObject base\nObjectMotion "
           "(unnamed)\n  9\n  1\n  0 5 0 0 0 90 2 2 2\n  0 0 0 0 0\nLoadObject " +
           object_file +
           "\nShowObject 8 7\nObjectMotion (unnamed)\n  9\n  1\n  10 0 0 0 0 0 1 1 1\n  0 0 0 0 0\n"
           "EndBehavior 1\nParentObject 1\n";
}

std::string make_md2()
{
    constexpr unsigned header = 68;
    std::string skin(64, '\0');
    std::string uv;
    for (const int value : {0, 0, 64, 0, 64, 64, 0, 64})
        put_le(uv, static_cast<unsigned>(value), 2);
    std::string triangles;
    for (const int index : {0, 1, 2, 0, 1, 2, 0, 2, 3, 0, 2, 3})
        put_le(triangles, static_cast<unsigned>(index), 2);
    std::string frame;
    put_floats(frame, {1, 1, 1, 0, 0, 0});
    frame += std::string("frame1\0\0\0\0\0\0\0\0\0\0", 16);
    for (size_t i = 0; i < 4; ++i)
        for (const int value :
             {static_cast<int>(square[3 * i]), 0, static_cast<int>(square[3 * i + 1]), 0})
            frame += static_cast<char>(value);
    std::string out = "IDP2";
    const auto at_uv = header + static_cast<unsigned>(skin.size());
    const auto at_triangles = at_uv + static_cast<unsigned>(uv.size());
    const auto at_frames = at_triangles + static_cast<unsigned>(triangles.size());
    const auto end = at_frames + static_cast<unsigned>(frame.size());
    for (const unsigned value : {8U, 64U, 64U, static_cast<unsigned>(frame.size()), 1U, 4U, 4U, 2U,
                                 0U, 1U, header, at_uv, at_triangles, at_frames, header, end})
        put_le(out, value, 4);
    return out + skin + uv + triangles + frame +
           std::string(512, 0); // readers want room at the end
}

std::string make_bsp()
{
    std::string textures;
    for (const char *name : {"walls/brick", "curves/arch"}) {
        std::string record = name;
        record.resize(72);
        textures += record;
    }
    std::string vertices;
    const auto vertex = [&](float x, float y, float z, float u, float v) {
        put_floats(vertices, {x, y, z, u, v, 0, 0, 0, 0, 1});
        vertices += std::string(4, '\xFF');
    };
    for (size_t i = 0; i < 4; ++i)
        vertex(square[3 * i], 0, square[3 * i + 1], square[3 * i] / 2, 1 - square[3 * i + 1]);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 3; ++x)
            vertex(static_cast<float>(x), static_cast<float>(y), x == 1 ? 2.0f : 0.0f, 0, 0);
    std::string indices;
    for (const int index : {0, 2, 1, 0, 3, 2}) // clockwise
        put_le(indices, static_cast<unsigned>(index), 4);
    std::string faces;
    const auto face = [&](std::vector<unsigned> head, unsigned width, unsigned height) {
        std::string record;
        for (const unsigned value : head)
            put_le(record, value, 4);
        record.resize(96);
        put_le(record, width, 4);
        put_le(record, height, 4);
        faces += record;
    };
    face({0, 0, 1, 0, 4, 0, 6}, 0, 0);
    face({1, 0, 2, 4, 9, 0, 0}, 3, 3);
    std::string out = "IBSP";
    put_le(out, 46, 4);
    std::string body;
    for (int lump = 0; lump < 17; ++lump) {
        const std::string &content = lump == 1    ? textures
                                     : lump == 10 ? vertices
                                     : lump == 11 ? indices
                                     : lump == 13 ? faces
                                                  : std::string();
        put_le(out, 8 + 17 * 8 + body.size(), 4);
        put_le(out, content.size(), 4);
        body += content;
    }
    return out + body;
}

std::string make_vrml1()
{
    return R"(#VRML V1.0 ascii
# a scene with most of the nodes
Separator {
    Info { string "made by hand" }
    DirectionalLight { direction 0 -1 0 }
    DEF house Separator {
        Translation { translation 10 0 0 }
        Material { diffuseColor [ 1 0 0, 0 0 1 ] transparency 0.25 }
        MaterialBinding { value PER_FACE_INDEXED }
        Texture2 { filename "wood.bmp" wrapS CLAMP }
        Texture2Transform { scaleFactor 2 3 }
        Coordinate3 { point [ 0 0 0, 2 0 0, 2 1 0, 0 1 0 ] }
        TextureCoordinate2 { point [ 0 0, 1 0, 1 1, 0 1 ] }
        DEF wall IndexedFaceSet {
            coordIndex [ 0, 1, 2, -1, 0, 2, 3, -1, 99, 98, 97, -1 ]
            materialIndex [ 1, 0, 0 ]
        }
        IndexedLineSet { coordIndex [ 0 1 2 -1 ] }
    }
    Separator {
        Rotation { rotation 0 0 1 1.5707963 }
        Scale { scaleFactor 3 1 1 }
        Translation { translation 1 0 0 }
        DEF box Cube { width 2 height 2 depth 4 }
    }
    Switch { whichChild 1 Sphere { radius 100 } Cone { parts SIDES } }
    Separator { Transform { translation 0 0 -5 } USE box }
    Separator { PerspectiveCamera { position 0 0 5 } }
    PointLight { location 1 2 3 }
    Cylinder { parts (SIDES | TOP) }
}
)";
}

std::string make_vrml2()
{
    return R"(#VRML V2.0 utf8
# a world with most of the nodes
WorldInfo { title "made by hand" info [ "one", "two" ] }
EXTERNPROTO Elsewhere [ field SFFloat size ] [ "other.wrl#Elsewhere" ]
Viewpoint { position 0 0 10 description "front" }
Anchor { url [ "http://example.org/\"house\"" ] description "a house" children
  DEF house Group { children [
    Transform { translation 10 0 0 children [
      DEF wall Shape {
        appearance Appearance {
          material DEF paint Material { diffuseColor 0 0 1 shininess 0.5 transparency 0.25 }
          texture ImageTexture { url [ "wood.bmp", "gone.png" ] repeatS TRUE }
          textureTransform TextureTransform { scale 2 3 translation 0 0.5 }
        }
        geometry IndexedFaceSet {
          coord DEF points Coordinate { point [ 0 0 0, 2 0 0, 2 1 0, 0 1 0, 9 9 9 ] }
          coordIndex [ 0, 1, 2, -1, # the first
                       0, 2, 3, -1, 99, 98, 97, -1 ]
          texCoord TextureCoordinate { point [ 0 0, 1 0, 1 1, 0 1 ] }
        }
      }
      Shape { geometry IndexedLineSet { coord USE points coordIndex [ 0 1 2 -1 ] } }
    ] }
    DEF lamp PointLight { location 1 2 4 }
  ] }
}
Transform { rotation 0 0 1 1.5707963 scale 3 1 1 children
  Transform { translation 1 0 0 children [ DEF box Shape { geometry Box { size 2 2 4 } } ] } }
Switch { whichChoice 1 choice [ Shape { geometry Sphere { radius 100 } }
                                Shape { geometry Cone { side TRUE bottom FALSE } } ] }
PROTO Leg [ field SFFloat size 1 eventIn SFTime go ] { Shape { geometry Cylinder { radius IS size } } }
Transform { translation 0 0 -5 children [ Leg { size 2 } Elsewhere { size 3 } USE box ] }
DEF clock TimeSensor { cycleInterval 2 }
DEF talk Script { eventIn SFTime now field SFNode to USE box url "javascript: function now() {}" }
Shape { geometry Text { string [ "hello" ] } }
Shape { geometry ElevationGrid { xDimension 3 zDimension 3 height [ 0 1 0, 1 2 1, 0 1 0 ] } }
Shape { geometry Extrusion { spine [ 0 0 0, 0 1 0, 1 2 0 ] scale [ 1 1, 0.5 0.5 ] } }
ROUTE clock.cycleTime TO talk.now
)";
}
