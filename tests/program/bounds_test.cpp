// Where the numbers of commands end: the first and the last that are taken, and what is said to their
// neighbours.

#include "edit/document/undo_internal.h"
#include "model/palette.h"
#include "tests/support/mesh_test.h"

namespace {

using words_t = std::vector<std::string>;
struct bounds_case {
    const char *name;
    words_t words; // "#" stands for the number
    int first, last;
    const char *refusal; // told to first - 1 and last + 1, with the number; null: no answer
};
// clang-format off
const bounds_case bounds[] = {
    {"mirror",          {"mirror_with_undo", "#"},          0, 2,  "mirror - no axis #"},
    {"rotate_axis",     {"rotate_axis_angle_with_undo", "#", "30"}, 0, 2, "rotate - no axis #"},
    {"rotate_each",     {"rotate_each_with_undo", "#", "30"}, 0, 2, "rotate - there is no flat view #"},
    {"reduce",          {"reduce", "#"},                    1, 99, "reduce - give a percentage from 1 to 99"},
    {"set_col",         {"set_col", "#"},                   0, 14, "set colour - no palette entry #"},
    {"select_material", {"material_select", "#"},           0, 14, "select material - no palette entry #"},
    {"name_material",   {"material_set_name", "#", "oak"},  0, 14, "name material - no palette entry #"},
    {"get_material",    {"get_material", "#"},              0, 14, nullptr},
    {"surface_type",    {"set_surface_type", "#"},          0, 2,  "set surface type - no type #"},
};
// clang-format on
void PrintTo(const bounds_case &c, std::ostream *out) { *out << c.name; }

class Bounds : public SceneTest, public testing::WithParamInterface<bounds_case> {
protected:
    static std::string with(std::string text, int number)
    {
        const std::size_t at = text.find('#');
        return at == std::string::npos ? text : text.replace(at, 1, std::to_string(number));
    }
    // What is answered and told, in a scene of its own.
    static std::string outcome(int number)
    {
        run("clear_all");
        run("set_select_mode", "object");
        add_cube("cube");
        run("select_all");
        display_nothing();
        words_t words = GetParam().words;
        for (std::string &word : words)
            word = with(word, number);
        const std::string answer = run_words(words);
        return answer + "|" + last_message();
    }
    static void display_nothing() { recording().scripts.clear(); }
    static std::string refusal(int number)
    {
        return GetParam().refusal != nullptr ? "|" + with(GetParam().refusal, number) : "|";
    }
};

TEST_P(Bounds, BothEndsAreTakenAndTheirNeighboursRefused)
{
    const bounds_case &c = GetParam();
    for (const int number : {c.first, c.last})
        EXPECT_NE(outcome(number), refusal(number));
    for (const int number : {c.first - 1, c.last + 1}) {
        EXPECT_EQ(outcome(number), refusal(number));
        const std::string label = last_undo(); // of the selection or nothing
        EXPECT_TRUE(label.empty() || label == "selection" || label == "new cube") << label;
    }
}
INSTANTIATE_TEST_SUITE_P(Commands, Bounds, testing::ValuesIn(bounds));

} // namespace
