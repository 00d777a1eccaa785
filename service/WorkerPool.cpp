#include "service/WorkerPool.h"

namespace job_service {

WorkerPool::WorkerPool(std::size_t threads, std::size_t queueLimit) : m_queueLimit(queueLimit)
{
    for (std::size_t i = 0; i < threads; ++i)
        m_threads.emplace_back([this] { work(); });
}

WorkerPool::~WorkerPool()
{
    stop();
}

bool WorkerPool::submit(std::function<void()> task)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_stopped || m_queue.size() >= m_queueLimit)
            return false;
        m_queue.push_back(std::move(task));
    }
    m_wake.notify_one();
    return true;
}

void WorkerPool::stop()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stopped = true;
        m_queue.clear();
    }
    m_wake.notify_all();
    for (std::thread& thread : m_threads) {
        if (thread.joinable())
            thread.join();
    }
}

void WorkerPool::work()
{
    for (;;) {
        std::function<void()> task;
        {
            std::unique_lock<std::mutex> lock(m_mutex);
            m_wake.wait(lock, [this] { return m_stopped || !m_queue.empty(); });
            if (m_stopped)
                return;
            task = std::move(m_queue.front());
            m_queue.pop_front();
        }
        task();
    }
}

} // namespace job_service
