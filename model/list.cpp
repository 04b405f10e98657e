#include "base/foreign.h"
#include "base/messages.h"
#include "base/session_state.h"
#include "model/alloc.h"
#include "model/each.h"
#include "model/list_internal.h"
#include "model/record_maker.h"

#include <algorithm>
#include <cstring>

namespace {

// ---- tails: first node -> last node of the long lists that are appended to ----

constexpr int num_slots = 256;
constexpr int num_tail_keys = 1024;
constexpr int worth_remembering = 8; // steps that a walk took
constexpr int short_length = 256;    // a list as short is walked for foreign code every time

struct tail_slot {
    const listitem *head;
    listitem *tail;
    int length;         // up to the tail, as far as it is known
    std::uint64_t seen; // foreign_runs() when the list was walked
};

struct tail_table {
    tail_slot slots[num_slots];          // by the hash of the head
    std::int16_t by_tail[num_tail_keys]; // by the hash of the tail: number of its slot, plus one
    int used;
};
tail_table tails;

unsigned hash(const void *block, unsigned size)
{
    const auto bits = reinterpret_cast<std::uintptr_t>(block) >> 4;
    return static_cast<unsigned>((bits * 0x9E3779B97F4A7C15ULL) >> 40) % size;
}

void drop_slot(tail_slot &slot)
{
    if (!slot.head)
        return;
    tails.by_tail[hash(slot.tail, num_tail_keys)] = 0;
    slot = {};
    --tails.used;
}

void set_tail(tail_slot &slot, const listitem *head, listitem *tail, int length, std::uint64_t seen)
{
    drop_slot(slot);
    std::int16_t &key = tails.by_tail[hash(tail, num_tail_keys)];
    if (key != 0)
        drop_slot(tails.slots[key - 1]);
    key = static_cast<std::int16_t>(&slot - tails.slots + 1);
    slot = {head, tail, length, seen};
    ++tails.used;
}

// Whether the remembered last node can still be the list's. Foreign code cuts lists by hand: once it
// has run the list is walked again, and while it runs, too, unless that would make appending to a long
// list quadratic.
bool is_trusted(const tail_slot &slot, const listitem *head)
{
    if (slot.head != head || slot.seen != foreign_runs())
        return false;
    return session().foreign == nullptr || slot.length > short_length;
}

// The last node. Walks on from the remembered one, so that nodes hung on by hand are found.
listitem *find_last(listitem *head)
{
    tail_slot &slot = tails.slots[hash(head, num_slots)];
    const bool known = is_trusted(slot, head);
    listitem *node = known ? slot.tail : head;
    int steps = 0;
    for (; node->next; node = node->next)
        ++steps;
    if (known && steps > 0)
        set_tail(slot, head, node, slot.length + steps, slot.seen);
    else if (!known && steps >= worth_remembering)
        set_tail(slot, head, node, steps + 1, foreign_runs());
    else if (!known)
        list_forget_tail(head);
    return node;
}

// ---- the three short cuts of list_get_item_fast ----

struct fast_index {
    const listitem *head;
    listitem *nodes[3];
    int indices[3];
};
fast_index fast;

void forget_fast(const listitem *head)
{
    if (fast.head == head)
        fast = {};
}

listitem *new_node(void *element)
{
    auto *node = static_cast<listitem *>(myalloc(sizeof(listitem)));
    if (node)
        *node = {reinterpret_cast<std::intptr_t>(element), nullptr};
    return node;
}

std::intptr_t word(void *element) { return reinterpret_cast<std::intptr_t>(element); }

unsigned low_bits(const void *pointer)
{
    return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(pointer));
}

// Below this, list_sort exchanges as the original rule says; it is quadratic.
constexpr int exchange_limit = 256;

// Frees a long list by the shorter way that pages of records have.
void free_many(listitem *node)
{
    const bool by_pages = record_pages_in_use();
    if (by_pages)
        list_forget_all();
    block_freer freer;
    while (node != nullptr) {
        listitem *next = node->next;
        if (by_pages)
            freer.free(node);
        else
            myfree(node);
        node = next;
    }
}

void exchange_sort(listitem *head, list_compare_t compare)
{
    for (listitem *a = head; a->next; a = a->next) {
        for (listitem *b = a->next; b; b = b->next) {
            if (compare(item_of<void>(a), item_of<void>(b)) > 0)
                std::swap(a->data, b->data);
        }
    }
}

void merge_sort(listitem *head, list_compare_t compare)
{
    std::vector<void *> elements;
    for (void *element : each<void>(head))
        elements.push_back(element);
    std::stable_sort(elements.begin(), elements.end(),
                     [compare](void *a, void *b) { return compare(a, b) < 0; });
    for (void *element : elements) {
        head->data = word(element);
        head = head->next;
    }
}

} // namespace

void list_forget_tail(const listitem *head)
{
    tail_slot &slot = tails.slots[hash(head, num_slots)];
    if (slot.head == head)
        drop_slot(slot);
}

void list_forget_all()
{
    tails = {};
    fast = {};
}

void list_block_freed(const void *block)
{
    if (fast.head == block)
        fast = {};
    if (tails.used == 0)
        return;
    tail_slot &slot = tails.slots[hash(block, num_slots)];
    if (slot.head == block)
        drop_slot(slot);
    const std::int16_t key = tails.by_tail[hash(block, num_tail_keys)];
    if (key != 0 && tails.slots[key - 1].tail == block)
        drop_slot(tails.slots[key - 1]);
}

listitem *list_add_item(listitem **head, void *element)
{
    return list_add_item_fast(head, *head ? find_last(*head) : nullptr, element);
}

listitem *list_add_item_fast(listitem **head, listitem *last, void *element)
{
    listitem *node = new_node(element);
    (*head ? last->next : *head) = node;
    return node;
}

listitem *list_add_item_unique(listitem **head, void *element)
{
    return list_index(*head, element) >= 0 ? nullptr : list_add_item(head, element);
}

listitem *list_add_item_head(listitem **head, void *element)
{
    listitem *node = new_node(element);
    node->next = *head;
    *head = node;
    return node;
}

int list_insert_item(listitem **head, void *existing, void *element)
{
    for (listitem **link = head; *link; link = &(*link)->next) {
        if ((*link)->data == word(existing)) {
            listitem *node = new_node(element);
            node->next = *link;
            *link = node;
            return 1;
        }
    }
    return 0;
}

int list_remove_item(listitem **head, void *element)
{
    forget_fast(*head);
    for (listitem **link = head; *link; link = &(*link)->next) {
        if ((*link)->data == word(element)) {
            listitem *node = *link;
            *link = node->next;
            myfree(node);
            return 1;
        }
    }
    return 0;
}

int list_count(const listitem *head)
{
    int n = 0;
    for (; head; head = head->next)
        ++n;
    return n;
}

listitem *list_append_list(listitem **head, listitem *second)
{
    (*head ? find_last(*head)->next : *head) = second;
    return *head;
}

void list_append_list_unique(listitem **head, const listitem *second)
{
    for (void *element : each<void>(second))
        list_add_item_unique(head, element);
}

int list_index(const listitem *head, void *element)
{
    for (int i = 0; head; head = head->next, ++i) {
        if (head->data == word(element))
            return i;
    }
    return -1;
}

int list_index_string(const listitem *head, const char *text)
{
    for (int i = 0; head; head = head->next, ++i) {
        if (std::strcmp(item_of<char>(head), text) == 0)
            return i;
    }
    return -1;
}

int list_replace_item(listitem *head, void *old_element, void *new_element)
{
    for (; head; head = head->next) {
        if (head->data == word(old_element)) {
            head->data = word(new_element);
            return 1;
        }
    }
    return 0;
}

int list_replace_item_all(listitem *head, void *old_element, void *new_element)
{
    int found = 0;
    for (; head; head = head->next) {
        if (head->data == word(old_element)) {
            head->data = word(new_element);
            found = 1;
        }
    }
    return found;
}

void *list_get_item(const listitem *head, int index)
{
    if (index < 0)
        return nullptr;
    for (; head && index > 0; --index)
        head = head->next;
    return head ? item_of<void>(head) : nullptr;
}

listitem *list_seekto(listitem *head, int index)
{
    if (index < 0)
        return nullptr;
    for (; head && index > 0; --index)
        head = head->next;
    return head;
}

void list_prepare_fast(listitem *head, int n)
{
    fast = {};
    if (n < 16)
        return;
    const int q2 = n / 2;
    const int q1 = q2 / 2;
    fast_index index = {head, {}, {q1, q2, q1 + q2}};
    listitem *node = head;
    int at = 0;
    for (int i = 0; i < 3; ++i) {
        node = list_seekto(node, index.indices[i] - at);
        at = index.indices[i];
        index.nodes[i] = node;
    }
    if (node) // null: the list is shorter than it was said to be
        fast = index;
}

void *list_get_item_fast(listitem *head, int index)
{
    if (head && fast.head == head) {
        for (int i = 2; i >= 0; --i) {
            if (index >= fast.indices[i])
                return list_get_item(fast.nodes[i], index - fast.indices[i]);
        }
    }
    return list_get_item(head, index);
}

void list_free(listitem **head)
{
    if (!head)
        return;
    forget_fast(*head);
    constexpr int few = 4096;
    listitem *node = *head;
    for (int i = 0; node != nullptr && i < few; ++i) {
        listitem *next = node->next;
        myfree(node);
        node = next;
    }
    if (node != nullptr)
        free_many(node);
    *head = nullptr;
}

void list_free_all(listitem **head)
{
    if (!head)
        return;
    for (void *element : each<void>(*head))
        myfree(element);
    list_free(head);
}

listitem *list_clone(const listitem *head)
{
    std::vector<void *> elements;
    for (void *element : each<void>(head))
        elements.push_back(element);
    return make_nodes(elements).first;
}

listitem *list_clone_all(const listitem *head, std::uint32_t element_size)
{
    owned_list copy;
    for (void *element : each<void>(head)) {
        void *block = myalloc(element_size);
        if (block)
            std::memcpy(block, element, element_size);
        copy.add(block);
    }
    return copy.release();
}

listitem *list_reverse(listitem **head)
{
    listitem *reversed = nullptr;
    for (listitem *node = *head; node;) {
        list_block_freed(node); // first and last nodes change their parts
        listitem *next = node->next;
        node->next = reversed;
        reversed = node;
        node = next;
    }
    *head = reversed;
    return reversed;
}

// Asked for by foreign code these walk the list: that is how it makes a long one, which it cut by
// hand, known again.
listitem *list_end(listitem *head)
{
    if (session().foreign != nullptr)
        list_forget_tail(head);
    return find_last(head);
}

void *list_last_item(listitem *head) { return item_of<void>(list_end(head)); }

void list_sort(listitem *head, list_compare_t compare)
{
    const int n = list_count(head);
    if (n < 2)
        return;
    if (n <= exchange_limit)
        exchange_sort(head, compare);
    else
        merge_sort(head, compare);
}

int list_check_for_duplicates(const listitem *head)
{
    console_printf("checking list %x for duplicates\n", low_bits(head));
    int found = 0;
    for (const listitem *a = head; a; a = a->next) {
        for (const listitem *b = a->next; b; b = b->next) {
            if (a->data != b->data)
                continue;
            found = 1;
            console_printf("duplicate item in list %x %x   %x %x\n", low_bits(a), low_bits(b),
                           low_bits(item_of<void>(a)), low_bits(item_of<void>(b)));
        }
    }
    return found;
}

void list_print(const listitem *head)
{
    for (; head; head = head->next)
        console_printf("%x data = %x\n", low_bits(head), low_bits(item_of<void>(head)));
}
