#include "service/WorkerPool.h"

#include <atomic>
#include <future>
#include <gtest/gtest.h>

using job_service::WorkerPool;

namespace {

/// Holds the only worker of a pool until it is released.
class Blocker
{
public:
    explicit Blocker(WorkerPool& pool)
    {
        EXPECT_TRUE(pool.submit([this] {
            m_running.set_value();
            m_release.get_future().wait();
        }));
        m_running.get_future().wait();
    }
    void release() { m_release.set_value(); }

private:
    std::promise<void> m_running;
    std::promise<void> m_release;
};

TEST(WorkerPoolTest, runsEveryTask)
{
    std::atomic<int> done{ 0 };
    std::promise<void> all;
    WorkerPool pool(3, 100);
    for (int i = 0; i < 50; ++i) {
        ASSERT_TRUE(pool.submit([&] {
            if (++done == 50)
                all.set_value();
        }));
    }
    all.get_future().wait();
    EXPECT_EQ(done, 50);
}

TEST(WorkerPoolTest, refusesATaskBeyondTheLimit)
{
    WorkerPool pool(1, 2);
    Blocker blocker(pool);
    EXPECT_TRUE(pool.submit([] {}));
    EXPECT_TRUE(pool.submit([] {}));
    EXPECT_FALSE(pool.submit([] {}));
    blocker.release();
}

TEST(WorkerPoolTest, stopFinishesWhatRunsAndDropsWhatWaits)
{
    std::atomic<bool> finished{ false };
    std::atomic<bool> ran{ false };
    std::promise<void> running;
    std::promise<void> release;
    WorkerPool pool(1, 1000000);
    ASSERT_TRUE(pool.submit([&] {
        running.set_value();
        release.get_future().wait();
        finished = true;
    }));
    running.get_future().wait();
    ASSERT_TRUE(pool.submit([&] { ran = true; }));
    std::thread stopping([&] { pool.stop(); });
    // The queue cannot be full: once a task is refused, the pool has been told to stop.
    while (pool.submit([&] { ran = true; }))
        std::this_thread::yield();
    release.set_value();
    stopping.join();
    EXPECT_TRUE(finished);
    EXPECT_FALSE(ran);
}

} // namespace
