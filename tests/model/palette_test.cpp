#include "model/alloc.h"
#include "model/palette_internal.h"
#include "model/property.h"
#include "tests/support/scene_test.h"

#include <cmath>
#include <limits>

namespace {

class Palette : public SceneTest {};

TEST_F(Palette, BeginsWithFifteenStandardMaterials)
{
    EXPECT_EQ(vesk_get_num_palette(), 15);
    EXPECT_STREQ(index_to_string(3), "#ff0000");
    EXPECT_STREQ(vesk_material_get_name_index(14), "veskmat14");
    EXPECT_EQ(index_to_rgb(1), 0xFFFFFF);
    EXPECT_EQ(rgb_to_index(0x00FF00), 6);
}

TEST_F(Palette, TellsTheScriptsOfEachNewEntryAndGrowsByTwenty)
{
    EXPECT_EQ(rgb_to_index(0x123456), 15);
    EXPECT_EQ(last_call("add_palette_button"), "#123456 15");
    const int capacity = palette_capacity();
    EXPECT_EQ(capacity % 20, 0);
    while (vesk_get_num_palette() < capacity)
        new_palette_entry(0);
    EXPECT_EQ(palette_capacity(), capacity);
    new_palette_entry(0);
    EXPECT_EQ(palette_capacity(), capacity + 20);
}

TEST_F(Palette, TheCommandCopiesAnEntryWithItsNameAndChangesStayApart)
{
    run("set_palette_entry", 2, 0.5f, 0.25f, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 30, 0.5f);
    EXPECT_EQ(run("new_palette_entry", 2), "15");
    EXPECT_EQ(vesk_get_num_palette(), 16);
    EXPECT_NE(material_compare(vesk_palette_get_material(2), vesk_palette_get_material(15)), 0);
    EXPECT_STREQ(vesk_material_get_name_index(15), vesk_material_get_name_index(2));
    EXPECT_EQ(last_call("add_palette_button"), std::string(index_to_string(2)) + " 15");
    run("set_palette_entry", 15, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 10, 0);
    EXPECT_EQ(vesk_palette_get_material(2)->diffuse[1], 0.25f);
    EXPECT_EQ(run("new_palette_entry", 16), "-1");
    EXPECT_EQ(vesk_get_num_palette(), 16);
}

TEST_F(Palette, RefusesIndicesOutside)
{
    recording().console.clear();
    EXPECT_EQ(vesk_palette_get_material(15), nullptr); // the first one beyond is not told
    EXPECT_EQ(recording().console, "");
    EXPECT_EQ(vesk_palette_get_material(16), nullptr);
    EXPECT_EQ(recording().console, "vesk_palette_get_material failed: entry 16 is bigger than "
                                   "palette size (15)\n");
    EXPECT_EQ(vesk_palette_get_material(-1), nullptr);
    EXPECT_EQ(index_to_rgb(99), 0);
    EXPECT_EQ(new_palette_entry(-1), -1);
}

struct compare_case {
    const char *name;
    float material::*field; // null: the diffuse red
    float a, b;
    int equal;
};
// clang-format off
const compare_case compare_cases[] = {
    {"same_hundredth",      nullptr,                  0.504f, 0.509f, 1},
    {"next_hundredth",      nullptr,                  0.509f, 0.52f,  0},
    {"in_double",           nullptr,                  0.29f,  0.281f, 1}, // 0.29 is below 29
    {"shininess_exact",     &material::shininess,     10.0f,  10.001f, 0},
    {"transparency_exact",  &material::transparency,  0.1f,   0.1f,   1},
    {"huge",                nullptr,                  1e30f,  3e30f,  1},
    {"no_number",           nullptr,                  NAN,    NAN,    1},
    {"no_number_shininess", &material::shininess,     NAN,    NAN,    0},
};
// clang-format on
void PrintTo(const compare_case &c, std::ostream *out) { *out << c.name; }
class MaterialCompare : public SceneTest, public testing::WithParamInterface<compare_case> {};

TEST_P(MaterialCompare, WorksByHundredthsOfColours)
{
    const compare_case &c = GetParam();
    material *a = new_material();
    material *b = new_material();
    (c.field ? a->*c.field : a->diffuse[0]) = c.a;
    (c.field ? b->*c.field : b->diffuse[0]) = c.b;
    b->diffuse[3] = 0.5f; // neither alpha nor names count
    vesk_material_set_name(b, "other");
    EXPECT_EQ(material_compare(a, b), c.equal);
    const int first = vesk_palette_append_material(a);
    const int plain = find_material(b);
    const palette_table table;
    EXPECT_EQ(find_material(b), plain); // the table finds what the walk finds
    EXPECT_EQ(plain == first, c.equal == 1);
    myfree(b->name);
    myfree(b);
}
INSTANTIATE_TEST_SUITE_P(Cases, MaterialCompare, testing::ValuesIn(compare_cases));

TEST_F(Palette, ReusesAnEqualEntryAndCopiesANewOne)
{
    material *mat = new_material_rgb(0xFF0000);
    vesk_material_set_name(mat, "mine");
    EXPECT_EQ(vesk_palette_get_new_material_index(mat), 3);
    mat->transparency = 0.5f;
    const int index = vesk_palette_get_new_material_index(mat);
    EXPECT_EQ(index, 15);
    EXPECT_STREQ(vesk_material_get_name_index(index), "mine");
    EXPECT_EQ(vesk_material_has_transparency(index), 1);
    myfree(mat->name);
    myfree(mat);
}

TEST_F(Palette, PacksColours)
{
    const float orange[] = {1, 0.5f, 0};
    EXPECT_EQ(rgb_floatv_to_long(orange), 0xFF7F00);
    EXPECT_EQ(rgb_floatv_to_long_sgi(orange), 0x007FFF);
    const float bytes[] = {255, 127.9f, 1};
    EXPECT_EQ(rgb_float255v_to_long(bytes), 0xFF7F01);
    for (long byte = 0; byte < 256; ++byte) {
        float r, g, b;
        long_rgb_to_floats(byte << 8, &r, &g, &b);
        EXPECT_EQ(rgb_floats_to_long(r, g, b), byte << 8);
    }
    rgb_floats_to_long(std::numeric_limits<float>::infinity(), NAN, -1e30f); // no trap
}

TEST_F(Palette, AveragesWithItsIrregularity)
{
    material *a = new_material_rgb(0x000000);
    material *b = new_material_rgb(0xFF8000);
    b->diffuse[2] = 0.25f;
    material_add(a, b);
    EXPECT_EQ(a->diffuse[1], 0.25f); // green gets blue
    material_divide(a, 2);
    EXPECT_EQ(a->diffuse[0], 0.5f);
    EXPECT_EQ(a->shininess, 10);
    for (material *mat : {a, b}) {
        myfree(mat->name);
        myfree(mat);
    }
}

TEST_F(Palette, EditorGetsColoursInItsOwnOrder)
{
    set_palette_entry(2, 0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f, 0.7f, 0.8f, 0.9f, 1, 0, 0, 12, 0.5f);
    set_palette_entry(99, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    EXPECT_EQ(vesk_palette_get_material(2)->emissive[0], 0.7f);
    edit_palette_entry(2);
    EXPECT_EQ(last_call("edit_colour_ui"),
              "2 0.100000 0.200000 0.300000   0.400000 0.500000 0.600000   0.700000 0.800000 "
              "0.900000   1.000000 0.000000 0.000000   12.000000 0.500000");
}

TEST_F(Palette, PropertiesAreSetByExactName)
{
    listitem *list = nullptr;
    EXPECT_EQ(vesk_proplist_set_value(&list, "key", "kind", "1"), 0);
    EXPECT_EQ(vesk_proplist_set_value(&list, "key", "ignored", "2"), 1);
    EXPECT_EQ(vesk_proplist_set_value(&list, "KEY", "kind", "3"), 0);
    EXPECT_STREQ(vesk_proplist_get_value(list, "key"), "2");
    EXPECT_STREQ(vesk_proplist_get_prop(list, "key")->kind, "kind");
    listitem *copy = vesk_proplist_duplicate(list);
    vesk_proplist_set_value(&copy, "key", "", "changed");
    EXPECT_STREQ(vesk_proplist_get_value(list, "key"), "2");
    EXPECT_EQ(proplist_remove(&copy, "key"), 1);
    EXPECT_EQ(vesk_proplist_get_prop(copy, "key"), nullptr);
    proplist_free(&list);
    proplist_free(&copy);
}

} // namespace
