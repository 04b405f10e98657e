#include "base/aside.h"

#include "base/progress.h"
#include "base/worker.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace {

struct shared_state {
    std::mutex mutex;
    std::condition_variable changed;
    bool ended = false;
};

} // namespace

bool run_aside(std::function<void()> work)
{
    using namespace std::chrono_literals;
    const auto state = std::make_shared<shared_state>();
    worker_t worker(std::move(work), [state] {
        const std::lock_guard lock(state->mutex);
        state->ended = true;
        state->changed.notify_all();
    });
    progress_t progress(1);
    bool ended = false;
    while (!ended) {
        std::unique_lock lock(state->mutex);
        ended = state->changed.wait_for(lock, 1ms, [&] { return state->ended; });
        lock.unlock();
        if (!ended && !progress.step(0.5)) {
            worker.detach();
            return false;
        }
    }
    worker.join();
    return true;
}
