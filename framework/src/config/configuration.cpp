#include <charconv>
#include <fstream>
#include <sstream>
#include <type_traits>

#include "config/settings_reader.h"
#include "ts/format.h"
#include "ts/report.h"
#include "ts/text.h"

namespace ts {

namespace {

std::u16string Index(std::u16string_view group, std::u16string_view key) {
    return AsciiLower(group) + u'\n' + AsciiLower(key);
}

std::string Ascii(std::u16string_view text) {
    std::string out;
    for (char16_t c : text)
        out += c < 0x80 ? static_cast<char>(c) : '\x7F';  // never a digit or blank
    return out;
}

std::string_view Trim(std::string_view s) {
    while (!s.empty() &&
           (s.front() == ' ' || s.front() == '\t' || s.front() == '\n' || s.front() == '\r'))
        s.remove_prefix(1);
    while (!s.empty() &&
           (s.back() == ' ' || s.back() == '\t' || s.back() == '\n' || s.back() == '\r'))
        s.remove_suffix(1);
    return s;
}

template <class T>
bool Number(std::string_view s, T& out) {
    s = Trim(s);
    if (!s.empty() && s.front() == '+') s.remove_prefix(1);
    if (s.empty()) return false;
    auto result = std::from_chars(s.data(), s.data() + s.size(), out);
    return result.ec == std::errc() && result.ptr == s.data() + s.size();
}

bool ParseColour(std::string_view s, TsColour& out) {
    s = Trim(s);
    if (!s.empty() && s.front() == '#') {
        if (s.size() != 7) return false;
        float c[3];
        for (int i = 0; i < 3; ++i) {
            unsigned v = 0;
            auto r = std::from_chars(s.data() + 1 + 2 * i, s.data() + 3 + 2 * i, v, 16);
            if (r.ec != std::errc() || r.ptr != s.data() + 3 + 2 * i) return false;
            c[i] = static_cast<float>(v) / 255.0f;
        }
        out = {c[0], c[1], c[2], 1.0f};
        return true;
    }
    float c[4] = {0, 0, 0, 1};
    int n = 0;
    std::size_t at = 0;
    while (at < s.size()) {
        std::size_t end = s.find_first_of(" ,\t", at);
        if (end == std::string_view::npos) end = s.size();
        std::string_view part = s.substr(at, end - at);
        at = end + 1;
        if (Trim(part).empty()) continue;
        if (n == 4 || !Number(part, c[n])) return false;
        ++n;
    }
    if (n < 3) return false;
    out = {c[0], c[1], c[2], c[3]};
    return true;
}

}  // namespace

bool Configuration::LoadFile(const std::string& path, std::u16string* error) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        if (error) *error = Format(u"%s: the file cannot be read", path);
        return false;
    }
    std::ostringstream text;
    text << in.rdbuf();
    return LoadText(text.str(), Utf8ToUtf16(path), error);
}

bool Configuration::LoadText(std::string_view xml, std::u16string_view origin,
                             std::u16string* error) {
    SettingsFile file;
    std::u16string problem;
    if (!ParseSettings(xml, file, problem)) {
        if (error) *error = std::u16string(origin) + u", " + problem;
        return false;
    }
    for (auto& v : file.values)
        values_[Index(v.group, v.key)] = {std::move(v.text),
                                          Format(u"%ls, line %lu", origin, v.line)};
    for (auto& [section, entries] : file.menus) menus_[AsciiLower(section)] = std::move(entries);
    return true;
}

bool Configuration::Has(std::u16string_view group, std::u16string_view key) const {
    return values_.count(Index(group, key)) != 0;
}

const Configuration::Stored* Configuration::Find(std::u16string_view group, std::u16string_view key,
                                                 std::u16string* error) const {
    auto it = values_.find(Index(group, key));
    if (it != values_.end()) return &it->second;
    if (error)
        *error = Format(u"The settings have no value \"%ls\" in the group \"%ls\"", key, group);
    return nullptr;
}

namespace {
bool Unreadable(std::u16string* error, std::u16string_view group, std::u16string_view key,
                const Configuration::Stored& stored, const char16_t* kind) {
    if (error)
        *error = Format(u"The setting \"%ls\" of the group \"%ls\" (%ls) is not %ls: \"%ls\"", key,
                        group, stored.origin, kind, stored.text);
    return false;
}
}  // namespace

bool Configuration::GetBool(std::u16string_view group, std::u16string_view key, bool& out,
                            std::u16string* error) const {
    const Stored* s = Find(group, key, error);
    if (!s) return false;
    std::string text = Ascii(AsciiLower(s->text));
    std::string_view t = Trim(text);
    if (t == "true" || t == "yes" || t == "1")
        out = true;
    else if (t == "false" || t == "no" || t == "0")
        out = false;
    else
        return Unreadable(error, group, key, *s, u"true or false");
    return true;
}

bool Configuration::GetInt(std::u16string_view group, std::u16string_view key, std::int32_t& out,
                           std::u16string* error) const {
    const Stored* s = Find(group, key, error);
    if (!s) return false;
    std::int32_t v;
    if (!Number(Ascii(s->text), v)) return Unreadable(error, group, key, *s, u"a whole number");
    out = v;
    return true;
}

bool Configuration::GetFloat(std::u16string_view group, std::u16string_view key, float& out,
                             std::u16string* error) const {
    const Stored* s = Find(group, key, error);
    if (!s) return false;
    float v;
    if (!Number(Ascii(s->text), v)) return Unreadable(error, group, key, *s, u"a number");
    out = v;
    return true;
}

bool Configuration::GetString(std::u16string_view group, std::u16string_view key,
                              std::u16string& out, std::u16string* error) const {
    const Stored* s = Find(group, key, error);
    if (!s) return false;
    out = s->text;
    return true;
}

bool Configuration::GetColour(std::u16string_view group, std::u16string_view key, TsColour& out,
                              std::u16string* error) const {
    const Stored* s = Find(group, key, error);
    if (!s) return false;
    TsColour c;
    if (!ParseColour(Ascii(s->text), c))
        return Unreadable(error, group, key, *s, u"a colour (such as 0.5 0.5 1 or #7F7FFF)");
    out = c;
    return true;
}

const std::vector<MenuEntry>* Configuration::Menus(std::u16string_view section) const {
    auto it = menus_.find(AsciiLower(section));
    return it == menus_.end() ? nullptr : &it->second;
}

EnvironmentSettings ReadEnvironment(const Configuration& configuration) {
    EnvironmentSettings settings;
    auto read = [&](const char16_t* key, auto& field) {
        if (!configuration.Has(u"Environment", key)) return;
        std::u16string error;
        bool ok = true;
        using T = std::decay_t<decltype(field)>;
        if constexpr (std::is_same_v<T, bool>)
            ok = configuration.GetBool(u"Environment", key, field, &error);
        else if constexpr (std::is_same_v<T, std::int32_t>)
            ok = configuration.GetInt(u"Environment", key, field, &error);
        else
            ok = configuration.GetString(u"Environment", key, field, &error);
        if (!ok) Report(ReportLevel::Warning, "configuration", __LINE__, error);
    };
#define TS_ENVIRONMENT_READ(Name, Kind, Default) read(u"" #Name, settings.Name);
    TS_ENVIRONMENT_KEYS(TS_ENVIRONMENT_READ)
#undef TS_ENVIRONMENT_READ
    return settings;
}

}  // namespace ts
