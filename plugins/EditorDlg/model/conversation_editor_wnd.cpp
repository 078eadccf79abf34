#include "model/conversation_editor_wnd.h"

#include "core/com_error.h"
#include "core/string_enum.h"
#include "ts/events.h"
#include "ts/format.h"
#include "ts/telemetry.h"

namespace {

constexpr std::uint32_t kTelemetryCategory = TsFourCC("EUTS");
constexpr std::uint32_t kTelemetryWordCount = TsFourCC("CCWC");

}  // namespace

CConversationEditorWnd::CConversationEditorWnd(CTsWindowInterface<CConversationEditorWnd>& owner,
                                               TsWindowHandle parent)
    : CTsEditorLayoutSupport(false),
      CTsUICommandSourceSupport(std::u16string(kCommandSourceName), std::u16string(kCommandBars)),
      parent_(parent),
      events_(&owner) {
    RefreshStateDisplay();
}

HRESULT CConversationEditorWnd::EnumerateResourceTypes(std::int32_t which, ITsStringEnum** types) {
    std::vector<std::u16string> names;
    if (which == kTsEditableResourceTypes) names.emplace_back(kResourceType);
    return CTsStringEnum::Create(std::move(names), types);
}

HRESULT CConversationEditorWnd::LoadResource(IUnknown*) {
    return E_NOTIMPL;
}

HRESULT CConversationEditorWnd::GetContent(IUnknown*) {
    return E_NOTIMPL;
}

HRESULT CConversationEditorWnd::SaveResource(std::uint32_t) {
    return E_NOTIMPL;
}

HRESULT CConversationEditorWnd::ReportWordCount() {
    return E_NOTIMPL;
}

void CConversationEditorWnd::SendWordCount(std::int32_t count) {
    if (FAILED(TsSendTelemetry(kTelemetryCategory, kTelemetryWordCount, ts::Format(u"%d", count))))
        throw ts::ComError(E_FAIL);
}

void CConversationEditorWnd::RefreshStateDisplay() {
    std::u16string caption = DisplayName();
    if (IsModified()) caption += u"*";
    if (IsReadOnly()) caption += u" [Read Only]";
    SetCaption(std::move(caption));
}

void CConversationEditorWnd::OnEvent(TsAtom event, std::uint32_t, std::uint32_t, ITsResource*) {
    // The tree's labels and reference caches follow "Refresh" once the window holds the tree;
    // the caption is refreshed already.
    if (event == ts::events::Refresh() || event == ts::events::RefreshNoArt())
        RefreshStateDisplay();
}
