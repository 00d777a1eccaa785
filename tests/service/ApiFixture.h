#pragma once

#include "service/Router.h"
#include "tests/service/StoreFixture.h"

#include <memory>
#include <utility>
#include <variant>
#include <vector>

namespace jobmanager_test {

/// Routes over a store, without a network between.
class ApiFixture : public StoreFixture
{
protected:
    /// The routes to call.
    void serve(std::vector<job_service::Route> routes)
    {
        m_router = std::make_unique<job_service::Router>(std::move(routes), static_cast<unsigned short>(8082));
    }

    const job_service::Router& router() const { return *m_router; }

    job_service::HttpResponse call(const std::string& method, const std::string& path, const std::string& body = {})
    {
        job_service::HttpHead head{ method, "/api/v1" + path, { { "host", "127.0.0.1:8082" } }, {}, false };
        if (!body.empty()) {
            head.fields.emplace_back("content-type", "application/json");
            head.contentLength = body.size();
        }
        const auto decision = router().decide(head);
        if (const auto* refusal = std::get_if<job_service::HttpResponse>(&decision))
            return *refusal;
        return std::get<job_service::HttpCall>(decision).answer(body);
    }
    nlohmann::json get(const std::string& path)
    {
        const job_service::HttpResponse response = call("GET", path);
        EXPECT_EQ(response.status, 200) << response.body;
        return nlohmann::json::parse(response.body);
    }
    /// Expects an error with this status and code, and a count that stays.
    void expectRefused(int status, const std::string& code, const std::string& method, const std::string& path,
        const std::string& body = {})
    {
        const int before = store().changeCount();
        const job_service::HttpResponse response = call(method, path, body);
        EXPECT_EQ(response.status, status) << method << ' ' << path << ' ' << response.body;
        const nlohmann::json error = nlohmann::json::parse(response.body).at("error");
        EXPECT_EQ(error.at("code"), code) << response.body;
        EXPECT_FALSE(error.at("message").get<std::string>().empty());
        EXPECT_EQ(response.body.find(m_folder.path().string()), std::string::npos);
        EXPECT_EQ(response.body.find('/'), std::string::npos) << response.body;
        EXPECT_EQ(store().changeCount(), before);
    }
    /// Expects 204 and a count that moves by this much.
    void expectDone(int moves, const std::string& method, const std::string& path, const std::string& body = {})
    {
        const int before = store().changeCount();
        const job_service::HttpResponse response = call(method, path, body);
        EXPECT_EQ(response.status, 204) << method << ' ' << path << ' ' << response.body;
        EXPECT_EQ(response.body, "");
        EXPECT_EQ(store().changeCount(), before + moves);
    }

private:
    std::unique_ptr<job_service::Router> m_router;
};

} // namespace jobmanager_test
