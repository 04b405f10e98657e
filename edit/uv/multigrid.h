#ifndef VESK_EDIT_UV_MULTIGRID_H
#define VESK_EDIT_UV_MULTIGRID_H

// Solves large sparse systems as they come from weights between the points of a mesh: symmetric, positive
// definite, no entry beside the diagonal above zero. Conjugate gradients, led by smoothed aggregation
// (Vanek, Mandel and Brezina 1996): points are put together in clusters, these again, and what moves slowly
// is solved for few of them. Work and memory grow with the number of points, where a factorisation's grow
// with its power of 1.5.

#include <Eigen/SparseCholesky>
#include <memory>
#include <vector>

class multigrid {
public:
    using matrix_t = Eigen::SparseMatrix<double>; // symmetric: its columns are its rows

    // False: its coarsest part cannot be solved.
    bool compute(matrix_t &&matrix);

    // Goes on from x until the next correction of it is less than `error` everywhere. Safe on several threads.
    void solve(const Eigen::VectorXd &right, double error, Eigen::VectorXd &x) const;

private:
    // By rows; half the memory of a matrix is half the time.
    struct sparse_t {
        std::vector<int> begin, column;
        std::vector<float> value;
        void add_product(const std::vector<float> &x, std::vector<float> &y) const;
    };
    struct level_t {
        sparse_t matrix;         // but for the diagonal
        std::vector<int> middle; // of each row: its first entry behind the diagonal
        std::vector<float> diagonal;
        sparse_t down, up; // to the next level and back
        // Each point where its neighbours want it, one after the other: from the first, all being zero
        // before, and from the last.
        void smooth_forward(const std::vector<float> &right, std::vector<float> &x) const;
        void smooth_back(const std::vector<float> &right, std::vector<float> &x) const;
        // What is left of the right side after the way forward.
        void leave(const std::vector<float> &x, std::vector<float> &left) const;
    };
    // What a round needs of each level, made once.
    struct room_t {
        struct of_level {
            std::vector<float> right, x, left;
        };
        std::vector<of_level> levels;
    };
    static level_t level_of(const matrix_t &matrix);
    static sparse_t rows_of(const matrix_t &columns);
    [[nodiscard]] room_t room() const;
    void cycle(std::size_t level, room_t &room) const;
    void improve(const Eigen::VectorXd &residual, room_t &room, Eigen::VectorXd &x) const;

    matrix_t matrix_;
    std::vector<level_t> levels_;
    Eigen::SimplicialLDLT<matrix_t> coarsest_;
};

#endif
