#include "config/settings_reader.h"

#include <expat.h>

#include "ts/format.h"
#include "ts/text.h"

namespace ts {

namespace {

constexpr int kSettingsVersion = 1;

// Builds the settings of one file from expat's events. The first problem stops the parse.
class Handler {
public:
    Handler(XML_Parser parser, SettingsFile& out) : parser_(parser), out_(out) {}

    const std::u16string& Problem() const { return problem_; }

    static void XMLCALL Start(void* self, const XML_Char* name, const XML_Char** attributes) {
        static_cast<Handler*>(self)->OnStart(name, attributes);
    }
    static void XMLCALL End(void* self, const XML_Char*) { static_cast<Handler*>(self)->OnEnd(); }
    static void XMLCALL Text(void* self, const XML_Char* text, int length) {
        static_cast<Handler*>(self)->OnText(
            std::string_view(text, static_cast<std::size_t>(length)));
    }

private:
    enum class Element { Settings, Group, Value, Menus, Popup, Separator, Command };

    std::size_t Line() const { return static_cast<std::size_t>(XML_GetCurrentLineNumber(parser_)); }

    void Stop(std::u16string message) {
        if (problem_.empty()) problem_ = Format(u"line %lu: %ls", Line(), message);
        XML_StopParser(parser_, XML_FALSE);
    }

    // The value of the attribute `wanted`; every other attribute is refused as a typo.
    bool Attribute(const XML_Char** attributes, std::string_view element, std::string_view wanted,
                   std::u16string& out, bool required = true) {
        bool found = false;
        for (int i = 0; attributes[i]; i += 2) {
            if (wanted == attributes[i]) {
                out = Utf8ToUtf16(attributes[i + 1]);
                found = true;
            } else {
                Stop(Format(u"<%s> has no attribute \"%s\"", element, attributes[i]));
                return false;
            }
        }
        if (!found && required) {
            Stop(Format(u"<%s> needs the attribute \"%s\"", element, wanted));
            return false;
        }
        return true;
    }

    void OnStart(const XML_Char* rawName, const XML_Char** attributes) {
        std::string_view name = rawName;
        Element parent = stack_.empty() ? Element::Settings : stack_.back();
        if (stack_.empty()) {
            if (name != "Settings")
                return Stop(Format(
                    u"the root element is <%s>; settings files start with <Settings>", name));
            std::u16string version;
            if (!Attribute(attributes, name, "Version", version, false)) return;
            if (!version.empty() && version != u"1")
                return Stop(
                    Format(u"the settings are of version %ls; this toolset reads version %d",
                           version, kSettingsVersion));
            stack_.push_back(Element::Settings);
            return;
        }
        if (parent == Element::Settings && name == "Group") {
            if (!Attribute(attributes, name, "Name", group_)) return;
            stack_.push_back(Element::Group);
        } else if (parent == Element::Group && name == "Value") {
            std::u16string key;
            if (!Attribute(attributes, name, "Key", key)) return;
            if (key.empty()) return Stop(u"a <Value> needs a key that is not empty");
            valueKey_ = std::move(key);
            valueLine_ = Line();
            text_.clear();
            stack_.push_back(Element::Value);
        } else if (parent == Element::Settings && name == "Menus") {
            std::u16string section;
            if (!Attribute(attributes, name, "Name", section)) return;
            out_.menus.push_back({std::move(section), {}});
            menuStack_ = {&out_.menus.back().second};
            stack_.push_back(Element::Menus);
        } else if ((parent == Element::Menus || parent == Element::Popup) && name == "Popup") {
            MenuEntry entry{MenuEntry::Kind::Popup, {}, {}};
            if (!Attribute(attributes, name, "Caption", entry.text)) return;
            menuStack_.back()->push_back(std::move(entry));
            menuStack_.push_back(&menuStack_.back()->back().entries);
            stack_.push_back(Element::Popup);
        } else if ((parent == Element::Menus || parent == Element::Popup) && name == "Separator") {
            std::u16string none;
            if (!Attribute(attributes, name, "", none, false)) return;
            menuStack_.back()->push_back({MenuEntry::Kind::Separator, {}, {}});
            stack_.push_back(Element::Separator);
        } else if ((parent == Element::Menus || parent == Element::Popup) && name == "Command") {
            MenuEntry entry{MenuEntry::Kind::Command, {}, {}};
            if (!Attribute(attributes, name, "Name", entry.text)) return;
            if (entry.text.empty()) return Stop(u"a <Command> needs a name that is not empty");
            menuStack_.back()->push_back(std::move(entry));
            stack_.push_back(Element::Command);
        } else {
            Stop(
                Format(u"<%s> is not expected here (settings hold <Group> with <Value>, and "
                       u"<Menus> with <Popup>, "
                       u"<Separator> and <Command>)",
                       name));
        }
    }

    void OnEnd() {
        if (stack_.empty()) return;
        Element done = stack_.back();
        stack_.pop_back();
        if (done == Element::Value)
            out_.values.push_back({group_, valueKey_, Utf8ToUtf16(text_), valueLine_});
        else if (done == Element::Popup)
            menuStack_.pop_back();
    }

    void OnText(std::string_view text) {
        if (!stack_.empty() && stack_.back() == Element::Value) {
            text_ += text;
            return;
        }
        for (char c : text)
            if (c != ' ' && c != '\t' && c != '\n' && c != '\r')
                return Stop(u"text outside a <Value>");
    }

    XML_Parser parser_;
    SettingsFile& out_;
    std::vector<Element> stack_;
    std::vector<std::vector<MenuEntry>*> menuStack_;
    std::u16string group_, valueKey_;
    std::size_t valueLine_ = 0;
    std::string text_;
    std::u16string problem_;
};

}  // namespace

bool ParseSettings(std::string_view xml, SettingsFile& out, std::u16string& error) {
    out = {};
    XML_Parser parser = XML_ParserCreate("UTF-8");
    if (!parser) {
        error = u"out of memory";
        return false;
    }
    Handler handler(parser, out);
    XML_SetUserData(parser, &handler);
    XML_SetElementHandler(parser, Handler::Start, Handler::End);
    XML_SetCharacterDataHandler(parser, Handler::Text);
    XML_Status status = XML_Parse(parser, xml.data(), static_cast<int>(xml.size()), XML_TRUE);
    bool ok = status == XML_STATUS_OK && handler.Problem().empty();
    if (!ok) {
        error = !handler.Problem().empty()
                    ? handler.Problem()
                    : Format(u"line %lu, column %lu: %s",
                             static_cast<unsigned long>(XML_GetCurrentLineNumber(parser)),
                             static_cast<unsigned long>(XML_GetCurrentColumnNumber(parser) + 1),
                             XML_ErrorString(XML_GetErrorCode(parser)));
    }
    XML_ParserFree(parser);
    return ok;
}

}  // namespace ts
