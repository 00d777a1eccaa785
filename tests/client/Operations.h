#pragma once

#include "client/RestApiJobManager.h"
#include "tests/client/RawReply.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

/// One operation of the client, with what stands in its contract. Results are compared as text.
struct Operation
{
    std::string name;
    /// Makes the call and writes its result as text.
    std::function<std::string(RestApiJobManager&)> call;
    /// Method and path of its request.
    std::string route;
    /// Body of its request; empty for none.
    std::string body;
    /// What the service answers if all is well (a body goes with any status but 204), and what the call then gives.
    int goodStatus = 0;
    std::string goodBody;
    std::string goodResult;
    /// What the call gives if the service does not answer and never did.
    std::string failedResult;
    /// Whether the call gives its last good answer if the service does not answer.
    bool isRemembered = false;
    /// The time it may take, not stretched.
    int deadlineMilliseconds = 0;
    /// The longest answer that it takes, in bytes.
    std::size_t answerCap = 64 * 1024;

    bool isWrite() const { return route.substr(0, 4) != "GET "; }
    RawReply goodReply() const { return goodStatus == 204 ? emptyReply(204) : jsonReply(goodStatus, goodBody); }
};

/// All operations of RestApiJobManager.
const std::vector<Operation>& operations();

/// The one with this name.
const Operation& operation(const std::string& name);

/// For the names of test cases and for messages.
std::ostream& operator<<(std::ostream& stream, const Operation& operation);
