#pragma once

#include <string>
#include <vector>

/// The names of all threads of this process, those of RawServer left out.
std::vector<std::string> threadNames();

/// Whether the client has a thread that probes a service.
bool isProbing();
