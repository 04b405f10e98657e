#include "fileio/helper_process.h"

#include "base/atomic_file.h"
#include "base/filename.h"
#include "base/home.h"
#include "base/progress.h"
#include "base/ui_port.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int output_fd = 3; // takes the result of the helper
constexpr int alive_fd = 4;  // held open as long as it lives

constexpr int look_interval = 50; // milliseconds
constexpr int wall_per_cpu = 4;   // on a busy machine a second of work takes longer
constexpr double bar_pace = 5;    // seconds until the bar is half way

class file_descriptor {
public:
    file_descriptor() = default;
    ~file_descriptor() { reset(-1); }
    file_descriptor(const file_descriptor &) = delete;
    file_descriptor &operator=(const file_descriptor &) = delete;
    [[nodiscard]] int get() const { return fd_; }
    // Closes the one it holds and takes another, under a high number: the low ones are the
    // helper's.
    void reset(int fd)
    {
        if (fd_ >= 0)
            close(fd_);
        fd_ = fd < 0 ? fd : fcntl(fd, F_DUPFD_CLOEXEC, 10);
        if (fd >= 0)
            close(fd);
    }

private:
    int fd_ = -1;
};

// Starts the helper; 0 or an error number.
int spawn(const std::vector<std::string> &words, int output, int alive, pid_t *pid)
{
    const std::string folder = vesk_filename_concat_path_file(vesk_get_vesk_homedir(), "lib");
    const std::string path = vesk_filename_concat_path_file(folder.c_str(), "scene_helper");
    std::vector<char *> arguments = {const_cast<char *>(path.c_str())};
    for (const std::string &word : words)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output, output_fd);
    posix_spawn_file_actions_adddup2(&actions, alive, alive_fd);
    posix_spawn_file_actions_addclosefrom_np(&actions, alive_fd + 1);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    const int error =
        posix_spawn(pid, path.c_str(), &actions, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

int wait_for(pid_t pid)
{
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

std::string reason_of(int status, const helper_limits &limits)
{
    if (WIFSIGNALED(status)) {
        const int number = WTERMSIG(status);
        if (number == SIGXCPU)
            return "its reader took more than " + std::to_string(limits.seconds) + " seconds";
        if (number == SIGXFSZ)
            return "its reader made too much of it";
        return std::string("its reader crashed (") + strsignal(number) + ")";
    }
    return "its reader gave up";
}

// One run of the helper.
class helper_run {
public:
    explicit helper_run(const helper_limits &limits) : limits_(limits) {}

    // "" when it runs, else why it does not.
    std::string start(const std::vector<std::string> &words);
    // Until it is gone; false when the user cancelled.
    bool wait();
    [[nodiscard]] helper_result verdict() const;

private:
    const helper_limits limits_;
    file_descriptor made_;  // its result
    file_descriptor alive_; // ends with the helper
    pid_t pid_ = 0;
    int status_ = 0;
};

std::string helper_run::start(const std::vector<std::string> &words)
{
    made_.reset(memfd_create("scene", MFD_CLOEXEC));
    int ends[2] = {-1, -1};
    const bool piped = pipe2(ends, O_CLOEXEC) == 0;
    file_descriptor held; // by the helper alone
    alive_.reset(ends[0]);
    held.reset(ends[1]);
    if (made_.get() < 0 || !piped)
        return strerror(errno);
    std::vector<std::string> all = {std::to_string(limits_.megabytes),
                                    std::to_string(limits_.seconds)};
    all.insert(all.end(), words.begin(), words.end());
    const int error = spawn(all, made_.get(), held.get(), &pid_);
    return error == 0 ? "" : std::string("lib/scene_helper cannot be started: ") + strerror(error);
}

bool helper_run::wait()
{
    progress_t progress(1);
    const double began = ui_port().now_seconds();
    const double real_limit = wall_per_cpu * static_cast<double>(limits_.seconds);
    int waited = 0; // milliseconds; the port's clock may stand still
    bool wanted = true;
    pollfd ended = {alive_.get(), POLLIN, 0};
    while (wanted && waited / 1000.0 <= real_limit && poll(&ended, 1, look_interval) <= 0) {
        waited += look_interval;
        const double passed = ui_port().now_seconds() - began;
        wanted = progress.look(passed / (passed + bar_pace));
    }
    if (waited / 1000.0 > real_limit)
        kill(pid_, SIGXCPU);
    if (!wanted || waited / 1000.0 > real_limit)
        kill(pid_, SIGKILL);
    status_ = wait_for(pid_);
    return wanted;
}

helper_result helper_run::verdict() const
{
    helper_result result;
    const bool well = WIFEXITED(status_) && WEXITSTATUS(status_) == 0;
    const bool told = WIFEXITED(status_) && WEXITSTATUS(status_) == 1;
    if (well || told)
        read_whole_file(("/proc/self/fd/" + std::to_string(made_.get())).c_str(), &result.output);
    if (well)
        result.state = helper_result::DONE;
    else
        result.reason =
            told && !result.output.empty() ? result.output : reason_of(status_, limits_);
    return result;
}

} // namespace

helper_limits helper_limits_for(size_t file_size)
{
    constexpr size_t mega = 1 << 20;
    const auto pages = static_cast<size_t>(std::max(sysconf(_SC_PHYS_PAGES), 1L));
    const size_t machine = pages * static_cast<size_t>(sysconf(_SC_PAGESIZE)) / mega;
    const size_t size = file_size / mega + 1;
    return {static_cast<unsigned>(std::clamp(1024 + 64 * size, size_t{1024},
                                             std::max(machine / 4 * 3, size_t{1024}))),
            static_cast<unsigned>(std::min(20 + 2 * size, size_t{3600}))};
}

helper_result run_helper(const std::vector<std::string> &words, const helper_limits &limits)
{
    helper_run helper(limits);
    helper_result result;
    result.reason = helper.start(words);
    if (!result.reason.empty())
        return result;
    if (helper.wait())
        return helper.verdict();
    result.state = helper_result::CANCELLED;
    return result;
}
