#include "edit/document/edge_selection.h"
#include "edit/document/selection_internal.h"
#include "model/identity.h"
#include "model/object_notes.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"

#include <numeric>
#include <set>
#include <sstream>

namespace {

class SelectionSets : public SceneTest {
protected:
    static std::string selected()
    {
        std::set<std::string> edges;
        std::istringstream words(run("get_selected_edges"));
        for (std::string id, a, b; words >> id >> a >> b;)
            edges.insert(a + "-" + b + " ");
        return run("get_app_mode") + " " +
               std::accumulate(edges.begin(), edges.end(), std::string()) + "/" +
               run("selection_get_num_vertices") + "/" + run("selection_get_num_surfaces") + "/" +
               run("selection_get_num_objects");
    }
};

TEST_F(SelectionSets, BringEveryKindOfSelectionBack)
{
    object_t *squares = add_squares(3, 3);
    object_set_userdata(squares, "for others");
    std::vector<std::string> then;
    select_surfaces_at(squares, {0, 4, 5, 6});
    run("selection_set_save", "front faces");
    then.push_back(selected());
    select_vertices_at(squares, {3, 7});
    run("selection_set_save", "v");
    then.push_back(selected());
    run("set_select_mode", "edge");
    run("select_loop");
    run("selection_set_save", " {e} $x ");
    then.push_back(selected());
    run("set_select_mode", "object");
    select_object(squares);
    run("selection_set_save", "o");
    then.push_back(selected());
    EXPECT_EQ(run("selection_set_list"), "front\\ faces o v \\{e\\}\\ \\$x");
    clear_selection();
    int i = 0;
    for (const char *name : {"front faces", "v", "{e} $x", "o"}) {
        run("selection_set_load", name);
        EXPECT_EQ(selected(), then[static_cast<std::size_t>(i++)]) << name;
    }
}

TEST_F(SelectionSets, StandInTheFileBesideTheDataOfOthers)
{
    object_t *squares = add_squares(2, 1);
    object_set_userdata(squares, "two\nlines\n");
    select_surfaces_at(squares, {1});
    run("selection_set_save", "one");
    EXPECT_EQ(std::string(squares->data), "two\nlines\n\nselection-set surface 6/2 1 one");
    EXPECT_EQ(object_user_data(squares), "two\nlines\n");
    EXPECT_NE(run("object_info", object_identity(squares)).find("data two\\nlines\\n "),
              std::string::npos);
    run("objects_set", object_identity(squares), "data", "other");
    EXPECT_EQ(std::string(squares->data), "other\nselection-set surface 6/2 1 one");
    const std::string file = temporary_file("sets.vesk");
    run("save_vesk", file);
    run("clear_all");
    EXPECT_EQ(run("selection_set_list"), "");
    run("load_file", file);
    EXPECT_EQ(run("selection_set_list"), "one");
    run("selection_set_load", "one");
    EXPECT_EQ(selection().num_surfaces, 1);
    run("selection_set_delete", "one");
    EXPECT_EQ(run("selection_set_list"), "");
    run("undo");
    EXPECT_EQ(run("selection_set_list"), "one");
}

TEST_F(SelectionSets, AreReplacedByNameAndNotMistakenAfterChanges)
{
    object_t *squares = add_squares(2, 1);
    select_surfaces_at(squares, {1});
    run("selection_set_save", "one");
    select_vertices_at(squares, {0, 1});
    run("selection_set_save", "one");
    EXPECT_EQ(run("selection_set_list"), "one");
    run("move_with_undo", "0", "0", "1");
    clear_selection();
    run("selection_set_load", "one");
    EXPECT_EQ(selected_vertices_of(squares), (std::vector<int>{0, 1}));
    select_surfaces_at(squares, {0});
    run("surface_triangulate");
    run("selection_set_load", "one");
    EXPECT_EQ(last_message(),
              "selection set 'one' - 1 objects have other vertices and surfaces since");
    EXPECT_TRUE(nothing_is_selected());
    run("selection_set_load", "two");
    EXPECT_EQ(last_message(), "selection set - there is none named 'two'");
    run("selection_set_save", "two");
    EXPECT_EQ(last_message(), "selection set - nothing selected");
}

TEST_F(SelectionSets, LinesThatOthersWroteAreReadWithCare)
{
    object_t *squares = add_squares(2, 1);
    object_set_userdata(squares, "selection-set surface 6/2 0-99999999,5,-3 far\n"
                                 "selection-set nonsense 6/2 1 a\n"
                                 "selection-set surface\n"
                                 "selection-set vertex 6/2 x,y b\nother text");
    for (const char *name : {"far", "a", "b", ""})
        run("selection_set_load", name);
    run("selection_set_load", "far");
    EXPECT_EQ(selection().num_surfaces, 2);
}

} // namespace
