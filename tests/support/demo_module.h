#pragma once

#include <string>

namespace ts::test {

// Builds the demo module from the sources in data/demo into `path`; every problem the builder
// finds is a test failure. True when the module was built.
bool BuildDemoModule(const std::string& path);

}  // namespace ts::test
