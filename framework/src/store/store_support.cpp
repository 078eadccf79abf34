#include <pwd.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>

#include "ts/resourcestore.h"
#include "ts/text.h"

namespace ts {

std::u16string CurrentUserName() {
    if (const char* user = std::getenv("USER"); user && *user) return Utf8ToUtf16(user);
    if (const passwd* pw = getpwuid(getuid()); pw && pw->pw_name) return Utf8ToUtf16(pw->pw_name);
    return u"unknown";
}

double CurrentDateTime() {
    using namespace std::chrono;
    double seconds = duration<double>(system_clock::now().time_since_epoch()).count();
    return seconds / 86400.0 + 25569.0;  // 1970-01-01 is day 25569 after 30 December 1899
}

}  // namespace ts
