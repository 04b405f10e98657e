#include "base/crash_guard.h"

#include "base/foreign.h"
#include "base/ui_port.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <link.h>
#include <pthread.h>
#include <signal.h>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

namespace {

struct fault_name_t {
    unsigned code;
    const char *name;
};
// clang-format off
const fault_name_t fault_names[] = {
    {0xC0000005, "EXCEPTION_ACCESS_VIOLATION"},
    {0xC000008C, "EXCEPTION_ARRAY_BOUNDS_EXCEEDED"},
    {0x80000003, "EXCEPTION_BREAKPOINT"},
    {0x80000002, "EXCEPTION_DATATYPE_MISALIGNMENT"},
    {0xC000008D, "EXCEPTION_FLT_DENORMAL_OPERAND"},
    {0xC000008E, "EXCEPTION_FLT_DIVIDE_BY_ZERO"},
    {0xC000008F, "EXCEPTION_FLT_INEXACT_RESULT"},
    {0xC0000090, "EXCEPTION_FLT_INVALID_OPERATION"},
    {0xC0000091, "EXCEPTION_FLT_OVERFLOW"},
    {0xC0000092, "EXCEPTION_FLT_STACK_CHECK"},
    {0xC0000093, "EXCEPTION_FLT_UNDERFLOW"},
    {0xC000001D, "EXCEPTION_ILLEGAL_INSTRUCTION"},
    {0xC0000006, "EXCEPTION_IN_PAGE_ERROR"},
    {0xC0000094, "EXCEPTION_INT_DIVIDE_BY_ZERO"},
    {0xC0000095, "EXCEPTION_INT_OVERFLOW"},
    {0xC0000026, "EXCEPTION_INVALID_DISPOSITION"},
    {0xC0000025, "EXCEPTION_NONCONTINUABLE_EXCEPTION"},
    {0xC0000096, "EXCEPTION_PRIV_INSTRUCTION"},
    {0x80000004, "EXCEPTION_SINGLE_STEP"},
    {0xC00000FD, "EXCEPTION_STACK_OVERFLOW"},
    {crash_guard::stopped_code, "stopped by the user"},
};
// clang-format on

constexpr size_t stack_size = 64 * 1024;
constexpr int too_many_faults = 3;
constexpr time_t fault_window = 10; // seconds

thread_local volatile unsigned fault_code = 0;
thread_local volatile int fault_errno = 0;
void (*after_fault)(const fault_t &fault) = nullptr;
void (*rescue)() = nullptr;
bool (*repair)(void *address) = nullptr;
bool installed = false;
bool in_after_fault = false;
time_t recent_faults[too_many_faults];
int fault_count = 0;

unsigned code_of(int signal_number, const siginfo_t *info, const ucontext_t *context)
{
    switch (signal_number) {
    case SIGFPE:
        if (info->si_code == FPE_INTOVF)
            return 0xC0000095;
        return info->si_code == FPE_FLTDIV ? 0xC000008E : 0xC0000094;
    case SIGILL:
        return 0xC000001D;
    case SIGBUS:
        return info->si_code == BUS_ADRALN ? 0x80000002 : 0xC0000006;
    case SIGTRAP:
        return 0x80000003;
    default: {
#ifdef __x86_64__
        const auto stack = static_cast<uintptr_t>(context->uc_mcontext.gregs[REG_RSP]);
        const auto address = reinterpret_cast<uintptr_t>(info->si_addr);
        const uintptr_t distance = address > stack ? address - stack : stack - address;
        if (address != 0 && distance < 65536)
            return 0xC00000FD;
#else
        static_cast<void>(context);
#endif
        return 0xC0000005;
    }
    }
}

struct module_search_t {
    uintptr_t address;
    bool untrusted;
};

// Faults in the heap or in the GL driver leave nothing that the program could go on with.
int is_untrusted_module(dl_phdr_info *info, size_t, void *data)
{
    auto *search = static_cast<module_search_t *>(data);
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const ElfW(Phdr) &header = info->dlpi_phdr[i];
        const uintptr_t start = info->dlpi_addr + header.p_vaddr;
        if (header.p_type != PT_LOAD || search->address < start ||
            search->address >= start + header.p_memsz)
            continue;
        // libGLU computes only.
        for (const char *part : {"mimalloc", "_dri.so", "libGL.", "libGLX", "libGLdispatch",
                                 "libgallium", "libLLVM", "nvidia"}) {
            if (strstr(info->dlpi_name, part) != nullptr)
                search->untrusted = true;
        }
        return 1;
    }
    return 0;
}

bool survivable(int signal_number, const ucontext_t *context)
{
    if (signal_number == SIGABRT)
        return false;
#ifdef __x86_64__
    module_search_t search = {static_cast<uintptr_t>(context->uc_mcontext.gregs[REG_RIP]), false};
    dl_iterate_phdr(is_untrusted_module, &search);
    return !search.untrusted;
#else
    static_cast<void>(context);
    return true;
#endif
}

void on_fault(int signal_number, siginfo_t *info, void *raw_context)
{
    if (signal_number == SIGSEGV && repair != nullptr && repair(info->si_addr))
        return;
    fault_errno = errno;
    const auto *context = static_cast<const ucontext_t *>(raw_context);
    if (crash_guard::top == nullptr || !survivable(signal_number, context)) {
        if (rescue != nullptr) {
            auto *once = rescue;
            rescue = nullptr;
            once();
        }
        constexpr std::string_view line = "VESK: a fault that cannot be survived - exiting.\n";
        if (write(STDERR_FILENO, line.data(), line.size()) < 0)
            _exit(1);
        signal(signal_number, SIG_DFL);
        raise(signal_number);
        return;
    }
    fault_code = code_of(signal_number, info, context);
    siglongjmp(crash_guard::top->buffer, 1);
}

// ---- stopping ----

pthread_t main_thread;
std::atomic<crash_guard::stop_answer> stop_answered = crash_guard::stop_answer::none;

// Whether an address lies in the program itself, or in the plug-in that runs.
bool can_be_left(std::uintptr_t address)
{
    dl_find_object here, own, foreign;
    if (_dl_find_object(reinterpret_cast<void *>(address), &here) != 0 || // NOLINT
        _dl_find_object(reinterpret_cast<void *>(&can_be_left), &own) != 0)
        return false;
    if (here.dlfo_map_start == own.dlfo_map_start)
        return true;
    void *running = const_cast<void *>(session().foreign);
    return running != nullptr && _dl_find_object(running, &foreign) == 0 &&
           here.dlfo_map_start == foreign.dlfo_map_start;
}

void on_stop(int, siginfo_t *, void *raw_context)
{
    using crash_guard::stop_answer;
    const session_state_t &now = session();
    if (crash_guard::top == nullptr || (now.command_depth == 0 && now.foreign_depth == 0)) {
        stop_answered = stop_answer::no_command;
        return;
    }
    stop_answered = stop_answer::not_now;
#ifdef __x86_64__
    const auto *context = static_cast<const ucontext_t *>(raw_context);
    if (now.committing ||
        !can_be_left(static_cast<std::uintptr_t>(context->uc_mcontext.gregs[REG_RIP])))
        return;
    stop_answered = stop_answer::given_up;
    fault_code = crash_guard::stopped_code;
    siglongjmp(crash_guard::top->buffer, 1);
#else
    static_cast<void>(raw_context);
#endif
}

// Counts a fault; true when it is the last of three within ten seconds.
bool are_too_many()
{
    const time_t now = time(nullptr);
    recent_faults[fault_count++ % too_many_faults] = now;
    const time_t oldest = *std::min_element(std::begin(recent_faults), std::end(recent_faults));
    return fault_count >= too_many_faults && now - oldest <= fault_window;
}

} // namespace

const char *vesk_exception_get_message(unsigned code)
{
    for (const fault_name_t &row : fault_names) {
        if (row.code == code)
            return row.name;
    }
    return "Unknown exception type";
}

namespace crash_guard {

thread_local frame_t *top = nullptr;

thread_stack_t::thread_stack_t()
    : memory_(mmap(nullptr, stack_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))
{
    if (memory_ == MAP_FAILED)
        return;
    stack_t stack = {};
    stack.ss_sp = memory_;
    stack.ss_size = stack_size;
    sigaltstack(&stack, nullptr);
}

thread_stack_t::~thread_stack_t()
{
    if (memory_ == MAP_FAILED)
        return;
    stack_t stack = {};
    stack.ss_flags = SS_DISABLE;
    sigaltstack(&stack, nullptr);
    munmap(memory_, stack_size);
}

void install()
{
    static const thread_stack_t of_main_thread;
    struct sigaction action = {};
    action.sa_sigaction = on_fault;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
    sigemptyset(&action.sa_mask);
    for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT})
        sigaction(number, &action, nullptr);
    installed = true;
    main_thread = pthread_self();
    action.sa_sigaction = on_stop;
    action.sa_flags |= SA_RESTART;
    sigaction(SIGUSR2, &action, nullptr);
}

bool is_installed() { return installed; }

void set_repair(bool (*hook)(void *address)) { repair = hook; }

void ask_to_stop()
{
    stop_answered = stop_answer::none;
    pthread_kill(main_thread, SIGUSR2);
}

stop_answer answer_to_stop() { return stop_answered; }

unsigned last_code() { return fault_code; }

std::string last_error_text()
{
    const int number = fault_errno != 0 ? fault_errno : errno;
    fault_errno = 0;
    return std::strerror(number);
}

void set_after_fault(void (*hook)(const fault_t &fault)) { after_fault = hook; }

void set_rescue(void (*hook)()) { rescue = hook; }

void quit_broken()
{
    if (rescue != nullptr) {
        auto *once = rescue;
        rescue = nullptr;
        once();
    }
    fprintf(stderr, "VESK: too many faults - exiting.\n");
    _exit(1);
}

void restore(const session_state_t &before, fault_t *fault)
{
    fault->in_foreign = session().foreign_depth > 0;
    fault->foreign = session().foreign;
    if (fault->in_foreign)
        foreign_ran();
    session() = before;
}

void run_after_fault(const fault_t &fault)
{
    const bool counts = !fault.in_foreign && fault.code != stopped_code;
    if (in_after_fault || (counts && are_too_many()))
        quit_broken();
    if (after_fault == nullptr)
        return;
    in_after_fault = true;
    fault_t second;
    if (!guarded([&] { after_fault(fault); }, &second))
        quit_broken();
    in_after_fault = false;
}

void forget_faults_for_test() { fault_count = 0; }

} // namespace crash_guard
