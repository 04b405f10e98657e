#include "base/worker.h"

#include "base/crash_guard.h"
#include "base/job_queue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

TEST(Worker, FaultsAndExceptionsReachWhoeverJoins)
{
    bool woken = false;
    worker_t faulting([] { raise(SIGFPE); }, [&] { woken = true; });
    fault_t fault;
    EXPECT_FALSE(guarded([&] { faulting.join(); }, &fault));
    EXPECT_EQ(fault.kind, fault_t::CODE);
    EXPECT_STREQ(vesk_exception_get_message(fault.code), "EXCEPTION_INT_DIVIDE_BY_ZERO");
    EXPECT_TRUE(woken);

    worker_t throwing([] { throw std::runtime_error("no more"); });
    EXPECT_THROW(throwing.join(), std::runtime_error);
    worker_t forgotten([] { throw std::runtime_error("lost"); });
    forgotten.wait();
}

TEST(Worker, PiecesRunOnceEach)
{
    for (const int count : {0, 1, 2, 1000}) {
        std::vector<std::atomic<int>> runs(count);
        EXPECT_TRUE(in_parallel(count, [&](int i) { ++runs[i]; }));
        for (const std::atomic<int> &of_one : runs)
            EXPECT_EQ(of_one, 1);
    }
}

TEST(Worker, PiecesEndEarly)
{
    std::atomic<int> done = 0;
    std::atomic<bool> asked = false;
    const auto here = std::this_thread::get_id();
    const auto piece = [&](int) {
        ++done;
        while (!asked && std::this_thread::get_id() != here)
            std::this_thread::yield();
    };
    EXPECT_FALSE(in_parallel(100000, piece, [&] {
        asked = true;
        return false;
    }));
    EXPECT_LT(done, 100000);
    const auto fails = [](int i) {
        if (i == 50)
            throw std::runtime_error("piece");
    };
    EXPECT_THROW(in_parallel(1000, fails), std::runtime_error);
    fault_t fault;
    const auto faults = [] { in_parallel(1000, [](int i) { i == 50 ? raise(SIGFPE) : 0; }); };
    EXPECT_FALSE(guarded(faults, &fault));
    EXPECT_EQ(fault.kind, fault_t::CODE);
}

struct counted_job_t : queued_job_t {
    std::function<void()> work;
    void run() const { work(); }
};

TEST(JobQueue, AJobThatFaultsLeavesTheOthers)
{
    job_queue<counted_job_t> queue;
    std::vector<std::shared_ptr<counted_job_t>> jobs;
    std::atomic<int> done = 0;
    for (int i = 0; i < 60; ++i) {
        jobs.push_back(std::make_shared<counted_job_t>());
        jobs.back()->work = [i, &done] {
            if (i % 5 == 1)
                throw std::runtime_error("job");
            if (i % 5 == 2)
                raise(SIGFPE);
            ++done;
        };
        queue.add(jobs.back());
        if (i % 20 == 19)
            queue.wait(false);
    }
    queue.wait(false);
    EXPECT_EQ(done, 36);
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        EXPECT_TRUE(jobs[i]->ended);
        EXPECT_EQ(jobs[i]->failed, i % 5 == 1 || i % 5 == 2) << i;
    }
}

// A priority that is set for the process would slow down the window as well.
TEST(JobQueue, YieldsTheProcessorAloneAndWithTheThreadsThatItStarts)
{
    const auto priority = [] { return getpriority(PRIO_PROCESS, static_cast<id_t>(gettid())); };
    const int before = priority();
    std::atomic<int> least_in_job = 1000;
    job_queue<counted_job_t> queue;
    const auto job = std::make_shared<counted_job_t>();
    job->work = [&] {
        in_parallel(64, [&](int) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1)); // for more than one thread
            least_in_job = std::min<int>(least_in_job, priority());
        });
    };
    queue.add(job);
    queue.wait(false);
    EXPECT_EQ(least_in_job, std::max(before, 10)); // the tests may themselves be run with patience
    EXPECT_EQ(priority(), before);
    int in_worker = -1000;
    worker_t([&] { in_worker = priority(); }).join();
    EXPECT_EQ(in_worker, before);
}

// Not where it writes results, nor in a library: there it is to be asked again.
TEST(Stopping, LeavesWhatNeverEnds)
{
    crash_guard::install();
    session_state_t &state = session();
    std::atomic<bool> saw_commit = false;
    const volatile bool endless = true;
    std::thread user([&] {
        using crash_guard::stop_answer;
        while (crash_guard::answer_to_stop() != stop_answer::given_up) {
            crash_guard::ask_to_stop();
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            saw_commit = saw_commit || crash_guard::answer_to_stop() == stop_answer::not_now;
        }
    });
    fault_t fault;
    EXPECT_FALSE(guarded(
        [&] {
            state.committing = true;
            ++state.command_depth;
            while (endless)
                if (saw_commit)
                    state.committing = false;
        },
        &fault));
    user.join();
    EXPECT_EQ(fault.code, crash_guard::stopped_code);
    EXPECT_EQ(state.command_depth, 0);
    EXPECT_FALSE(state.committing);
}

} // namespace
