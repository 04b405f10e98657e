// The process that reads files through the Assimp library for the program:
//   scene_helper MEGABYTES SECONDS read SUFFIX FILE
// Exit status 0: a scene's bytes stand at descriptor 3. 1: it was not read, and the reason in plain
// words stands there. It limits itself before it opens anything, and ends with the program that
// started it.

#include "modules/assimp_read.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr int output_fd = 3;

// Past `most` the process gets a signal, past `end` it is killed.
void limit(__rlimit_resource resource, rlim_t most, rlim_t end)
{
    const rlimit both = {most, end};
    setrlimit(resource, &both);
}

void limit_this_process(const char *megabytes, const char *seconds)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlim_t bytes = std::strtoull(megabytes, nullptr, 10) << 20;
    const rlim_t time = std::strtoull(seconds, nullptr, 10);
    limit(RLIMIT_AS, bytes, bytes);
    limit(RLIMIT_FSIZE, bytes, bytes);
    limit(RLIMIT_CPU, time, time + 5);
    limit(RLIMIT_CORE, 0, 0);
}

bool put(const std::string &bytes)
{
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t count = ::write(output_fd, bytes.data() + done, bytes.size() - done);
        if (count <= 0)
            return false;
        done += static_cast<std::size_t>(count);
    }
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 6 || std::strcmp(argv[3], "read") != 0)
        return 2;
    limit_this_process(argv[1], argv[2]);
    std::string output;
    std::string reason;
    try {
        plain_scene scene;
        reason = helper_read(argv[5], argv[4], &scene);
        if (reason.empty())
            output = encode_scene(scene);
    } catch (const std::bad_alloc &) {
        reason = std::string("it takes more than ") + argv[1] + " megabytes of memory";
    } catch (const std::exception &problem) {
        reason = problem.what();
    }
    const bool told = put(reason.empty() ? output : reason);
    _exit(told && reason.empty()
              ? 0
              : 1); // no destructors: a damaged file may have broken their objects
}
