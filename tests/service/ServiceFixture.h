#pragma once

#include "tests/support/Deadline.h"
#include "tests/support/HttpRequest.h"
#include "tests/support/ServiceProcess.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

namespace jobmanager_test {

using namespace std::chrono_literals;
using nlohmann::json;
using Clock = std::chrono::steady_clock;
using Arguments = std::vector<std::string>;

/// The service as a process, and requests to it.
class ServiceFixture : public testing::Test
{
protected:
    ServiceProcess m_service;

    HttpReply call(const std::string& method, const std::string& path, const std::string& body = {})
    {
        return httpRequest(m_service.port(), method, "/api/v1" + path, body);
    }
    json get(const std::string& path)
    {
        const HttpReply reply = call("GET", path);
        EXPECT_EQ(reply.status, 200) << path << ' ' << reply.body;
        return reply.status == 200 ? json::parse(reply.body) : json();
    }
    int changeCount() { return get("/change-count").at("changeCount"); }
    template <typename Condition> void waitUntil(Condition condition)
    {
        const auto end = Clock::now() + stretched(20s);
        while (!condition() && Clock::now() < end)
            std::this_thread::yield();
        ASSERT_TRUE(condition()) << m_service.log();
    }
    void waitForCount(int count)
    {
        waitUntil([&] { return changeCount() == count; });
    }
    bool logTells(const std::string& text) { return m_service.log().find(text) != std::string::npos; }
};

} // namespace jobmanager_test
