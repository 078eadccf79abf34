#include <gtest/gtest.h>

#include "ts/gametable.h"
#include "ts/text.h"

namespace {

std::string U8(const std::u16string& s) {
    return ts::Utf16ToUtf8(s);
}

ts::GameTable Parse(std::string_view csv, std::u16string_view name = u"poses") {
    ts::GameTable table;
    std::u16string error;
    EXPECT_TRUE(ts::GameTable::FromCsv(name, csv, table, &error)) << U8(error);
    return table;
}

// A cell's text by column name; "(failed)" when the read fails.
std::u16string Text(const ts::GameTable& table, std::size_t row, std::u16string_view column) {
    std::u16string text;
    return table.GetText(row, column, text) ? text : u"(failed)";
}

TEST(GameTable, ReadsCellsByColumnNameInRowOrder) {
    auto table = Parse(
        "\xEF\xBB\xBFID, Label ,Animations\r\n"
        "10,Stand,\"idle_01,idle_02\"\r\n"
        "\r\n"
        "  \n"
        "3 , Sit ,\"says \"\"hi\"\"\nand waves\"\n"
        "-7,,\n");
    ASSERT_EQ(table.ColumnCount(), 3u);
    EXPECT_EQ(table.ColumnName(1), u"Label");  // blanks around unquoted cells are not part of them
    ASSERT_EQ(table.RowCount(), 3u);
    EXPECT_EQ(table.RowId(0), 10);
    EXPECT_EQ(table.RowId(1), 3);
    EXPECT_EQ(table.RowId(2), -7);
    EXPECT_EQ(Text(table, 0, u"animations"), u"idle_01,idle_02");
    EXPECT_EQ(Text(table, 1, u"Animations"), u"says \"hi\"\nand waves");
    EXPECT_EQ(Text(table, 1, u"LABEL"), u"Sit");
    EXPECT_EQ(Text(table, 2, u"Label"), u"");
    std::int32_t id;
    ASSERT_TRUE(table.GetInt(1, u"ID", id));
    EXPECT_EQ(id, 3);
    std::size_t row;
    ASSERT_TRUE(table.FindRow(-7, row));
    EXPECT_EQ(row, 2u);

    // Written out and read again, the table is the same; quotes only where needed.
    std::string csv = table.ToCsv();
    EXPECT_EQ(csv,
              "ID,Label,Animations\n10,Stand,\"idle_01,idle_02\"\n3,Sit,\"says \"\"hi\"\"\nand "
              "waves\"\n-7,,\n");
    EXPECT_EQ(Parse(csv).ToCsv(), csv);

    // A cell that begins with a byte-order mark (after a blank, so not the file's own) keeps it
    // through writing and reading; in a column's name it is refused (see below).
    auto marked = Parse("ID,Name\n1, \xEF\xBB\xBFName\n");
    std::u16string text;
    ASSERT_TRUE(marked.GetText(0, 1, text));
    EXPECT_EQ(text, u"\uFEFFName");
    ASSERT_TRUE(Parse(marked.ToCsv()).GetText(0, 1, text));
    EXPECT_EQ(text, u"\uFEFFName");
}

TEST(GameTable, BadReadsFailWithTheirReasonAndLeaveTheValue) {
    auto table = Parse("ID,Name,Value\n1,Gold, 25\n2,Silver,lots\n3,Lead,99999999999\n",
                       u"toolset_dlgparms");
    std::int32_t value = 123;
    std::u16string error, text = u"untouched";
    ASSERT_TRUE(table.GetInt(0, u"Value", value, &error));
    EXPECT_EQ(value, 25);
    value = 123;
    EXPECT_FALSE(table.GetInt(2, u"Value", value, &error));  // beyond 32 bits
    EXPECT_FALSE(table.GetInt(0, u"Name", value, &error));
    EXPECT_FALSE(table.GetInt(1, u"Value", value, &error));
    EXPECT_EQ(error,
              u"In the table \"toolset_dlgparms\", the cell of row 2 in column \"Value\" is not a "
              u"whole number: \"lots\"");
    EXPECT_EQ(value, 123);

    EXPECT_FALSE(table.GetText(0, u"Colour", text, &error));
    EXPECT_EQ(error, u"The table \"toolset_dlgparms\" has no column \"Colour\"");
    EXPECT_FALSE(table.GetText(0, 3, text, &error));
    EXPECT_FALSE(table.GetText(3, 0, text, &error));
    EXPECT_EQ(error, u"The table \"toolset_dlgparms\" has 3 rows; there is no row at index 3");
    std::size_t row;
    EXPECT_FALSE(table.FindRow(4, row, &error));
    EXPECT_EQ(error, u"The table \"toolset_dlgparms\" has no row with id 4");
    EXPECT_EQ(text, u"untouched");
}

TEST(GameTable, MalformedFilesAreRefusedWithTheLine) {
    struct Case {
        const char* csv;
        const char16_t* error;
    };
    const Case cases[] = {
        {"", u"the table is empty: it needs a header row naming its columns"},
        {"\n\n", u"the table is empty"},
        {"ID,Name\n1,\"open\n2,x\n", u"line 2: a quoted cell is not closed"},
        {"ID,Name\n1,Gold\n2\n", u"line 3 has 1 cells but the header names 2 columns"},
        {"ID,Name\n1,Gold,extra\n", u"line 2 has 3 cells but the header names 2 columns"},
        {"ID,Name\none,Gold\n", u"line 2: the row id \"one\" is not a whole number"},
        {"ID,Name\n,Gold\n", u"line 2: the row id \"\" is not a whole number"},
        {"ID,Name\n4,Gold\n5,Lead\n4,Tin\n",
         u"line 4: the row id 4 is used twice (first on line 2)"},
        {"ID,Name,name\n", u"line 1: the column \"name\" is named twice"},
        {"ID,,Value\n", u"line 1: column 2 of the header has no name"},
        {"ID, \xEF\xBB\xBFName\n", u"line 1: the name of column 2 (\"\\uFEFFName\")"},
        {"ID,Name\n1,Go\xFFld\n", u"line 2: the text is not valid UTF-8"},
        {"ID,Name\n1,Go\"ld\n", u"line 2: a quote inside a cell that does not start with one"},
        {"ID,Name\n1,\"Gold\" bar\n", u"line 2: text follows the closing quote of a cell"},
    };
    for (const auto& c : cases) {
        ts::GameTable table;
        std::u16string error;
        EXPECT_FALSE(ts::GameTable::FromCsv(u"metals", c.csv, table, &error)) << c.csv;
        EXPECT_EQ(error.substr(0, std::u16string_view(c.error).size()), c.error)
            << c.csv << "\n  gave: " << U8(error);
    }
    // A wide header is checked by name, not position: the twin of the first column, in another
    // case, is found at the end of 20,000 columns.
    std::string wide = "ID";
    for (int c = 1; c < 20000; ++c) wide += ",C" + std::to_string(c);
    ts::GameTable table;
    std::u16string error;
    ASSERT_TRUE(ts::GameTable::FromCsv(u"wide", wide + "\n1" + std::string(19999, ',') + "\n",
                                       table, &error))
        << U8(error);
    EXPECT_EQ(table.ColumnCount(), 20000u);
    EXPECT_FALSE(ts::GameTable::FromCsv(u"wide", wide + ",c1\n", table, &error));
    EXPECT_EQ(error, u"line 1: the column \"c1\" is named twice");
    EXPECT_FALSE(ts::GameTable::FromCsv(u"bad name", "ID\n", table, &error));
    EXPECT_NE(error.find(u"is not a valid table name"), std::u16string::npos);
}

}  // namespace
