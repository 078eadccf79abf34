#pragma once

#include <string>
#include <vector>

#include "ts/api.h"

// What the framework library is and offers, for the hosts' start-up banners and checks.
namespace ts {

struct FrameworkService {
    std::string name;
    std::string description;
};

TS_API const char* FrameworkVersion();
TS_API std::vector<FrameworkService> FrameworkServices();

}  // namespace ts
