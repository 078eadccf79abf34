#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "model/conversation_edits.h"
#include "model/panes/line_pane.h"

class CConversationEditorWnd;

namespace dlg {

struct ConversationNode;

// A pane of one text box bound to one string field of the selection (a comment, a texture
// name). Each kind says which field of which selection it edits, under which title and undo
// label; the rules are shared: the text is written only when it differs from the stored one and
// only while the window's pane-apply switch is on, filling writes nothing, and a selection the
// kind does not edit empties and disables the pane.
class TextFieldPane : public LinePane, private ConversationEditObserver {
public:
    static constexpr int kTextControl = 1;

    // What the pane edits for one selection.
    struct Binding {
        std::u16string_view field;
        std::u16string_view label;
        std::u16string_view title;
        int changeCode = kChangeNone;
    };

    explicit TextFieldPane(CConversationEditorWnd& window);
    ~TextFieldPane() override;
    TextFieldPane(const TextFieldPane&) = delete;
    TextFieldPane& operator=(const TextFieldPane&) = delete;

    // Applies the text to the selection so far (without messages), then shows the new one's.
    void SetSelection(bool root, TreeItem item) override;
    bool Apply(int control, bool messages) override;

    // A field is shown, and may be edited (not in a read-only editor).
    bool HasField() const { return binding_.has_value(); }
    bool Enabled() const;
    // The title over the box; empty when nothing is shown.
    std::u16string_view Title() const { return binding_ ? binding_->title : std::u16string_view(); }
    // What the box shows; the Qt half writes the user's input here before applying.
    std::u16string& Text() { return text_; }
    const std::u16string& Text() const { return text_; }

    // Counts the fills and tells the Qt half to show the text again.
    std::uint64_t Generation() const { return generation_; }
    void SetOnShow(std::function<void()> onShow) { onShow_ = std::move(onShow); }
    // Shows the stored text again.
    void Fill();

protected:
    // The field this kind edits for the root (`node` null) or a line; nothing when the
    // selection has no such field.
    virtual std::optional<Binding> Bind(bool root, const ConversationNode* node) const = 0;
    CConversationEditorWnd& Window() const { return window_; }
    // Tells the Qt half to show the text again.
    void Announce();

private:
    // Undo, redo and find and replace change the field elsewhere: show it at once, so that a
    // stale text is never written back.
    void LineRefreshed(TreeItem item, int changeCode) override;
    bool Current() const;

    CConversationEditorWnd& window_;
    TreeItem item_ = kNoItem;
    std::optional<Binding> binding_;
    std::u16string text_;
    bool filling_ = false;
    bool writing_ = false;
    bool selectOnWrite_ = true;
    std::uint64_t generation_ = 0;
    std::function<void()> onShow_;
};

}  // namespace dlg
