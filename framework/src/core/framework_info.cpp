#include "ts/framework.h"

namespace ts {

const char* FrameworkVersion() { return TS_VERSION; }

std::vector<FrameworkService> FrameworkServices() {
    return {
        {"atoms", "process-wide atom table"},
        {"report", "diagnostic report and log"},
        {"properties", "resource property trees"},
        {"strings", "host-allocated strings"},
        {"plugins", "plugin loader and host events"},
        {"host-ui", "message boxes and telemetry"},
        {"resources", "resource format (binary and JSON)"},
        {"store", "module store: resources, strings, status records, tables (SQLite)"},
        {"ResMan", "resource manager and table service for plugins"},
        {"settings", "configuration store (DefaultSettings.xml and the user's settings)"},
    };
}

}  // namespace ts
