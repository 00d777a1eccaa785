#pragma once

#include <string>
#include <vector>

/// The names of all threads of this process, those of RawServer left out.
std::vector<std::string> threadNames();

/// Whether the client has a thread that probes a service.
bool isProbing();

/// Waits until it has one. False if it gets none. A thread has its name only a moment after it was started.
bool probingBegins();

/// Waits until it has none. False if it keeps one. Also after a join, since the system lists a thread a moment longer.
bool probingEnds();

/// The open sockets of this process that are connected to a port of 127.0.0.1.
std::vector<int> socketsTo(unsigned short port);
