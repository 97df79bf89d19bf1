// The library as the messenger loads it: after the host's classes exist.
// The test program's environment loads it once before the first test; every
// test can then reach its exported symbols.
//
// No test may reach the network: the environment points http_proxy at a
// loopback port that refuses every connection, so a download the library
// starts fails at once unless a test points the proxy at a server of its own.
#pragma once

#include <string>

namespace in_host {

// The exported symbol of the loaded library (null when missing).
void* librarySymbol(const char* name);

// "http://127.0.0.1:PORT" of a port that refuses connections.
const std::string& refusingProxy();

}  // namespace in_host
