#include "base/foreign.h"
#include "model/alloc_internal.h"
#include "model/each.h"
#include "model/list_internal.h"
#include "tests/support/scene_test.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace {

using elements = std::vector<int>;

elements of(const listitem *head)
{
    elements all;
    for (; head; head = head->next)
        all.push_back(int_of(head));
    return all;
}

listitem *list_from(const elements &all)
{
    owned_list list;
    for (const int element : all)
        list.add(int_element(element));
    return list.release();
}

int ascending(void *a, void *b)
{
    const auto first = reinterpret_cast<std::intptr_t>(a);
    const auto second = reinterpret_cast<std::intptr_t>(b);
    return (first > second) - (first < second);
}

class List : public SceneTest {};

// A list that foreign code cuts by hand, before or between the calls.
TEST_F(List, AppendingFindsTheEndOfOneThatForeignCodeCut)
{
    for (const int length : {12, 200, 5000}) {
        elements expected(static_cast<size_t>(length));
        std::iota(expected.begin(), expected.end(), 0);
        listitem *list = list_from(expected);
        list_add_item(&list, int_element(1)); // remembers the end
        listitem *rest = nullptr;
        {
            const foreign_scope foreign(&expected, true);
            listitem *node = list_seekto(list, length / 2);
            rest = node->next;
            node->next = nullptr;
            if (length < 256)
                list_add_item(&list, int_element(77));
            else
                EXPECT_EQ(list_last_item(list), int_element(length / 2));
        }
        expected.resize(static_cast<size_t>(length) / 2 + 1);
        if (length < 256)
            expected.push_back(77);
        list_add_item(&list, int_element(88));
        expected.push_back(88);
        EXPECT_EQ(of(list), expected);
        list_free(&list);
        list_free(&rest);
    }
}

// Every list function against a vector, on several lists at once, long enough for their tails to be
// remembered and with nodes hung on by hand.
TEST_F(List, AnyMixOfOperationsActsAsOnAnArray)
{
    std::mt19937 random(12345);
    constexpr int num_lists = 6;
    listitem *lists[num_lists] = {};
    elements model[num_lists];
    const auto pick = [&](std::size_t n) { return static_cast<int>(random() % n); };
    for (int step = 0; step < 20000; ++step) {
        const int i = pick(num_lists);
        listitem *&list = lists[i];
        elements &expected = model[i];
        const int value = pick(50);
        void *element = int_element(value);
        const auto at = std::find(expected.begin(), expected.end(), value);
        switch (pick(14)) {
        case 0:
        case 1:
        case 2:
        case 3:
            list_add_item(&list, element);
            expected.push_back(value);
            break;
        case 4: {
            listitem *last = list ? list_end(list) : nullptr;
            list_add_item_fast(&list, last, element);
            expected.push_back(value);
            break;
        }
        case 5:
            list_add_item_head(&list, element);
            expected.insert(expected.begin(), value);
            break;
        case 6:
            if (list) {
                EXPECT_EQ(list_insert_item(&list, element, int_element(99)),
                          at != expected.end() ? 1 : 0);
                if (at != expected.end())
                    expected.insert(at, 99);
            }
            break;
        case 7:
            EXPECT_EQ(list_remove_item(&list, element), at != expected.end() ? 1 : 0);
            if (at != expected.end())
                expected.erase(at);
            break;
        case 8:
            list_reverse(&list);
            std::reverse(expected.begin(), expected.end());
            break;
        case 9: { // the second list's nodes end up in the first
            const int other = pick(num_lists);
            if (other != i) {
                list_append_list(&list, lists[other]);
                lists[other] = nullptr;
                expected.insert(expected.end(), model[other].begin(), model[other].end());
                model[other].clear();
            }
            break;
        }
        case 10: // by hand
            if (list) {
                listitem *node = list_from({value});
                list_end(list)->next = node;
                expected.push_back(value);
            }
            break;
        case 11:
            EXPECT_EQ(list_add_item_unique(&list, element) != nullptr, at == expected.end());
            if (at == expected.end())
                expected.push_back(value);
            break;
        case 12:
            if (list) {
                list_remove_item(&list, item_of<void>(list_end(list)));
                expected.erase(std::find(expected.begin(), expected.end(), expected.back()));
            }
            break;
        default:
            if (pick(8) == 0) {
                list_free(&list);
                expected.clear();
            }
        }
        if (step % 97 == 0 || step > 19900) {
            ASSERT_EQ(of(list), expected) << "step " << step;
        }
    }
    for (int i = 0; i < num_lists; ++i) {
        EXPECT_EQ(of(lists[i]), model[i]);
        list_free(&lists[i]);
    }
}

TEST_F(List, AppendingWithoutALastNodeTakesNoLongerOnALongList)
{
    listitem *lists[3] = {};
    constexpr int n = 200000;
    for (int i = 0; i < n; ++i)
        list_add_item(&lists[i % 3], int_element(i)); // walking would take minutes
    for (listitem *&list : lists) {
        EXPECT_NEAR(list_count(list), n / 3, 1);
        list_free(&list);
    }
}

TEST_F(List, ShortCutsBeginAtSixteenNodesAndServeOnlyTheirList)
{
    for (const int n : {15, 16, 17, 100}) {
        elements all(static_cast<std::size_t>(n));
        std::iota(all.begin(), all.end(), 0);
        listitem *list = list_from(all);
        listitem *other = list_from({7, 8, 9});
        list_prepare_fast(list, n);
        for (int i = -1; i <= n; ++i)
            EXPECT_EQ(list_get_item_fast(list, i), list_get_item(list, i)) << n << " " << i;
        EXPECT_EQ(list_get_item_fast(other, 2), int_element(9));
        list_remove_item(&list, int_element(0)); // what the short cuts led to may be gone
        EXPECT_EQ(list_get_item_fast(list, n - 2), int_element(n - 1));
        list_free(&list);
        list_free(&other);
    }
}

TEST_F(List, SortsShortAndLongListsAndKeepsTheirNodes)
{
    std::mt19937 random(1);
    for (const std::size_t n : {0U, 1U, 2U, 50U, 5000U}) {
        elements all(n);
        for (int &element : all)
            element = static_cast<int>(random() % 1000);
        listitem *list = list_from(all);
        const listitem *first = list;
        list_sort(list, ascending);
        std::sort(all.begin(), all.end());
        EXPECT_EQ(of(list), all);
        EXPECT_EQ(list, first);
        list_free(&list);
    }
}

TEST_F(List, ReplacesFindsAndCopies)
{
    listitem *list = list_from({1, 2, 1, 3});
    EXPECT_EQ(list_replace_item(list, int_element(1), int_element(5)), 1);
    EXPECT_EQ(of(list), (elements{5, 2, 1, 3}));
    EXPECT_EQ(list_replace_item_all(list, int_element(9), int_element(0)), 0);
    EXPECT_EQ(list_index(list, int_element(3)), 3);
    EXPECT_EQ(list_index(list, int_element(4)), -1);

    char a[] = "a", b[] = "B";
    listitem *texts = nullptr;
    list_add_item(&texts, a);
    list_add_item(&texts, b);
    EXPECT_EQ(list_index_string(texts, "B"), 1);
    EXPECT_EQ(list_index_string(texts, "b"), -1);

    listitem *blocks = list_clone_all(texts, 2);
    EXPECT_STREQ(static_cast<char *>(list_get_item(blocks, 1)), "B");
    EXPECT_NE(list_get_item(blocks, 1), b);
    EXPECT_EQ(list_check_for_duplicates(list), 0);
    list_add_item(&list, int_element(2));
    EXPECT_EQ(list_check_for_duplicates(list), 1);
    list_free_all(&blocks);
    list_free(&texts);
    list_free(&list);
    EXPECT_EQ(blocks, nullptr);
}

// ---- allocator ----

class GuardedAllocator : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        alloc_set_mode_for_test(false, true);
        recording().console.clear();
    }
    void TearDown() override
    {
        alloc_set_mode_for_test(false, false);
        SceneTest::TearDown();
    }
};

TEST_F(GuardedAllocator, RefusesASecondFree)
{
    void *block = myalloc(24);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 16, 0U);
    EXPECT_EQ(alloc_total(), 24);
    EXPECT_EQ(myfree(block), 1);
    EXPECT_EQ(alloc_total(), 0);
    EXPECT_EQ(myfree(block), 0);
    EXPECT_NE(recording().console.find("trying to free already freed space size=24"),
              std::string::npos);
}

TEST_F(GuardedAllocator, RefusesADamagedBlockAndASizeOfZero)
{
    auto *block = static_cast<std::uint32_t *>(myalloc(8));
    std::swap(block[-4], block[0]); // what an overrun from below does
    EXPECT_EQ(myfree(block), 0);
    EXPECT_NE(recording().console.find("non-allocated or corrupted"), std::string::npos);
    std::swap(block[-4], block[0]);
    EXPECT_EQ(myfree(block), 1);
    EXPECT_EQ(myalloc(0), nullptr);
    EXPECT_NE(recording().console.find("allocating size ZERO"), std::string::npos);
}

} // namespace
