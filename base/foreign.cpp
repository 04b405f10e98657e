#include "base/foreign.h"

#include "base/session_state.h"

#include <dlfcn.h>
#include <exception>

namespace {
std::uint64_t runs = 0;
std::uint64_t looks = 0; // while foreign code ran
} // namespace

bool is_foreign_code(const void *code)
{
    // dladdr would search the symbols of both for a name that nobody asks for.
    const auto module_of = [](const void *address, dl_find_object *module) {
        return _dl_find_object(const_cast<void *>(address), module) == 0;
    };
    dl_find_object own, its;
    return code != nullptr && module_of(reinterpret_cast<const void *>(&is_foreign_code), &own) &&
           module_of(code, &its) && own.dlfo_map_start != its.dlfo_map_start;
}

foreign_scope::foreign_scope(const void *code, bool known)
    : outer_(session().foreign), depth_(session().foreign_depth),
      unwinding_(std::uncaught_exceptions())
{
    const bool foreign = code != nullptr && (known || is_foreign_code(code));
    if (outer_ != nullptr)
        foreign_ran(); // it may have written before it called
    session().foreign = foreign ? code : nullptr;
    session().foreign_depth += foreign ? 1 : 0;
}

foreign_scope::~foreign_scope()
{
    // On the way of an exception to its guard the state stays: it tells whose fault that is.
    if (std::uncaught_exceptions() > unwinding_)
        return;
    if (session().foreign != nullptr)
        foreign_ran();
    session().foreign = outer_;
    session().foreign_depth = depth_;
}

std::uint64_t foreign_count()
{
    if (session().foreign != nullptr)
        ++looks;
    return runs + looks;
}

std::uint64_t foreign_runs() { return runs; }

void foreign_ran() { ++runs; }
