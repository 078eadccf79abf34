#pragma once

// A conversation editor object opened on a resource of the registered resource manager, as the
// host opens one: its window made, attached under the resource's file name and loaded.
#include <gtest/gtest.h>

#include <string>

#include "core/window_interface.h"
#include "model/conversation_editor_wnd.h"
#include "ts/comobject.h"
#include "ts/resourcemanager.h"
#include "ts/text.h"

namespace ts::test {

using ConversationEditorObject = CTsComObject<CTsWindowInterface<CConversationEditorWnd>>;

inline CTsComPtr<ConversationEditorObject> OpenConversationEditor(ITsResourceManager& manager,
                                                                  std::u16string_view name,
                                                                  std::uint32_t state = 0,
                                                                  TsWindowHandle parent = nullptr) {
    CTsComPtr<ITsResource> resource;
    EXPECT_EQ(manager.OpenResource(name, u"dlg", resource.Put()), S_OK) << ts::Utf16ToUtf8(name);
    auto editor = ConversationEditorObject::Create();
    EXPECT_EQ(editor->CreateUIWindow(parent), S_OK);
    EXPECT_EQ(editor->Attach(1, (std::u16string(name) + u".dlg").c_str(), state), S_OK);
    EXPECT_EQ(editor->Load(resource.Get()), S_OK);
    return editor;
}

}  // namespace ts::test
