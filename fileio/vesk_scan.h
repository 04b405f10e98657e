#ifndef VESK_FILEIO_VESK_SCAN_H
#define VESK_FILEIO_VESK_SCAN_H

// The lower layer of the model file reader: turns the bytes of a block of vertices or surfaces into
// numbers. It knows no model, prints nothing and takes nothing from myalloc, so it may run on a
// worker thread ahead of the builder. The result depends only on the place where a block
// begins and the number of elements asked for: a guess of the worker that the builder does not ask
// for is only wasted.

#include "base/worker.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

struct scanned_ref {
    int index;
    float u, v;
};

struct scanned_surface {
    int flags;
    int material;
    int num_refs;
};

// A stretch of one block. `stopped`: the element at `end` is none, or none in the plain form.
struct scan_piece {
    enum kind_t { VERTICES, SURFACES } kind;
    const char *begin;
    int wanted; // elements left in the block where the piece begins
    const char *end;
    int count;
    bool stopped;
    std::size_t first; // place of the first element, and of its first reference, in the batch
    std::size_t first_ref;
};

struct scan_batch {
    std::vector<scan_piece> pieces;
    std::vector<float> xyz;
    std::vector<scanned_surface> surfaces;
    std::vector<scanned_ref> refs;
    void clear();
};

// Scans up to a piece's worth of elements at `p` into the batch. Vertices may be spread over lines
// as scanf allows; a vertex with only one or two numbers has 0 for the rest. Surfaces are taken in
// the form the writer gives them: the lines SURF, mat, refs and the references, all complete.
// Afterwards `end` is past the white space that follows.
const scan_piece &scan_vertices(const char *p, const char *end, int wanted, scan_batch *batch);
const scan_piece &scan_surfaces(const char *p, const char *end, int wanted, scan_batch *batch);

// Past the white space that scanf skips.
const char *skip_space(const char *p, const char *end);

// Hands out the pieces of a file in order; for a big file from a worker that scans ahead.
class block_scanner {
public:
    block_scanner(const char *begin, const char *end);
    ~block_scanner();
    block_scanner(const block_scanner &) = delete;
    block_scanner &operator=(const block_scanner &) = delete;

    // The piece that begins at `p`; it and its batch are valid until the next call.
    const scan_piece &vertices(const char *p, int wanted);
    const scan_piece &surfaces(const char *p, int wanted);
    [[nodiscard]] const scan_batch &batch() const { return *used_; }

private:
    struct ahead_t;
    const scan_piece *from_ahead(scan_piece::kind_t kind, const char *p, int wanted);
    const scan_piece &scan(scan_piece::kind_t kind, const char *p, int wanted);

    const char *end_;
    scan_batch own_;
    const scan_batch *used_ = &own_;
    std::shared_ptr<ahead_t> ahead_; // the worker holds it too: a fault here must not take it away
    worker_t worker_;
    std::unique_ptr<scan_batch> current_;
    std::size_t next_piece_ = 0;
};

#endif
