#include "core/plugin_flags.h"

#include "ts/hoststring.h"
#include "ts/plugin.h"
#include "ts/report.h"
#include "ts/uiwindow.h"

namespace ts {

namespace {

std::u16string_view Trim(std::u16string_view s) {
    while (!s.empty() && (s.front() == u' ' || s.front() == u'\t')) s.remove_prefix(1);
    while (!s.empty() && (s.back() == u' ' || s.back() == u'\t')) s.remove_suffix(1);
    return s;
}

}  // namespace

std::uint32_t ParsePluginFlags(std::u16string_view attribute) {
    std::uint32_t flags = 0;
    while (!attribute.empty()) {
        std::size_t comma = attribute.find(u',');
        std::u16string_view token = Trim(attribute.substr(0, comma));
        attribute = comma == std::u16string_view::npos ? std::u16string_view()
                                                       : attribute.substr(comma + 1);
        if (token.empty()) continue;
        if (token == u"SingleInstance")
            flags |= kTsPluginSingleInstance;
        else if (token == u"ToolWindow")
            flags |= kTsPluginToolWindow;
        else
            Report(ReportLevel::Assert, "toolsmfcimpls", __LINE__,
                   u"Unknown flag in plugin settings");
    }
    return flags;
}

std::uint32_t PluginFlagsOf(REFCLSID clsid) {
    CTsHostString value;
    if (TsGetPluginAttribute(clsid, u"tsPlugin.flags", value.Put()) != S_OK) return 0;
    return ParsePluginFlags(value.View());
}

}  // namespace ts
