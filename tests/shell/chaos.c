/* Preloaded into the program: makes one system call on files below a folder fail, or ends the process
   right after it.
     CHAOS_FOLDER  part of the names of the files
     CHAOS_AT      which call, from 1 on; 0: none, the calls are only counted
     CHAOS_HOW     ENOSPC, EIO, EROFS, EINTR, short (half of a write), kill
     CHAOS_NO_NEW  when set, temporary files cannot be made: EROFS
     CHAOS_ONLY    counts calls of that name only
     CHAOS_ROUND   when it becomes another, counting begins anew: a script sets these while the program runs
     CHAOS_LOG     file that the number of calls and the name of the chosen one are written to
   Reading is left alone; opening for writing, writing, flushing, closing, renaming, linking and removing
   are counted. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

enum { MOST = 1024 };
static char watched[MOST]; /* descriptors that were opened for writing */
static int calls;
static const char *chosen_name = "none";
static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;

static const char *setting(const char *name)
{
    const char *value = getenv(name);
    return value == NULL ? "" : value;
}

static int concerns(const char *path)
{
    const char *folder = setting("CHAOS_FOLDER");
    return path != NULL && folder[0] != '\0' && strstr(path, folder) != NULL;
}

/* Counts a call: 0 for one that goes its way, else the chosen one. */
static int is_chosen(const char *name)
{
    static char round[16];
    if (setting("CHAOS_ONLY")[0] != '\0' && strcmp(setting("CHAOS_ONLY"), name) != 0)
        return 0;
    pthread_mutex_lock(&lock);
    if (strncmp(round, setting("CHAOS_ROUND"), sizeof round - 1) != 0) {
        strncpy(round, setting("CHAOS_ROUND"), sizeof round - 1);
        calls = 0;
    }
    const int number = ++calls;
    pthread_mutex_unlock(&lock);
    if (number != atoi(setting("CHAOS_AT")))
        return 0;
    chosen_name = name;
    return 1;
}

static int is_how(const char *how) { return strcmp(setting("CHAOS_HOW"), how) == 0; }

/* Whether the chosen call is to fail; errno says how then. */
static int fails(void)
{
    const struct {
        const char *name;
        int number;
    } kinds[] = {{"ENOSPC", ENOSPC}, {"EIO", EIO}, {"EROFS", EROFS}, {"EINTR", EINTR}};
    for (size_t i = 0; i < sizeof kinds / sizeof *kinds; ++i) {
        if (is_how(kinds[i].name)) {
            errno = kinds[i].number;
            return 1;
        }
    }
    return 0;
}

static void end_when_told(void)
{
    if (is_how("kill"))
        kill(getpid(), SIGKILL);
}

#define REAL(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

/* A call with a result of -1 for failure. */
#define COUNTED(concern, call)                                                                     \
    do {                                                                                           \
        const int chosen = (concern) && is_chosen(__func__);                                       \
        if (chosen && fails())                                                                     \
            return -1;                                                                             \
        const int result = (call);                                                                 \
        if (chosen)                                                                                \
            end_when_told();                                                                       \
        return result;                                                                             \
    } while (0)

static int opened(int fd, const char *path, int flags, int chosen)
{
    if (fd >= 0 && fd < MOST)
        watched[fd] = concerns(path) && (flags & O_ACCMODE) != O_RDONLY;
    if (chosen)
        end_when_told();
    return fd;
}

static int is_watched(int fd) { return fd >= 0 && fd < MOST && watched[fd]; }

#define OPEN(name)                                                                                 \
    int name(const char *path, int flags, ...)                                                     \
    {                                                                                              \
        va_list rest;                                                                              \
        va_start(rest, flags);                                                                     \
        const int mode = (flags & O_CREAT) != 0 ? va_arg(rest, int) : 0;                           \
        va_end(rest);                                                                              \
        const int chosen =                                                                         \
            concerns(path) && (flags & O_ACCMODE) != O_RDONLY && is_chosen(__func__);              \
        if (chosen && fails())                                                                     \
            return -1;                                                                             \
        return opened(REAL(name)(path, flags, mode), path, flags, chosen);                         \
    }
OPEN(open)
OPEN(open64)

#define TEMPORARY(name)                                                                            \
    int name(char *path, int flags)                                                                \
    {                                                                                              \
        const int chosen = concerns(path) && is_chosen(__func__);                                  \
        if (chosen && fails())                                                                     \
            return -1;                                                                             \
        return opened(REAL(name)(path, flags), path, O_WRONLY, chosen);                            \
    }
TEMPORARY(mkostemp)
TEMPORARY(mkostemp64)

ssize_t write(int fd, const void *bytes, size_t size)
{
    const int chosen = is_watched(fd) && is_chosen(__func__);
    if (chosen && fails())
        return -1;
    const ssize_t written =
        REAL(write)(fd, bytes, chosen && is_how("short") && size > 1 ? size / 2 : size);
    if (chosen)
        end_when_told();
    return written;
}

int fsync(int fd) { COUNTED(is_watched(fd), REAL(fsync)(fd)); }
int ftruncate(int fd, off_t size) { COUNTED(is_watched(fd), REAL(ftruncate)(fd, size)); }
int fchmod(int fd, mode_t mode) { COUNTED(is_watched(fd), REAL(fchmod)(fd, mode)); }
int rename(const char *from, const char *to)
{
    COUNTED(concerns(from) || concerns(to), REAL(rename)(from, to));
}
int link(const char *from, const char *to)
{
    COUNTED(concerns(from) || concerns(to), REAL(link)(from, to));
}
int unlink(const char *path) { COUNTED(concerns(path), REAL(unlink)(path)); }

int close(int fd)
{
    const int chosen = is_watched(fd) && is_chosen(__func__);
    if (is_watched(fd))
        watched[fd] = 0;
    const int result = REAL(close)(fd);
    if (chosen && fails())
        return -1; /* the descriptor is gone all the same */
    if (chosen)
        end_when_told();
    return result;
}

__attribute__((destructor)) static void tell(void)
{
    FILE *log = setting("CHAOS_LOG")[0] == '\0' ? NULL : fopen(setting("CHAOS_LOG"), "w");
    if (log == NULL)
        return;
    fprintf(log, "%d %s\n", calls, chosen_name);
    fclose(log);
}
