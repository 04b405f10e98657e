// What is done with the mouse is echoed as commands that do the same: the drag with events, the
// lines again on the model before it, and both models saved and compared.

#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "fileio/vesk_writer.h"
#include "model/each.h"
#include "model/world.h"
#include "tests/view/tool_fixture.h"

#include <functional>

namespace {

std::string saved_model()
{
    const std::string file = temporary_file("echo.vesk");
    run("file_save", file);
    return read_text(file);
}

// The words of the echoed commands, oldest first.
std::vector<std::vector<std::string>> echoed()
{
    std::vector<std::vector<std::string>> lines;
    for (const std::string &script : recording().scripts) {
        if (!script.starts_with("echo_command "))
            continue;
        std::vector<std::string> words;
        bool fresh = true;
        for (std::size_t i = std::string_view("echo_command ").size(); i < script.size(); ++i) {
            if (script[i] == ' ') {
                fresh = true;
                continue;
            }
            if (fresh)
                words.emplace_back();
            fresh = false;
            i += script[i] == '\\' ? 1 : 0;
            words.back() += script[i];
        }
        lines.push_back(words);
    }
    return lines;
}

std::string selection_text()
{
    std::string text = run("get_app_mode");
    for (const listitem *list : {selection().objects, selection().surfaces, selection().vertices}) {
        text += ";";
        for (const void *element : each<void>(list))
            text += std::to_string(reinterpret_cast<std::uintptr_t>(element)) + " ";
    }
    return text;
}

class Echo : public Tools {
protected:
    void SetUp() override
    {
        Tools::SetUp();
        select_object(cube);
        prefs.gridsnap = 0;
    }
    // `act` changes the model by one undo record; its lines must do the same.
    void expect_same_model(const std::function<void()> &act)
    {
        recording().scripts.clear();
        act();
        const std::vector<std::vector<std::string>> lines = echoed();
        ASSERT_FALSE(lines.empty());
        const std::string by_mouse = saved_model();
        run("undo");
        const std::string before = saved_model();
        EXPECT_NE(before, by_mouse) << "the drag changed nothing";
        for (const std::vector<std::string> &line : lines)
            EXPECT_EQ(run_words(line).find("incorrect number"), std::string::npos) << line[0];
        EXPECT_EQ(saved_model(), by_mouse) << lines[0][0];
        run("undo");
        EXPECT_EQ(saved_model(), before);
    }
    void expect_same_selection(const std::function<void()> &act)
    {
        recording().scripts.clear();
        const int mode = select_mode();
        const saved_selection_t start = selection_clone();
        act();
        const std::vector<std::vector<std::string>> lines = echoed();
        ASSERT_FALSE(lines.empty());
        const std::string by_mouse = selection_text();
        saved_selection_t again = start;
        selection_set_mode(mode);
        selection_restore(&again);
        for (const std::vector<std::string> &line : lines)
            run_words(line);
        EXPECT_EQ(selection_text(), by_mouse) << lines[0][0];
    }
};

TEST_F(Echo, DragsOfTheSelection)
{
    expect_same_model([&] { drag(VIEW_XY, 210, 140, 251, 117); });
    expect_same_model([&] { drag(VIEW_XYZ, 200, 150, 233, 171); });
    expect_same_model([&] { drag(VIEW_XY, 258, 150, 291, 150); });        // a handle
    expect_same_model([&] { drag(VIEW_XZ, 258, 92, 291, 60, control); }); // a corner
    set_new_draw_mode(DRAW_ROTATE);
    for (const int view : {VIEW_XY, VIEW_ZY, VIEW_XZ})
        expect_same_model([&] { drag(view, 240, 150, 230, 121); });
    prefs.rotate_about_object_centre = 1;
    run("create", "box", 0, 1, 1, 1, 2, 3, 4);
    run("select_all");
    ASSERT_EQ(selection_get_num_objects(), 2);
    expect_same_model([&] { drag(VIEW_ZY, 240, 110, 230, 91); });
}

TEST_F(Echo, DragsOfVerticesAndExtrusions)
{
    set_new_select_mode(SELECT_VERTEX);
    run("select_elements", "set", run("object_get_children", run("get_world")) + ":1,4-6");
    ASSERT_EQ(selection_get_num_vertices(), 4);
    expect_same_model([&] { drag(VIEW_XY, 250, 100, 273, 91); });
    prefs.rotate_about_object_centre = 1; // means objects only
    set_new_draw_mode(DRAW_ROTATE);
    expect_same_model([&] { drag(VIEW_XY, 240, 150, 230, 121); });
    set_new_select_mode(SELECT_SURFACE);
    clear_selection();
    set_new_draw_mode(DRAW_EXTRUDE);
    expect_same_model([&] {
        click(VIEW_XY, 220, 130);
        drag(VIEW_XY, 220, 130, 247, 101);
    });
}

TEST_F(Echo, CreateTools)
{
    for (const int mode : {DRAW_CIRCLE, DRAW_DISK, DRAW_RECT, DRAW_GRID, DRAW_MESH, DRAW_BOX,
                           DRAW_CYLINDER, DRAW_SPHERE}) {
        set_new_draw_mode(mode);
        for (const int view : {VIEW_XY, VIEW_ZY, VIEW_XZ}) {
            expect_same_model([&] { drag(view, 31, 42, 177, 131); });
            expect_same_model([&] { click(view, 31, 42); });
        }
    }
    set_new_draw_mode(DRAW_LIGHT);
    expect_same_model([&] { click(VIEW_XZ, 57, 61); });
    const struct {
        int mode;
        int points;
    } outlines[] = {{DRAW_POLYGON, 4}, {DRAW_POLYLINE, 5}, {DRAW_LINE, 2}};
    for (const auto &row : outlines) {
        set_new_draw_mode(row.mode);
        expect_same_model([&] {
            for (int i = 0; i < row.points; ++i)
                click(VIEW_ZY, 31 + i * 40, 42 + i % 2 * 53);
            key("Return");
        });
    }
}

TEST_F(Echo, SelectingByClicksAndBands)
{
    run("create", "box", 0, 1, 1, 1, 2, 3, 4);
    for (const int mode : {SELECT_TREE, SELECT_OBJECT, SELECT_SURFACE, SELECT_VERTEX}) {
        set_new_select_mode(mode);
        clear_selection();
        expect_same_selection([&] { click(VIEW_XY, 248, 102); });
        expect_same_selection([&] { click(VIEW_XY, 248, 102, shift); });
        expect_same_selection([&] { drag(VIEW_XY, 10, 10, 260, 290); });
        expect_same_selection([&] { drag(VIEW_XY, 390, 290, 220, 10); });
        expect_same_selection([&] { drag(VIEW_XY, 200, 290, 140, 10, control); });
        expect_same_selection([&] { click(VIEW_XY, 20, 20); });
        recording().scripts.clear();
        click(VIEW_XY, 20, 20);
        EXPECT_TRUE(echoed().empty()) << "nothing was selected before";
    }
}

TEST_F(Echo, ADoubleClickGoesDownAndRepeatLastRepeatsADrag)
{
    run("group");
    run("set_select_mode", "tree");
    clear_selection();
    expect_same_selection([&] {
        press(VIEW_XY, 230, 120);
        release(VIEW_XY, 230, 120);
        seconds -= 1;
        press(VIEW_XY, 230, 120);
        release(VIEW_XY, 230, 120);
    });
    EXPECT_EQ(select_mode(), SELECT_OBJECT);

    drag(VIEW_XY, 210, 140, 310, 140);
    run("repeat_last");
    EXPECT_EQ(run("get_selection_centre"), "2 0 0");
    EXPECT_EQ(last_undo(), "move");
}

TEST_F(Echo, ElementsThatAreNotThereAreLeftOut)
{
    const std::string id = run("object_get_children", run("get_world"));
    set_new_select_mode(SELECT_SURFACE);
    run("select_elements", "set", id + ":0,4-99 4711:1 " + id + ":-3 junk");
    EXPECT_EQ(selection_get_num_surfaces(), 3);
    run("select_elements", "remove", id);
    EXPECT_TRUE(nothing_is_selected());
    run("object_hide", id);
    run("select_elements", "add", id + ":0");
    EXPECT_TRUE(nothing_is_selected());
    run("select_elements", "replace", id);
    EXPECT_EQ(last_message(), "select elements - set, add or remove, not 'replace'");
}

} // namespace
