// Any text opened as a conversation in the conversation editor, the way a writer's JSON file
// reaches it: read as a resource, handed to a new editor object, loaded. Whatever the editor
// opens it must write back; whatever it refuses it refuses in bounded time and memory (the
// per-input time limit of the run makes a blow-up a finding).
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "agents/resourceschemas.h"
#include "core/window_interface.h"
#include "model/conversation_editor_wnd.h"
#include "support/fake_resource.h"
#include "ts/resourcejson.h"
#include "ts/text.h"

namespace {

using EditorObject = CTsComObject<CTsWindowInterface<CConversationEditorWnd>>;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view text(reinterpret_cast<const char*>(data), size);
    ts::ResourceDocument doc;
    if (!ts::ReadResourceJson(text, doc, nullptr, ts::ResourceSchemas()) ||
        !ts::EqualsIgnoreAsciiCase(doc.type, u"dlg"))
        return 0;
    auto resource = CTsComObject<ts::test::FakeResource>::Create(u"fuzz.dlg");
    resource->SetRootProperty(doc.root.Get());

    auto editor = EditorObject::Create();
    if (FAILED(editor->CreateUIWindow(nullptr))) std::abort();
    editor->Attach(1, u"fuzz.dlg", 0);
    if (editor->Load(resource.Get()) == S_OK) {
        auto written = CTsComObject<ts::test::FakeResource>::Create(u"fuzz.dlg");
        if (FAILED(editor->GetContent(written.Get()))) std::abort();
    }
    editor->CloseUIWindow();
    return 0;
}
