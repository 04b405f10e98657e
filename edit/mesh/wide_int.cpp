#include "edit/mesh/wide_int.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>

namespace {

// Not the library's assert, which writes the path of this file into the program.
void require(bool holds)
{
    if (!holds)
        std::abort();
}
__extension__ using two_words = unsigned __int128;
} // namespace

wide_int::wide_int(std::int64_t value) : wide_int(value, 0) {}

wide_int::wide_int(std::int64_t mantissa, int shift) : negative_(mantissa < 0)
{
    const auto size = negative_ ? ~static_cast<std::uint64_t>(mantissa) + 1
                                : static_cast<std::uint64_t>(mantissa);
    const int low = shift / 64, bits = shift % 64;
    require(low + 2 <= capacity);
    std::fill(words_, words_ + low, 0);
    words_[low] = size << bits;
    words_[low + 1] = bits == 0 ? 0 : size >> (64 - bits);
    size_ = low + 2;
    trim();
}

wide_int::wide_int(std::span<const std::uint64_t> words, bool negative)
    : size_(static_cast<int>(words.size())), negative_(negative)
{
    std::copy(words.begin(), words.end(), words_);
}

wide_int &wide_int::operator=(const wide_int &other)
{
    size_ = other.size_;
    negative_ = other.negative_;
    std::copy(other.words_, other.words_ + other.size_, words_);
    return *this;
}

void wide_int::trim()
{
    while (size_ > 0 && words_[size_ - 1] == 0)
        --size_;
    negative_ = negative_ && size_ > 0;
}

long double wide_int::mantissa(int *exponent) const
{
    *exponent = 0;
    if (size_ == 0)
        return 0;
    const int zeros = std::countl_zero(words_[size_ - 1]);
    std::uint64_t top = words_[size_ - 1] << zeros;
    if (zeros > 0 && size_ > 1)
        top |= words_[size_ - 2] >> (64 - zeros);
    *exponent = 64 * size_ - zeros;
    const long double value = std::ldexp(static_cast<long double>(top), -64);
    return negative_ ? -value : value;
}

wide_int wide_int::operator-() const
{
    wide_int result(*this);
    result.negative_ = size_ > 0 && !negative_;
    return result;
}

int wide_int::compare_size(const wide_int &a, const wide_int &b)
{
    if (a.size_ != b.size_)
        return a.size_ < b.size_ ? -1 : 1;
    for (int i = a.size_ - 1; i >= 0; --i) {
        if (a.words_[i] != b.words_[i])
            return a.words_[i] < b.words_[i] ? -1 : 1;
    }
    return 0;
}

wide_int wide_int::sum(const wide_int &a, const wide_int &b, bool b_negative)
{
    wide_int result;
    if (a.negative_ == b_negative || a.size_ == 0) {
        const wide_int &more = a.size_ >= b.size_ ? a : b;
        const wide_int &less = &more == &a ? b : a;
        require(more.size_ < capacity);
        two_words carry = 0;
        for (int i = 0; i < more.size_; ++i) {
            carry += more.words_[i];
            carry += i < less.size_ ? less.words_[i] : 0;
            result.words_[i] = static_cast<std::uint64_t>(carry);
            carry >>= 64;
        }
        result.words_[more.size_] = static_cast<std::uint64_t>(carry);
        result.size_ = more.size_ + 1;
        result.negative_ = b_negative;
        result.trim();
        return result;
    }
    const bool a_larger = compare_size(a, b) >= 0;
    const wide_int &more = a_larger ? a : b;
    const wide_int &less = a_larger ? b : a;
    std::uint64_t borrow = 0;
    for (int i = 0; i < more.size_; ++i) {
        const std::uint64_t take = i < less.size_ ? less.words_[i] : 0;
        const std::uint64_t left = more.words_[i] - take;
        const std::uint64_t word = left - borrow;
        borrow = (left > more.words_[i] ? 1U : 0U) | (word > left ? 1U : 0U);
        result.words_[i] = word;
    }
    result.size_ = more.size_;
    result.negative_ = a_larger ? a.negative_ : b_negative;
    result.trim();
    return result;
}

wide_int operator*(const wide_int &a, const wide_int &b)
{
    wide_int result;
    if (a.size_ == 0 || b.size_ == 0)
        return result;
    require(a.size_ + b.size_ <= wide_int::capacity);
    result.size_ = a.size_ + b.size_;
    std::fill(result.words_, result.words_ + result.size_, 0);
    for (int i = 0; i < a.size_; ++i) {
        two_words carry = 0;
        for (int j = 0; j < b.size_; ++j) {
            carry += static_cast<two_words>(a.words_[i]) * b.words_[j];
            carry += result.words_[i + j];
            result.words_[i + j] = static_cast<std::uint64_t>(carry);
            carry >>= 64;
        }
        result.words_[i + b.size_] = static_cast<std::uint64_t>(carry);
    }
    result.negative_ = a.negative_ != b.negative_;
    result.trim();
    return result;
}
