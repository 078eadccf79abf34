// The user's layout file: editor layouts by name, each with its splitter positions.
#include "ts/editorlayout.h"

#include <expat.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "ts/format.h"
#include "ts/report.h"
#include "ts/text.h"

namespace ts {

namespace {

using Layouts = std::map<std::u16string, SplitterPositions, std::less<>>;

void Warn(const std::u16string& message) {
    Report(ReportLevel::Warning, "layouts", __LINE__, message);
}

const char* Attribute(const XML_Char** attributes, const char* name) {
    for (int i = 0; attributes[i]; i += 2)
        if (std::strcmp(attributes[i], name) == 0) return attributes[i + 1];
    return nullptr;
}

struct Reader {
    Layouts layouts;
    SplitterPositions* current = nullptr;

    static void Start(void* data, const XML_Char* name, const XML_Char** attributes) {
        auto& self = *static_cast<Reader*>(data);
        const char* n = Attribute(attributes, "Name");
        if (std::strcmp(name, "Layout") == 0 && n) {
            self.current = &self.layouts[Utf8ToUtf16(n)];
        } else if (std::strcmp(name, "Splitter") == 0 && n && self.current) {
            const char* position = Attribute(attributes, "Position");
            char* end = nullptr;
            long value = position ? std::strtol(position, &end, 10) : 0;
            // A position that isn't a whole number is left out; the splitter keeps its default.
            if (position && *position && end && *end == '\0' && value >= 0 && value < 1 << 20)
                (*self.current)[Utf8ToUtf16(n)] = static_cast<int>(value);
        }
    }
    static void End(void* data, const XML_Char* name) {
        if (std::strcmp(name, "Layout") == 0) static_cast<Reader*>(data)->current = nullptr;
    }
};

// Every layout of the file; false when the file exists but can't be read as layouts.
bool ReadAll(const std::u16string& file, Layouts& layouts) {
    std::ifstream in(std::filesystem::path(Utf16ToUtf8(file)), std::ios::binary);
    if (!in) return true;  // no file yet: no layouts
    std::stringstream text;
    text << in.rdbuf();
    std::string xml = text.str();
    XML_Parser parser = XML_ParserCreate("UTF-8");
    if (!parser) return false;
    Reader reader;
    XML_SetUserData(parser, &reader);
    XML_SetElementHandler(parser, Reader::Start, Reader::End);
    bool ok =
        XML_Parse(parser, xml.data(), static_cast<int>(xml.size()), XML_TRUE) == XML_STATUS_OK;
    if (!ok)
        Warn(Format(
            u"The layout file %ls cannot be read (line %lu: %s); the default layout is used.",
            MessageText(file), static_cast<unsigned long>(XML_GetCurrentLineNumber(parser)),
            XML_ErrorString(XML_GetErrorCode(parser))));
    XML_ParserFree(parser);
    if (ok) layouts = std::move(reader.layouts);
    return ok;
}

std::string Escaped(std::u16string_view text) {
    std::string out;
    for (char c : Utf16ToUtf8(text)) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            default:
                out += c;
        }
    }
    return out;
}

}  // namespace

SplitterPositions ReadEditorLayout(const std::u16string& file, std::u16string_view layout) {
    Layouts layouts;
    ReadAll(file, layouts);
    auto it = layouts.find(layout);
    return it == layouts.end() ? SplitterPositions() : it->second;
}

bool WriteEditorLayout(const std::u16string& file, std::u16string_view layout,
                       const SplitterPositions& positions) {
    Layouts layouts;
    // A damaged file is replaced: what could be read of it is gone either way.
    ReadAll(file, layouts);
    layouts[std::u16string(layout)] = positions;

    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Layouts>\n";
    for (const auto& [name, splitters] : layouts) {
        xml += "  <Layout Name=\"" + Escaped(name) + "\">\n";
        for (const auto& [splitter, position] : splitters)
            xml += "    <Splitter Name=\"" + Escaped(splitter) + "\" Position=\"" +
                   std::to_string(position) + "\"/>\n";
        xml += "  </Layout>\n";
    }
    xml += "</Layouts>\n";

    std::filesystem::path path(Utf16ToUtf8(file));
    std::filesystem::path partial = path;
    partial += ".partial";
    std::error_code ec;
    {
        std::ofstream out(partial, std::ios::binary | std::ios::trunc);
        out << xml;
        out.flush();
        if (!out) ec = std::make_error_code(std::errc::io_error);
    }
    if (!ec) std::filesystem::rename(partial, path, ec);
    if (ec) {
        std::filesystem::remove(partial);
        Warn(Format(u"The layout file %ls cannot be written: %s", MessageText(file), ec.message()));
        return false;
    }
    return true;
}

}  // namespace ts
