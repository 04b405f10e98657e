#ifndef VESK_BASE_FOREIGN_H
#define VESK_BASE_FOREIGN_H

// Foreign code is what plug-ins bring: handlers of commands, importers, exporters, filters, texture
// loaders, operations with an undo, callbacks, entry points. It may write into the model's records
// without saying so. Every call into it stands in a scope, so that three things are known: whether the
// code that runs now is foreign, whether any is on the stack, and whether some has run since.

#include <cstdint>

// Whether the code lies in another file than the program.
bool is_foreign_code(const void *code);

// Round a call of `code` (any function pointer as an address; null: of the program itself), which
// counts as foreign where `known` says so or it lies in another file. Code of the program that foreign
// code calls through a command runs in a scope too: it marks what it changes, so nothing has to be
// compared again and again while it does.
class foreign_scope {
public:
    explicit foreign_scope(const void *code, bool known = false);
    ~foreign_scope();
    foreign_scope(const foreign_scope &) = delete;
    foreign_scope &operator=(const foreign_scope &) = delete;

private:
    const void *outer_;
    int depth_;
    int unwinding_;
};

// Of a function of any type.
template <class R, class... A>
const void *code_of_function(R (*function)(A...))
{
    return reinterpret_cast<const void *>(function);
}

// Grows when foreign code has run, and at each look while it runs: whatever was known of the model
// under another count has to be compared.
std::uint64_t foreign_count();

// The same without the looks: grows when foreign code has run.
std::uint64_t foreign_runs();

// Foreign code ran outside a scope, or its end was skipped by a fault.
void foreign_ran();

#endif
