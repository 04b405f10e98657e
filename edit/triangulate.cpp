#include "edit/triangulate.h"

#include "base/big_vector.h"
#include "base/messages.h"
#include "base/progress.h"
#include "base/redraw.h"
#include "edit/document/edit_support.h"
#include "edit/document/select_made.h"
#include "edit/mesh/mesh_change.h"
#include "edit/mesh/tessellator.h"
#include "model/freed.h"
#include "model/object_internal.h"
#include "model/owners.h"
#include "model/record_maker.h"

#include <array>
#include <numeric>

namespace {

struct triangulation_counts {
    int triangulated = 0, failed = 0, lines = 0;
};

// Cuts surfaces of the change's object: first what each becomes, then the triangles.
class triangulation {
public:
    triangulation(mesh_change &change, tessellator_t &tessellator, triangulation_counts &counts)
        : change_(change), mesh_(change.before()), tessellator_(tessellator), counts_(counts)
    {
    }

    // False when the user cancelled.
    bool run(std::span<const int> surfaces, progress_t *progress, double &done)
    {
        answers_ = big_vector<std::int32_t>(mesh_.num_surfaces());
        in_parallel_ranges(static_cast<int>(surfaces.size()), [&](int begin, int end) {
            for (const int surface : surfaces.subspan(begin, end - begin))
                answers_[surface] = quick_answer(surface);
        });
        for (const int surface : surfaces) {
            ask(surface);
            if (progress != nullptr && !progress->step(++done))
                return false;
        }
        return change_each(
            change_, surfaces, [&](int surface) { return room_of(surface); },
            [&](int surface, mesh_change::writer &out) { make(surface, out); },
            [&](int /*done*/) { return progress == nullptr || progress->step(done); });
    }

private:
    // What becomes of a surface: the kind of a quad, or one of these; from first_slow on they are the
    // places in slow_ of what the tessellator gave.
    enum : std::int32_t { stays = -2, unknown = -1, first_slow = 1 << 16 };
    struct slow_answer {
        std::size_t first;
        int corners;
    };

    [[nodiscard]] bool can_cut(int surface) const
    {
        return mesh_.surface_corners(surface).size() > 3 &&
               mesh_.surface(surface).type == SURFACE_POLYGON;
    }

    [[nodiscard]] std::int32_t quick_answer(int surface) const
    {
        const auto corners = mesh_.surface_corners(surface);
        if (!can_cut(surface))
            return stays;
        if (corners.size() != 4)
            return unknown;
        std::array<point3_t, 4> quad;
        std::transform(corners.begin(), corners.end(), quad.begin(),
                       [&](int v) { return mesh_.position(v); });
        return tessellator_t::kind_of_quad(quad);
    }

    // Has the tessellator cut what is not known yet, and counts.
    void ask(int surface)
    {
        std::int32_t &answer = answers_[surface];
        if (answer == stays && mesh_.surface_corners(surface).size() > 3)
            ++counts_.lines;
        if (answer == stays)
            return;
        if (answer == unknown || tessellator_.quad_triangles(answer) == nullptr)
            answer = cut(surface, answer);
        ++(answer == stays ? counts_.failed : counts_.triangulated);
    }

    std::int32_t cut(int surface, std::int32_t kind)
    {
        outline_.clear();
        for (const int v : mesh_.surface_corners(surface))
            outline_.push_back(mesh_.position(v));
        if (!tessellator_.cut(outline_))
            return stays;
        if (kind != unknown && tessellator_.quad_triangles(kind) != nullptr)
            return kind;
        const auto triangles = tessellator_.triangles();
        slow_.push_back({slow_corners_.size(), static_cast<int>(triangles.size())});
        slow_corners_.insert(slow_corners_.end(), triangles.begin(), triangles.end());
        return first_slow + static_cast<std::int32_t>(slow_.size()) - 1;
    }

    [[nodiscard]] mesh_room room_of(int surface) const
    {
        const std::int32_t answer = answers_[surface];
        if (answer == stays)
            return {};
        const int corners = answer < first_slow ? 6 : slow_[answer - first_slow].corners;
        return {0, corners / 3, corners};
    }

    template <class Places>
    void make_triangles(int surface, const Places &places, mesh_change::writer &out) const
    {
        const auto corners = mesh_.surface_corners(surface);
        const auto first = mesh_.first_corner(surface);
        int n = 0;
        for (const int at : places) {
            if (n++ % 3 == 0)
                out.add_surface(surface);
            out.add_corner(corners[at], mesh_.uv(first + at));
        }
        out.remove_surface(surface);
    }

    void make(int surface, mesh_change::writer &out) const
    {
        const std::int32_t answer = answers_[surface];
        if (answer == stays)
            return;
        if (answer < first_slow) {
            make_triangles(surface, std::span(tessellator_.quad_triangles(answer), 6), out);
        } else {
            const auto [begin, corners] = slow_[answer - first_slow];
            make_triangles(surface, std::span(slow_corners_).subspan(begin, corners), out);
        }
    }

    mesh_change &change_;
    const flat_mesh &mesh_;
    tessellator_t &tessellator_;
    triangulation_counts &counts_;
    std::vector<std::int32_t> answers_; // of each surface
    std::vector<slow_answer> slow_;
    std::vector<int> slow_corners_;
    std::vector<point3_t> outline_;
};

void append(std::vector<surface_t *> &all, const std::vector<surface_t *> &surfaces)
{
    all.insert(all.end(), surfaces.begin(), surfaces.end());
}

} // namespace

void surface_copy_properties(surface_t *to, const surface_t *from)
{
    surface_copy_record(to, from);
}

listitem *surface_get_triangulations(const surface_t *surface)
{
    std::vector<point3_t> outline;
    std::vector<const svertex *> corners;
    for (const svertex *reference : each<svertex>(surface->refs)) {
        if (reference->vertex == nullptr)
            continue;
        outline.push_back(reference->vertex->position);
        corners.push_back(reference);
    }
    tessellator_t tessellator;
    if (corners.size() < 4 || !tessellator.cut(outline))
        return nullptr;
    owned_list list;
    surface_t *triangle = nullptr;
    for (const int at : tessellator.triangles()) {
        if (triangle == nullptr || triangle->num_refs == 3) {
            triangle = new_surface();
            surface_copy_properties(triangle, surface);
            list.add(triangle);
        }
        const svertex *corner = corners[at];
        surface_add_vertex(triangle, corner->vertex, corner->u, corner->v);
    }
    return list.release();
}

listitem *surface_triangulate(object_t *object, surface_t *surface)
{
    mesh_change change(object);
    const int index = change.index_of(surface);
    tessellator_t tessellator;
    triangulation_counts counts;
    double done = 0;
    if (index < 0)
        return nullptr;
    triangulation(change, tessellator, counts).run({&index, 1}, nullptr, done);
    return make_nodes(change.commit().surfaces).first;
}

listitem *object_triangulate_surfaces(object_t *object)
{
    triangulation_counts counts;
    std::vector<surface_t *> triangles;
    tessellator_t tessellator;
    freed_batch at_once;
    for_each_object(object, [&](object_t *part) {
        mesh_change change(part);
        std::vector<int> all(change.before().num_surfaces());
        std::iota(all.begin(), all.end(), 0);
        double done = 0;
        triangulation(change, tessellator, counts).run(all, nullptr, done);
        change.renew_records();
        append(triangles, change.commit().surfaces);
    });
    return make_nodes(triangles).first;
}

// ---- commands ----

void selected_surface_triangulate(void)
{
    const std::vector<owned_elements> targets = target_surfaces();
    display_status();

    triangulation_counts counts;
    tessellator_t tessellator;
    progress_t progress(static_cast<double>(count_elements(targets)));
    double done = 0;
    std::vector<mesh_change> changes;
    for (const owned_elements &owned : targets) {
        triangulation work(changes.emplace_back(owned.object), tessellator, counts);
        if (!work.run(owned.indices, &progress, done)) {
            display_message("triangulate - cancelled");
            return;
        }
    }
    open_world_undo("triangluate"); // Deliberate: spelt so.
    clear_selection();
    std::vector<surface_t *> triangles;
    {
        freed_batch at_once;
        for (mesh_change &change : changes) {
            change.renew_records();
            append(triangles, change.commit().surfaces);
        }
    }
    select_made_surfaces(triangles);
    redraw_all();
    if (counts.failed > 0 || counts.lines > 0) {
        windows_message_dialog("Some surfaces were not triangulated:\n\npolys not triangulated: "
                               "%d\nlines/polylines ignored: %d",
                               counts.failed, counts.lines);
    }
    display_status();
    display_message("polygons triangulated: %d", counts.triangulated);
}
