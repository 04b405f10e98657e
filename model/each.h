#ifndef VESK_MODEL_EACH_H
#define VESK_MODEL_EACH_H

// Typed walks over lists and over the object tree. The body of a walk may change elements; when it
// adds or removes nodes, walk a clone (owned_list).

#include "model/list.h"
#include "model/object.h"

#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

template <class T>
T *item_of(const listitem *node)
{
    return reinterpret_cast<T *>(node->data);
}

// Small integers as list elements.
inline void *int_element(int value)
{
    return reinterpret_cast<void *>(static_cast<intptr_t>(value));
}
inline int int_of(const listitem *node) { return static_cast<int>(node->data); }

// for (object_t *child : each<object_t>(object->children)) ...
template <class T>
class each {
public:
    class iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = T *;
        using difference_type = std::ptrdiff_t;
        using pointer = T *const *;
        using reference = T *;

        iterator() = default;
        explicit iterator(const listitem *node) : node_(node) {}
        T *operator*() const { return item_of<T>(node_); }
        iterator &operator++()
        {
            node_ = node_->next;
            return *this;
        }
        iterator operator++(int)
        {
            iterator old = *this;
            ++*this;
            return old;
        }
        bool operator==(const iterator &other) const = default;

    private:
        const listitem *node_ = nullptr;
    };

    explicit each(const listitem *head) : head_(head) {}
    [[nodiscard]] iterator begin() const { return iterator(head_); }
    [[nodiscard]] iterator end() const { return iterator(); }

private:
    const listitem *head_;
};

// A temporary list: frees its nodes, not the elements, on every path.
class owned_list {
public:
    owned_list() = default;
    explicit owned_list(listitem *head) : head_(head) {}
    owned_list(owned_list &&other) noexcept
        : head_(std::exchange(other.head_, nullptr)), last_(std::exchange(other.last_, nullptr))
    {
    }
    owned_list &operator=(owned_list &&other) noexcept
    {
        std::swap(head_, other.head_);
        std::swap(last_, other.last_);
        return *this;
    }
    owned_list(const owned_list &) = delete;
    owned_list &operator=(const owned_list &) = delete;
    ~owned_list() { list_free(&head_); }

    // Appends; the list must not be changed otherwise in between.
    void add(void *element) { last_ = list_add_item_fast(&head_, last_ ? last_ : end(), element); }
    [[nodiscard]] listitem *get() const { return head_; }
    listitem *release()
    {
        last_ = nullptr;
        return std::exchange(head_, nullptr);
    }
    explicit operator bool() const { return head_ != nullptr; }

private:
    [[nodiscard]] listitem *end() const { return head_ ? list_end(head_) : nullptr; }

    listitem *head_ = nullptr;
    listitem *last_ = nullptr;
};

// Calls visit(object) for `top` and all its descendants: an object before its children, children in
// list order. Explicit stack: any depth. `visit` may change the children of the object it is given.
template <class Visit>
void for_each_object(object_t *top, Visit &&visit)
{
    if (!top)
        return;
    std::vector<object_t *> stack{top};
    while (!stack.empty()) {
        object_t *object = stack.back();
        stack.pop_back();
        visit(object);
        const std::size_t first = stack.size();
        for (object_t *child : each<object_t>(object->children))
            stack.push_back(child);
        for (std::size_t low = first, high = stack.size(); low + 1 < high; ++low, --high)
            std::swap(stack[low], stack[high - 1]);
    }
}

// The same, stopping at the first object for which visit(object) is true; that one, or null.
template <class Visit>
object_t *find_object_where(object_t *top, Visit &&visit)
{
    std::vector<object_t *> stack;
    if (top)
        stack.push_back(top);
    while (!stack.empty()) {
        object_t *object = stack.back();
        stack.pop_back();
        if (visit(object))
            return object;
        const std::size_t first = stack.size();
        for (object_t *child : each<object_t>(object->children))
            stack.push_back(child);
        for (std::size_t low = first, high = stack.size(); low + 1 < high; ++low, --high)
            std::swap(stack[low], stack[high - 1]);
    }
    return nullptr;
}

#endif
