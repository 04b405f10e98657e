#ifndef VESK_EDIT_MESH_WIDE_INT_H
#define VESK_EDIT_MESH_WIDE_INT_H

// Whole numbers of up to some six thousand bits, enough for every decision about points that planes
// through single precision points make. Time goes with the bits in use, not with the room for them.

#include <cstdint>
#include <span>

class wide_int {
public:
    static constexpr int capacity = 104; // words of 64 bits

    wide_int() = default;
    explicit wide_int(std::int64_t value);
    // mantissa times 2 to the power of `shift`, which is not negative.
    wide_int(std::int64_t mantissa, int shift);
    // Words from the lowest on.
    wide_int(std::span<const std::uint64_t> words, bool negative);
    wide_int(const wide_int &other) { *this = other; }
    wide_int &operator=(const wide_int &other);
    ~wide_int() = default;

    [[nodiscard]] int sign() const { return size_ == 0 ? 0 : negative_ ? -1 : 1; }
    [[nodiscard]] std::span<const std::uint64_t> words() const
    {
        return {words_, static_cast<std::size_t>(size_)};
    }
    // The number is the result, of 0.5 to below 1, times 2 to the power of `exponent`; good to 63
    // bits.
    long double mantissa(int *exponent) const;

    wide_int operator-() const;
    friend wide_int operator+(const wide_int &a, const wide_int &b)
    {
        return sum(a, b, b.negative_);
    }
    friend wide_int operator-(const wide_int &a, const wide_int &b)
    {
        return sum(a, b, !b.negative_);
    }
    friend wide_int operator*(const wide_int &a, const wide_int &b);

private:
    static wide_int sum(const wide_int &a, const wide_int &b, bool b_negative);
    static int compare_size(const wide_int &a, const wide_int &b);
    void trim();

    int size_ = 0; // words in use; the highest is not 0
    bool negative_ = false;
    std::uint64_t words_[capacity];
};

#endif
