#pragma once

#include <chrono>
#include <cstddef>
#include <string>

/// What RawServer does with one request, to the byte.
struct RawReply
{
    enum class Then {
        /// Waits for the next request on the same connection.
        KeepOpen,
        /// Closes the connection in order.
        Close,
        /// Resets the connection.
        Reset,
        /// Leaves the connection open and never does anything on it again.
        Hang,
    };

    /// Sent as it is.
    std::string bytes;
    /// Sent behind `bytes`, as often as told or until the client has closed the connection.
    std::string filler = {};
    std::size_t fillerTimes = 0;
    /// If not zero, `bytes` goes out byte by byte with this time in between, and never comes to its end: the last
    /// byte is held back.
    std::chrono::milliseconds drip{ 0 };
    Then then = Then::KeepOpen;
};

/// A complete answer with a JSON body.
RawReply jsonReply(int status, const std::string& body);

/// A complete answer without a body.
RawReply emptyReply(int status);

/// The job service's answer to what it cannot do.
RawReply errorReply(int status, const std::string& code);
