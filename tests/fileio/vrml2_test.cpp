// The VRML 2 writer: its texts for hand-made scenes, and a small grammar check of whole files.

#include "base/prefs.h"
#include "fileio/export_vrml2.h"
#include "model/change_marks.h"
#include "model/lights.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/textures/textures.h"
#include "model/world.h"
#include "tests/model/textures/image_writer.h"
#include "tests/support/scene_test.h"

#include <algorithm>
#include <cctype>

namespace {

// ---- the grammar: nodes, fields and values of VRML 2.0 as far as a scene needs them ----

class grammar {
public:
    explicit grammar(const std::string &text) { split(text); }

    // "" when the text is a sequence of statements, else where it fails.
    std::string check()
    {
        while (error_.empty() && !at_end())
            statement();
        return error_;
    }

private:
    void split(const std::string &text)
    {
        for (size_t i = 0; i < text.size();) {
            const char c = text[i];
            if (c == '#') {
                i = std::min(text.find('\n', i), text.size());
            } else if (std::isspace(static_cast<unsigned char>(c)) != 0 || c == ',') {
                ++i;
            } else if (std::string("{}[]").find(c) != std::string::npos) {
                tokens_.emplace_back(1, c);
                ++i;
            } else if (c == '"') {
                const size_t begin = i++;
                while (i < text.size() && text[i] != '"')
                    i += text[i] == '\\' ? 2 : 1;
                tokens_.push_back(text.substr(begin, ++i - begin));
            } else {
                const size_t begin = i;
                while (i < text.size() && std::isspace(static_cast<unsigned char>(text[i])) == 0 &&
                       std::string("{}[],#\"").find(text[i]) == std::string::npos)
                    ++i;
                tokens_.push_back(text.substr(begin, i - begin));
            }
        }
    }

    [[nodiscard]] bool at_end() const { return place_ == tokens_.size(); }
    [[nodiscard]] std::string peek() const { return at_end() ? "" : tokens_[place_]; }
    std::string next() { return at_end() ? "" : tokens_[place_++]; }
    void expect(const std::string &wanted)
    {
        const std::string found = next();
        if (found != wanted && error_.empty())
            error_ =
                "'" + found + "' instead of '" + wanted + "' at token " + std::to_string(place_);
    }
    static bool is_identifier(const std::string &word)
    {
        return !word.empty() && std::isalpha(static_cast<unsigned char>(word[0])) != 0;
    }

    void statement()
    {
        if (peek() != "PROTO") {
            node();
            return;
        }
        next();
        if (!is_identifier(next()))
            error_ = "a PROTO without a name";
        expect("[");
        expect("]");
        expect("{");
        while (error_.empty() && peek() != "}" && !at_end())
            statement();
        expect("}");
    }

    void node()
    {
        const std::string type = next();
        if (!is_identifier(type) || std::isupper(static_cast<unsigned char>(type[0])) == 0)
            error_ = "no node type: '" + type + "' at token " + std::to_string(place_);
        expect("{");
        while (error_.empty() && peek() != "}" && !at_end()) {
            if (!is_identifier(next()))
                error_ = "no field name at token " + std::to_string(place_);
            value();
        }
        expect("}");
    }

    void value()
    {
        if (peek() == "[") {
            next();
            while (error_.empty() && peek() != "]" && !at_end()) {
                if (is_identifier(peek()))
                    node();
                else
                    next();
            }
            expect("]");
        } else if (peek() == "TRUE" || peek() == "FALSE" || peek()[0] == '"') {
            next();
        } else if (is_identifier(peek())) {
            node();
        } else {
            while (!at_end() && (std::isdigit(static_cast<unsigned char>(peek()[0])) != 0 ||
                                 peek()[0] == '-' || peek()[0] == '+'))
                next();
        }
    }

    std::vector<std::string> tokens_;
    size_t place_ = 0;
    std::string error_;
};

std::string without_blanks(std::string text)
{
    std::erase_if(text, [](unsigned char c) { return std::isspace(c) != 0; });
    return text;
}

class Vrml2 : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        textures_reset_for_test();
        prefs.vrml_output_normals = 0;
        prefs.vrml_output_textures = 0;
    }
    void TearDown() override
    {
        SceneTest::TearDown();
        textures_reset_for_test();
    }

    static std::string written(const char *command = "write_vrml2")
    {
        const std::string file = temporary_file("scene.wrl");
        run(command, file);
        const std::string text = read_text(file);
        EXPECT_EQ(grammar(text).check(), "") << text;
        return text;
    }
    static bool holds(const std::string &text, const std::string &part)
    {
        return text.find(part) != std::string::npos;
    }
    // A triangle (type 0) or a line of three corners.
    static surface_t *add_surface(object_t *object, int type)
    {
        surface_t *surface = new_surface();
        const float corners[3][2] = {{0, 0}, {1, 0}, {0, 1}};
        for (const auto &c : corners)
            surface_add_vertex(surface, object_add_new_vertex(object, c[0], c[1], 0), c[0], c[1]);
        surface_set_type(surface, type);
        object_add_surface(object, surface);
        return surface;
    }
    static object_t *add_object(const char *name)
    {
        object_t *object = new_object(OBJECT_POLY);
        object_set_name(object, name);
        object_add_child(vesk_get_world(), object);
        return object;
    }
};

TEST_F(Vrml2, ATriangleIsWrittenWordForWord)
{
    object_t *object = add_object("tri");
    add_surface(object, 0);
    EXPECT_EQ(
        without_blanks(written()),
        without_blanks("#VRML V2.0 utf8\n\nGroup {\nchildren [\n\n# Object \"tri\" \nShape {\n"
                       "appearance Appearance { \n material Material {\n"
                       "  diffuseColor 1 1 1\n  specularColor 0.5 0.5 0.5\n"
                       "  emissiveColor 0 0 0\n  shininess 10.000000\n"
                       "  transparency 0.000000\n}\n}\ngeometry IndexedFaceSet {\n"
                       "solid FALSE\ncreaseAngle 0.5\ncoord Coordinate { \npoint [\n0 0 0\n"
                       "1 0 0\n0 1 0\n]\n}\n\ncoordIndex [\n 0, 1, 2, -1]}\n}\n]\n}\n"));
    EXPECT_TRUE(recording().console.starts_with(
        "Generating VRML (no normals, no texture support)\nwritten file "));
}

TEST_F(Vrml2, LinesAndPolygonsMakeAShapeEach)
{
    object_t *object = add_object("both");
    add_surface(object, 1);
    add_surface(object, 2);
    std::string text = written();
    EXPECT_TRUE(holds(text, "geometry IndexedLineSet {\n"));
    EXPECT_FALSE(holds(text, "IndexedFaceSet"));
    EXPECT_TRUE(holds(text, "\ncoordIndex [\n 0, 1, 2, 0, -1,\n 3, 4, 5, -1]"));
    EXPECT_TRUE(holds(text, " material Material {\n  emissiveColor 1 1 1\n}\n"));

    surface_set_col(add_surface(object, 0), 2);
    object_mark(object, CHANGED_ALL);
    text = written();
    EXPECT_LT(text.find("IndexedLineSet"), text.find("IndexedFaceSet"));
    EXPECT_TRUE(holds(text, " material Material {  }\n"));
    EXPECT_TRUE(holds(text, "\n    color Color { \n    color [ 1 1 1,\n1 1 1]\n}\n"
                            "colorPerVertex FALSE\n}\n}\n"));
    EXPECT_EQ(object_surfaces_find_same_material(object), -1);
}

TEST_F(Vrml2, NormalsFollowTheShading)
{
    prefs.vrml_output_normals = 1;
    object_t *object = add_object("n");
    surface_t *flat = add_surface(object, 0);
    surface_t *smooth = add_surface(object, 0);
    vesk_surface_set_normal(flat, 0, 0, 1);
    surface_set_shading(smooth, 1);
    object_mark(object, CHANGED_ALL);
    const std::string text = written();
    EXPECT_TRUE(holds(text, "creaseAngle 0.5\n\nnormalPerVertex TRUE\ncoord"));
    EXPECT_TRUE(holds(text, "\nnormal Normal {\n    vector [ \n0 0 1, 0 0 1, 0 0 1,\n"
                            "0 1 0, 0 1 0, 0 1 0\n]\n}\n"));
    EXPECT_TRUE(holds(text, "\n    normalIndex [ 0, 1, 2, -1,\n3, 4, 5, -1]\n"));
    EXPECT_TRUE(holds(recording().console, "number of normals output = 6\n"));
}

TEST_F(Vrml2, TexturesHaveTheirPlacement)
{
    prefs.vrml_output_textures = 1;
    vesk_register_builtin_texture_loaders();
    const std::string file = temporary_file("wood.bmp");
    write_text(file, write_bmp(sample_picture(2, 2, 0), {}));
    object_t *object = add_object("t");
    add_surface(object, 0);
    std::string text = written();
    EXPECT_FALSE(holds(text, "ImageTexture"));
    EXPECT_TRUE(holds(text, "\n texCoord TextureCoordinate {\n    point [ \n0 0, 1 0, 0 1\n]\n}\n\n"
                            "    texCoordIndex [ 0, 1, 2, -1]\n"));
    object_set_init_texture(object, file.c_str(), "wood.bmp");
    text = written();
    EXPECT_TRUE(holds(text, "texture ImageTexture { url \"wood.bmp\" }\n"
                            "textureTransform TextureTransform {\n}\n"));
    object_set_texture_repeat(object, 2, 1);
    object_set_texture_offset(object, 0, 0.5f);
    text = written();
    EXPECT_TRUE(holds(text, "  scale 2.000000 1.000000\n  translation 0.000000 0.500000\n}\n"));
    prefs.vrml_output_textures = 0;
    written();
    EXPECT_TRUE(last_message().ends_with(" - 1 texture was left out: VRML 2.0 has no textures"));
}

TEST_F(Vrml2, LightsComeFirstAndAnchorsHoldTheChildren)
{
    object_t *group = add_object("house");
    object_set_url(group, "http://x/\"a\"");
    object_t *wall = new_object(OBJECT_POLY);
    object_set_name(wall, "wall");
    add_surface(wall, 0);
    object_add_child(group, wall);
    object_t *light = new_light();
    light->centre = {1, 2.5f, -3};
    object_add_child(group, light);
    const std::string text = written();
    EXPECT_TRUE(holds(text, "children [\n# Light light\nTransform {\n\ttranslation 1 2.5 -3\n"
                            "\tchildren [\n\t\tPointLight\n\t\t{\n\t\ton TRUE\n\t\tintensity 1\n"
                            "\t\tcolor 1 1 1\n\t\t}\n\t\t]\n}\n\n"));
    EXPECT_TRUE(holds(text, "\nAnchor { url \"http://x/\\\"a\\\"\"\nchildren [\n# Object \"house\" "
                            "\n\n# Object \"wall\" \nShape {"));
    EXPECT_TRUE(text.ends_with("# Object \"light\" \n]\n}\n]\n}\n")) << text;
}

TEST_F(Vrml2, PrototypesAreNamedInTheHead)
{
    add_cube("a");
    add_cube("b");
    object_add_child(vesk_get_world(), new_light());
    const std::string text = written("write_vrml2_proto");
    const std::string file = temporary_file("scene.wrl");
    EXPECT_TRUE(text.starts_with("#VRML V2.0 utf8\n\n#EXTERNPROTO a [] \"" + file +
                                 "#a\"\n#EXTERNPROTO b [] \"" + file +
                                 "#b\"\n#Group { children [ a {} b {} ]}\n\n# Light light\n"));
    EXPECT_TRUE(holds(text, "PROTO a [] {\n\n# Object \"a\" \nShape {"));
    EXPECT_TRUE(text.ends_with("}\n}\n}\n\n"));
}

TEST_F(Vrml2, AFileThatCannotBeWrittenIsTold)
{
    EXPECT_EQ(write_vrml2("/nowhere/at/all.wrl"), 0);
    EXPECT_TRUE(recording().console.ends_with("can't open file for writing\n"));
}

TEST_F(Vrml2, DeepTreesAreWritten)
{
    object_t *parent = vesk_get_world();
    for (int i = 0; i < 20000; ++i) {
        object_t *child = new_object(OBJECT_GROUP);
        object_set_url(child, i % 100 == 0 ? "u" : "");
        object_add_child(parent, child);
        parent = child;
    }
    EXPECT_TRUE(holds(written(), "Anchor"));
}

} // namespace
