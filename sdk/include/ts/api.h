#pragma once

// Symbols of the framework library that hosts and plugins call. The library is built with hidden
// visibility, so only what carries TS_API is exported.
#if defined(TS_BUILDING_FRAMEWORK)
#define TS_API __attribute__((visibility("default")))
#else
#define TS_API
#endif
