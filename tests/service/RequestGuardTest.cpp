#include "service/RequestGuard.h"

#include <gtest/gtest.h>

using namespace job_service;

namespace {

using Fields = std::vector<std::pair<std::string, std::string>>;

HttpHead headWith(Fields fields)
{
    HttpHead head{ "GET", "/", std::move(fields), {}, false };
    return head;
}

struct GuardCase
{
    const char* name;
    Fields fields;
    int status; // 0: may pass
};

void PrintTo(const GuardCase& guardCase, std::ostream* stream)
{
    *stream << guardCase.name;
}

class ForeignRequest : public testing::TestWithParam<GuardCase>
{
};

TEST_P(ForeignRequest, isJudgedByItsFields)
{
    const auto refusal = refuseForeign(headWith(GetParam().fields), 8082);
    EXPECT_EQ(refusal ? refusal->status : 0, GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(Fields, ForeignRequest,
    testing::Values(GuardCase{ "address", { { "host", "127.0.0.1:8082" } }, 0 },
        GuardCase{ "name", { { "host", "LocalHost:8082" } }, 0 }, GuardCase{ "v6", { { "host", "[::1]:8082" } }, 0 },
        GuardCase{ "foreign", { { "host", "evil.example" } }, 403 },
        GuardCase{ "foreignWithPort", { { "host", "evil.example:8082" } }, 403 },
        GuardCase{ "asPrefix", { { "host", "127.0.0.1.evil.com:8082" } }, 403 },
        GuardCase{ "asSuffix", { { "host", "localhost.evil:8082" } }, 403 },
        GuardCase{ "otherPort", { { "host", "127.0.0.1:8083" } }, 403 },
        GuardCase{ "noPort", { { "host", "127.0.0.1" } }, 403 }, GuardCase{ "empty", { { "host", "" } }, 403 },
        GuardCase{ "missing", {}, 403 },
        GuardCase{ "two", { { "host", "127.0.0.1:8082" }, { "host", "127.0.0.1:8082" } }, 403 },
        GuardCase{ "sameOrigin", { { "host", "127.0.0.1:8082" }, { "origin", "http://127.0.0.1:8082" } }, 0 },
        GuardCase{ "otherOrigin", { { "host", "127.0.0.1:8082" }, { "origin", "http://evil.example" } }, 403 },
        GuardCase{ "otherScheme", { { "host", "127.0.0.1:8082" }, { "origin", "https://127.0.0.1:8082" } }, 403 },
        GuardCase{ "nullOrigin", { { "host", "127.0.0.1:8082" }, { "origin", "null" } }, 403 },
        GuardCase{ "sameSiteFetch", { { "host", "127.0.0.1:8082" }, { "sec-fetch-site", "same-site" } }, 403 },
        GuardCase{ "crossSiteFetch", { { "host", "127.0.0.1:8082" }, { "sec-fetch-site", "cross-site" } }, 403 },
        GuardCase{ "sameOriginFetch", { { "host", "127.0.0.1:8082" }, { "sec-fetch-site", "same-origin" } }, 0 },
        GuardCase{ "typedAddress", { { "host", "127.0.0.1:8082" }, { "sec-fetch-site", "none" } }, 0 }),
    [](const auto& row) { return std::string(row.param.name); });

class EncodedBody : public testing::TestWithParam<GuardCase>
{
};

TEST_P(EncodedBody, isJudgedByItsFields)
{
    const auto refusal = refuseEncoded(headWith(GetParam().fields));
    EXPECT_EQ(refusal ? refusal->status : 0, GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(Fields, EncodedBody,
    testing::Values(GuardCase{ "plain", {}, 0 }, GuardCase{ "identity", { { "content-encoding", "identity" } }, 0 },
        GuardCase{ "gzip", { { "content-encoding", "gzip" } }, 415 },
        GuardCase{ "chunked", { { "transfer-encoding", "Chunked" } }, 0 },
        GuardCase{ "gzipChunked", { { "transfer-encoding", "gzip, chunked" } }, 501 }),
    [](const auto& row) { return std::string(row.param.name); });

class BodyType : public testing::TestWithParam<GuardCase>
{
};

TEST_P(BodyType, hasToBeJson)
{
    HttpHead head = headWith(GetParam().fields);
    head.contentLength = 2;
    const auto refusal = refuseOtherThanJson(head);
    EXPECT_EQ(refusal ? refusal->status : 0, GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(Fields, BodyType,
    testing::Values(GuardCase{ "json", { { "content-type", "application/json" } }, 0 },
        GuardCase{ "jsonWithCharset", { { "content-type", "Application/JSON ; charset=utf-8" } }, 0 },
        GuardCase{ "missing", {}, 415 }, GuardCase{ "text", { { "content-type", "text/plain" } }, 415 },
        GuardCase{ "form", { { "content-type", "application/x-www-form-urlencoded" } }, 415 },
        GuardCase{ "multipart", { { "content-type", "multipart/form-data; boundary=x" } }, 415 },
        GuardCase{ "jsonLike", { { "content-type", "application/jsonp" } }, 415 },
        GuardCase{ "two", { { "content-type", "application/json" }, { "content-type", "text/plain" } }, 415 }),
    [](const auto& row) { return std::string(row.param.name); });

TEST(RequestGuardTest, aBodyNeedsALength)
{
    const auto refusal = refuseOtherThanJson(headWith({ { "content-type", "application/json" } }));
    ASSERT_TRUE(refusal);
    EXPECT_EQ(refusal->status, 411);
}

} // namespace
