#ifndef VESK_BASE_WORKER_H
#define VESK_BASE_WORKER_H

// Threads beside the main one. What a worker throws, and a hardware fault in it, reach the thread that
// joins it: there the crash guard deals with them as with its own. Signals stay the main thread's. Work
// on a worker does not use the model's lists or the port, and makes records by record_maker alone.

#include <algorithm>
#include <exception>
#include <functional>
#include <memory>
#include <thread>

class worker_t {
public:
    worker_t() = default;
    // `ended` is called on the worker after `work`, however that ended: it wakes whoever waits. Throws
    // std::system_error when there are no more threads.
    explicit worker_t(std::function<void()> work, std::function<void()> ended = {});
    ~worker_t() { wait(); }
    worker_t(worker_t &&) noexcept = default;
    // The one that is replaced has ended, or was waited for.
    worker_t &operator=(worker_t &&) noexcept = default;

    [[nodiscard]] bool joinable() const { return thread_.joinable(); }
    // Waits for the end and throws what the work has thrown.
    void join();
    // Waits for the end of it, if there is any; what it has thrown is lost.
    void wait();
    // The work goes on by itself; what it throws is lost. It must own what it touches.
    void detach() { thread_.detach(); }

private:
    std::thread thread_;
    std::shared_ptr<std::exception_ptr> failure_;
};

// Of a worker: from now on it takes the processor time that others leave, and so do the threads that it
// starts. For work that nobody waits for: views, which are drawn by threads of the driver, too, go first.
void work_in_background();

// Calls work(i) for each i below `count`, in any order, on this thread and on others where the machine
// has more than one core. `go_on`, when there is one, is asked on this thread after its pieces and at the
// end; when it answers false no piece is begun, and the result is false. Throws what a piece has thrown.
bool in_parallel(int count, const std::function<void(int)> &work,
                 const std::function<bool()> &go_on = {});

// Calls work(begin, end) for ranges that are 0 .. count together, likewise. A short way is gone on this
// thread alone.
template <class Work>
void in_parallel_ranges(int count, const Work &work)
{
    constexpr int range = 16384;
    in_parallel((count + range - 1) / range,
                [&](int i) { work(i * range, std::min((i + 1) * range, count)); });
}

// Calls work(begin, end) for the two halves, likewise, or for the whole of a short way: for work that reads
// everything for each half, so that more parts would not be worth it.
template <class Work>
void in_two_parts(int count, const Work &work)
{
    constexpr int few = 100000;
    const int parts = count < few ? 1 : 2;
    in_parallel(parts, [&](int i) {
        work(static_cast<int>(static_cast<long>(count) * i / parts),
             static_cast<int>(static_cast<long>(count) * (i + 1) / parts));
    });
}

#endif
