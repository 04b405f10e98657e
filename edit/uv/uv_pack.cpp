#include "edit/uv/uv_pack.h"

#include "base/messages.h"
#include "base/redraw.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>

namespace {

constexpr int largest_side = 1024;      // the longest side of any rectangle, in the packer's steps
constexpr double largest_height = 1e15; // of a picture that is nothing but high, in steps
constexpr std::size_t most_on_a_skyline = 3000;

// In steps, the gap on its right and upper side included.
struct piece {
    std::int64_t width, height;
    int index;
    bool turned;
    std::int64_t x = 0, y = 0;
};

// The upper edge of the rectangles placed so far, from left to right.
struct level {
    std::int64_t x, y, width;
};

class skyline {
public:
    skyline(std::int64_t width, std::int64_t height) : height_(height)
    {
        levels_.push_back({0, 0, width});
    }

    // The lowest place, of several the leftmost.
    bool add(piece &p)
    {
        std::size_t best = levels_.size();
        std::int64_t best_top = height_ + 1;
        for (std::size_t i = 0; i < levels_.size(); ++i) {
            const std::int64_t y = rests_at(i, p.width);
            if (y >= 0 && y + p.height < best_top) {
                best = i;
                best_top = y + p.height;
            }
        }
        if (best == levels_.size())
            return false;
        p.x = levels_[best].x;
        p.y = best_top - p.height;
        raise(best, p.width, best_top);
        return true;
    }

private:
    // How high a piece that begins at a level lies; -1 when it does not fit in the width.
    [[nodiscard]] std::int64_t rests_at(std::size_t i, std::int64_t width) const
    {
        std::int64_t y = 0;
        for (std::int64_t left = width; left > 0; ++i) {
            if (i == levels_.size())
                return -1;
            y = std::max(y, levels_[i].y);
            left -= levels_[i].width;
        }
        return y;
    }

    void raise(std::size_t at, std::int64_t width, std::int64_t top)
    {
        const std::int64_t x = levels_[at].x;
        std::size_t end = at;
        std::int64_t covered = 0;
        while (covered < width)
            covered += levels_[end++].width;
        const level rest = {x + width, levels_[end - 1].y, covered - width};
        levels_.erase(levels_.begin() + static_cast<std::ptrdiff_t>(at),
                      levels_.begin() + static_cast<std::ptrdiff_t>(end));
        auto next =
            levels_.insert(levels_.begin() + static_cast<std::ptrdiff_t>(at), {x, top, width});
        if (rest.width > 0)
            levels_.insert(next + 1, rest);
        merge();
    }

    void merge()
    {
        std::size_t kept = 0;
        for (std::size_t i = 1; i < levels_.size(); ++i) {
            if (levels_[i].y == levels_[kept].y)
                levels_[kept].width += levels_[i].width;
            else
                levels_[++kept] = levels_[i];
        }
        levels_.resize(kept + 1);
    }

    std::vector<level> levels_;
    std::int64_t height_;
};

// Row upon row, each as high as its first piece.
bool place_in_rows(std::vector<piece> &pieces, std::int64_t width, std::int64_t height)
{
    std::int64_t x = 0, y = 0, row = 0;
    for (piece &p : pieces) {
        if (x + p.width > width) {
            y += row;
            x = row = 0;
        }
        row = std::max(row, p.height);
        if (x + p.width > width || y + p.height > height)
            return false;
        p.x = x;
        p.y = y;
        x += p.width;
    }
    return true;
}

class packer {
public:
    packer(const std::vector<uv_rectangle> &rectangles, double aspect, double gap, bool turn)
        : aspect_(aspect), gap_(gap)
    {
        double longest = 0;
        for (const uv_rectangle &r : rectangles)
            longest = std::max({longest, r.width, r.height});
        unit_ = longest > 0 ? longest / largest_side : 1;
        for (std::size_t i = 0; i < rectangles.size(); ++i) {
            const std::int64_t width = steps(rectangles[i].width);
            const std::int64_t height = steps(rectangles[i].height);
            const bool turned = turn && height > width;
            sizes_.push_back(
                {turned ? height : width, turned ? width : height, static_cast<int>(i), turned});
        }
        std::stable_sort(sizes_.begin(), sizes_.end(), [](const piece &a, const piece &b) {
            return a.height != b.height ? a.height > b.height : a.width > b.width;
        });
    }

    uv_layout run()
    {
        double area = 0;
        std::int64_t low = 1;
        for (const piece &p : sizes_) {
            area += static_cast<double>(p.width) * static_cast<double>(p.height);
            low = std::max({low, p.width, p.height});
        }
        low = std::max(low, static_cast<std::int64_t>(std::sqrt(area)) / 2);
        std::int64_t high = low;
        while (!fits(high))
            high *= 2;
        while (low + 1 < high) {
            const std::int64_t middle = low + (high - low) / 2;
            (fits(middle) ? high : low) = middle;
        }
        fits(high);
        return layout(high);
    }

private:
    // Rounded up, but for the rounding of the coordinates.
    [[nodiscard]] std::int64_t steps(double size) const
    {
        return std::max<std::int64_t>(1, static_cast<std::int64_t>(std::ceil(size / unit_ - 0.02)));
    }
    [[nodiscard]] std::int64_t gap_steps(std::int64_t side) const
    {
        return static_cast<std::int64_t>(std::ceil(gap_ * static_cast<double>(side)));
    }
    // The picture is `side` steps wide.
    bool fits(std::int64_t side)
    {
        const std::int64_t gap = gap_steps(side);
        const auto height = static_cast<std::int64_t>(
            std::min(static_cast<double>(side) / aspect_, largest_height));
        placed_ = sizes_;
        for (piece &p : placed_) {
            p.width += gap;
            p.height += gap;
            if (p.width > side || p.height > height)
                return false;
        }
        if (placed_.size() > most_on_a_skyline)
            return place_in_rows(placed_, side, height);
        skyline line(side, height);
        return std::all_of(placed_.begin(), placed_.end(), [&](piece &p) { return line.add(p); });
    }

    [[nodiscard]] uv_layout layout(std::int64_t side) const
    {
        uv_layout result;
        const auto picture = static_cast<double>(side);
        const double half_gap = static_cast<double>(gap_steps(side)) / 2;
        result.scale = 1 / (picture * unit_);
        result.places.resize(placed_.size());
        for (const piece &p : placed_)
            result.places[p.index] = {(static_cast<double>(p.x) + half_gap) / picture,
                                      (static_cast<double>(p.y) + half_gap) * aspect_ / picture,
                                      p.turned};
        return result;
    }

    double aspect_, gap_, unit_ = 1;
    std::vector<piece> sizes_, placed_;
};

} // namespace

uv_layout uv_pack_rectangles(const std::vector<uv_rectangle> &rectangles, double aspect, double gap,
                             bool turn)
{
    if (rectangles.empty())
        return {};
    // However many and however flat the picture: four times the gaps alone find room.
    const double most = std::min(
        {0.25, 0.25 / aspect, 0.5 / std::sqrt(aspect * static_cast<double>(rectangles.size()))});
    return packer(rectangles, aspect, gap > 0 ? std::min(gap, most) : 0, turn).run();
}

// ---- commands ----

void command_uv_pack(float margin)
{
    constexpr const char *label = "pack texture coordinates";
    const uv_state &state = uv_editor();
    const std::vector<int> islands = uv_chosen_islands(state);
    const std::vector<uv_box> boxes = uv_island_boxes(state.mesh, state.islands);
    const uv_pixels pixels = uv_picture_size();
    const double aspect = pixels.aspect();
    std::vector<uv_rectangle> rectangles;
    std::vector<int> row(boxes.size(), -1);
    bool any_size = false;
    for (const int island : islands) {
        const uv_box &box = boxes[island];
        row[island] = static_cast<int>(rectangles.size());
        rectangles.push_back({box.width(), box.height() / aspect});
        any_size = any_size || box.width() > 0 || box.height() > 0;
    }
    if (!any_size) {
        display_message("%s - %s", label,
                        islands.empty() ? "nothing selected" : "no texture coordinates yet");
        return;
    }
    const uv_layout layout =
        uv_pack_rectangles(rectangles, aspect, std::max(0.0f, margin) / pixels.width, true);
    std::vector<flat_uv> at = state.mesh.at;
    for (int i = 0; i < state.mesh.num_surfaces(); ++i) {
        const auto island = state.islands.island[i];
        if (row[island] < 0)
            continue;
        const uv_box &box = boxes[island];
        const uv_rectangle_place &to = layout.places[row[island]];
        // From the box's corner: turned about it, then moved.
        uv_matrix m = {layout.scale,
                       0,
                       0,
                       layout.scale,
                       to.u - layout.scale * box.u0,
                       to.v - layout.scale * box.v0};
        if (to.turned) {
            const double across = layout.scale / aspect, up = layout.scale * aspect;
            m = {0, -across, up, 0, to.u + across * box.v1, to.v - up * box.u0};
        }
        for (int c = state.mesh.corners_begin(i); c < state.mesh.corners_end(i); ++c)
            at[c] = m.apply(at[c]);
    }
    uv_commit(label, std::move(at));
    display_message("%s - %d islands", label, static_cast<int>(islands.size()));
    display_status();
}
