#include "fileio/vesk_scan.h"

#include "base/numbers.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <string_view>
#include <thread>

namespace {

constexpr int vertices_a_piece = 16384;
constexpr int surfaces_a_piece = 4096;
constexpr std::size_t refs_a_batch = 16384;
constexpr std::size_t floats_a_batch = 49152;
constexpr std::size_t batches_ahead = 6;
constexpr std::ptrdiff_t worth_a_worker = 1 << 20; // bytes

// A line that is longer is split by the reader, and then it is no plain one.
constexpr std::ptrdiff_t longest_plain_line = 250;

// "word number" and nothing else on the line: the place after the line, else null.
const char *scan_word_line(const char *p, const char *end, std::string_view word, bool any_base,
                           int *value)
{
    const char *start = p;
    const auto length = static_cast<std::ptrdiff_t>(word.size());
    if (end - p <= length || std::string_view(p, word.size()) != word || p[length] != ' ')
        return nullptr;
    p += length + 1;
    if (p == end || is_blank(*p) || *p == '"')
        return nullptr;
    const char *token = p;
    if (any_base) {
        while (p < end && !is_blank(*p) && *p != '\0')
            ++p;
        *value = int_of_any_base(std::string_view(token, static_cast<std::size_t>(p - token)));
    } else {
        p = scan_int(p, end, value);
        if (!p)
            return nullptr;
    }
    while (p < end && (*p == ' ' || *p == '\t' || *p == '\r'))
        ++p;
    if (p == end || *p != '\n' || p - start > longest_plain_line)
        return nullptr;
    return p + 1;
}

// One surface at `p`: the place after it, else null, and the caller takes appended references back.
const char *scan_surface(const char *p, const char *end, scan_batch *batch)
{
    scanned_surface surface = {};
    int claimed = 0;
    p = scan_word_line(p, end, "SURF", true, &surface.flags);
    if (p)
        p = scan_word_line(p, end, "mat", false, &surface.material);
    if (p)
        p = scan_word_line(p, end, "refs", false, &claimed);
    for (; p && surface.num_refs < claimed; ++surface.num_refs) {
        scanned_ref ref = {};
        p = scan_int(p, end, &ref.index);
        if (p)
            p = scan_float(p, end, &ref.u);
        if (p)
            p = scan_float(p, end, &ref.v);
        batch->refs.push_back(ref);
    }
    if (!p)
        return nullptr;
    batch->surfaces.push_back(surface);
    return claimed > 0 ? skip_space(p, end) : p;
}

} // namespace

void scan_batch::clear()
{
    pieces.clear();
    xyz.clear();
    surfaces.clear();
    refs.clear();
}

const char *skip_space(const char *p, const char *end)
{
    while (p < end && (is_blank(*p) || *p == '\v' || *p == '\f'))
        ++p;
    return p;
}

const scan_piece &scan_vertices(const char *p, const char *end, int wanted, scan_batch *batch)
{
    scan_piece piece = {scan_piece::VERTICES, p, wanted, p, 0, false, batch->xyz.size(), 0};
    const int most = std::min(wanted, vertices_a_piece);
    while (piece.count < most) {
        float point[3] = {};
        int found = 0;
        while (found < 3) {
            const char *after = scan_float(p, end, &point[found]);
            if (!after)
                break;
            p = after;
            ++found;
        }
        p = skip_space(p, end);
        if (found == 0) {
            piece.stopped = true;
            break;
        }
        batch->xyz.insert(batch->xyz.end(), point, point + 3);
        ++piece.count;
    }
    piece.end = p;
    return batch->pieces.emplace_back(piece);
}

const scan_piece &scan_surfaces(const char *p, const char *end, int wanted, scan_batch *batch)
{
    scan_piece piece = {scan_piece::SURFACES, p, wanted, p, 0, false, batch->surfaces.size(),
                        batch->refs.size()};
    const int most = std::min(wanted, surfaces_a_piece);
    while (piece.count < most) {
        const std::size_t refs = batch->refs.size();
        const char *after = scan_surface(piece.end, end, batch);
        if (!after) {
            batch->refs.resize(refs);
            piece.stopped = true;
            break;
        }
        piece.end = after;
        ++piece.count;
    }
    return batch->pieces.emplace_back(piece);
}

// ---- the worker ----

struct block_scanner::ahead_t {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::unique_ptr<scan_batch>> ready;
    std::vector<std::unique_ptr<scan_batch>> spare;
    bool done = false;
    bool stop = false;

    std::unique_ptr<scan_batch> empty_batch();
    bool publish(std::unique_ptr<scan_batch> batch); // false: nobody wants more
    void finish();
    std::unique_ptr<scan_batch> take(std::unique_ptr<scan_batch> used);
    void run(const char *p, const char *end);
};

std::unique_ptr<scan_batch> block_scanner::ahead_t::empty_batch()
{
    const std::lock_guard lock(mutex);
    if (spare.empty())
        return std::make_unique<scan_batch>();
    std::unique_ptr<scan_batch> batch = std::move(spare.back());
    spare.pop_back();
    batch->clear();
    return batch;
}

bool block_scanner::ahead_t::publish(std::unique_ptr<scan_batch> batch)
{
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return stop || ready.size() < batches_ahead; });
    ready.push_back(std::move(batch));
    changed.notify_all();
    return !stop;
}

void block_scanner::ahead_t::finish()
{
    const std::lock_guard lock(mutex);
    done = true;
    changed.notify_all();
}

// Gives a used batch back and waits for the next; null at the end.
std::unique_ptr<scan_batch> block_scanner::ahead_t::take(std::unique_ptr<scan_batch> used)
{
    std::unique_lock lock(mutex);
    if (used)
        spare.push_back(std::move(used));
    changed.wait(lock, [this] { return done || !ready.empty(); });
    if (ready.empty())
        return nullptr;
    std::unique_ptr<scan_batch> batch = std::move(ready.front());
    ready.pop_front();
    changed.notify_all();
    return batch;
}

// Looks for the lines that announce blocks and scans the blocks.
void block_scanner::ahead_t::run(const char *p, const char *end)
{
    std::unique_ptr<scan_batch> batch = empty_batch();
    while (p < end) {
        int wanted = 0;
        const char *block = nullptr;
        auto kind = scan_piece::VERTICES;
        if (*p == 'n' && (block = scan_word_line(p, end, "numvert", false, &wanted)) == nullptr) {
            kind = scan_piece::SURFACES;
            block = scan_word_line(p, end, "numsurf", false, &wanted);
        }
        if (!block) {
            const void *newline = std::memchr(p, '\n', static_cast<std::size_t>(end - p));
            p = newline ? static_cast<const char *>(newline) + 1 : end;
            continue;
        }
        p = block;
        while (wanted > 0) {
            const scan_piece &piece = kind == scan_piece::VERTICES
                                          ? scan_vertices(p, end, wanted, batch.get())
                                          : scan_surfaces(p, end, wanted, batch.get());
            p = piece.end;
            wanted = piece.stopped ? 0 : wanted - piece.count;
            if (batch->refs.size() < refs_a_batch && batch->xyz.size() < floats_a_batch)
                continue;
            if (!publish(std::move(batch)))
                return;
            batch = empty_batch();
        }
    }
    publish(std::move(batch));
}

block_scanner::block_scanner(const char *begin, const char *end) : end_(end)
{
    if (end - begin < worth_a_worker || std::thread::hardware_concurrency() < 2)
        return;
    ahead_ = std::make_shared<ahead_t>();
    try {
        // Where it ends early, for want of memory or by a fault, the builder scans the rest itself.
        worker_ = worker_t([ahead = ahead_, begin, end] { ahead->run(begin, end); },
                           [ahead = ahead_] { ahead->finish(); });
    } catch (const std::exception &) { // no thread to be had
        ahead_ = nullptr;
    }
}

block_scanner::~block_scanner()
{
    if (!ahead_)
        return;
    {
        const std::lock_guard lock(ahead_->mutex);
        ahead_->stop = true;
        ahead_->changed.notify_all();
    }
    worker_.wait();
}

const scan_piece *block_scanner::from_ahead(scan_piece::kind_t kind, const char *p, int wanted)
{
    while (ahead_) {
        if (!current_ || next_piece_ == current_->pieces.size()) {
            current_ = ahead_->take(std::move(current_));
            next_piece_ = 0;
            if (!current_)
                return nullptr;
            continue;
        }
        const scan_piece &piece = current_->pieces[next_piece_];
        if (piece.begin > p)
            return nullptr;
        ++next_piece_;
        if (piece.begin == p && piece.kind == kind && piece.wanted == wanted) {
            used_ = current_.get();
            return &piece;
        }
    }
    return nullptr;
}

const scan_piece &block_scanner::scan(scan_piece::kind_t kind, const char *p, int wanted)
{
    if (const scan_piece *piece = from_ahead(kind, p, wanted))
        return *piece;
    own_.clear();
    used_ = &own_;
    return kind == scan_piece::VERTICES ? scan_vertices(p, end_, wanted, &own_)
                                        : scan_surfaces(p, end_, wanted, &own_);
}

const scan_piece &block_scanner::vertices(const char *p, int wanted)
{
    return scan(scan_piece::VERTICES, p, wanted);
}

const scan_piece &block_scanner::surfaces(const char *p, int wanted)
{
    return scan(scan_piece::SURFACES, p, wanted);
}
