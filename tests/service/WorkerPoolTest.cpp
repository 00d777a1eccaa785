#include "service/WorkerPool.h"

#include <atomic>
#include <future>
#include <gtest/gtest.h>

using job_service::WorkerPool;

namespace {

/// Holds the only worker of a pool until it is released. Has to outlive the pool.
class Blocker
{
public:
    void hold(WorkerPool& pool)
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
    Blocker blocker;
    WorkerPool pool(1, 2);
    blocker.hold(pool);
    EXPECT_TRUE(pool.submit([] {}));
    EXPECT_TRUE(pool.submit([] {}));
    EXPECT_FALSE(pool.submit([] {}));
    blocker.release();
}

TEST(WorkerPoolTest, stopFinishesWhatRunsAndDropsWhatWaits)
{
    std::atomic<bool> ran{ false };
    Blocker blocker;
    WorkerPool pool(1, 1000000);
    blocker.hold(pool);
    ASSERT_TRUE(pool.submit([&] { ran = true; }));
    std::atomic<bool> stopped{ false };
    std::thread stopping([&] {
        pool.stop();
        stopped = true;
    });
    // The queue cannot be full: once a task is refused, the pool has been told to stop.
    while (pool.submit([&] { ran = true; }))
        std::this_thread::yield();
    EXPECT_FALSE(stopped) << "a task still runs";
    blocker.release();
    stopping.join();
    EXPECT_FALSE(ran);
}

} // namespace
