#include "edit/check/model_check.h"
#include "edit/document/selection_internal.h"
#include "edit/document/undo_internal.h"
#include "model/each.h"
#include "model/world.h"
#include "model/world_check.h"
#include "tests/edit/mesh_corpus.h"
#include "tests/support/damage.h"
#include "tests/support/mesh_test.h"
#include "tests/support/random_mesh.h"

#include <algorithm>
#include <cmath>

namespace {

std::vector<object_t *> objects()
{
    std::vector<object_t *> all;
    for (object_t *object : each<object_t>(vesk_get_world()->children))
        all.push_back(object);
    return all;
}

class Boolean : public SceneTest {
protected:
    void TearDown() override
    {
        EXPECT_TRUE(world_check(vesk_get_world()).empty());
        SceneTest::TearDown();
    }
};

struct solid_t {
    std::vector<point3_t> points;
    faces_t faces;
};

// A prism over an outline in the plane z = 0, facing outwards.
solid_t prism(const std::vector<point3_t> &outline, float height)
{
    const int n = static_cast<int>(outline.size());
    solid_t solid = {outline, faces_t(2)};
    for (const point3_t &p : outline)
        solid.points.push_back({p.x, p.y, p.z + height});
    for (int i = 0; i < n; ++i) {
        solid.faces[0].push_back(n - 1 - i);
        solid.faces[1].push_back(n + i);
        solid.faces.push_back({i, (i + 1) % n, n + (i + 1) % n, n + i});
    }
    return solid;
}

solid_t box(float x, float y, float z, float dx, float dy, float dz)
{
    return prism({{x, y, z}, {x + dx, y, z}, {x + dx, y + dy, z}, {x, y + dy, z}}, dz);
}

// Teeth of two radii by turns; `teeth` of them.
solid_t gear(int teeth, float inner, float outer, float height)
{
    std::vector<point3_t> outline;
    for (int i = 0; i < 4 * teeth; ++i) {
        const double angle = 2 * 3.14159265358979 * i / (4 * teeth);
        const float r = i % 4 < 2 ? outer : inner;
        outline.push_back(
            {r * static_cast<float>(std::cos(angle)), r * static_cast<float>(std::sin(angle)), 0});
    }
    return prism(outline, height);
}

solid_t star(int points, float inner, float outer, float height)
{
    std::vector<point3_t> outline;
    for (int i = 0; i < 2 * points; ++i) {
        const double angle = 3.14159265358979 * i / points;
        const float r = i % 2 == 0 ? outer : inner;
        outline.push_back(
            {r * static_cast<float>(std::cos(angle)), r * static_cast<float>(std::sin(angle)), 0});
    }
    return prism(outline, height);
}

object_t *add(const solid_t &solid) { return add_mesh(solid.points, solid.faces); }

// The volume that the operation leaves of A and B; they are there again afterwards.
double left_of(const solid_t &a, const solid_t &b, const char *operation, const char *what)
{
    run("clear_all");
    select_object(add(a));
    select_object(add(b));
    run("boolean", operation);
    EXPECT_EQ(last_message().substr(0, 10), "boolean - ") << what;
    EXPECT_EQ(last_undo(), "boolean") << what << ": " << last_message();
    EXPECT_EQ(objects().size(), 1u);
    object_t *result = objects().front();
    expect_sound(result);
    const model_findings found = object_find_problems(result);
    EXPECT_EQ(found.total(model_problem::open_edge), 0) << what;
    EXPECT_EQ(found.total(model_problem::flipped), 0) << what;
    EXPECT_EQ(found.total(model_problem::duplicate_vertex), 0) << what;
    EXPECT_EQ(found.total(model_problem::unused_vertex), 0) << what;
    EXPECT_EQ(found.total(model_problem::zero_area), 0) << what;
    return volume(result);
}

// ---- worked by hand ----

struct boxes_case {
    const char *name;
    solid_t b;            // with the box from 0 to 2
    double in_b, in_both; // volumes
    int surfaces[3];      // of union, difference, intersection
    bool touches = false; // one edge or corner remains in common
};
// clang-format off
const boxes_case boxes_cases[] = {
    {"corner",          box(1, 1, 1, 2, 2, 2),             8,   1,   {12, 9, 6}},
    {"identical",       box(0, 0, 0, 2, 2, 2),             8,   8,   {6, 0, 6}},
    {"disjoint",        box(5, 0, 0, 2, 2, 2),             8,   0,   {12, 6, 0}},
    {"inside",          box(0.5f, 0.5f, 0.5f, 1, 1, 1),    1,   1,   {6, 12, 6}},
    {"face_to_face",    box(2, 0, 0, 2, 2, 2),             8,   0,   {10, 6, 0}},
    {"small_on_face",   box(2, 0.5f, 0.5f, 1, 1, 1),       1,   0,   {11, 6, 0}},
    {"coplanar_top",    box(1, 0.5f, 0, 2, 1, 2),          4,   2,   {12, 10, 6}},
    {"through",         box(-1, 0.5f, 0.5f, 4, 1, 1),      4,   2,   {16, 10, 6}},
    {"slot",            box(0.5f, 0.5f, 1, 1, 3, 1),       3,   1.5, {11, 10, 6}},
    {"shares_an_edge",  box(2, 2, 0, 1, 1, 2),             2,   0,   {12, 6, 0}, true},
    {"shares_a_corner", box(2, 2, 2, 1, 1, 1),             1,   0,   {12, 6, 0}, true},
    {"half",            box(0, 0, 0, 1, 2, 2),             4,   4,   {6, 6, 6}},
    {"pocket",          box(0.5f, 0.5f, 1, 1, 1, 1),       1,   1,   {6, 11, 6}},
};
// clang-format on
void PrintTo(const boxes_case &c, std::ostream *out) { *out << c.name; }
class BooleanOfBoxes : public Boolean, public testing::WithParamInterface<boxes_case> {};

TEST_P(BooleanOfBoxes, AreWhatTheyShouldBe)
{
    const boxes_case &c = GetParam();
    const char *operations[] = {"union", "difference", "intersection"};
    const double volumes[] = {8 + c.in_b - c.in_both, 8 - c.in_both, c.in_both};
    const solid_t a = box(0, 0, 0, 2, 2, 2);
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(left_of(a, c.b, operations[i], operations[i]), volumes[i], 1e-5)
            << operations[i];
        object_t *result = objects().front();
        EXPECT_EQ(result->num_surfaces, c.surfaces[i]) << operations[i];
        if (!c.touches) {
            EXPECT_EQ(object_find_problems(result).problems.size(), 0u) << operations[i];
        }
    }
}
INSTANTIATE_TEST_SUITE_P(Places, BooleanOfBoxes, testing::ValuesIn(boxes_cases));

// ---- sums of volumes ----

// Turned about an axis; by a quarter without any rounding.
void turn(solid_t &solid, int axis, double degrees)
{
    const bool exact = std::fmod(degrees, 90) == 0;
    const double c = exact ? std::round(std::cos(degrees / 57.29577951308232))
                           : std::cos(degrees / 57.29577951308232);
    const double s = exact ? std::round(std::sin(degrees / 57.29577951308232))
                           : std::sin(degrees / 57.29577951308232);
    for (point3_t &p : solid.points) {
        float *at[] = {&p.x, &p.y, &p.z};
        float &u = *at[(axis + 1) % 3], &v = *at[(axis + 2) % 3];
        const double old_u = u, old_v = v;
        u = static_cast<float>(old_u * c - old_v * s);
        v = static_cast<float>(old_u * s + old_v * c);
    }
}

void move(solid_t &solid, float x, float y, float z)
{
    for (point3_t &p : solid.points)
        p = {p.x + x, p.y + y, p.z + z};
}

solid_t random_solid(random_source &random)
{
    const auto whole = [&](int low, int high) {
        return static_cast<float>(low + random.below(high - low + 1)) / 2;
    };
    switch (random.below(6)) {
    case 0:
        return gear(3 + random.below(6), 1, 1.5f, whole(1, 4));
    case 1:
        return star(3 + random.below(5), 0.5f, 1.5f, whole(1, 4));
    case 2:
        return prism({{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 0}, {1, 2, 0}, {0, 2, 0}},
                     whole(1, 4));
    case 3: { // hollow
        solid_t outer = box(-1.5f, -1.5f, -1.5f, 3, 3, 3);
        const solid_t hole = box(-whole(1, 2), -1, -whole(1, 2), whole(1, 3), 1.5f, whole(1, 2));
        for (std::vector<int> face : hole.faces) {
            std::reverse(face.begin(), face.end());
            for (int &v : face)
                v += 8;
            outer.faces.push_back(face);
        }
        outer.points.insert(outer.points.end(), hole.points.begin(), hole.points.end());
        return outer;
    }
    default:
        return box(whole(-3, 1), whole(-3, 1), whole(-3, 1), whole(1, 4), whole(1, 4), whole(1, 4));
    }
}

// Places that are often the same: on a lattice, turned by quarters or alike, or anyhow.
void place(random_source &random, int kind, solid_t &a, solid_t &b)
{
    const auto step = [&] { return static_cast<float>(random.below(7) - 3) / 2; };
    move(b, step(), step(), step());
    if (kind % 4 == 1)
        turn(b, random.below(3), 90 * random.below(4));
    if (kind % 4 == 2) {
        const double degrees = random.between(0, 360);
        const int axis = random.below(3);
        turn(a, axis, degrees);
        turn(b, axis, degrees);
    }
    if (kind % 4 == 3) {
        for (int axis = 0; axis < 3; ++axis)
            turn(b, axis, random.between(0, 360));
    }
}

TEST_F(Boolean, LosesNoVolumeOfRandomPairs)
{
    const int pairs = fewer_when_checked(1000);
    for (int i = 1; i <= pairs; ++i) {
        random_source random(static_cast<std::uint32_t>(i));
        solid_t a = random_solid(random), b = random_solid(random);
        place(random, i, a, b);
        const std::string what = "pair " + std::to_string(i);
        SCOPED_TRACE(what);
        run("clear_all");
        const double in_a = volume(add(a)), in_b = volume(add(b));
        const double in_any = left_of(a, b, "union", "union");
        const double in_both = left_of(a, b, "intersection", "intersection");
        const double in_a_alone = left_of(a, b, "difference", "difference");
        EXPECT_NEAR(in_any + in_both, in_a + in_b, (in_a + in_b) * 1e-5);
        EXPECT_NEAR(in_a_alone + in_both, in_a, (in_a + in_b) * 1e-5);
        EXPECT_GE(in_both, -1e-5);
        if (i % 20 == 0) { // the other way round, and with itself
            EXPECT_NEAR(left_of(b, a, "union", "other union"), in_any, (in_a + in_b) * 1e-5);
            EXPECT_NEAR(left_of(b, a, "intersection", "other intersection"), in_both,
                        (in_a + in_b) * 1e-5);
            EXPECT_NEAR(left_of(a, a, "union", "with itself"), in_a, in_a * 1e-5);
            EXPECT_EQ(left_of(a, a, "difference", "without itself"), 0);
        }
        if (HasFailure())
            break;
    }
}

// Bumpy balls of triangles: no plane, no lattice.
TEST_F(Boolean, LosesNoVolumeOfBumpyBalls)
{
    int pairs = 0;
    for (std::uint32_t seed = 1; seed <= 60; ++seed) {
        random_source random(seed);
        solid_t solids[2];
        bool triangles = true;
        for (solid_t &solid : solids) {
            object_t *ball = add_random_shell(random, 4);
            select_object(ball);
            run("surface_triangulate");
            solid = {points_of(ball), faces_of(ball)};
            for (const auto &face : solid.faces)
                triangles = triangles && face.size() == 3;
            run("clear_all");
        }
        if (!triangles)
            continue;
        ++pairs;
        SCOPED_TRACE(seed);
        move(solids[1], random.between(-1, 1), random.between(-1, 1), random.between(-1, 1));
        const double sum = volume(add(solids[0])) + volume(add(solids[1]));
        const double in_any = left_of(solids[0], solids[1], "union", "union");
        const double in_both = left_of(solids[0], solids[1], "intersection", "intersection");
        EXPECT_NEAR(in_any + in_both, sum, sum * 1e-5);
        run("clear_all");
    }
    EXPECT_GT(pairs, 20);
}

// What one leaves is good for the next, however it was rounded.
TEST_F(Boolean, TakesItsOwnResults)
{
    int refused = 0;
    for (std::uint32_t seed = 1; seed <= 15; ++seed) {
        SCOPED_TRACE(seed);
        run("clear_all");
        random_source random(seed);
        object_t *base = add(box(-2, -2, -2, 4, 4, 4));
        for (int i = 0; i < 8; ++i) {
            solid_t start = box(0, 0, 0, 1, 1, 1), tool = random_solid(random);
            place(random, static_cast<int>(seed) + i % 2, start, tool);
            select_object(base);
            select_object(add(tool));
            const double before = volume(base);
            run("boolean", i % 3 == 0 ? "union" : "difference");
            if (last_message().find("boolean - '") == 0) {
                ++refused;
                ADD_FAILURE() << last_message();
                break;
            }
            EXPECT_EQ(object_find_problems(base).total(model_problem::open_edge), 0);
            if (i % 3 == 0) {
                EXPECT_GE(volume(base), before - 1e-4);
            } else {
                EXPECT_LE(volume(base), before + 1e-4);
            }
            run("set_select_mode", "object");
            clear_selection();
        }
    }
    EXPECT_EQ(refused, 0);
}

// ---- what is carried along ----

TEST_F(Boolean, KeepsTheFirstObjectAndUndoesExactly)
{
    object_t *a = add(box(0, 0, 0, 2, 2, 2));
    object_t *b = add(box(1, 1, 1, 2, 2, 2));
    object_set_name(a, "first");
    for (surface_t *surface : each<surface_t>(b->surfaces))
        surface_set_col(surface, 4);
    select_object(a);
    select_object(b);
    const std::string before = scene_text();
    run("boolean", "difference");
    EXPECT_EQ(objects(), std::vector<object_t *>{a});
    EXPECT_STREQ(a->name, "first");
    EXPECT_EQ(selection().num_objects, 1);
    int of_b = 0;
    for (const surface_t *surface : each<surface_t>(a->surfaces)) {
        of_b += surface->material == 4 ? 1 : 0;
        for (const svertex *corner : each<svertex>(surface->refs)) {
            EXPECT_NEAR(corner->u, corner->vertex->position.x, 1e-6);
            EXPECT_NEAR(corner->v, corner->vertex->position.y, 1e-6);
        }
    }
    EXPECT_EQ(of_b, 3);
    const std::string after = scene_text();
    run("undo");
    EXPECT_EQ(scene_text(), before);
    run("redo");
    EXPECT_EQ(scene_text(), after);
}

TEST_F(Boolean, TakesSeveralToolsAtOnceAndKeepsThemHidden)
{
    object_t *plate = add(box(0, 0, 0, 10, 10, 1));
    select_object(plate);
    for (int i = 0; i < 9; ++i) {
        solid_t drill = gear(3, 0.5f, 1, 3);
        move(drill, 2 + 3.0f * static_cast<float>(i % 3), 2 + 3.0f * static_cast<float>(i / 3), -1);
        select_object(add(drill));
    }
    const double drill = volume(objects().back()) / 3; // as far as it is in the plate
    run("boolean", "difference", 1);
    EXPECT_NEAR(volume(plate), 100 - 9 * drill, 1e-4 * 100);
    EXPECT_EQ(objects().size(), 10u);
    EXPECT_EQ(objects()[3]->visible, 0);
    EXPECT_NE(plate->visible, 0);
    EXPECT_EQ(plate->num_surfaces, 6 + 9 * 12);
    EXPECT_EQ(object_find_problems(plate).problems.size(), 0u);
    EXPECT_EQ(euler_characteristic(plate), 2 - 2 * 9 + 0);
}

// ---- what lies inside ----

TEST_F(Boolean, SelectsWhatLiesInside)
{
    // Corners of the big gear stand right above those of the small one, and of other boxes.
    object_t *big = add(gear(6, 3, 4, 4));
    solid_t small = gear(6, 0.75f, 1, 1);
    move(small, 0, 0, 1);
    object_t *inside = add(small);
    add(box(0, 0, 0, 1, 1, 1));                  // stands on the bottom
    object_t *half = add(box(0, 0, 3, 1, 1, 4)); // reaches out
    add(box(0, 0, 5, 1, 1, 1));                  // above
    run("select_inside");
    EXPECT_EQ(last_message(), "select inside - nothing selected");
    run("set_select_mode", "object");
    select_object(big);
    run("select_inside");
    EXPECT_EQ(last_message(), "select inside - 1 objects");
    EXPECT_EQ(selection().objects->data, reinterpret_cast<intptr_t>(inside));
    select_vertices_at(big, {0});
    run("select_inside");
    EXPECT_EQ(selected_vertices_of(half).size(), 4u);
    EXPECT_EQ(selection().num_vertices, 4 + 4 + 48) << "and four of the box on the bottom";
}

TEST_F(Boolean, CancelledLeavesEverything)
{
    select_object(add(gear(300, 1, 1.5f, 1)));
    select_object(add(star(300, 1, 1.5f, 2)));
    const std::string before = scene_text();
    const unsigned serial = undo_last_serial();
    cancel_at_look(1);
    run("boolean", "union");
    cancel_at_look(0);
    EXPECT_EQ(last_message(), "boolean - cancelled");
    EXPECT_EQ(scene_text(), before);
    EXPECT_EQ(undo_last_serial(), serial);
}

// Closed meshes of all kinds against a ball in their midst.
TEST_F(Boolean, KeepsWhatHoldsOverTheCorpus)
{
    int done = 0;
    for (const corpus_mesh &mesh : corpus_with(MESH_CLOSED)) {
        for (const char *operation : {"union", "difference", "intersection"}) {
            SCOPED_TRACE(std::string(mesh.name) + " " + operation);
            object_t *object = mesh.add();
            run("set_select_mode", "object");
            point3_t low = points_of(object).front(), high = low;
            for (const point3_t &p : points_of(object)) {
                low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
                high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
            }
            const float dx = high.x - low.x, dy = high.y - low.y, dz = high.z - low.z;
            select_object(object);
            select_object(
                add(box(low.x + 0.31f * dx, low.y + 0.27f * dy, low.z + 0.41f * dz, dx, dy, dz)));
            done += run_and_expect_exact_undo({"boolean", operation}) ? 1 : 0;
            if (last_undo() == "boolean")
                expect_closed(objects().front());
            run("clear_all");
        }
    }
    EXPECT_GT(done, 5);
}

// ---- refusals ----

TEST_F(Boolean, RefusesWhatIsNoSolidAndSelectsWhy)
{
    run("boolean", "union");
    EXPECT_EQ(last_message(), "boolean - nothing selected");
    object_t *open = add(box(0, 0, 0, 1, 1, 1));
    select_surfaces_at(open, {1});
    run("removesurface");
    run("set_select_mode", "object");
    object_t *closed = add(box(0.5f, 0.5f, 0.5f, 1, 1, 1));
    object_set_name(open, "pot");
    clear_selection();
    select_object(closed);
    run("boolean", "union");
    EXPECT_EQ(last_message(), "boolean - select two objects or more");
    select_object(open);
    const std::string before = scene_text();
    const unsigned serial = undo_last_serial();
    run("boolean", "both");
    EXPECT_EQ(last_message(), "boolean - union, difference or intersection, not 'both'");
    EXPECT_EQ(undo_last_serial(), serial);
    run("boolean", "union");
    EXPECT_EQ(last_message(), "boolean - 'pot' is not closed: surface 1 has one of 4 open edges");
    EXPECT_EQ(scene_text(), before);
    EXPECT_EQ(selected_vertices_of(open).size(), 4u);
}

TEST_F(Boolean, RefusesWhatGoesThroughItself)
{
    solid_t twice = box(0, 0, 0, 2, 2, 2);
    const solid_t other = box(1, 1, 1, 2, 2, 2);
    for (const auto &face : other.faces) {
        twice.faces.push_back(face);
        for (int &v : twice.faces.back())
            v += 8;
    }
    twice.points.insert(twice.points.end(), other.points.begin(), other.points.end());
    object_t *bad = add(twice);
    object_set_name(bad, "bad");
    select_object(bad);
    select_object(add(box(5, 5, 5, 1, 1, 1)));
    const std::string before = scene_text();
    run("boolean", "union");
    EXPECT_EQ(last_message().substr(0, 36), "boolean - 'bad' goes through itself:");
    EXPECT_EQ(scene_text(), before);
    EXPECT_EQ(selected_surfaces_of(bad).size(), 6u);
}

} // namespace
