// The bar of long work: when it is shown, that it goes, and what cancelling does.

#include "base/progress.h"

#include "tests/support/scene_test.h"

namespace {

class Progress : public SceneTest {
protected:
    static std::vector<std::string> bars()
    {
        std::vector<std::string> found;
        for (const std::string &script : recording().scripts)
            if (script.starts_with("set_progress_bar "))
                found.push_back(script.substr(17));
        return found;
    }
};

struct work_case {
    const char *name;
    double seconds_a_look;
    std::vector<std::string> bars;
};
// clang-format off
const work_case works[] = {
    {"short_work_shows_none", 0.05, {}},
    {"long_work_shows_parts_and_goes", 0.2, {"40", "60", "80", "100", "0"}},
    {"a_clock_that_goes_back_shows_none", -5, {}},
};
// clang-format on
void PrintTo(const work_case &c, std::ostream *out) { *out << c.name; }
class LongWork : public Progress, public testing::WithParamInterface<work_case> {};

TEST_P(LongWork, ShowsItsBar)
{
    {
        progress_t work(5);
        recording().clock_step = GetParam().seconds_a_look;
        for (int i = 1; i <= 5; ++i)
            EXPECT_TRUE(work.look(i));
    }
    EXPECT_EQ(bars(), GetParam().bars);
}
INSTANTIATE_TEST_SUITE_P(Cases, LongWork, testing::ValuesIn(works));

TEST_F(Progress, ShowsTheBusyPointerWithItsBar)
{
    std::string &busy = recording().variables["busy cursor"];
    busy = "off";
    recording().clock_step = 0.2;
    {
        progress_t work(5);
        EXPECT_TRUE(work.look(1));
        EXPECT_EQ(busy, "off"); // not yet long
        EXPECT_TRUE(work.look(2));
        EXPECT_EQ(busy, "on");
    }
    EXPECT_EQ(busy, "off");
}

TEST_F(Progress, LooksAtTheClockEverySoOftenOrAfterAGoodPart)
{
    recording().clock_step = 1;
    const auto looks_at = [](double total, double step, int steps) {
        progress_t work(total);
        const double before = recording().clock;
        for (int i = 1; i <= steps; ++i)
            work.step(i * step);
        return static_cast<int>(recording().clock - before);
    };
    EXPECT_EQ(looks_at(1e6, 1, 6400), 100); // every 64th call
    EXPECT_EQ(looks_at(100, 10, 10), 10);   // a tenth at once: each
    EXPECT_EQ(looks_at(0, 1, 10), 10);      // an unknown total is a small one
}

TEST_F(Progress, CancelledWorkStaysCancelledAndTheNextBeginsAfresh)
{
    recording().clock_step = 1;
    {
        progress_t work(10);
        EXPECT_TRUE(work.look(1));
        progress_cancel();
        EXPECT_FALSE(work.look(2));
        EXPECT_TRUE(work.cancelled());
        recording().scripts.clear();
        EXPECT_FALSE(work.step(3));
        EXPECT_FALSE(work.look(10));
        EXPECT_TRUE(bars().empty()); // nothing moves any more
    }
    EXPECT_EQ(bars(), (std::vector<std::string>{"0"}));
    progress_t next(10);
    EXPECT_TRUE(next.look(1));
}

TEST_F(Progress, APlugInsWorkEndsWithTheNext)
{
    EXPECT_EQ(vesk_progress_step(1), 0); // none was begun
    recording().clock_step = 1;
    vesk_progress_begin(2);
    EXPECT_EQ(vesk_progress_step(1), 1);
    vesk_progress_begin(4); // ends the first
    EXPECT_EQ(bars(), (std::vector<std::string>{"50", "0"}));
    EXPECT_EQ(vesk_progress_step(1), 1);
    progress_cancel();
    EXPECT_EQ(vesk_progress_step(4), 0);
    vesk_progress_end();
    vesk_progress_end();
    EXPECT_EQ(vesk_progress_step(1), 0);
    EXPECT_EQ(bars().back(), "0");
}

} // namespace
