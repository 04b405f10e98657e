#include "fileio/text_objects.h"

#include "base/current_file.h"
#include "base/home.h"
#include "base/prefs.h"
#include "base/ui_port.h"
#include "edit/document/selection.h"
#include "edit/document/undo.h"
#include "model/bounds.h"
#include "model/each.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/places.h"
#include "tests/support/scene_test.h"

#include <cmath>

namespace {

class Text : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        vesk_set_homedir(built_file("home").c_str());
    }
    void TearDown() override
    {
        load_font_object("no font");
        SceneTest::TearDown();
    }
    void set_font(const char *path)
    {
        ui_port().free_text(prefs.fontpath);
        prefs.fontpath = ui_port().alloc_text(path);
    }
};

object_t *child(const object_t *object, int i) { return object_get_kid_at(object, i); }

TEST_F(Text, StandsInLinesWithBlanksAndGaps)
{
    object_t *text = create_text("X Y\nZ");
    ASSERT_NE(text, nullptr);
    EXPECT_STREQ(text->name, "X Y\nZ");
    ASSERT_EQ(text->num_children, 3);
    const point3_t x_size = find_object_size(child(text, 0));
    const float gap = static_cast<float>(prefs.font_char_offset);
    EXPECT_NEAR(find_object_min(child(text, 0)).x, 0, 1e-5);
    EXPECT_NEAR(find_object_min(child(text, 1)).x, x_size.x + gap + 0.5f, 1e-5);
    EXPECT_NEAR(find_object_min(child(text, 2)).x, 0, 1e-5);
    EXPECT_NEAR(find_object_min(child(text, 2)).y, -x_size.y, 1e-5);
    object_free(text);
}

TEST_F(Text, HasUtf8CharactersAndStrayBytes)
{
    object_t *text = create_text("\xC3\xA9\xE9"); // e acute, once as UTF-8 and once as one byte
    ASSERT_NE(text, nullptr);
    ASSERT_EQ(text->num_children, 2);
    EXPECT_STREQ(child(text, 0)->name, "\xC3\xA9");
    EXPECT_STREQ(child(text, 1)->name, "\xC3\xA9");
    object_free(text);
}

TEST_F(Text, TellsWhatItCannotMake)
{
    EXPECT_EQ(create_text("\xE2\x82\xAC"), nullptr);
    EXPECT_EQ(recording().console, "Loading font file 'font.vesk'\n"
                                   "no font char for \xE2\x82\xAC\nno chars created\n");
    recording().console.clear();
    set_font("nowhere.vesk");
    EXPECT_EQ(create_text("a"), nullptr);
    EXPECT_EQ(recording().console,
              "Loading font file 'nowhere.vesk'\ncreate_text: no font loaded\n");
    EXPECT_EQ(run("add_text", "a"), "");
    EXPECT_EQ(vesk_get_world()->num_children, 0);
    EXPECT_EQ(last_undo(), "");
}

TEST_F(Text, IsAddedSelectedAndUndone)
{
    current_file_set("/somewhere/mine.vesk");
    run("create_text", "Ab");
    EXPECT_EQ(current_file().name, "/somewhere/mine.vesk");
    EXPECT_EQ(last_undo(), "add text");
    ASSERT_NE(get_current_object(), nullptr);
    EXPECT_STREQ(get_current_object()->name, "Ab");
    recording().console.clear();
    run("add_text", "c");
    EXPECT_EQ(recording().console, ""); // the font is there
    run("undo");
    run("undo");
    EXPECT_EQ(vesk_get_world()->num_children, 0);
}

// ---- the font ----

double area_of(const surface_t *surface)
{
    double sum = 0;
    for (const listitem *node = surface->refs; node; node = node->next) {
        const listitem *next = node->next ? node->next : surface->refs;
        const point3_t &a = item_of<svertex>(node)->vertex->position;
        const point3_t &b = item_of<svertex>(next)->vertex->position;
        sum += static_cast<double>(a.x) * b.y - static_cast<double>(b.x) * a.y;
    }
    return sum / 2;
}

bool edges_cross(const surface_t *surface)
{
    std::vector<point3_t> p;
    for (const svertex *reference : each<svertex>(surface->refs))
        p.push_back(reference->vertex->position);
    const auto side = [](const point3_t &a, const point3_t &b, const point3_t &c) {
        const double turn = (static_cast<double>(b.x) - a.x) * (static_cast<double>(c.y) - a.y) -
                            (static_cast<double>(b.y) - a.y) * (static_cast<double>(c.x) - a.x);
        return turn > 1e-9 ? 1 : turn < -1e-9 ? -1 : 0;
    };
    for (std::size_t i = 0; i < p.size(); ++i) {
        const point3_t &a = p[i], &b = p[(i + 1) % p.size()];
        for (std::size_t k = i + 1; k < p.size(); ++k) {
            const point3_t &c = p[k], &d = p[(k + 1) % p.size()];
            if (side(a, b, c) * side(a, b, d) < 0 && side(c, d, a) * side(c, d, b) < 0)
                return true;
        }
    }
    return false;
}

TEST_F(Text, FontHasEveryGlyphAsFilledPolygonsFacingTheViewer)
{
    std::string all;
    for (int code = 0x21; code <= 0xFF; ++code) {
        if (code < 0x7F || (code > 0xA0 && code != 0xAD)) {
            all += code < 0x80 ? std::string(1, static_cast<char>(code))
                               : std::string{static_cast<char>(0xC0 | (code >> 6)),
                                             static_cast<char>(0x80 | (code & 0x3F))};
        }
    }
    object_t *text = create_text(all.c_str());
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(recording().console, "Loading font file 'font.vesk'\n"); // none is missing
    for (const object_t *glyph : each<object_t>(text->children)) {
        const point3_t size = find_object_size(glyph);
        EXPECT_LT(size.x, 1.6f) << glyph->name;
        EXPECT_LT(size.y, 1.8f) << glyph->name;
        for (const surface_t *surface : each<surface_t>(glyph->surfaces)) {
            EXPECT_EQ(surface->type, SURFACE_POLYGON);
            EXPECT_NEAR(surface->normal.z, 1, 1e-5) << glyph->name;
            EXPECT_GT(area_of(surface), 0) << glyph->name;
            EXPECT_FALSE(edges_cross(surface)) << glyph->name;
        }
    }
    // A ring: less than its box, more than nothing; one polygon, its hole bridged.
    const object_t *o = find_named_object(text, "o");
    ASSERT_EQ(o->num_surfaces, 1);
    const point3_t size = find_object_size(o);
    const double filled = area_of(item_of<surface_t>(o->surfaces)) / (size.x * size.y);
    EXPECT_GT(filled, 0.2);
    EXPECT_LT(filled, 0.6);
    EXPECT_EQ(find_named_object(text, "8")->num_surfaces, 1);
    EXPECT_EQ(find_named_object(text, "i")->num_surfaces, 2);
    object_free(text);
}

} // namespace
