// What the objects panel and the status line are told, kept up over changes of every kind.

#include "edit/document/edit_support.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/identity.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/scene_test.h"

#include <algorithm>
#include <random>
#include <sstream>

namespace {

std::string id_text(const object_t *object) { return std::to_string(object_identity(object)); }

int surfaces_below(const object_t *object)
{
    int sum = object->num_surfaces;
    for (const object_t *child : each<object_t>(object->children))
        sum += surfaces_below(child);
    return sum;
}

// A row as the panel shows it. The names have no blanks.
std::string row_of(const object_t *object)
{
    std::ostringstream row;
    row << object_identity(object) << ' ' << object_identity(object->parent) << ' '
        << (object->type == OBJECT_POLY ? "poly " : "group ")
        << (*object->name == 0 ? "{}" : object->name) << ' ' << surfaces_below(object) << ' '
        << (object->visible != 0) << ' ' << (object->locked != 0);
    return row.str();
}

std::vector<object_t *> all_objects()
{
    std::vector<object_t *> all;
    for_each_object(vesk_get_world(), [&](object_t *object) {
        if (object != vesk_get_world())
            all.push_back(object);
    });
    return all;
}

std::vector<std::string> rows_of_model()
{
    std::vector<std::string> rows;
    for (const object_t *object : all_objects())
        rows.push_back(row_of(object));
    return rows;
}

// A panel that asks as the real one does, in pieces of two rows.
class panel_t {
public:
    void follow()
    {
        const int before = number_;
        std::istringstream head(run("object_rows_begin", number_));
        int anew = 0, objects = 0, count = 0;
        head >> number_ >> anew >> objects >> hidden >> locked >> count;
        if (anew != 0 && edit(before))
            return;
        if (anew != 0)
            rows.clear();
        for (int from = 0; from < count; from += 2)
            take(run("object_rows_part", number_, from, 2), anew != 0);
    }
    std::vector<std::string> rows;
    int hidden = 0, locked = 0;
    int edits = 0;

private:
    // As "object_rows_edit" says; false when it does not.
    bool edit(int before)
    {
        const std::string answer = run("object_rows_edit", number_);
        if (answer.empty())
            return false;
        std::istringstream in(answer);
        int old = 0, from = 0, count = 0;
        in >> old >> from >> count;
        EXPECT_EQ(old, before);
        const auto words = [&in] {
            std::vector<std::string> all;
            std::string word;
            for (in >> word; in >> word && word != "}";)
                all.push_back(word);
            return all;
        };
        for (const std::string &id : words())
            std::erase_if(rows, [&](const std::string &row) { return row.starts_with(id + " "); });
        const std::vector<std::string> others = words(), places = words();
        for (std::size_t i = 0; i < places.size(); i += 2)
            EXPECT_EQ(places[i + 1], place_below(places[i], from)) << answer;
        std::vector<std::string> kept = std::move(rows);
        rows.clear();
        for (int row = from; row < from + count; ++row)
            take(run("object_rows_part", number_, row, 1), true);
        rows.insert(rows.begin(), kept.begin(), kept.begin() + from);
        rows.insert(rows.end(), kept.begin() + from, kept.end());
        for (const std::string &row : others)
            take(run("object_rows_part", number_, std::stoi(row), 1), false);
        ++edits;
        return true;
    }
    // Of the rows that are left: how many of a parent's come before that place; "end" when no others do.
    [[nodiscard]] std::string place_below(const std::string &parent, int from) const
    {
        const auto is_below = [&](const std::string &row) {
            std::istringstream in(row);
            std::string id, above;
            in >> id >> above;
            return above == parent;
        };
        if (std::none_of(rows.begin() + from, rows.end(), is_below))
            return "end";
        return std::to_string(std::count_if(rows.begin(), rows.begin() + from, is_below));
    }
    void take(const std::string &words, bool anew)
    {
        std::istringstream in(words);
        for (std::string id, rest[6]; in >> id;) {
            std::string row = id;
            for (std::string &word : rest) {
                in >> word;
                row += " " + word;
            }
            if (anew) {
                rows.push_back(row);
                continue;
            }
            for (std::string &old : rows) {
                if (old.starts_with(id + " "))
                    old = row;
            }
        }
    }
    int number_ = 0;
};

// Counted without any of what the program keeps.
std::string counts_of_model()
{
    const auto &all = selection();
    int objects = 0, surfaces = 0, vertices = 0;
    for (const object_t *object : all_objects()) {
        ++objects;
        surfaces += object->num_surfaces;
        vertices += object->num_vertices;
    }
    const std::vector<object_t *> chosen = elements_of<object_t>(all.objects);
    int chosen_surfaces = list_count(all.surfaces), chosen_vertices = list_count(all.vertices);
    for (object_t *object : all_objects()) {
        const object_t *above = object;
        while (above != nullptr && std::find(chosen.begin(), chosen.end(), above) == chosen.end())
            above = above->parent;
        if (above != nullptr) {
            chosen_surfaces += object->num_surfaces;
            chosen_vertices += object->num_vertices;
        }
    }
    std::ostringstream text;
    text << list_count(all.objects) << ' ' << objects << ' ' << chosen_surfaces << ' ' << surfaces
         << ' ' << chosen_vertices << ' ' << vertices;
    return text.str();
}

class PanelQuestions : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        for (int i = 0; i < 12; ++i)
            add_cube(("cube" + std::to_string(i)).c_str());
        run("set_select_mode", "object");
    }
    object_t *any()
    {
        const std::vector<object_t *> all = all_objects();
        return all.empty() ? nullptr : all[random_() % all.size()];
    }
    std::mt19937 random_{20251};
};

TEST_F(PanelQuestions, FollowEveryChange)
{
    panel_t panel;
    const std::vector<std::string> modes = {"object", "tree", "surface", "vertex"};
    const std::vector<std::vector<std::string>> commands = {
        {"select_all"},
        {"clear_selection"},
        {"delete"},
        {"duplicate"},
        {"group"},
        {"ungroup"},
        {"hide_selected"},
        {"lock_selected"},
        {"unhide"},
        {"unlock"},
        {"undo"},
        {"redo"},
        {"step_back"},
        {"move", "1", "0", "0"},
        {"surface_make_hole"},
        {"new_cube"},
    };
    for (int i = 0; i < 3000; ++i) {
        object_t *const one = any();
        std::string what;
        if (i % 4 == 0) {
            const auto &words = commands[random_() % commands.size()];
            // The model stays small.
            const bool grows = words[0] == "duplicate" || words[0] == "surface_make_hole";
            what = grows && list_count(vesk_get_world()->children) > 15 ? "delete" : words[0];
            run_words(what == words[0] ? words : std::vector<std::string>{what});
        } else if (one == nullptr) {
            what = "add";
            add_cube("added");
        } else {
            switch (random_() % 8) {
            case 0:
                run("objects_set", id_text(one), "name", what = "n" + std::to_string(i));
                break;
            case 1:
                run("objects_select", id_text(one));
                break;
            case 2:
                run("set_select_mode", modes[random_() % modes.size()]);
                break;
            case 3:
                object_reparent(one, any());
                break;
            case 4: // one goes, another may get its memory
                what = "freed";
                object_delete(one);
                add_cube("fresh");
                break;
            case 5: // by foreign code: nothing is said
                what = "foreign";
                one->visible = one->visible == 0 ? 1 : 0;
                mark_all_suspect();
                break;
            case 6:
                run("object_unhide", id_text(one));
                break;
            default:
                object_move_to_head(one);
                break;
            }
        }
        SCOPED_TRACE(std::to_string(i) + " " + what);
        ASSERT_EQ(run("get_counts"), counts_of_model());
        if (random_() % 3 == 0)
            panel.follow();
        if (random_() % 3 != 0)
            continue;
        panel.follow();
        ASSERT_EQ(panel.rows, rows_of_model());
        int hidden = 0;
        for (const object_t *object : all_objects())
            hidden += object->visible == 0 ? 1 : 0;
        ASSERT_EQ(panel.hidden, hidden);
    }
    EXPECT_GT(panel.edits, 100);
}

TEST_F(PanelQuestions, PiecesOfTheSelectionAreTheWhole)
{
    run("select_all");
    run("select_elements", "remove", id_text(any()));
    const std::string whole = run("get_selected_objects");
    EXPECT_EQ(run("selected_objects_part", 0, 5) + " " + run("selected_objects_part", 5, 100),
              whole);
    EXPECT_EQ(run("selected_objects_part", 11, 5), "");
    EXPECT_EQ(run("selected_objects_part", 0, 0), "");
    std::string all, flags;
    for (const object_t *object : all_objects()) {
        all += id_text(object) + " ";
        flags += (" " + whole + " ").find(" " + id_text(object) + " ") == std::string::npos ? "0 "
                                                                                            : "1 ";
    }
    EXPECT_EQ(run("objects_are_selected", all) + " ", flags);
}

TEST_F(PanelQuestions, WhatLiesBelowAnotherGoesWithItOnce)
{
    const std::vector<object_t *> all = all_objects();
    object_reparent(all[1], all[0]);
    object_reparent(all[2], all[1]);
    object_reparent(all[4], all[3]);
    const std::vector<object_t *> listed = {all[2], all[5], all[0], all[4], all[5], all[6], all[0]};
    EXPECT_EQ(without_descendants(listed),
              (std::vector<object_t *>{all[5], all[0], all[4], all[6]}));
    EXPECT_EQ(without_descendants({all[4], all[3], all[4]}), (std::vector<object_t *>{all[3]}));
    EXPECT_TRUE(without_descendants({}).empty());
}

} // namespace
