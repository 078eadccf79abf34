// A module that can only be read (a read-only folder or mount) opens in the desktop toolset, and
// every editor on it is read-only.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "editor_tab.h"
#include "main_window.h"
#include "support/demo_module.h"
#include "support/read_only_place.h"
#include "support/scripted_ui.h"
#include "support/test_folders.h"

namespace {

TEST(ReadOnlyModule, OpensWithEveryEditorReadOnly) {
    std::string folder = ts::test::MakeTempFolder("ts-toolset-ro");
    std::string path = folder + "/demo.tsmod";
    ASSERT_TRUE(ts::test::BuildDemoModule(path));
    ts::test::ScriptedUi ui;
    {
        ts::test::ReadOnlyPlaceAsDefault readOnly;
        toolset::MainWindow window(false);
        ASSERT_TRUE(window.OpenModule(QString::fromStdString(path)));
        for (const char* name : {"orla_welcome.dlg", "brannoc_caravan.dlg"}) {
            ASSERT_TRUE(window.OpenResource(QString::fromLatin1(name))) << name;
            EXPECT_EQ(window.ActiveEditor()->Caption(),
                      std::u16string(name, name + std::strlen(name)) + u" [Read Only]");
        }
        EXPECT_EQ(window.windowTitle(),
                  QStringLiteral("brannoc_caravan.dlg [Read Only] - Mistreach Toolset"));
        EXPECT_TRUE(ui.shown().empty()) << "no error on the way";
    }
    // Where the module can be written, its editors are not read-only.
    toolset::MainWindow window(false);
    ASSERT_TRUE(window.OpenModule(QString::fromStdString(path)));
    ASSERT_TRUE(window.OpenResource(QStringLiteral("orla_welcome.dlg")));
    EXPECT_EQ(window.ActiveEditor()->Caption(), u"orla_welcome.dlg");
    window.close();
    std::filesystem::remove_all(folder);
}

}  // namespace
