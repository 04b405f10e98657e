#ifndef VESK_MODEL_ALLOC_INTERNAL_H
#define VESK_MODEL_ALLOC_INTERNAL_H

#include "model/alloc.h"

#include <cstddef>
#include <string_view>

// Asks for guarded blocks (`tracking`), and for a console line for each block besides (`debug`).
// Takes effect only before the first allocation: from then on the mode is fixed for the run, since
// a block taken in one mode and freed in the other would be misread.
void alloc_set_mode(bool debug, bool tracking);
// Whether blocks are guarded; fixes the mode.
bool alloc_is_guarded();
// myfree for a block of the heap, where blocks are not guarded: on any thread.
void alloc_free_block(void *block);
// Bytes in live blocks; counted in guarded mode only, else 0.
long long alloc_total();
// Bytes that the process holds, for "memory used": from the allocator, else from the system.
std::size_t alloc_process_bytes();
// What the heap asks of the system from now on comes in pages of 2 MB where the system has them: the
// first touch of a page costs more than the work on it. Reserves as much address space as the machine
// has memory; does nothing where address space is limited. To be called once.
void alloc_use_big_pages();
// A test sets the mode at will; the blocks it takes it must free before it sets another.
void alloc_set_mode_for_test(bool debug, bool tracking);

// Texts of records: owned copies from myalloc; a null text stays null.
char *text_copy(const char *text);
char *text_copy(std::string_view text);
// Frees the text at `slot` and stores a copy of `text` there.
void text_set(char **slot, const char *text);

#endif
