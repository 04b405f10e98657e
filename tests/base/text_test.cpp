// Numbers, tokens and file names: what files, commands and settings are read with.

#include "base/filename.h"
#include "base/numbers.h"
#include "base/tokens.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

struct number_case {
    const char *name;
    const char *text;
    double value;
    int read; // characters; -1: no number
};
// clang-format off
const number_case number_cases[] = {
    {"plain",            "1.5 x",      1.5, 3},
    {"leading_blanks",   " \t\r\n-2",  -2, 6},
    {"plus_sign",        "+7",         7, 2},
    {"two_signs",        "-+7",        0, -1},
    {"exponent",         "1e3,",       1000, 3},
    {"cut_exponent",     "1e",         1, 1},
    {"three_digit_exponent", "1e-005", 1e-5, 6},
    {"no_number",        "abc",        0, -1},
    {"only_a_sign",      "-",          0, -1},
    {"empty",            "",           0, -1},
    {"leading_point",    ".25",        0.25, 3},
    {"too_small",        "1e-9999",    0, 7},
    {"too_large",        "1e9999",     HUGE_VAL, 6},
    {"infinity",         "inf",        HUGE_VAL, 3},
};
// clang-format on
void PrintTo(const number_case &c, std::ostream *out) { *out << c.name; }

class ScanNumber : public testing::TestWithParam<number_case> {};

TEST_P(ScanNumber, StopsWhereScanfDoes)
{
    const number_case &c = GetParam();
    double value = 0;
    const char *end = scan_double(c.text, c.text + std::strlen(c.text), &value);

    EXPECT_EQ(end == nullptr ? -1 : static_cast<int>(end - c.text), c.read);
    EXPECT_EQ(value, c.value);
}
INSTANTIATE_TEST_SUITE_P(Texts, ScanNumber, testing::ValuesIn(number_cases));

TEST(Numbers, IntegersSaturateAndStopAtTheFirstOtherCharacter)
{
    EXPECT_EQ(int_of("99999999999"), INT_MAX);
    EXPECT_EQ(int_of("-99999999999999999999999"), INT_MIN);
    EXPECT_EQ(int_of(" 12abc"), 12);
    EXPECT_EQ(int_of("1.9"), 1);
    EXPECT_EQ(int_of("x"), 0);
    EXPECT_EQ(int_of_any_base("0x31"), 0x31);
    EXPECT_EQ(int_of_any_base("010"), 8);
    EXPECT_EQ(int_of_any_base("zzz"), 0);
    EXPECT_EQ(unsigned_of_hex("0x555555"), 0x555555U);
}

TEST(Numbers, WrittenTextIsThatOfPrintf)
{
    std::mt19937 random(7);
    std::uniform_int_distribution<uint32_t> bits;
    for (int i = 0; i < 20000; ++i) {
        const uint32_t pattern = bits(random);
        float value = 0;
        std::memcpy(&value, &pattern, sizeof value);
        if (std::isnan(value))
            continue;
        char expected[32], written[32];
        snprintf(expected, sizeof expected, "%g", static_cast<double>(value));
        *write_g(written, value) = '\0';
        ASSERT_STREQ(written, expected);
    }
}

std::vector<std::string> tokens_of(std::string line, int *count = nullptr)
{
    char *tokens[VESK_MAX_TOKENS];
    int n = 0;
    vesk_get_tokens(line.data(), &n, tokens);
    if (count != nullptr)
        *count = n;
    return {tokens, tokens + std::min<int>(n, VESK_MAX_TOKENS)};
}

TEST(Tokens, QuotesKeepBlanksAndBackslashesTakeTheNextCharacter)
{
    using words = std::vector<std::string>;
    EXPECT_EQ(tokens_of("name \"a \\\"quoted\\\" word\"\r\n"),
              (words{"name", "a \"quoted\" word"}));
    EXPECT_EQ(tokens_of(R"(x "c:\\d")"), (words{"x", "c:\\d"}));
    EXPECT_EQ(tokens_of("\"a\"b c"), (words{"a", "b", "c"}));
    EXPECT_EQ(tokens_of("a\"b\" c"), (words{"a\"b\"", "c"}));
    EXPECT_EQ(tokens_of("\"open end\n"), (words{"open end"}));
    EXPECT_EQ(tokens_of("\"last \\"), (words{"last "}));
    EXPECT_EQ(tokens_of("\"two\\\nlines\""), (words{"two\nlines"}));
    EXPECT_EQ(tokens_of("name \"\""), (words{"name", ""}));
    EXPECT_TRUE(tokens_of(" \t\r\n").empty());
}

TEST(Tokens, MoreThanTheArrayHoldsAreCountedButNotStored)
{
    std::string line;
    for (int i = 0; i < 50; ++i)
        line += "t ";
    int count = 0;
    EXPECT_EQ(tokens_of(line, &count).size(), static_cast<size_t>(VESK_MAX_TOKENS));
    EXPECT_EQ(count, 50);
}

TEST(FileNames, AreSplitAtBothSeparatorsAndJoinedWithASlash)
{
    EXPECT_STREQ(vesk_filename_get_path("/data/maps/a.vesk"), "/data/maps");
    EXPECT_STREQ(vesk_filename_get_path("c:\\maps\\a.vesk"), "c:\\maps");
    EXPECT_STREQ(vesk_filename_get_path("/a.vesk"), "/");
    EXPECT_STREQ(vesk_filename_get_path("a.vesk"), "");
    EXPECT_STREQ(vesk_filename_get_file("c:\\maps\\a.vesk"), "a.vesk");
    EXPECT_STREQ(vesk_filename_concat_path_file("", "a"), "a");
    EXPECT_STREQ(vesk_filename_concat_path_file("/", "a"), "/a");
    EXPECT_STREQ(vesk_filename_concat_path_file("x", "a"), "x/a");
    EXPECT_STREQ(string_get_suffix("/home.d/file"), ".d/file");
    EXPECT_EQ(string_get_suffix("file"), nullptr);
}

} // namespace
