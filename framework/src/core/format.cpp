#include "ts/format.h"

#include <cstdio>

#include "ts/text.h"

namespace ts {

namespace {
void AppendAscii(std::u16string& out, const char* s) {
    while (*s) out += static_cast<char16_t>(*s++);
}

void AppendArg(std::u16string& out, const FormatArg& a) {
    char buf[64];
    switch (a.kind()) {
        case FormatArg::Kind::Signed:
            std::snprintf(buf, sizeof buf, "%lld", static_cast<long long>(a.i()));
            AppendAscii(out, buf);
            break;
        case FormatArg::Kind::Unsigned:
            std::snprintf(buf, sizeof buf, "%llu", static_cast<unsigned long long>(a.u()));
            AppendAscii(out, buf);
            break;
        case FormatArg::Kind::Double:
            std::snprintf(buf, sizeof buf, "%f", a.d());
            AppendAscii(out, buf);
            break;
        case FormatArg::Kind::Narrow:
            out += Utf8ToUtf16(a.narrow());
            break;
        case FormatArg::Kind::Wide:
            out += a.wide();
            break;
    }
}

// %u of a negative number prints it as the 32-bit unsigned value, as printf would.
void AppendUnsigned(std::u16string& out, const FormatArg& a, bool isLong) {
    if (a.kind() == FormatArg::Kind::Signed) {
        char buf[32];
        unsigned long long v = isLong ? static_cast<unsigned long long>(a.i())
                                      : static_cast<std::uint32_t>(a.i());
        std::snprintf(buf, sizeof buf, "%llu", v);
        AppendAscii(out, buf);
    } else {
        AppendArg(out, a);
    }
}
}  // namespace

std::u16string FormatArgs(std::u16string_view pattern, std::initializer_list<FormatArg> args) {
    std::u16string out;
    out.reserve(pattern.size() + 16 * args.size());
    auto next = args.begin();
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        char16_t c = pattern[i];
        if (c != u'%' || i + 1 >= pattern.size()) {
            out += c;
            continue;
        }
        std::size_t j = i + 1;
        bool isLong = pattern[j] == u'l';
        if (isLong) ++j;
        if (j >= pattern.size()) {
            out += pattern.substr(i);
            break;
        }
        char16_t d = pattern[j];
        if (d == u'%' && !isLong) {
            out += u'%';
            i = j;
            continue;
        }
        if (d != u'd' && d != u'u' && d != u's' && d != u'f') {
            out += c;  // not a directive: keep the text as written
            continue;
        }
        if (next == args.end()) {
            out += pattern.substr(i, j - i + 1);  // missing argument: leave the directive visible
        } else if (d == u'u') {
            AppendUnsigned(out, *next++, isLong);
        } else {
            AppendArg(out, *next++);
        }
        i = j;
    }
    return out;
}

}  // namespace ts
