#include "edit/orient.h"

#include "base/messages.h"
#include "edit/document/edit_support.h"
#include "edit/mesh/edge_table.h"
#include "edit/mesh/polygon_plane.h"
#include "model/change_marks.h"
#include "model/normals.h"

#include <cmath>
#include <cstdint>

namespace {

// The polygons of one object that are to be turned over. What hangs together is judged as a whole,
// also where only some of it is chosen.
class orientation {
public:
    orientation(const flat_mesh &mesh, const std::vector<int> &surfaces)
        : mesh_(mesh), edges_(mesh), edge_of_(edges_.edges_of_corners(mesh.num_corners())),
          state_(mesh.num_surfaces(), OUTSIDE), chosen_(mesh.num_surfaces())
    {
        for (int s = 0; s < mesh.num_surfaces(); ++s) {
            if (!mesh.surface(s).is_line() && mesh.surface_corners(s).size() >= 3)
                state_[s] = NEW;
        }
        for (const int s : surfaces)
            chosen_[s] = true;
    }

    // False when the user cancelled.
    bool run(const std::vector<int> &surfaces, progress_t &progress, double &done)
    {
        for (const int s : surfaces) {
            if (state_[s] == NEW)
                settle(s);
            if (!progress.step(++done))
                return false;
        }
        return true;
    }
    [[nodiscard]] const std::vector<int> &turned() const { return turned_; }
    [[nodiscard]] int one_sided() const { return one_sided_; }

private:
    enum state_t : char { OUTSIDE, NEW, AS_IT_IS, OVER };

    // Finds the part of this polygon and decides for it.
    void settle(int start)
    {
        flood(start);
        if (twisted_) {
            ++one_sided_;
            return;
        }
        const bool against = faces_inwards();
        for (const int s : part_) {
            if (chosen_[s] && (state_[s] == OVER) != against)
                turned_.push_back(s);
        }
    }

    void flood(int start)
    {
        part_.assign(1, start);
        state_[start] = AS_IT_IS;
        closed_ = true;
        twisted_ = false;
        for (std::size_t i = 0; i < part_.size(); ++i) {
            const int s = part_[i];
            for (int c = mesh_.first_corner(s); c < mesh_.end_corner(s); ++c) {
                if (edge_of_[c] >= 0)
                    cross_edge(s, c);
            }
        }
    }

    void cross_edge(int s, int corner)
    {
        const auto uses = edges_.uses(edge_of_[corner]);
        if (uses.size() != 2 || state_[uses[0].surface] == OUTSIDE ||
            state_[uses[1].surface] == OUTSIDE) {
            closed_ = false;
            return;
        }
        const int other = uses[0].corner == corner ? uses[1].surface : uses[0].surface;
        const bool agree = uses[0].forward != uses[1].forward;
        const state_t wanted = (state_[s] == AS_IT_IS) == agree ? AS_IT_IS : OVER;
        if (state_[other] == NEW) {
            state_[other] = wanted;
            part_.push_back(other);
        } else if (state_[other] != wanted) {
            twisted_ = true;
        }
    }

    // Of the part as flooded: by six times its volume, taken from its middle.
    [[nodiscard]] bool faces_inwards() const
    {
        vec3d middle;
        double area = 0;
        std::size_t over = 0;
        for (const int s : part_) {
            const double size = length(polygon_area_vector(mesh_, s));
            middle += polygon_middle(mesh_, s) * size;
            area += size;
            over += state_[s] == OVER ? 1 : 0;
        }
        middle = middle / (area > 0 ? area : 1);
        double outwards = 0, extent = 0;
        for (const int s : part_) {
            const vec3d way = polygon_middle(mesh_, s) - middle;
            const vec3d normal = polygon_area_vector(mesh_, s);
            outwards += dot(normal, way) * (state_[s] == OVER ? -1 : 1);
            extent += length(normal) * length(way);
        }
        const double clear = closed_ ? 1e-6 : 0.02; // of the extent; flat sheets have no inside
        if (std::abs(outwards) > clear * extent)
            return outwards < 0;
        return 2 * over > part_.size();
    }

    const flat_mesh &mesh_;
    edge_table edges_;
    std::vector<int> edge_of_;
    std::vector<state_t> state_;
    std::vector<bool> chosen_;
    std::vector<int> part_;
    bool closed_ = true, twisted_ = false;
    std::vector<int> turned_;
    int one_sided_ = 0;
};

struct turned_surfaces {
    object_t *object;
    flat_ptr mesh;
    std::vector<int> places;
};

// What the message ends with.
std::string left_out(int one_sided)
{
    if (one_sided == 0)
        return "";
    return ", " + std::to_string(one_sided) + (one_sided == 1 ? " part" : " parts") +
           " with only one side left as it was";
}

} // namespace

// ---- commands ----

void command_orient_outwards()
{
    const std::vector<owned_elements> targets = target_surfaces();
    const std::size_t total = count_elements(targets);
    if (total == 0) {
        display_message("orient outwards - nothing selected");
        return;
    }
    display_message("orient outwards...");
    progress_t progress(static_cast<double>(total));
    double done = 0;
    std::vector<turned_surfaces> all;
    int one_sided = 0, count = 0;
    for (const owned_elements &owned : targets) {
        const flat_ptr mesh = object_flat(owned.object);
        orientation part(*mesh, owned.indices);
        if (!part.run(owned.indices, progress, done)) {
            display_message("orient outwards - cancelled");
            return;
        }
        one_sided += part.one_sided();
        count += static_cast<int>(part.turned().size());
        if (!part.turned().empty())
            all.push_back({owned.object, mesh, part.turned()});
    }
    if (count > 0) {
        open_world_undo("orient outwards");
        std::vector<object_t *> touched;
        for (const auto &[object, mesh, places] : all) {
            for (const int s : places)
                surface_reverse_normal(mesh->surface_record(s));
            object_mark(object, CHANGED_TOPOLOGY);
            touched.push_back(object);
        }
        calc_normals_of(touched);
        finish_edit();
    }
    display_message("orient outwards - %d surfaces turned%s", count, left_out(one_sided).c_str());
}
