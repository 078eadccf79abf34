// The plugin definition the host reads from the library file before loading it: the two
// editor classes, their host flags and the names the host finds them by.
#include "ts/plugin.h"

extern "C" {

// clang-format off
TS_PLUGIN_DEFINITION const char kEditorDlgPluginDefinition[] =
    "<pluginDefinitions>\r\n"
    "    <plugins>\r\n"
    "        <plugin clsid=\"{00AFAF9F-EBA6-4DD2-BE63-1B6C33076D02}\" description=\"Conversation Editor\" "
    "threadingModel=\"Apartment\">\r\n"
    "            <tsPlugin>\r\n"
    "                <pattern text=\"ConversationEditor\"/>\r\n"
    "            </tsPlugin>\r\n"
    "        </plugin>\r\n"
    "        <plugin clsid=\"{6E3D0619-3A01-4d28-A05A-62CED6F22A73}\" description=\"Conversation Line Preview\" "
    "threadingModel=\"Apartment\">\r\n"
    "            <tsPlugin flags=\"ToolWindow\">\r\n"
    "                <pattern text=\"ConversationLinePreview\"/>\r\n"
    "            </tsPlugin>\r\n"
    "        </plugin>\r\n"
    "    </plugins>\r\n"
    "</pluginDefinitions>\r\n";
// clang-format on
}
