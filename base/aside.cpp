#include "base/aside.h"

#include "base/progress.h"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>

namespace {

struct shared_state {
    std::mutex mutex;
    std::condition_variable ended;
    bool done = false;
    std::exception_ptr failure; // thrown by the work: memory ran out
};

} // namespace

bool run_aside(std::function<void()> work)
{
    using namespace std::chrono_literals;
    const auto state = std::make_shared<shared_state>();
    std::thread worker([state, work = std::move(work)] {
        std::exception_ptr failure;
        try {
            work();
        } catch (...) {
            failure = std::current_exception();
        }
        const std::lock_guard lock(state->mutex);
        state->failure = failure;
        state->done = true;
        state->ended.notify_all();
    });
    progress_t progress(1);
    bool done = false;
    while (!done) {
        std::unique_lock lock(state->mutex);
        done = state->ended.wait_for(lock, 1ms, [&] { return state->done; });
        lock.unlock();
        if (!done && !progress.step(0.5)) {
            worker.detach();
            return false;
        }
    }
    worker.join();
    if (state->failure)
        std::rethrow_exception(state->failure);
    return true;
}
