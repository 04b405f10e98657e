#ifndef VESK_BASE_ASIDE_H
#define VESK_BASE_ASIDE_H

// Long work of a library that cannot be asked to stop: it runs on a thread of its own while the
// interface lives on.

#include <functional>
#include <memory>

// Runs `work` and waits for its end. False when the user cancelled: the work then goes on until it
// ends by itself and its results are thrown away, so it must own what it touches (a shared_ptr in
// the closure) and may not use the model, the allocator of records or the port. What it throws is
// thrown here.
bool run_aside(std::function<void()> work);

#endif
