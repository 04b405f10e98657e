// Trees through a file and back, and files that are damaged at random.

#include "base/messages.h"
#include "fileio/vesk_reader.h"
#include "fileio/vesk_scan.h"
#include "fileio/vesk_writer.h"
#include "model/alloc.h"
#include "model/bounds.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/matrix.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/world.h"
#include "model/world_check.h"
#include "tests/fileio/file_cases.h"
#include "tests/support/places.h"
#include "tests/support/scene_test.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <random>

namespace {

class RoundTrip : public SceneTest {
protected:
    object_t *child(object_t *parent, int type)
    {
        object_t *object = new_object(type);
        object_add_child(parent, object);
        return object;
    }
    object_t *through_a_file(object_t *top)
    {
        const std::string file = temporary_file("trip.vesk");
        EXPECT_EQ(write_vesk_object(file.c_str(), top), 1);
        return readfile_vesk2(file.c_str());
    }
};

// World coordinates survive for every mix of turned and unturned objects, whether or not the line
// of the rotation is written.
TEST_F(RoundTrip, KeepsWorldCoordinatesUnderTurnedParents)
{
    const float angles[][3] = {{0, 0, 0}, {0.5f, 0, 0}, {0, 0, 0}, {-1, 2, 0.3f}, {0, 0, 0}};
    object_t *at = vesk_get_world();
    float x = 0;
    for (const auto &angle : angles) {
        at = child(at, OBJECT_POLY);
        matrix_set_rotate(at->rotation, angle[0], angle[1], angle[2]);
        at->centre = {x, -x, 2};
        object_add_new_vertex(at, x++, 1, 0.25f);
        object_add_new_vertex(at, -3, x, 7);
        object_t *side = child(at, OBJECT_POLY); // unturned under a turned one
        object_add_new_vertex(side, x, x, x);
    }
    object_t *read = through_a_file(vesk_get_world());
    EXPECT_EQ(describe(read), describe(vesk_get_world()));
    object_t *again = through_a_file(read);
    EXPECT_EQ(describe(again), describe(read));
    object_free(read);
    object_free(again);
}

TEST_F(RoundTrip, KeepsTextsAndFlags)
{
    object_t *object = child(vesk_get_world(), OBJECT_POLY);
    object_set_name(object, "a\"b\\c d");
    object_set_url(object, "http://somewhere/x");
    object_set_userdata(object, "two\nlines\n");
    object_set_texture_repeat(object, 2, 1);
    for (int i = 0; i < 4; ++i)
        object_add_new_vertex(object, static_cast<float>(i), 0.1234567f, -1e-7f);
    for (const int flags : {0x30, 0x01, 0x22, 0x1F}) {
        surface_t *surface = vesk_object_add_triangle(object, 0, 1, 2);
        vesk_surface_set_flags(surface, flags);
        surface_set_col(surface, flags % 15);
    }
    object_t *read = through_a_file(vesk_get_world());
    EXPECT_EQ(describe(read), describe(vesk_get_world()));
    EXPECT_EQ(object_get_kid_at(read, 0)->texture_repeat_x, 2);
    object_free(read);
}

TEST_F(RoundTrip, KeepsTheExamples)
{
    for (const char *name : {"desk.vesk", "primitives.vesk"}) {
        const std::string file = source_file("examples/") + name;
        object_t *top = readfile_vesk2(file.c_str());
        ASSERT_NE(top, nullptr) << name;
        EXPECT_EQ(last_message(), "Done.") << name;
        object_t *read = through_a_file(top);
        std::string first = describe(top), second = describe(read);
        EXPECT_EQ(first.size() > 1000, true);
        // Six digits of a number that was rounded twice may differ by one in the last.
        const auto shape = [](std::string text) {
            text.erase(std::remove_if(text.begin(), text.end(),
                                      [](char c) { return std::strchr("0123456789.-e+", c); }),
                       text.end());
            return text;
        };
        EXPECT_EQ(shape(first), shape(second)) << name;
        object_free(top);
        object_free(read);
    }
}

struct material_name_case {
    const char *name;
    std::string given, read_again;
};
// clang-format off
const material_name_case material_names[] = {
    {"plain",              "oak, light",            "oak, light"},
    {"quotes",             "the \"old\" oak",       "the \"old\" oak"},
    {"backslash_at_end",   "wood\\oak\\",           "wood\\oak\\"},
    {"line_feed",          "two\nlines",            "two lines"},
    {"longer_than_a_line", std::string(3000, '"'),  std::string(3000, '"')},
    {"cut_in_an_escape",   std::string(243, 'n') + "\\\"n", std::string(243, 'n') + "\\\"n"},
};
// clang-format on
void PrintTo(const material_name_case &c, std::ostream *out) { *out << c.name; }
class MaterialNames : public SceneTest, public testing::WithParamInterface<material_name_case> {};

// Whatever the name, it comes back with its colours.
TEST_P(MaterialNames, AndColoursAreReadAsTheyWereWritten)
{
    const auto has_come_back = [](const object_t *cube) {
        const auto *side = item_of<const surface_t>(cube->surfaces);
        const material *mat = vesk_palette_get_material(side->material);
        EXPECT_FLOAT_EQ(mat->diffuse[0], 0.123457f);
        EXPECT_EQ(std::string(mat->name), GetParam().read_again);
    };
    for (const bool by_command : {false, true}) {
        run("clear_all");
        create_palette();
        material *mat = new_material();
        std::fill_n(mat->diffuse, 3, 0.123457f);
        std::fill_n(mat->specular, 3, 0.0123457f);
        if (!by_command)
            vesk_material_set_name(mat, GetParam().given.c_str());
        const int index = vesk_palette_get_new_material_index(mat);
        if (by_command)
            run("material_set_name", index, GetParam().given);
        add_cube("cube");
        run("set_select_mode", "object");
        run("select_all");
        run("set_col", index);
        const std::string file = temporary_file("named.vesk");
        ASSERT_EQ(run("file_save", file), "1");
        run("clear_all");
        create_palette();
        ASSERT_EQ(run("file_load", file), "1");
        has_come_back(item_of<object_t>(vesk_get_world()->children));
        myfree(mat->name);
        myfree(mat);
    }
}
INSTANTIATE_TEST_SUITE_P(Cases, MaterialNames, testing::ValuesIn(material_names));

// More than the worker's threshold: blocks come in pieces from the other thread.
TEST_F(RoundTrip, KeepsAHundredThousandVertices)
{
    object_t *world = vesk_get_world();
    for (int part = 0; part < 3; ++part) {
        object_t *object = child(world, OBJECT_POLY);
        const int side = part == 0 ? 300 : 70;
        std::vector<float> xyz;
        std::vector<int> offsets = {0}, indices;
        std::vector<float> uv;
        for (int i = 0; i < side * side; ++i) {
            const auto x = static_cast<float>(i % side), z = static_cast<float>(i / side);
            xyz.insert(xyz.end(), {x / 8, std::round(std::sin(x / 9) * 64) / 64, z / 8});
        }
        for (int i = 0; i + side < side * side; ++i) {
            if ((i + 1) % side == 0)
                continue;
            for (const int corner : {i, i + side, i + side + 1, i + 1}) {
                indices.push_back(corner);
                uv.insert(uv.end(), {static_cast<float>(corner % 7) / 4, 0.5f});
            }
            offsets.push_back(static_cast<int>(indices.size()));
        }
        vesk_object_add_vertices_from_float_array(object, xyz.data(), side * side);
        vesk_object_add_surfaces_from_arrays(object, static_cast<int>(offsets.size()) - 1,
                                             offsets.data(), indices.data(), uv.data(), part + 2);
    }
    object_t *read = through_a_file(world);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(last_message(), "Done.");
    const object_t *big = object_get_kid_at(world, 0), *same = object_get_kid_at(read, 0);
    ASSERT_EQ(same->num_vertices, big->num_vertices);
    ASSERT_EQ(same->num_surfaces, big->num_surfaces);
    const listitem *mine = big->vertices;
    for (const vertex *point : each<vertex>(same->vertices)) {
        const point3_t &other = item_of<vertex>(mine)->position;
        ASSERT_EQ(point->position.y, other.y);
        ASSERT_EQ(point->position.x, other.x);
        mine = mine->next;
    }
    const std::string first = read_text(temporary_file("trip.vesk"));
    object_t *again = through_a_file(read);
    EXPECT_TRUE(read_text(temporary_file("trip.vesk")) == first);
    EXPECT_TRUE(world_check(read).empty());
    object_free(again);
    object_free(read);
}

// What comes ahead from the worker is what a scan on the spot gives, also where the lines are not
// in the plain form.
TEST_F(RoundTrip, ScanningAheadGivesWhatScanningOnTheSpotGives)
{
    std::string text;
    for (int block = 0; block < 40; ++block) {
        text += "numvert 1000\n";
        for (int i = 0; i < 1000 - block; ++i) // fewer than claimed, from the second on
            text += "0.5 -1e3 12.25\n";
        text += "numsurf 300\n";
        for (int i = 0; i < 300; ++i)
            text += i == block ? "mat 0\nSURF 0x20\nrefs 1\n0 0 0\n" // not in the plain order
                               : "SURF 0x20\nmat 0\nrefs 3\n0 0 0\n1 0.5 1\n2 1 1\n";
    }
    ASSERT_GT(text.size(), std::size_t(1) << 20);
    const char *end = text.data() + text.size();
    block_scanner ahead(text.data(), end);
    scan_batch here;
    for (std::size_t at = text.find("num"); at != std::string::npos;
         at = text.find("num", at + 1)) {
        const bool vertices = text[at + 3] == 'v';
        const char *p = text.data() + text.find('\n', at) + 1;
        int wanted = vertices ? 1000 : 300;
        for (bool stopped = false; !stopped && wanted > 0;) {
            here.clear();
            const scan_piece &one = vertices ? scan_vertices(p, end, wanted, &here)
                                             : scan_surfaces(p, end, wanted, &here);
            const scan_piece &other =
                vertices ? ahead.vertices(p, wanted) : ahead.surfaces(p, wanted);
            ASSERT_EQ(one.end, other.end);
            ASSERT_EQ(one.count, other.count);
            ASSERT_EQ(one.stopped, other.stopped);
            p = one.end;
            wanted -= one.count;
            stopped = one.stopped;
        }
    }
}

TEST_F(RoundTrip, OlderRevisionKeepsWhatItHasWordsFor)
{
    object_t *turned = child(vesk_get_world(), OBJECT_GROUP);
    matrix_set_rotate(turned->rotation, 1, 0.5f, 0);
    turned->centre = {1, 2, 3};
    object_t *object = child(turned, OBJECT_POLY);
    object_set_name(object, "a\"b");
    object_set_url(object, "u v");
    object_set_userdata(object, "x\ny");
    for (int i = 0; i < 4; ++i)
        object_add_new_vertex(object, static_cast<float>(i), 1, 0.25f);
    surface_t *red = vesk_object_add_triangle(object, 0, 1, 2);
    vesk_surface_set_flags(red, 0x31);
    surface_set_col(red, 3);
    vesk_object_add_triangle(object, 2, 1, 3);
    const std::string file = temporary_file("old.vesk");
    EXPECT_EQ(run("write_vesk_old", file), "1");
    EXPECT_EQ(last_message(), "written file " + file);
    material shining = *vesk_palette_get_material(3);
    shining.transparency = 0.5f;
    surface_set_col(red, vesk_palette_append_material(&shining));
    object_mark(object, CHANGED_ATTRIBUTES);
    run("write_vesk_old", temporary_file("poor.vesk"));
    EXPECT_EQ(last_message(), "written file " + temporary_file("poor.vesk") +
                                  " - 1 shining colour was left out: the older VESK has no "
                                  "shining colours");
    surface_set_col(red, 3);
    object_mark(object, CHANGED_ATTRIBUTES);
    object_t *read = readfile_vesk2(file.c_str());
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(describe(read), describe(vesk_get_world()));
    object_free(read);
}

TEST_F(RoundTrip, OlderRevisionsLoad)
{
    const std::string file = temporary_file("old.vesk");
    write_text(file,
               "VESKa\nOBJECT \"top\"\ntype 999\nchildren 1\n"
               "OBJECT \"a \\\"b\\\"\"\ntype 0\ntranslation 1 0 0\nrotation 0 1 0 -1 0 0 0 0 1\n"
               "texturerep 2 2\nurl \"u\"\ndataitems 1\nstring 3\nx y\npoints 3\n0 0 0\n1 0 0\n"
               "0 1 0\nsurfaces 2\nrgb 0xff0000\nshaded\npoints 4\n0 0 0\n1 1 0\n-1 0 0\n2 0 "
               "1\ntype 2\nmatindex 5\ntwosided\npoints 0\nchildren 0\n");
    object_t *top = readfile_vesk2(file.c_str());
    ASSERT_NE(top, nullptr);
    EXPECT_EQ(describe(top), "world'top'{poly'a \"b\"'(1 0 0)(1 1 0)(0 0 0)[10 m3 0 1/1/0 2/0/1]"
                             "[22 m5] data=x y url=u}");
    object_free(top);
    for (const char *bad : {"VESKa\n", "VESK\nOBJECT world\n", "VESKa\nOBJECT \"a\"\ntype 0\nfoo\n",
                            "VESKa\nOBJECT \"a\"\ntype 0\nchildren 1\n"}) {
        write_text(file, bad);
        recording().console.clear();
        EXPECT_EQ(readfile_vesk2(file.c_str()), nullptr);
        EXPECT_EQ(recording().console, "Error whilst reading file " + file + "\n");
    }
}

// ---- damaged files ----

// A file with everything in it, small enough that damage hits all of it.
std::string rich_file()
{
    return "VESKb\nMATERIAL \"m\" rgb 1 0 0  amb 0.2 0.2 0.2  emis 0 0 0  spec 0.5 0.5 0.5  shi 10 "
           " "
           "trans 0\nOBJECT world\nkids 3\nOBJECT group\nname \"a \\\"b\\\"\"\nloc 1 2 3\nrot 0 1 "
           "0 "
           "-1 0 0 0 0 1\nkids 1\nOBJECT poly\ndata 7\nab\ncd\ne\nurl \"u\"\ntexture \"none.gif\"\n"
           "texrep 2 2\ntexoff 0.5 0.5\nnumvert 4\n0 0 0\n1 0 0\n1 1 0.5\n0 1 1e-3\nnumsurf "
           "2\nSURF "
           "0x30\nmat 0\nrefs 4\n0 0 0\n1 1 0\n2 1 1\n3 0 1\nSURF 0x1\nmat 0\nrefs 2\n0 0 0\n2 0 "
           "0\n"
           "mat 0\nkids 0\nOBJECT sphere\nsphere 1.5\nscale 1 2 1\nkids 0\nOBJECT light\ncube 1 1 "
           "1\nellipse 1 2\ncylinder 1 1 0\nkids 0\n";
}

class damager {
public:
    explicit damager(unsigned seed) : random_(seed) {}

    std::string damage(std::string text)
    {
        for (std::size_t times = 1 + random_() % 4; times > 0 && !text.empty(); --times) {
            const std::size_t at = random_() % text.size();
            switch (random_() % 7) {
            case 0:
                text[at] = static_cast<char>(random_());
                break;
            case 1:
                text.erase(at, 1 + random_() % 30);
                break;
            case 2:
                text.insert(at, text.substr(random_() % text.size(), random_() % 60));
                break;
            case 3:
                text.resize(at);
                break;
            case 4:
                text.insert(at, pick({"-1", "2147483648", "1e400", "nan", "\"", "\\", "\n", "0x"}));
                break;
            case 5:
                text.insert(line_at(text, at),
                            pick({"kids 7\n", "OBJECT poly\n", "numvert 1000000\n", "numsurf 9\n",
                                  "refs 5\n", "data 99\n", "\n"}));
                break;
            default: { // another number where one is
                const std::size_t digit = text.find_first_of("0123456789", at);
                if (digit != std::string::npos)
                    text[digit] = static_cast<char>('0' + random_() % 10);
            }
            }
        }
        return text;
    }

private:
    std::string pick(std::initializer_list<const char *> texts)
    {
        return *(texts.begin() + random_() % texts.size());
    }
    static std::size_t line_at(const std::string &text, std::size_t at)
    {
        return text.rfind('\n', at) == std::string::npos ? 0 : text.rfind('\n', at) + 1;
    }
    std::mt19937 random_;
};

// Seed and number of files: VESK_DAMAGE_SEED, VESK_DAMAGE_FILES; by default another seed each day.
TEST_F(RoundTrip, DamagedFilesLoadWhatTheyCan)
{
    const char *given_seed = std::getenv("VESK_DAMAGE_SEED");
    const char *given_files = std::getenv("VESK_DAMAGE_FILES");
    const auto seed =
        static_cast<unsigned>(given_seed ? std::atol(given_seed) : std::time(nullptr) / 86400);
    const int files = given_files ? std::atoi(given_files) : 2000;
    std::printf("damaged files: seed %u, %d files\n", seed, files);
    damager random(seed);
    const std::string whole = rich_file();
    const std::string file = temporary_file("damaged.vesk");
    int loaded = 0;
    for (int i = 0; i < files; ++i) {
        const std::string text = random.damage(whole);
        write_text(file, text);
        set_debug_mode(i % 8 == 0);
        object_t *top = readfile_vesk2(file.c_str());
        if (!top)
            continue;
        ++loaded;
        const std::vector<world_fault> faults = world_check(top);
        ASSERT_TRUE(faults.empty()) << faults[0].text << "\n" << text;
        object_t *read = through_a_file(top); // and whatever came of it can be saved
        ASSERT_NE(read, nullptr) << text;
        object_free(read);
        object_free(top);
        recording().console.clear();
        recording().scripts.clear();
        create_palette();
    }
    EXPECT_GT(loaded, files / 2);
}

} // namespace
