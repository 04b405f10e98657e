#include "edit/uv/multigrid.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

using matrix_t = multigrid::matrix_t;

constexpr int few_points = 1500; // solved by a factorisation
constexpr int most_rounds = 200;

// Whether two points are held together so strongly that what is wrong at one is wrong at the other.
bool is_strong(double entry, double diagonal_a, double diagonal_b, double least)
{
    return entry * entry > least * least * diagonal_a * diagonal_b;
}

// The cluster of each point: a point with its strong neighbours where none of them is in another one, then
// what is left joins the strongest neighbour's.
class clusters_t {
public:
    clusters_t(const matrix_t &matrix, const Eigen::VectorXd &diagonal, double least)
        : matrix_(matrix), diagonal_(diagonal), least_(least), cluster_(matrix.cols(), -1)
    {
        for (int i = 0; i < matrix.cols(); ++i)
            begin(i);
        const std::vector<int> first = cluster_;
        for (int i = 0; i < matrix.cols(); ++i) {
            if (first[i] < 0)
                join(i, first);
        }
        for (int i = 0; i < matrix.cols(); ++i) {
            if (cluster_[i] < 0)
                gather(i, count_++);
        }
    }

    [[nodiscard]] int count() const { return count_; }
    [[nodiscard]] int of(int i) const { return cluster_[i]; }

private:
    template <class Visit>
    void for_strong(int i, const Visit &visit) const
    {
        for (matrix_t::InnerIterator at(matrix_, i); at; ++at) {
            const int j = static_cast<int>(at.row());
            if (j != i && is_strong(at.value(), diagonal_[i], diagonal_[j], least_))
                visit(j, at.value());
        }
    }

    void gather(int i, int number)
    {
        cluster_[i] = number;
        for_strong(i, [&](int j, double) {
            if (cluster_[j] < 0)
                cluster_[j] = number;
        });
    }

    void begin(int i)
    {
        bool alone = cluster_[i] < 0;
        for_strong(i, [&](int j, double) { alone = alone && cluster_[j] < 0; });
        if (alone)
            gather(i, count_++);
    }

    void join(int i, const std::vector<int> &first)
    {
        double strongest = 0;
        for_strong(i, [&](int j, double entry) {
            if (first[j] >= 0 && std::fabs(entry) > strongest) {
                strongest = std::fabs(entry);
                cluster_[i] = first[j];
            }
        });
    }

    const matrix_t &matrix_;
    const Eigen::VectorXd &diagonal_;
    double least_;
    std::vector<int> cluster_;
    int count_ = 0;
};

// Each point has what its cluster has, smoothed once; weak entries count as the point's own.
matrix_t prolongation(const matrix_t &matrix, double least)
{
    constexpr double damping = 2.0 / 3;
    const Eigen::VectorXd diagonal = matrix.diagonal();
    const clusters_t clusters(matrix, diagonal, least);
    // By rows: a column of the transposed one after the other.
    std::vector<int> row, begin = {0};
    std::vector<double> value;
    std::vector<double> share(clusters.count(), 0);
    std::vector<int> used;
    for (int i = 0; i < matrix.cols(); ++i) {
        double own = diagonal[i];
        used.assign(1, clusters.of(i));
        for (matrix_t::InnerIterator at(matrix, i); at; ++at) {
            const int j = static_cast<int>(at.row());
            if (j == i)
                continue;
            if (!is_strong(at.value(), diagonal[i], diagonal[j], least)) {
                own += at.value();
                continue;
            }
            share[clusters.of(j)] -= damping * at.value();
            used.push_back(clusters.of(j));
        }
        std::sort(used.begin(), used.end());
        used.erase(std::unique(used.begin(), used.end()), used.end());
        for (const int cluster : used) {
            const double smoothed = own > 0 ? std::exchange(share[cluster], 0) / own : 0;
            row.push_back(cluster);
            value.push_back(smoothed + (cluster == clusters.of(i) ? 1 - damping : 0));
        }
        begin.push_back(static_cast<int>(row.size()));
    }
    return Eigen::Map<const matrix_t>(clusters.count(), matrix.cols(),
                                      static_cast<Eigen::Index>(row.size()), begin.data(),
                                      row.data(), value.data());
}

} // namespace

// ---- levels ----

multigrid::sparse_t multigrid::rows_of(const matrix_t &columns)
{
    sparse_t rows;
    rows.begin.assign(columns.outerIndexPtr(), columns.outerIndexPtr() + columns.cols() + 1);
    rows.column.assign(columns.innerIndexPtr(), columns.innerIndexPtr() + columns.nonZeros());
    rows.value.assign(columns.valuePtr(), columns.valuePtr() + columns.nonZeros());
    return rows;
}

multigrid::level_t multigrid::level_of(const matrix_t &matrix)
{
    level_t level;
    level.matrix.begin.push_back(0);
    level.matrix.column.reserve(matrix.nonZeros());
    level.matrix.value.reserve(matrix.nonZeros());
    for (int i = 0; i < matrix.cols(); ++i) {
        level.diagonal.push_back(1);
        level.middle.push_back(level.matrix.begin.back());
        for (matrix_t::InnerIterator at(matrix, i); at; ++at) {
            const int j = static_cast<int>(at.row());
            if (j == i) {
                level.diagonal.back() = static_cast<float>(at.value());
                continue;
            }
            if (j < i)
                ++level.middle.back();
            level.matrix.column.push_back(j);
            level.matrix.value.push_back(static_cast<float>(at.value()));
        }
        level.matrix.begin.push_back(static_cast<int>(level.matrix.column.size()));
    }
    return level;
}

bool multigrid::compute(matrix_t &&matrix)
{
    matrix_ = std::move(matrix);
    matrix_.makeCompressed();
    levels_.clear();
    matrix_t coarse; // of the last level
    double least = 0.08;
    for (const matrix_t *now = &matrix_; now->cols() > few_points; least /= 2) {
        const matrix_t down = prolongation(*now, least); // its columns are the points
        if (down.rows() > now->cols() * 3 / 4)
            break; // they hardly hang together
        level_t level = level_of(*now);
        const matrix_t up = down.transpose();
        level.up = rows_of(down);
        level.down = rows_of(up);
        levels_.push_back(std::move(level));
        const matrix_t across = *now * up;
        coarse = down * across;
        now = &coarse;
    }
    coarsest_.compute(levels_.empty() ? matrix_ : coarse);
    return coarsest_.info() == Eigen::Success;
}

// ---- one round ----

void multigrid::sparse_t::add_product(const std::vector<float> &x, std::vector<float> &y) const
{
    for (std::size_t i = 0; i + 1 < begin.size(); ++i) {
        float sum = 0;
        for (int k = begin[i]; k < begin[i + 1]; ++k)
            sum += value[k] * x[column[k]];
        y[i] += sum;
    }
}

void multigrid::level_t::smooth_forward(const std::vector<float> &right,
                                        std::vector<float> &x) const
{
    for (std::size_t i = 0; i < x.size(); ++i) {
        float sum = right[i];
        for (int k = matrix.begin[i]; k < middle[i]; ++k)
            sum -= matrix.value[k] * x[matrix.column[k]];
        x[i] = sum / diagonal[i];
    }
}

void multigrid::level_t::leave(const std::vector<float> &x, std::vector<float> &left) const
{
    for (std::size_t i = 0; i < x.size(); ++i) {
        float sum = 0;
        for (int k = middle[i]; k < matrix.begin[i + 1]; ++k)
            sum -= matrix.value[k] * x[matrix.column[k]];
        left[i] = sum;
    }
}

void multigrid::level_t::smooth_back(const std::vector<float> &right, std::vector<float> &x) const
{
    for (std::size_t i = x.size(); i-- > 0;) {
        float sum = right[i];
        for (int k = matrix.begin[i]; k < matrix.begin[i + 1]; ++k)
            sum -= matrix.value[k] * x[matrix.column[k]];
        x[i] = sum / diagonal[i];
    }
}

multigrid::room_t multigrid::room() const
{
    room_t room;
    for (const level_t &level : levels_) {
        const std::vector<float> zero(level.diagonal.size(), 0);
        room.levels.push_back({zero, zero, zero});
    }
    const std::vector<float> zero(coarsest_.rows(), 0);
    room.levels.push_back({zero, zero, {}});
    return room;
}

void multigrid::cycle(std::size_t number, room_t &room) const
{
    room_t::of_level &at = room.levels[number];
    if (number == levels_.size()) {
        const auto count = static_cast<Eigen::Index>(at.right.size());
        Eigen::Map<Eigen::VectorXf>(at.x.data(), count) =
            coarsest_.solve(Eigen::Map<Eigen::VectorXf>(at.right.data(), count).cast<double>())
                .cast<float>();
        return;
    }
    const level_t &level = levels_[number];
    room_t::of_level &next = room.levels[number + 1];
    level.smooth_forward(at.right, at.x);
    level.leave(at.x, at.left);
    std::fill(next.right.begin(), next.right.end(), 0.0f);
    level.down.add_product(at.left, next.right);
    cycle(number + 1, room);
    level.up.add_product(next.x, at.x);
    level.smooth_back(at.right, at.x);
}

void multigrid::improve(const Eigen::VectorXd &residual, room_t &room, Eigen::VectorXd &x) const
{
    // Near one: the small numbers of the end would be lost.
    const double size = residual.cwiseAbs().maxCoeff();
    room_t::of_level &top = room.levels[0];
    const auto count = residual.size();
    Eigen::Map<Eigen::VectorXf>(top.right.data(), count) =
        (residual * (size > 0 ? 1 / size : 0)).cast<float>();
    cycle(0, room);
    x = Eigen::Map<Eigen::VectorXf>(top.x.data(), count).cast<double>() * size;
}

void multigrid::solve(const Eigen::VectorXd &right, double error, Eigen::VectorXd &x) const
{
    room_t work = room();
    Eigen::VectorXd residual = right - matrix_.transpose() * x;
    Eigen::VectorXd z(x.size()), direction(x.size()), along(x.size());
    double before = 0;
    for (int round = 0; round < most_rounds; ++round) {
        improve(residual, work, z);
        const double now = residual.dot(z);
        if (!(now > 0) || z.cwiseAbs().maxCoeff() < error)
            return;
        if (round == 0)
            direction = z;
        else
            direction = z + (now / before) * direction;
        before = now;
        along.noalias() = matrix_.transpose() * direction;
        const double step = now / direction.dot(along);
        x += step * direction;
        residual -= step * along;
    }
}
