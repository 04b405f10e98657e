#ifndef VESK_MODEL_DEFERRED_PAGES_H
#define VESK_MODEL_DEFERRED_PAGES_H

// Pages of records whose blocks have their addresses at once and are written when one of them is
// touched first, by whomever: until then the system answers an access with a fault, upon which the page
// is written and the access made again. So nobody sees a block that is not there. A page comes whole:
// another thread waits for it. Afterwards it is a page as any other.

#include "model/record_pages.h"

#include <atomic>
#include <vector>

class deferred_pages {
public:
    // There are pages, and the crash guard sees faults.
    static bool are_possible();

    // Writes the blocks first .. first + count - 1 of a run. Called in a signal handler, on any thread:
    // it allocates nothing and touches no deferred page.
    using writer = void (*)(const void *of, int run, std::size_t first, std::size_t count,
                            char *memory);
    deferred_pages(writer write, const void *of) : write_(write), of_(of) {}
    // Once all pages were written or given back.
    ~deferred_pages() = default;
    deferred_pages(const deferred_pages &) = delete;
    deferred_pages &operator=(const deferred_pages &) = delete;

    // Takes the pages of `count` blocks of 16, 32 or 64 bytes, the next run; false when there are not as
    // many: all that were taken are to be given back.
    bool add_run(std::size_t size, std::size_t count);
    [[nodiscard]] void *block(int run, std::size_t i) const
    {
        const run_t &in = runs_[run];
        return in.memory[i >> in.shift] + ((i & ((std::size_t{1} << in.shift) - 1)) * in.size);
    }
    // What handed a block out, as far as it is not of an older page there; null for others.
    static const deferred_pages *owner_of(const void *block);
    // The number in its run of a block, by its address alone; -1 where it is none.
    [[nodiscard]] int index_of(int run, const void *block) const;
    // Whether somebody could have changed one of the blocks first .. end - 1.
    [[nodiscard]] bool any_written(int run, std::size_t first, std::size_t end) const;
    // Of all: bytes of pages that have no memory yet.
    static std::size_t bytes_to_come();
    [[nodiscard]] bool is_untouched() const { return num_written_ == 0; }
    [[nodiscard]] bool is_untouched(int run) const;
    [[nodiscard]] bool are_written() const { return num_written_ == num_pages_; }
    // All pages, written or not; none of their blocks was freed.
    void give_back();

private:
    struct run_t {
        std::size_t size, count;
        unsigned shift; // two to this is the number of blocks in a page
        std::vector<char *> memory;
    };
    static bool repair(void *address);
    void write_page(int run, std::size_t number);

    writer write_;
    const void *of_;
    std::vector<run_t> runs_;
    std::size_t num_pages_ = 0;
    std::atomic<std::size_t> num_written_ = 0;
};

#endif
