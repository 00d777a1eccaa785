#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace job_service {

/// A few threads that run tasks, with a queue that has a limit.
class WorkerPool
{
public:
    WorkerPool(std::size_t threads, std::size_t queueLimit);
    /// As stop().
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    /// Queues a task, which must not throw. Returns false if the queue is full or the pool has stopped.
    bool submit(std::function<void()> task);
    /// Drops the tasks that wait and waits for those that run.
    void stop();

private:
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_queue;
    const std::size_t m_queueLimit;
    bool m_stopped = false;
    std::vector<std::thread> m_threads;

    void work();
};

} // namespace job_service
