#ifndef VESK_MODEL_LIST_H
#define VESK_MODEL_LIST_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* The one collection of the system: a singly linked list of words. A list is held as a pointer to
   its first node, null when empty. Nodes own nothing; an element is a pointer or a small integer,
   and may occur more than once. */
typedef struct listitem {
    intptr_t data;
    struct listitem *next;
} listitem;

/* Negative, 0 or positive as `a` sorts before, with or after `b`. */
typedef int (*list_compare_t)(void *a, void *b);

/* Appends; constant time also without a last node at hand. Returns the new node. */
VESK_API listitem *list_add_item(listitem **head, void *element);

/* Appends after `last`, the current last node (ignored when the list is empty). Returns the new
   node, which the caller passes as the next `last`. */
VESK_API listitem *list_add_item_fast(listitem **head, listitem *last, void *element);

/* Appends unless the element is there already: then null. Walks the list. */
VESK_API listitem *list_add_item_unique(listitem **head, void *element);

/* Pushes a node in front of the first. Returns the new node. */
VESK_API listitem *list_add_item_head(listitem **head, void *element);

/* Inserts `element` before the first node that holds `existing`. Returns 1, or 0 when it is not
   in the list. */
VESK_API int list_insert_item(listitem **head, void *existing, void *element);

/* Unlinks and frees the first node that holds the element. Returns 1, or 0 when there is none. */
VESK_API int list_remove_item(listitem **head, void *element);

/* Number of nodes. */
VESK_API int list_count(const listitem *head);

/* Links the nodes of `second` after the last node of the first list; both lists then share them.
   Returns the resulting head. */
VESK_API listitem *list_append_list(listitem **head, listitem *second);

/* list_add_item_unique for each element of `second`, in order; `second` stays as it is. */
VESK_API void list_append_list_unique(listitem **head, const listitem *second);

/* Index of the first node that holds the element, or -1. */
VESK_API int list_index(const listitem *head, void *element);

/* Index of the first element of a list of texts that equals `text` byte for byte, or -1. */
VESK_API int list_index_string(const listitem *head, const char *text);

/* Replaces the first occurrence, or every one. Returns 1, or 0 when there is none. */
VESK_API int list_replace_item(listitem *head, void *old_element, void *new_element);
VESK_API int list_replace_item_all(listitem *head, void *old_element, void *new_element);

/* The element at an index, or null outside the list. Walks. */
VESK_API void *list_get_item(const listitem *head, int index);

/* The node at an index, or null outside the list. Walks. */
VESK_API listitem *list_seekto(listitem *head, int index);

/* Remembers three short cuts into this list of `n` nodes for list_get_item_fast; below 16 nodes
   forgets them. To be called again after nodes were added or removed and for every other list. */
VESK_API void list_prepare_fast(listitem *head, int n);

/* list_get_item by the nearest short cut, when they were prepared for this very head. */
VESK_API void *list_get_item_fast(listitem *head, int index);

/* Frees every node, not the elements, and sets the head to null. A null address is ignored. */
VESK_API void list_free(listitem **head);

/* Frees every element with myfree, and its node; sets the head to null. */
VESK_API void list_free_all(listitem **head);

/* A new list of the same elements. */
VESK_API listitem *list_clone(const listitem *head);

/* A new list of byte copies of the elements, each `element_size` bytes. */
VESK_API listitem *list_clone_all(const listitem *head, uint32_t element_size);

/* Reverses the list; returns the new head. */
VESK_API listitem *list_reverse(listitem **head);

/* The last node, and its element. The head must not be null. */
VESK_API listitem *list_end(listitem *head);
VESK_API void *list_last_item(listitem *head);

/* Sorts by moving elements between the nodes, which stay where they are. The order of equal
   elements is not kept. */
VESK_API void list_sort(listitem *head, list_compare_t compare);

/* Debugging aid: prints every pair of nodes that hold the same element. Returns 1 if there was
   one, else 0. */
VESK_API int list_check_for_duplicates(const listitem *head);

/* Debugging aid: prints every node and its element. */
VESK_API void list_print(const listitem *head);

VESK_END_DECLS

#endif
