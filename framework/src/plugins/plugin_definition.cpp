// Reading a plugin definition: the XML that lists a library's classes, with the class id,
// description and threading model of each, its host flags and the name patterns the host finds
// it by.
#include <expat.h>

#include <string>
#include <vector>

#include "ts/format.h"
#include "ts/pluginloader.h"
#include "ts/text.h"

namespace ts {

namespace {

class DefinitionReader {
public:
    DefinitionReader(PluginDefinition& definition, std::u16string& error)
        : definition_(definition), error_(error) {}

    bool Parse(std::string_view xml) {
        XML_Parser parser = XML_ParserCreate("UTF-8");
        if (!parser) {
            error_ = u"out of memory reading the plugin definition";
            return false;
        }
        parser_ = parser;
        XML_SetUserData(parser, this);
        XML_SetElementHandler(parser, &DefinitionReader::Start, &DefinitionReader::End);
        bool ok =
            XML_Parse(parser, xml.data(), static_cast<int>(xml.size()), XML_TRUE) == XML_STATUS_OK;
        if (!ok && error_.empty()) {
            error_ = Format(u"the plugin definition is not well-formed XML: %s at line %lu",
                            XML_ErrorString(XML_GetErrorCode(parser)),
                            static_cast<unsigned long>(XML_GetCurrentLineNumber(parser)));
        }
        XML_ParserFree(parser);
        if (!ok) return false;
        if (definition_.classes.empty()) {
            error_ = u"the plugin definition lists no plugin class";
            return false;
        }
        return true;
    }

private:
    static void Start(void* self, const XML_Char* name, const XML_Char** attributes) {
        static_cast<DefinitionReader*>(self)->OnStart(name, attributes);
    }
    static void End(void* self, const XML_Char* name) {
        static_cast<DefinitionReader*>(self)->OnEnd(name);
    }

    void Fail(std::u16string message) {
        if (error_.empty()) error_ = std::move(message);
        XML_StopParser(parser_, XML_FALSE);
    }

    void OnStart(std::string_view name, const XML_Char** attributes) {
        path_.emplace_back(name);
        if (path_.size() == 1 && name != "pluginDefinitions") {
            return Fail(
                Format(u"the plugin definition's root element is \"%s\", not \"pluginDefinitions\"",
                       name));
        }
        if (path_.size() == 3 && path_[1] == "plugins" && name == "plugin") {
            current_ = PluginClassInfo{};
            inPlugin_ = true;
        }
        if (!inPlugin_ || path_.size() < 3) return;

        // Attributes are kept by their path below the plugin element: "tsPlugin.flags".
        std::string prefix;
        for (std::size_t i = 3; i < path_.size(); ++i) prefix += path_[i] + ".";
        bool isPattern = path_.size() == 5 && path_[3] == "tsPlugin" && name == "pattern";
        for (const XML_Char** a = attributes; a[0]; a += 2) {
            std::u16string key = Utf8ToUtf16(prefix + a[0]);
            std::u16string value = Utf8ToUtf16(a[1]);
            if (isPattern && std::string_view(a[0]) == "text") current_.patterns.push_back(value);
            current_.attributes.emplace(std::move(key), std::move(value));
        }
    }

    void OnEnd(std::string_view name) {
        if (inPlugin_ && path_.size() == 3 && name == "plugin") {
            inPlugin_ = false;
            FinishClass();
        }
        path_.pop_back();
    }

    void FinishClass() {
        std::size_t number = definition_.classes.size() + 1;
        auto clsid = current_.Attribute(u"clsid");
        if (!clsid) return Fail(Format(u"plugin class %lu of the definition has no clsid", number));
        auto parsed = ParseGuid(Utf16ToUtf8(*clsid));
        if (!parsed)
            return Fail(Format(u"plugin class %lu has a malformed clsid \"%ls\"", number, *clsid));
        for (const auto& other : definition_.classes)
            if (other.clsid == *parsed)
                return Fail(Format(u"the clsid %ls is defined twice", *clsid));
        current_.clsid = *parsed;
        current_.clsidText = *clsid;
        current_.description = current_.Attribute(u"description").value_or(u"");
        current_.threadingModel = current_.Attribute(u"threadingModel").value_or(u"");
        definition_.classes.push_back(std::move(current_));
    }

    PluginDefinition& definition_;
    std::u16string& error_;
    XML_Parser parser_ = nullptr;
    std::vector<std::string> path_;
    bool inPlugin_ = false;
    PluginClassInfo current_;
};

// Glob match, letters compared without regard to ASCII case.
bool GlobMatch(std::u16string_view pattern, std::u16string_view name) {
    std::size_t p = 0, n = 0, star = std::u16string_view::npos, resume = 0;
    auto lower = [](char16_t c) { return c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c; };
    while (n < name.size()) {
        if (p < pattern.size() && (pattern[p] == u'?' || lower(pattern[p]) == lower(name[n]))) {
            ++p;
            ++n;
        } else if (p < pattern.size() && pattern[p] == u'*') {
            star = p++;
            resume = n;
        } else if (star != std::u16string_view::npos) {
            p = star + 1;
            n = ++resume;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == u'*') ++p;
    return p == pattern.size();
}

}  // namespace

std::optional<std::u16string> PluginClassInfo::Attribute(std::u16string_view path) const {
    auto it = attributes.find(path);
    if (it == attributes.end()) return std::nullopt;
    return it->second;
}

bool PluginClassInfo::MatchesPattern(std::u16string_view name) const {
    for (const auto& pattern : patterns)
        if (!pattern.empty() && GlobMatch(pattern, name)) return true;
    return false;
}

bool ParsePluginDefinition(std::string_view xml, PluginDefinition& definition,
                           std::u16string& error) {
    definition = PluginDefinition{};
    error.clear();
    // The section may be padded with zeros after the text.
    while (!xml.empty() && xml.back() == '\0') xml.remove_suffix(1);
    if (xml.empty()) {
        error = u"the plugin definition is empty";
        return false;
    }
    if (xml.size() > static_cast<std::size_t>(INT32_MAX)) {
        error = u"the plugin definition is too large";
        return false;
    }
    PluginDefinition parsed;
    if (!DefinitionReader(parsed, error).Parse(xml)) return false;
    definition = std::move(parsed);
    return true;
}

}  // namespace ts
