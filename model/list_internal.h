#ifndef VESK_MODEL_LIST_INTERNAL_H
#define VESK_MODEL_LIST_INTERNAL_H

#include "model/list.h"

// list_add_item remembers the last node of some 256 lists by their first node, and walks on from
// there; after foreign code it looks again. Our own code that cuts a list by hand, or turns nodes
// round, calls this with its head.
void list_forget_tail(const listitem *head);
// All of them, before many blocks are freed at once past myfree.
void list_forget_all();
// For myfree: a block that goes may be a node that is remembered.
void list_block_freed(const void *block);

#endif
