// Programs that were started and whose end is awaited: asked for ten times a second while there are
// any, from a timer of the event loop.

#include "shell/programs_tk.h"

#include <tcl.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

struct program_t {
    pid_t pid;
    std::string line;
    void (*ended)(const char *line, int status);
};
std::vector<program_t> running;

constexpr int look_every = 100; // milliseconds

void look(ClientData)
{
    std::vector<std::pair<program_t, int>> ended;
    std::erase_if(running, [&](const program_t &program) {
        int status = 0;
        const pid_t pid = waitpid(program.pid, &status, WNOHANG);
        if (pid == 0)
            return false;
        if (pid == program.pid)
            ended.emplace_back(program,
                               WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status));
        return true;
    });
    if (!running.empty())
        Tcl_CreateTimerHandler(look_every, look, nullptr);
    for (const auto &[program, status] : ended) // last: it may start another
        program.ended(program.line.c_str(), status);
}

} // namespace

bool programs_tk_start(const char *command_line, void (*ended)(const char *line, int status))
{
    const char *shell = std::getenv("SHELL");
    if (shell == nullptr || *shell == '\0')
        shell = "/bin/sh";
    const pid_t pid = fork();
    if (pid < 0)
        return false;
    if (pid == 0) {
        setsid();
        execl(shell, shell, "-c", command_line, static_cast<char *>(nullptr));
        _exit(127);
    }
    if (running.empty())
        Tcl_CreateTimerHandler(look_every, look, nullptr);
    running.push_back({pid, command_line, ended});
    return true;
}
