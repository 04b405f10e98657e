#include "model/deferred_pages.h"

#include "base/crash_guard.h"
#include "model/record_pages_internal.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <memory>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <sys/mman.h>

namespace {

enum page_state : std::uint8_t { PRESENT, DEFERRED, BEING_WRITTEN };

// Of each record page, by its number.
struct entry_t {
    deferred_pages *owner;
    std::uint32_t number; // in its run
    std::uint8_t run;
    std::atomic<std::uint8_t> state;
};
entry_t *entries; // of record_page_count()
std::atomic<std::size_t> num_to_come;

// Each may become a mapping of its own, of which the system allows a process some 65,000.
constexpr std::size_t most_taken = 20000;
std::size_t num_taken;

#if defined(__SANITIZE_THREAD__)
constexpr bool faults_are_watched = true;
#elif defined(__has_feature)
constexpr bool faults_are_watched = __has_feature(thread_sanitizer);
#else
constexpr bool faults_are_watched = false;
#endif

bool make_entries()
{
    const std::size_t bytes = record_page_count() * sizeof(entry_t);
    void *memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED)
        return false;
    entries = static_cast<entry_t *>(memory); // zero: all pages are present
    return true;
}

// Memory of a page at a multiple of its size, so that the system can give one big page; null when
// there is none.
char *new_page_memory()
{
    constexpr std::size_t room = 2 * record_page_bytes;
    void *start = mmap(nullptr, room, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (start == MAP_FAILED)
        return nullptr;
    void *first = start;
    std::size_t left = room;
    std::align(record_page_bytes, record_page_bytes, first, left);
    auto *memory = static_cast<char *>(first);
    if (memory != start)
        munmap(start, room - left);
    if (left != record_page_bytes)
        munmap(memory + record_page_bytes, left - record_page_bytes);
#ifdef MADV_HUGEPAGE
    madvise(memory, record_page_bytes, MADV_HUGEPAGE);
#endif
    return memory;
}

// The request to stop a command, which would leave the page half written, waits.
class stop_waits {
public:
    stop_waits()
    {
        sigset_t stop;
        sigemptyset(&stop);
        sigaddset(&stop, SIGUSR2);
        pthread_sigmask(SIG_BLOCK, &stop, &before_);
    }
    ~stop_waits() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    stop_waits(const stop_waits &) = delete;
    stop_waits &operator=(const stop_waits &) = delete;

private:
    sigset_t before_;
};

// Another thread may have written the page since the fault. What faults again on a page that is there
// is a real one.
bool is_first_time(const void *address)
{
    constexpr int most = 3;
    thread_local const void *last = nullptr;
    thread_local int times = 0;
    times = address == last ? times + 1 : 1;
    last = address;
    if (times <= most)
        return true;
    times = 0;
    return false;
}

} // namespace

bool deferred_pages::are_possible()
{
    if (faults_are_watched || !record_pages_in_use() || !crash_guard::is_installed())
        return false;
    if (entries == nullptr && make_entries())
        crash_guard::set_repair(repair);
    return entries != nullptr;
}

bool deferred_pages::add_run(std::size_t size, std::size_t count)
{
    run_t run = {
        size, count, static_cast<unsigned>(std::countr_zero(record_page_bytes / size)), {}};
    const std::size_t in_page = record_page_bytes / size;
    bool complete = true;
    for (std::size_t first = 0; first < count && complete; first += in_page) {
        const std::size_t used = std::min(in_page, count - first) * size;
        const record_page *page = num_taken < most_taken
                                      ? record_page_take(size, static_cast<std::uint32_t>(used))
                                      : nullptr;
        if (page == nullptr) {
            complete = false;
            break;
        }
        ++num_taken;
        char *memory = record_page_memory(page);
        entry_t &entry = entries[record_page_number(page)];
        entry.owner = this;
        entry.run = static_cast<std::uint8_t>(runs_.size());
        entry.number = static_cast<std::uint32_t>(run.memory.size());
        run.memory.push_back(memory);
        ++num_pages_;
        // Its memory goes, if there is any.
        complete =
            mmap(memory, record_page_bytes, PROT_NONE,
                 MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_FIXED, -1, 0) != MAP_FAILED;
        if (complete) {
            entry.state = DEFERRED;
            ++num_to_come;
        }
    }
    runs_.push_back(std::move(run));
    return complete;
}

void deferred_pages::give_back()
{
    for (const run_t &run : runs_) {
        for (char *memory : run.memory) {
            record_page *page = record_page_of(memory);
            if (entries[record_page_number(page)].state.exchange(PRESENT) == DEFERRED)
                --num_to_come;
            // Nothing but these calls can fail to give the page back: then it stays away.
            if (mmap(memory, record_page_bytes, PROT_READ | PROT_WRITE,
                     MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_FIXED, -1, 0) == MAP_FAILED)
                continue;
#ifdef MADV_HUGEPAGE
            madvise(memory, record_page_bytes, MADV_HUGEPAGE);
#endif
            record_page_give_back(page);
            --num_taken;
        }
    }
    runs_.clear();
    num_pages_ = num_written_ = 0;
}

const deferred_pages *deferred_pages::owner_of(const void *block)
{
    const record_page *page = entries != nullptr ? record_page_of(block) : nullptr;
    return page != nullptr ? entries[record_page_number(page)].owner : nullptr;
}

int deferred_pages::index_of(int number, const void *block) const
{
    const record_page *page = record_page_of(block);
    if (page == nullptr)
        return -1;
    const entry_t &entry = entries[record_page_number(page)];
    if (entry.owner != this || entry.run != number)
        return -1;
    const run_t &run = runs_[number];
    const char *memory = record_page_memory(page);
    // An older entry of a page that was given back since.
    if (entry.number >= run.memory.size() || run.memory[entry.number] != memory)
        return -1;
    const auto offset = static_cast<std::size_t>(static_cast<const char *>(block) - memory);
    const std::size_t i = (static_cast<std::size_t>(entry.number) << run.shift) + offset / run.size;
    return offset % run.size == 0 && i < run.count ? static_cast<int>(i) : -1;
}

bool deferred_pages::is_untouched(int run) const
{
    const std::vector<char *> &memory = runs_[run].memory;
    return std::all_of(memory.begin(), memory.end(), [](const char *page) {
        return entries[record_page_number(record_page_of(page))].state == DEFERRED;
    });
}

bool deferred_pages::any_written(int number, std::size_t first, std::size_t end) const
{
    const run_t &run = runs_[number];
    for (std::size_t page = first >> run.shift; first < end && page <= (end - 1) >> run.shift;
         ++page) {
        if (entries[record_page_number(record_page_of(run.memory[page]))].state != DEFERRED)
            return true;
    }
    return false;
}

bool deferred_pages::repair(void *address)
{
    const record_page *page = record_page_of(address);
    if (page == nullptr)
        return false;
    entry_t &entry = entries[record_page_number(page)];
    for (;;) {
        std::uint8_t state = entry.state;
        if (state == PRESENT)
            return is_first_time(address);
        if (state == DEFERRED && entry.state.compare_exchange_strong(state, BEING_WRITTEN)) {
            const stop_waits waits;
            const int before = errno;
            entry.owner->write_page(entry.run, entry.number);
            errno = before;
            entry.state = PRESENT;
            is_first_time(nullptr); // whatever was before is over
            return true;
        }
        sched_yield();
    }
}

// At another place, and the whole is moved to its own: nobody sees a part of it.
void deferred_pages::write_page(int number_of_run, std::size_t number)
{
    const run_t &run = runs_[number_of_run];
    const std::size_t in_page = record_page_bytes / run.size, first = number * in_page;
    const std::size_t count = std::min(in_page, run.count - first);
    char *target = run.memory[number];
    char *memory = new_page_memory();
    if (memory != nullptr) {
        write_(of_, number_of_run, first, count, memory);
        if (mremap(memory, record_page_bytes, record_page_bytes, MREMAP_MAYMOVE | MREMAP_FIXED,
                   target) == MAP_FAILED) {
            munmap(memory, record_page_bytes);
            memory = nullptr;
        }
    }
    // Too little memory, or too many pieces of it: another thread could come too early.
    if (memory == nullptr && mprotect(target, record_page_bytes, PROT_READ | PROT_WRITE) == 0)
        write_(of_, number_of_run, first, count, target);
    --num_to_come;
    ++num_written_;
}

std::size_t deferred_pages::bytes_to_come() { return num_to_come * record_page_bytes; }
