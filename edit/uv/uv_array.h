#ifndef VESK_EDIT_UV_UV_ARRAY_H
#define VESK_EDIT_UV_UV_ARRAY_H

#include "model/flat_array.h"

#include <cstddef>
#include <utility>

// Values that nobody changes: those of a flat mesh, which are shared, or such as were made of several.
template <class T>
class uv_array {
public:
    uv_array() : uv_array(std::vector<T>()) {}
    uv_array(std::vector<T> &&values) : uv_array(flat_shared(std::move(values))) {}
    uv_array(flat_array<T> values) : values_(std::move(values)), data_(values_->data()) {}

    [[nodiscard]] std::size_t size() const { return values_->size(); }
    const T &operator[](std::size_t i) const { return data_[i]; }
    [[nodiscard]] auto begin() const { return values_->begin(); }
    [[nodiscard]] auto end() const { return values_->end(); }
    operator const std::vector<T> &() const { return *values_; }
    [[nodiscard]] const flat_array<T> &shared() const { return values_; }
    // Equal arrays may be apart.
    bool operator==(const uv_array &other) const
    {
        return values_ == other.values_ || *values_ == *other.values_;
    }
    bool operator==(const std::vector<T> &other) const { return *values_ == other; }

private:
    flat_array<T> values_;
    const T *data_;
};

#endif
