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
    };
}

}  // namespace ts
