#pragma once

#include <string>

namespace jobmanager_test {

/// Moves the process into a network of its own, with nothing but a loopback interface in which every port is free.
/// To be called in main() before any thread exists. Returns an empty text, or why the system does not permit it;
/// the process then keeps the network that it had.
std::string enterPrivateNetwork();

} // namespace jobmanager_test
