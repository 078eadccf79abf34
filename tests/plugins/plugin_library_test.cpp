// The conversation editor library as a file: what it exports and the definition it carries.
#include <elf.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "plugin_folder.h"
#include "ts/pluginloader.h"
#include "ts/text.h"

namespace {

// The names of the symbols a shared library defines and exports (global or weak, not undefined).
std::set<std::string> ExportedSymbols(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::vector<char> file((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::set<std::string> names;
    if (file.size() < sizeof(Elf64_Ehdr)) return names;
    const auto* header = reinterpret_cast<const Elf64_Ehdr*>(file.data());
    if (header->e_ident[EI_CLASS] != ELFCLASS64) return names;
    const auto* sections = reinterpret_cast<const Elf64_Shdr*>(file.data() + header->e_shoff);
    for (int i = 0; i < header->e_shnum; ++i) {
        if (sections[i].sh_type != SHT_DYNSYM) continue;
        const char* strings = file.data() + sections[sections[i].sh_link].sh_offset;
        const auto* symbols =
            reinterpret_cast<const Elf64_Sym*>(file.data() + sections[i].sh_offset);
        std::size_t count = sections[i].sh_size / sizeof(Elf64_Sym);
        for (std::size_t s = 1; s < count; ++s) {
            const auto& symbol = symbols[s];
            int binding = ELF64_ST_BIND(symbol.st_info);
            if (symbol.st_shndx == SHN_UNDEF || (binding != STB_GLOBAL && binding != STB_WEAK))
                continue;
            names.insert(strings + symbol.st_name);
        }
    }
    return names;
}

TEST(PluginLibrary, ExportsExactlyItsTwoEntryPoints) {
    EXPECT_EQ(ExportedSymbols(ts::test::EditorDlgLibrary()),
              (std::set<std::string>{"DllGetClassObject", "DllSendEvent"}));
}

TEST(PluginLibrary, CarriesItsDefinitionTextByteForByte) {
    std::string text;
    std::u16string error;
    ASSERT_TRUE(ts::ReadElfSection(ts::test::EditorDlgLibrary(), ".ts_plugin_def", text, error))
        << ts::Utf16ToUtf8(error);
    while (!text.empty() && text.back() == '\0') text.pop_back();

    // clang-format off
    const std::string expected =
        "<pluginDefinitions>\r\n"
        "    <plugins>\r\n"
        "        <plugin clsid=\"{00AFAF9F-EBA6-4DD2-BE63-1B6C33076D02}\" description=\"Conversation Editor\" threadingModel=\"Apartment\">\r\n"
        "            <tsPlugin>\r\n"
        "                <pattern text=\"ConversationEditor\"/>\r\n"
        "            </tsPlugin>\r\n"
        "        </plugin>\r\n"
        "        <plugin clsid=\"{6E3D0619-3A01-4d28-A05A-62CED6F22A73}\" description=\"Conversation Line Preview\" threadingModel=\"Apartment\">\r\n"
        "            <tsPlugin flags=\"ToolWindow\">\r\n"
        "                <pattern text=\"ConversationLinePreview\"/>\r\n"
        "            </tsPlugin>\r\n"
        "        </plugin>\r\n"
        "    </plugins>\r\n"
        "</pluginDefinitions>\r\n";
    // clang-format on
    EXPECT_EQ(text, expected);

    // Every line ends in CR LF, and each level is indented by four blanks more.
    std::size_t start = 0;
    int depth = 0;
    while (start < text.size()) {
        std::size_t end = text.find("\r\n", start);
        ASSERT_NE(end, std::string::npos) << "a line without CR LF";
        std::string line = text.substr(start, end - start);
        EXPECT_EQ(line.find('\n'), std::string::npos);
        std::size_t blanks = line.find_first_not_of(' ');
        bool closing = line.compare(blanks, 2, "</") == 0;
        if (closing) --depth;
        EXPECT_EQ(blanks, static_cast<std::size_t>(4 * depth)) << line;
        if (!closing && line.find("/>") == std::string::npos) ++depth;
        start = end + 2;
    }
    EXPECT_EQ(depth, 0);
}

TEST(PluginLibrary, DefinitionNamesBothClassesWithTheirFlagsAndPatterns) {
    ts::PluginLoader loader;
    ts::Plugin& plugin = loader.Add(ts::test::EditorDlgLibrary());
    ASSERT_EQ(plugin.State(), ts::PluginState::Read) << ts::Utf16ToUtf8(plugin.Error());
    const auto& classes = plugin.Definition().classes;
    ASSERT_EQ(classes.size(), 2u);
    EXPECT_EQ(classes[0].clsidText, u"{00AFAF9F-EBA6-4DD2-BE63-1B6C33076D02}");
    EXPECT_EQ(classes[0].description, u"Conversation Editor");
    EXPECT_EQ(classes[0].threadingModel, u"Apartment");
    EXPECT_FALSE(classes[0].Attribute(u"tsPlugin.flags"));
    EXPECT_EQ(classes[0].patterns, std::vector<std::u16string>{u"ConversationEditor"});
    EXPECT_EQ(classes[1].clsidText, u"{6E3D0619-3A01-4d28-A05A-62CED6F22A73}");
    EXPECT_EQ(classes[1].clsid, ts::Guid("{6E3D0619-3A01-4D28-A05A-62CED6F22A73}"));
    EXPECT_EQ(classes[1].description, u"Conversation Line Preview");
    EXPECT_EQ(classes[1].Attribute(u"tsPlugin.flags"), u"ToolWindow");
    EXPECT_EQ(classes[1].patterns, std::vector<std::u16string>{u"ConversationLinePreview"});
    EXPECT_EQ(plugin.State(), ts::PluginState::Read)
        << "reading the definition does not load the library";
}

}  // namespace
