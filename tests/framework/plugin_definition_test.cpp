// Reading plugin definitions: what a good one yields, and a clear message for every way one can
// be wrong. Also reading the definition's section from damaged library files.
#include <gtest/gtest.h>

#include <elf.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "support/test_folders.h"
#include "ts/hoststring.h"
#include "ts/plugin.h"
#include "ts/pluginloader.h"
#include "ts/text.h"

namespace {

std::string Definition(const std::string& plugins) {
    return "<pluginDefinitions>\n  <plugins>\n" + plugins + "  </plugins>\n</pluginDefinitions>\n";
}

TEST(PluginDefinition, ReadsEveryClassWithItsAttributesAndPatterns) {
    std::string xml = Definition(R"(
    <plugin clsid="{00AFAF9F-EBA6-4DD2-BE63-1B6C33076D02}" description="Conversation Editor"
            threadingModel="Apartment">
      <tsPlugin><pattern text="ConversationEditor"/><pattern text="Dlg*"/></tsPlugin>
    </plugin>
    <plugin clsid="{6e3d0619-3a01-4d28-a05a-62ced6f22a73}" description="Preview &amp; Play">
      <tsPlugin flags="ToolWindow" dock="right">
        <pattern text="Conv*Editor"/><pattern text="Stage??"/><pattern text=""/>
      </tsPlugin>
      <comment>ignored elements are fine</comment>
    </plugin>
)");
    xml.push_back('\0');  // sections may be padded
    ts::PluginDefinition definition;
    std::u16string error;
    ASSERT_TRUE(ts::ParsePluginDefinition(xml, definition, error)) << ts::Utf16ToUtf8(error);
    ASSERT_EQ(definition.classes.size(), 2u);

    const auto& editor = definition.classes[0];
    EXPECT_EQ(editor.clsid, ts::Guid("{00AFAF9F-EBA6-4DD2-BE63-1B6C33076D02}"));
    EXPECT_EQ(editor.threadingModel, u"Apartment");
    EXPECT_EQ(editor.patterns, (std::vector<std::u16string>{u"ConversationEditor", u"Dlg*"}));
    EXPECT_EQ(editor.Attribute(u"tsPlugin.pattern.text"), u"ConversationEditor")
        << "the first pattern";
    EXPECT_FALSE(editor.Attribute(u"tsPlugin.flags"));

    const auto& preview = definition.classes[1];
    EXPECT_EQ(preview.clsidText, u"{6e3d0619-3a01-4d28-a05a-62ced6f22a73}");
    EXPECT_EQ(preview.description, u"Preview & Play");
    EXPECT_EQ(preview.Attribute(u"tsPlugin.flags"), u"ToolWindow");
    EXPECT_EQ(preview.Attribute(u"tsPlugin.dock"), u"right");
    // Wildcards match within whole names (case and wholeness are held by the loader's tests); an
    // empty pattern matches nothing.
    for (const char16_t* name : {u"ConversationEditor", u"ConvEditor", u"StageAB"})
        EXPECT_TRUE(preview.MatchesPattern(name)) << ts::Utf16ToUtf8(name);
    for (const char16_t* name : {u"ConversationEditorX", u"StageA", u""})
        EXPECT_FALSE(preview.MatchesPattern(name)) << ts::Utf16ToUtf8(name);
}

TEST(PluginDefinition, EachFaultHasItsMessage) {
    // (Malformed XML in a library is met by the loader's tests.)
    const std::pair<std::string, std::u16string> cases[] = {
        {std::string(3, '\0'), u"empty"},
        {std::string("<pluginDefinitions>\0<plugins/></pluginDefinitions>", 49),
         u"not well-formed XML"},
        {"<definitions/>", u"root element is \"definitions\", not \"pluginDefinitions\""},
        {Definition(""), u"lists no plugin class"},
        {Definition("<plugin description=\"No id\"/>"),
         u"plugin class 1 of the definition has no clsid"},
        {Definition("<plugin clsid=\"{00AFAF9F-EBA6-4DD2-BE63-1B6C33076D02}\"/><plugin "
                    "clsid=\"00AFAF9F\"/>"),
         u"plugin class 2 has a malformed clsid \"00AFAF9F\""},
        {Definition("<plugin clsid=\"{00AFAF9F-EBA6-4DD2-BE63-1B6C33076D02}\"/>"
                    "<plugin clsid=\"{00afaf9f-eba6-4dd2-be63-1b6c33076d02}\"/>"),
         u"is defined twice"},
    };
    for (const auto& [xml, words] : cases) {
        ts::PluginDefinition definition;
        definition.classes.emplace_back();  // whatever was there is cleared
        std::u16string error;
        EXPECT_FALSE(ts::ParsePluginDefinition(xml, definition, error)) << xml;
        EXPECT_NE(error.find(words), std::u16string::npos) << ts::Utf16ToUtf8(error);
        EXPECT_TRUE(definition.classes.empty());
    }
}

TEST(PluginDefinition, AnUnknownClassHasNoAttributes) {
    CTsHostString value;
    EXPECT_EQ(TsGetPluginAttribute(ts::Guid("{12345678-0000-0000-0000-000000000000}"),
                                   u"tsPlugin.flags", value.Put()),
              CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(value.Get(), nullptr);
    EXPECT_EQ(TsGetPluginAttribute(GUID_NULL, u"description", nullptr), E_POINTER);
}

std::string ElfHeader(std::uint16_t type, std::uint64_t sectionOffset, std::uint16_t count,
                      std::uint16_t names, unsigned char order = ELFDATA2LSB) {
    Elf64_Ehdr h{};
    std::memcpy(h.e_ident, ELFMAG, SELFMAG);
    h.e_ident[EI_CLASS] = ELFCLASS64;
    h.e_ident[EI_DATA] = order;
    h.e_type = type;
    h.e_shoff = sectionOffset;
    h.e_shentsize = sizeof(Elf64_Shdr);
    h.e_shnum = count;
    h.e_shstrndx = names;
    return std::string(reinterpret_cast<const char*>(&h), sizeof h);
}

// Damage the plugin loader's own tests leave out (text files, truncated libraries and libraries
// without a definition are among the plugins there).
TEST(DamagedLibraries, AreDescribedNotCrashedOn) {
    std::string folder = ts::test::MakeTempFolder("ts-elf");
    auto errorOf = [](const std::string& path) {
        std::string bytes = "left over";
        std::u16string error;
        EXPECT_FALSE(ts::ReadElfSection(path, ".ts_plugin_def", bytes, error));
        EXPECT_TRUE(bytes.empty());
        return error;
    };
    // A section table whose name table points far beyond the file.
    Elf64_Shdr sections[2]{};
    sections[1].sh_type = SHT_STRTAB;
    sections[1].sh_offset = 1u << 30;
    sections[1].sh_size = 32;
    std::string farNames = ElfHeader(ET_DYN, 64, 2, 1) +
                           std::string(reinterpret_cast<const char*>(sections), sizeof sections);

    const std::pair<std::string, const char16_t*> cases[] = {
        {ElfHeader(ET_DYN, 64, 1, 0, ELFDATA2MSB), u"another byte order"},
        {ElfHeader(ET_EXEC, 64, 1, 0), u"not a shared library"},
        {ElfHeader(ET_DYN, 0, 0, 0), u"no usable section table"},
        {ElfHeader(ET_DYN, 64, 60000, 1) + std::string(64, '\0'), u"section table is damaged"},
        {farNames, u"section names lie outside the file"},
    };
    for (const auto& [bytes, words] : cases) {
        std::string path = folder + "/library.so";
        std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
        std::u16string error = errorOf(path);
        EXPECT_NE(error.find(words), std::u16string::npos) << ts::Utf16ToUtf8(error);
    }
    EXPECT_NE(errorOf(folder + "/missing.so").find(u"cannot open the file"), std::u16string::npos);
    std::filesystem::remove_all(folder);
}

}  // namespace
