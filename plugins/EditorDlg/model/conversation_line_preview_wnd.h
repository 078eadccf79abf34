#pragma once

#include <string_view>

#include "core/command_source_support.h"
#include "core/event_sink.h"
#include "core/frame_wnd.h"
#include "core/window_interface.h"
#include "ts/guid.h"
#include "ts/uiwindow.h"

// The line preview's tool window. It stages and plays one line; the stage, renderer and
// timeline come with the preview itself, and with them its handling of "OptionsChange" and
// "ClosingEnvironment". For now it is a frame with its command-source identity and its event
// sink.
class CConversationLinePreviewWnd : public CTsFrameWnd,
                                    public CTsUICommandSourceSupport<CConversationLinePreviewWnd> {
public:
    static constexpr CLSID kClassId = ts::Guid("{6E3D0619-3A01-4d28-A05A-62CED6F22A73}");
    static constexpr std::u16string_view kCommandSourceName = u"DLGPreview";

    CConversationLinePreviewWnd(CTsWindowInterface<CConversationLinePreviewWnd>& owner,
                                TsWindowHandle parent);

    TsWindowHandle Parent() const { return parent_; }
    ITsEventSink* GetEventSink() const { return events_.GetSink(); }

private:
    TsWindowHandle parent_;
    CTsEventSinkConnection<CTsWindowInterface<CConversationLinePreviewWnd>> events_;
};
