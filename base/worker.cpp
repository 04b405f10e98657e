#include "base/worker.h"

#include "base/crash_guard.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <sys/resource.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

constexpr unsigned most_threads = 4; // with this one: pieces are cheap, cores are shared

// New threads take over what is blocked here.
class without_signals {
public:
    without_signals()
    {
        sigset_t all;
        sigfillset(&all);
        // A fault is the thread's own.
        for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT})
            sigdelset(&all, number);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~without_signals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    without_signals(const without_signals &) = delete;
    without_signals &operator=(const without_signals &) = delete;

private:
    sigset_t before_;
};

void run_guarded(const std::function<void()> &work, std::exception_ptr &failure)
{
    // The exception itself is kept: the guard would keep its text only.
    const auto caught = [&] {
        try {
            work();
        } catch (...) {
            failure = std::current_exception();
        }
    };
    fault_t fault;
    if (!crash_guard::guarded_bare(caught, &fault))
        failure = std::make_exception_ptr(fault.code);
}

} // namespace

worker_t::worker_t(std::function<void()> work, std::function<void()> ended)
    : failure_(std::make_shared<std::exception_ptr>())
{
    const without_signals blocked;
    thread_ = std::thread([work = std::move(work), ended = std::move(ended), failure = failure_] {
        {
            const crash_guard::thread_stack_t stack;
            run_guarded(work, *failure);
        }
        if (ended)
            ended();
    });
}

void worker_t::wait()
{
    if (thread_.joinable())
        thread_.join();
}

void worker_t::join()
{
    thread_.join();
    if (*failure_)
        std::rethrow_exception(std::exchange(*failure_, nullptr));
}

void work_in_background()
{
    constexpr int patience = 10;
    const auto thread = static_cast<id_t>(gettid());
    // Else it competes with them. A program that was started with more patience keeps it.
    setpriority(PRIO_PROCESS, thread, std::max(getpriority(PRIO_PROCESS, thread), patience));
}

bool in_parallel(int count, const std::function<void(int)> &work,
                 const std::function<bool()> &go_on)
{
    std::atomic<int> next = 0;
    std::atomic<bool> stopped = false;
    const auto ask = [&] {
        if (go_on && !go_on())
            stopped = true;
    };
    const auto take_pieces = [&](bool asks) {
        for (int i = next++; i < count && !stopped; i = next++) {
            try {
                work(i);
            } catch (...) {
                stopped = true;
                throw;
            }
            if (asks)
                ask();
        }
        if (asks && !stopped)
            ask(); // the other threads may have taken every piece
    };
    // Asked once: it is a call of the system.
    static const unsigned cores = std::clamp(std::thread::hardware_concurrency(), 1U, most_threads);
    std::vector<worker_t> workers;
    try {
        while (static_cast<int>(workers.size()) + 1 < std::min<int>(static_cast<int>(cores), count))
            workers.emplace_back([&] { take_pieces(false); });
    } catch (const std::system_error &) {
        // No more threads: those that there are do it.
    }
    // A fault on this thread, too, waits until nobody else uses what lies on its stack.
    std::exception_ptr failure;
    run_guarded([&] { take_pieces(true); }, failure);
    if (failure)
        stopped = true;
    for (worker_t &worker : workers) {
        try {
            worker.join();
        } catch (...) {
            failure = failure ? failure : std::current_exception();
        }
    }
    if (failure)
        std::rethrow_exception(failure);
    return !stopped;
}
