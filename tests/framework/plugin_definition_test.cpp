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
    std::string xml = Definition(
        "    <plugin clsid=\"{00AFAF9F-EBA6-4DD2-BE63-1B6C33076D02}\" description=\"Conversation "
        "Editor\" "
        "threadingModel=\"Apartment\">\n"
        "      <tsPlugin><pattern text=\"ConversationEditor\"/><pattern "
        "text=\"Dlg*\"/></tsPlugin>\n"
        "    </plugin>\n"
        "    <plugin clsid=\"{6e3d0619-3a01-4d28-a05a-62ced6f22a73}\" description=\"Preview &amp; "
        "Play\">\n"
        "      <tsPlugin flags=\"ToolWindow\" dock=\"right\"><pattern "
        "text=\"LinePreview\"/></tsPlugin>\n"
        "      <comment>ignored elements are fine</comment>\n"
        "    </plugin>\n");
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
    EXPECT_TRUE(editor.MatchesPattern(u"conversationeditor"));
    EXPECT_TRUE(editor.MatchesPattern(u"DlgAnything"));
    EXPECT_FALSE(editor.MatchesPattern(u"ConversationEditors"));

    const auto& preview = definition.classes[1];
    EXPECT_EQ(preview.clsidText, u"{6e3d0619-3a01-4d28-a05a-62ced6f22a73}");
    EXPECT_EQ(preview.description, u"Preview & Play");
    EXPECT_EQ(preview.threadingModel, u"");
    EXPECT_EQ(preview.Attribute(u"tsPlugin.flags"), u"ToolWindow");
    EXPECT_EQ(preview.Attribute(u"tsPlugin.dock"), u"right");
}

TEST(PluginDefinition, PatternsMatchWholeNamesWithWildcards) {
    ts::PluginClassInfo info;
    info.patterns = {u"Conv*Editor", u"Stage??", u""};
    EXPECT_TRUE(info.MatchesPattern(u"ConversationEditor"));
    EXPECT_TRUE(info.MatchesPattern(u"ConvEditor"));
    EXPECT_FALSE(info.MatchesPattern(u"ConversationEditorX"));
    EXPECT_TRUE(info.MatchesPattern(u"StageAB"));
    EXPECT_FALSE(info.MatchesPattern(u"StageA"));
    EXPECT_FALSE(info.MatchesPattern(u"")) << "an empty pattern matches nothing";
}

TEST(PluginDefinition, EachFaultHasItsMessage) {
    struct Case {
        std::string xml;
        std::u16string words;
    };
    const Case cases[] = {
        {"", u"empty"},
        {std::string(3, '\0'), u"empty"},
        {"<pluginDefinitions><plugins>", u"not well-formed XML: no element found at line 1"},
        {"<pluginDefinitions>\n<plugins>\n</plugin>\n</pluginDefinitions>",
         u"mismatched tag at line 3"},
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
        {std::string("<pluginDefinitions>\0<plugins/></pluginDefinitions>", 49),
         u"not well-formed XML"},
    };
    for (const auto& c : cases) {
        ts::PluginDefinition definition;
        definition.classes.emplace_back();  // whatever was there is cleared
        std::u16string error;
        EXPECT_FALSE(ts::ParsePluginDefinition(c.xml, definition, error)) << c.xml;
        EXPECT_NE(error.find(c.words), std::u16string::npos) << ts::Utf16ToUtf8(error);
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

class DamagedLibraries : public ::testing::Test {
protected:
    void SetUp() override { folder_ = ts::test::MakeTempFolder("ts-elf"); }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    std::string Write(const std::string& name, const std::string& bytes) {
        std::string path = folder_ + "/" + name;
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }
    std::u16string ErrorOf(const std::string& path) {
        std::string bytes = "left over";
        std::u16string error;
        EXPECT_FALSE(ts::ReadElfSection(path, ".ts_plugin_def", bytes, error));
        EXPECT_TRUE(bytes.empty());
        return error;
    }
    static std::string Header(std::uint16_t type, std::uint64_t sectionOffset, std::uint16_t count,
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
    std::string folder_;
};

TEST_F(DamagedLibraries, AreDescribedNotCrashedOn) {
    EXPECT_NE(ErrorOf(folder_ + "/missing.so").find(u"cannot open the file"), std::u16string::npos);
    EXPECT_NE(ErrorOf(Write("text.so", "hello")).find(u"not an ELF library"), std::u16string::npos);
    EXPECT_NE(ErrorOf(Write("bigendian.so", Header(ET_DYN, 64, 1, 0, ELFDATA2MSB)))
                  .find(u"another byte order"),
              std::u16string::npos);
    EXPECT_NE(ErrorOf(Write("program.so", Header(ET_EXEC, 64, 1, 0))).find(u"not a shared library"),
              std::u16string::npos);
    EXPECT_NE(
        ErrorOf(Write("nosections.so", Header(ET_DYN, 0, 0, 0))).find(u"no usable section table"),
        std::u16string::npos);
    EXPECT_NE(
        ErrorOf(Write("farsections.so", Header(ET_DYN, 1u << 30, 3, 1))).find(u"outside the file"),
        std::u16string::npos);
    EXPECT_NE(ErrorOf(Write("hugecount.so", Header(ET_DYN, 64, 60000, 1) + std::string(64, '\0')))
                  .find(u"section table"),
              std::u16string::npos);

    // A section table whose name table points far beyond the file.
    Elf64_Shdr sections[2]{};
    sections[1].sh_type = SHT_STRTAB;
    sections[1].sh_offset = 1u << 30;
    sections[1].sh_size = 32;
    std::string bytes = Header(ET_DYN, 64, 2, 1) +
                        std::string(reinterpret_cast<const char*>(sections), sizeof sections);
    EXPECT_NE(ErrorOf(Write("farnames.so", bytes)).find(u"section names lie outside the file"),
              std::u16string::npos);

    // A sound file that has no definition section.
    std::string names("\0.shstrtab\0.text\0", 17);
    sections[1].sh_offset = 64 + sizeof sections;
    sections[1].sh_size = names.size();
    sections[1].sh_name = 1;
    bytes = Header(ET_DYN, 64, 2, 1) +
            std::string(reinterpret_cast<const char*>(sections), sizeof sections) + names;
    EXPECT_NE(ErrorOf(Write("plain.so", bytes)).find(u"no section .ts_plugin_def"),
              std::u16string::npos);
}

}  // namespace
