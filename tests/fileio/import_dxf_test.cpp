// Drawings: each kind of entity, blocks, layers and colours, and what is counted as left out.

#include "base/file_report.h"
#include "fileio/dxf_scan.h"
#include "model/bounds.h"
#include "model/each.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/vector.h"
#include "model/world.h"
#include "tests/support/scene_test.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

// Pairs are parted by bars, a pair's value by a blank: "0 LINE|8 walls|10 0".
std::string pairs_of(const std::string &text)
{
    std::string pairs;
    for (std::size_t first = 0; first < text.size();) {
        const std::size_t end = std::min(text.find('|', first), text.size());
        const std::string pair = text.substr(first, end - first);
        const std::size_t blank = std::min(pair.find(' '), pair.size());
        pairs += pair.substr(0, blank) + "\n" +
                 (blank < pair.size() ? pair.substr(blank + 1) : "") + "\n";
        first = end + 1;
    }
    return pairs;
}

std::string section(const char *name, const std::string &records)
{
    return "0 SECTION|2 " + std::string(name) + "|" + records + "|0 ENDSEC|";
}

std::string drawing(const std::string &entities, const std::string &blocks = "0 NONE",
                    const std::string &tables = "0 NONE")
{
    return pairs_of(section("TABLES", tables) + section("BLOCKS", blocks) +
                    section("ENTITIES", entities) + "0 EOF");
}

class Drawing : public SceneTest {
protected:
    static void load(const std::string &bytes)
    {
        const std::string file = temporary_file("plan.dxf");
        write_text(file, bytes);
        ASSERT_EQ(run("file_load", file), "1")
            << (recording().boxes.empty() ? "" : recording().boxes.back());
    }
    static object_t *find(const std::string &name)
    {
        return find_object_where(vesk_get_world(), [&](const object_t *object) {
            return object->name != nullptr && name == object->name;
        });
    }
    static std::vector<point3_t> points_of(const object_t *object)
    {
        std::vector<point3_t> points;
        for (const vertex *v : each<vertex>(object->vertices))
            points.push_back(v->position);
        return points;
    }
    static std::vector<std::size_t> corner_counts(const object_t *object)
    {
        std::vector<std::size_t> counts;
        for (const surface_t *surface : each<surface_t>(object->surfaces))
            counts.push_back(static_cast<std::size_t>(surface->num_refs));
        return counts;
    }
    static bool has_point(const object_t *object, float x, float y, float z)
    {
        const auto points = points_of(object);
        return std::any_of(points.begin(), points.end(), [&](const point3_t &p) {
            return std::hypot(p.x - x, p.y - y, p.z - z) < 1e-4f;
        });
    }
    static const float *colour_of(const object_t *object)
    {
        const auto *first = reinterpret_cast<const surface_t *>(object->surfaces->data);
        return vesk_palette_get_material(first->material)->diffuse;
    }
};

TEST_F(Drawing, CurvesLieOnTheirCircles)
{
    load(drawing("0 CIRCLE|8 a|10 2|20 0|30 1|40 3|"
                 "0 ARC|8 b|10 0|20 0|30 0|40 2|50 270|51 90|"
                 "0 LWPOLYLINE|8 c|90 2|70 0|10 -1|20 0|42 1|10 1|20 0|"
                 "0 ELLIPSE|8 d|10 0|20 0|30 0|11 0|21 4|31 0|40 0.5|41 0|42 6.283185307"));
    for (const point3_t &p : points_of(find("a"))) {
        EXPECT_NEAR(std::hypot(p.x - 2, p.z), 3, 1e-5);
        EXPECT_EQ(p.y, 1); // the drawing's Z
    }
    EXPECT_TRUE(has_point(find("b"), 0, 0, 2) && has_point(find("b"), 2, 0, 0) &&
                has_point(find("b"), 0, 0, -2));
    EXPECT_FALSE(has_point(find("b"), -2, 0, 0));
    // A bulge of 1 is half a circle, counter-clockwise: below the line from left to right.
    EXPECT_TRUE(has_point(find("c"), 0, 0, 1));
    EXPECT_TRUE(has_point(find("d"), 0, 0, -4) && has_point(find("d"), 2, 0, 0));
}

TEST_F(Drawing, SplinesRunByTheirKnotsOrThroughTheirPoints)
{
    const std::string knots = "40 0|40 0|40 0|40 0|40 1|40 1|40 1|40 1|";
    load(drawing("0 SPLINE|8 bezier|70 8|71 3|" + knots +
                 "10 0|20 0|30 0|10 0|20 4|30 0|10 4|20 4|30 0|10 4|20 0|30 0|"
                 "0 SPLINE|8 circle|70 4|71 2|40 0|40 0|40 0|40 1|40 1|40 1|"
                 "41 1|41 0.70710678|41 1|10 1|20 0|30 0|10 1|20 1|30 0|10 0|20 1|30 0|"
                 "0 SPLINE|8 fit|70 0|71 3|11 0|21 0|31 0|11 1|21 1|31 0|11 2|21 0|31 0|"
                 "0 SPLINE|8 broken|70 0|71 3|40 5|10 0|20 0|30 0"));
    EXPECT_TRUE(has_point(find("bezier"), 2, 0, -3)); // its middle
    EXPECT_TRUE(has_point(find("bezier"), 4, 0, 0));
    for (const point3_t &p : points_of(find("circle")))
        EXPECT_NEAR(std::hypot(p.x, p.z), 1, 1e-5);
    EXPECT_TRUE(has_point(find("fit"), 1, 0, -1) && has_point(find("fit"), 2, 0, 0));
    EXPECT_EQ(find("broken"), nullptr);
    EXPECT_EQ(last_file_report().warnings.at(0).text,
              "1 SPLINE have no counterpart here and were left out");
}

TEST_F(Drawing, PolygonsKeepTheirCorners)
{
    const std::string point = "0 VERTEX|8 x|70 192|";
    load(drawing(
        "0 3DFACE|8 faces|10 0|20 0|30 0|11 2|21 0|31 0|12 2|22 1|32 0|13 2|23 1|33 0|"
        "0 SOLID|8 solid|10 0|20 0|11 1|21 0|12 0|22 1|13 1|23 1|"
        "0 POLYLINE|8 poly|66 1|70 64|71 4|72 1|" +
        point + "10 0|20 0|30 0|" + point + "10 1|20 0|30 0|" + point + "10 1|20 1|30 0|" + point +
        "10 0|20 1|30 0|0 VERTEX|70 128|71 1|72 -2|73 3|74 4|"
        "0 VERTEX|70 128|71 1|72 9|0 SEQEND|"
        "0 POLYLINE|8 grid|66 1|70 17|71 3|72 2|0 VERTEX|10 0|20 0|0 VERTEX|10 0|20 0|30 1|"
        "0 VERTEX|10 1|20 0|0 VERTEX|10 1|20 0|30 1|0 VERTEX|10 0|20 1|"
        "0 VERTEX|10 0|20 1|30 1|0 SEQEND|"
        "0 MESH|8 mesh|92 4|10 0|20 0|30 0|10 1|20 0|30 0|10 1|20 1|30 0|10 0|20 1|30 1|"
        "93 9|90 4|90 0|90 1|90 2|90 3|90 3|90 0|90 2|90 77"));
    EXPECT_EQ(corner_counts(find("faces")), std::vector<std::size_t>{3});
    EXPECT_EQ(corner_counts(find("poly")), std::vector<std::size_t>{4});
    EXPECT_EQ(corner_counts(find("grid")), (std::vector<std::size_t>{4, 4, 4}));
    EXPECT_EQ(find("grid")->num_vertices, 6);
    EXPECT_EQ(corner_counts(find("mesh")), std::vector<std::size_t>{4});
    // The last two corners of a SOLID are crossed: around, no side is a diagonal.
    const auto corners = points_of(find("solid"));
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(point_length(point_sub(corners[(i + 1) % 4], corners[i])), 1, 1e-6);
}

TEST_F(Drawing, WidthAndThicknessMakeWalls)
{
    load(drawing("0 LWPOLYLINE|8 band|90 3|70 0|43 0.5|10 0|20 0|10 4|20 0|10 4|20 3|"
                 "0 LINE|8 wall|39 2|10 0|20 0|30 0|11 3|21 0|31 0|"
                 "0 POLYLINE|8 taper|66 1|70 0|0 VERTEX|10 0|20 0|40 1|41 0|0 VERTEX|10 2|20 0|"
                 "0 SEQEND"));
    EXPECT_EQ(corner_counts(find("band")), (std::vector<std::size_t>{4, 4}));
    EXPECT_TRUE(has_point(find("band"), 4.25f, 0, 0.25f)); // the mitred corner
    EXPECT_TRUE(has_point(find("band"), 3.75f, 0, -0.25f));
    EXPECT_TRUE(has_point(find("wall"), 3, 2, 0));
    EXPECT_EQ(corner_counts(find("taper")), std::vector<std::size_t>{3});
}

TEST_F(Drawing, BlocksAreNestedTurnedScaledAndArrayed)
{
    const std::string leg = "0 BLOCK|2 leg|10 1|20 0|30 0|0 LINE|8 0|62 0|10 1|20 0|11 2|21 0|"
                            "0 ENDBLK|";
    const std::string table = "0 BLOCK|2 table|10 0|20 0|30 0|"
                              "0 INSERT|2 leg|8 0|10 10|20 0|62 0|0 ENDBLK";
    load(drawing("0 INSERT|8 rooms|2 table|62 5|10 100|20 0|30 0|41 2|42 2|43 2|50 90|70 3|44 -7|"
                 "0 INSERT|8 mirrored|2 leg|10 5|20 0|210 0|220 0|230 -1|"
                 "0 INSERT|8 rooms|2 missing|10 0|20 0",
                 leg + table));
    const object_t *rooms = find("rooms");
    ASSERT_NE(rooms, nullptr);
    EXPECT_EQ(rooms->num_children, 3);
    // Turned by 90 degrees, X runs along Y, which is -Z here; the array runs with it, unscaled.
    const auto leg_of = [](const listitem *place) {
        const auto *inserted = reinterpret_cast<const object_t *>(place->data);
        return reinterpret_cast<const object_t *>(inserted->children->data);
    };
    const object_t *first = leg_of(rooms->children), *third = leg_of(rooms->children->next->next);
    EXPECT_TRUE(has_point(first, 100, 0, -20) && has_point(first, 100, 0, -22));
    EXPECT_TRUE(has_point(third, 100, 0, -6) && has_point(third, 100, 0, -8));
    EXPECT_EQ(colour_of(first)[2], 1); // blue, by two blocks
    const auto *mirrored = reinterpret_cast<const object_t *>(find("mirrored")->children->data);
    EXPECT_TRUE(has_point(mirrored, -5, 0, 0) && has_point(mirrored, -6, 0, 0));
    EXPECT_EQ(last_file_report().warnings.at(0).text,
              "1 INSERT have no counterpart here and were left out");
}

TEST_F(Drawing, LayersAreGroupsWithColours)
{
    load(drawing("0 LINE|8 red|10 0|20 0|11 1|21 0|0 LINE|8 off|10 0|20 0|11 1|21 0|"
                 "0 LINE|8 own|62 0|420 1193046|10 0|20 0|11 1|21 0|"
                 "0 LINE|8 paper|67 1|10 0|20 0|11 1|21 0|0 HATCH|8 red|0 HATCH|8 red|0 RAY|8 red",
                 "0 NONE",
                 "0 LAYER|2 red|62 1|70 0|0 LAYER|2 off|62 -5|70 0|0 LAYER|2 \\U+00E4|62 3"));
    EXPECT_EQ(colour_of(find("red"))[0], 1);
    EXPECT_EQ(colour_of(find("red"))[1], 0);
    EXPECT_EQ(find("off")->visible, 0);
    EXPECT_NEAR(colour_of(find("own"))[0], 0x12 / 255.0, 1e-6);
    EXPECT_EQ(find("paper"), nullptr);
    EXPECT_EQ(last_file_report().warnings.at(0).text,
              "2 HATCH have no counterpart here and were left out");
    EXPECT_EQ(last_file_report().warnings.at(1).text,
              "1 RAY have no counterpart here and were left out");
}

TEST_F(Drawing, BlocksWithinThemselvesAndWithoutEndAreRefused)
{
    std::string blocks;
    for (int i = 0; i < 9; ++i) { // each a hundred times the next one: 10^18 lines
        blocks += "0 BLOCK|2 b" + std::to_string(i) + "|0 INSERT|2 b" + std::to_string(i + 1) +
                  "|10 0|20 0|70 10|71 10|44 1|45 1|0 ENDBLK|";
    }
    blocks += "0 BLOCK|2 b9|0 LINE|10 0|20 0|11 1|21 1|0 ENDBLK|"
              "0 BLOCK|2 self|0 INSERT|2 self|10 0|20 0|0 LINE|10 0|20 0|11 1|21 1|0 ENDBLK";
    const std::string file = temporary_file("bomb.dxf");
    write_text(file, drawing("0 INSERT|8 a|2 b0|10 0|20 0", blocks));
    EXPECT_EQ(run("file_load", file), "0");
    EXPECT_NE(recording().boxes.back().find("repeat each other"), std::string::npos);
    load(drawing("0 INSERT|8 a|2 self|10 0|20 0", blocks));
    write_text(file, "Any Binary DXF\r\n\x1a" + std::string(20, '\0'));
    EXPECT_EQ(run("file_load", file), "0");
    EXPECT_NE(recording().boxes.back().find("binary"), std::string::npos);
}

TEST_F(Drawing, UnitsAreInTheReportAndHatchesCounted)
{
    const std::string head = "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1021\n9\n$INSUNITS\n70\n4\n"
                             "0\nENDSEC\n";
    const std::string body = "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n10\n0\n20\n0\n11\n5\n21\n0\n"
                             "0\nHATCH\n8\n0\n2\nSOLID\n0\nHATCH\n8\n0\n0\nENDSEC\n0\nEOF\n";
    const std::string file = temporary_file("units.dxf");
    write_text(file, head + body);
    ASSERT_EQ(run("file_load", file), "1");
    EXPECT_EQ(last_file_report().unit, "millimetres");
    EXPECT_EQ(find_object_size(vesk_get_world()).x, 5); // as they are
    ASSERT_EQ(last_file_report().warnings.size(), 1);
    EXPECT_EQ(last_file_report().warnings[0].text,
              "2 HATCH have no counterpart here and were left out");
    write_text(file, body);
    ASSERT_EQ(run("file_load", file), "1");
    EXPECT_EQ(last_file_report().unit, "");
}

TEST_F(Drawing, WhatIsWrittenComesBack)
{
    load(drawing(
        "0 LWPOLYLINE|8 Wand \\U+00E4|90 5|70 1|10 0.1|20 0|10 1|20 0|10 1.3|20 1|10 0.5|20 2|10 "
        "0|20 1|"
        "0 MESH|8 faces|92 5|10 0|20 0|30 0|10 1|20 0|30 0|10 1|20 1|30 0|10 0.5|20 2|30 0|"
        "10 0|20 1|30 0|93 6|90 5|90 0|90 1|90 2|90 3|90 4|0 LINE|8 faces|10 9|20 9|11 8|21 9|"
        "0 POINT|8 alone|10 3|20 4|30 5"));
    const std::string file = temporary_file("back.dxf");
    run("write_dxf", file);
    EXPECT_EQ(last_file_report().notes.at(0).number, 1); // polygon in triangles
    run("clear_all");
    ASSERT_EQ(run("file_load", file), "1");
    const object_t *wall = find("Wand \xC3\xA4");
    ASSERT_NE(wall, nullptr);
    EXPECT_EQ(corner_counts(wall), std::vector<std::size_t>{5});
    EXPECT_TRUE(has_point(wall, 1.3f, 0, -1));
    EXPECT_EQ(corner_counts(find("faces")), (std::vector<std::size_t>{3, 3, 3, 2}));
    EXPECT_TRUE(has_point(find("alone"), 3, 5, -4));
}

TEST(DrawingColours, FollowTheTable)
{
    const struct {
        int index;
        dxf_rgb colour;
    } known[] = {{1, {255, 0, 0}},      {7, {255, 255, 255}},  {10, {255, 0, 0}},
                 {11, {255, 127, 127}}, {30, {255, 127, 0}},   {94, {0, 127, 0}},
                 {150, {0, 127, 255}},  {255, {255, 255, 255}}};
    for (const auto &one : known) {
        EXPECT_TRUE(dxf_table_colour(one.index) == one.colour) << one.index;
    }
    for (int i = 1; i < 256; ++i)
        EXPECT_TRUE(dxf_table_colour(dxf_nearest_colour(dxf_table_colour(i))) ==
                    dxf_table_colour(i));
}

} // namespace
