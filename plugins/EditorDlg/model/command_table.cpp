#include "model/command_table.h"

#include "ts/comptr.h"
#include "ts/report.h"

namespace dlg {

namespace {
constexpr const char* kSource = "toolsmfcimpls";
}

void CommandTable::Clear() {
    records_.clear();
    byId_.clear();
    byAtom_.clear();
}

CommandRecord* CommandTable::AddCommand(std::uint32_t id, TsAtom atom, std::u16string_view name,
                                        std::u16string_view category, bool isSubmenu) {
    CommandRecord* record = nullptr;
    if (id != kNoCommandId)
        if (auto it = byId_.find(id); it != byId_.end()) record = it->second;
    bool created = false;
    if (!record) {
        if (auto it = byAtom_.find(atom); it != byAtom_.end()) record = it->second;
    }
    if (!record) {
        auto owned = std::make_unique<CommandRecord>();
        owned->atom = atom;
        owned->name = name;
        owned->category = category;
        owned->isSubmenu = isSubmenu;
        record = owned.get();
        records_.push_back(std::move(owned));
        byAtom_[atom] = record;
        created = true;
    }
    if ((created || record->id == kNoCommandId) && id != kNoCommandId) {
        record->id = id;
        byId_[id] = record;
    }

    if (id != kNoCommandId && record->id != id)
        Report(ReportLevel::Assert, kSource, __LINE__,
               u"The same command has been assigned to multiple IDs");
    if (record->isSubmenu != isSubmenu)
        Report(ReportLevel::Assert, kSource, __LINE__,
               u"The same command is a submenu and normal command");
    bool atomClash = record->atom != atom;
    if (!atomClash && id != kNoCommandId) {
        auto it = byAtom_.find(atom);
        atomClash = it != byAtom_.end() && it->second != record;
    }
    if (atomClash)
        Report(ReportLevel::Assert, kSource, __LINE__,
               u"The same ID has been assigned to the multiple commands");
    return record;
}

std::vector<CommandRecord*> CommandTable::AddEntries(const std::vector<MenuEntry>& entries) {
    std::vector<CommandRecord*> out;
    for (const auto& entry : entries) {
        switch (entry.kind) {
            case MenuEntry::Kind::Separator:
                out.push_back(nullptr);
                break;
            case MenuEntry::Kind::Popup: {
                CommandRecord* popup =
                    AddCommand(kNoCommandId, TsAddAtom(entry.text), entry.text, u"", true);
                popup->children = AddEntries(entry.entries);
                out.push_back(popup);
                break;
            }
            case MenuEntry::Kind::Command:
                out.push_back(
                    AddCommand(kNoCommandId, TsAddAtom(entry.text), entry.text, u"", false));
                break;
        }
    }
    return out;
}

std::vector<CommandRecord*> CommandTable::BuildMenus(const std::vector<MenuEntry>& menus) {
    return AddEntries(menus);
}

const CommandRecord* CommandTable::FindById(std::uint32_t id) const {
    auto it = byId_.find(id);
    return it == byId_.end() ? nullptr : it->second;
}

const CommandRecord* CommandTable::FindByAtom(TsAtom atom) const {
    auto it = byAtom_.find(atom);
    return it == byAtom_.end() ? nullptr : it->second;
}

const std::vector<EditorCommand>& ConversationEditorCommands() {
    static const std::vector<EditorCommand> commands = {
        {40009, u"Edit.DialogEditor.Insert.Line"},
        {123, u"Edit.DialogEditor.Insert.Line.After"},
        {40010, u"Edit.DialogEditor.Edit.Paste.AsLink"},
        {40022, u"Edit.Collapse"},
        {40044, u"Edit.CollapseBranch"},
        {40017, u"Edit.CollapseAll"},
        {40016, u"Edit.Expand"},
        {40043, u"Edit.ExpandBranch"},
        {40015, u"Edit.ExpandAll"},
        {40014, u"View.DialogEditor.SimpleView"},
        {40077, u"Edit.DialogEditor.Generate.Poses"},
        {1176, u"Edit.DialogEditor.Gestures.Generate.Line"},
        {1177, u"Edit.DialogEditor.Gestures.Generate.Children"},
        {1182, u"Edit.DialogEditor.Gestures.Clear.Line"},
        {1183, u"Edit.DialogEditor.Gestures.Clear.Children"},
        {40019, u"View.DialogEditor.Highlight.Actions"},
        {40029, u"View.DialogEditor.Highlight.Conditions"},
        {40047, u"View.DialogEditor.Highlight.OnceLines"},
        {40018, u"View.DialogEditor.Highlight.Scripting.Comments"},
        {40031, u"View.DialogEditor.Highlight.VO.Comments"},
        {40032, u"View.DialogEditor.Highlight.Editor.Comments"},
        {40070, u"View.DialogEditor.Highlight.Skills.Icons"},
        {40071, u"View.DialogEditor.Highlight.Fast.Path"},
        {40072, u"View.DialogEditor.Highlight.Cutscenes"},
        {40030, u"View.DialogEditor.Highlight.Plot"},
        {40078, u"View.DialogEditor.Highlight.AniLocked"},
        {40045, u"View.DialogEditor.Highlight.GoToNext"},
        {40046, u"View.DialogEditor.Highlight.GoToPrevious"},
        {40035, u"View.DialogEditor.Highlight.ClearAll"},
        {124, u"Edit.DialogEditor.JumpToTarget"},
        {130, u"View.DialogEditor.OpenCutscene"},
        {131, u"View.DialogEditor.OpenStage"},
        {40048, u"Edit.DialogEditor.FindLinks"},
        {40040, u"Tools.DialogEditor.Spelling.CurrentNode"},
        {40041, u"Tools.DialogEditor.Spelling.CurrentNodeAndChildren"},
        {40042, u"Tools.DialogEditor.Spelling.All"},
        {40051, u"Tools.DialogEditor.ConvertToCutscene"},
        {40052, u"Tools.DialogEditor.AssociateCutscene"},
        {40053, u"Tools.DialogEditor.RemoveCutscene"},
        {120, u"Tools.DialogEditor.Generate.VO.Local"},
        {114, u"Tools.DialogEditor.Generate.VO.Network"},
        {126, u"Tools.DialogEditor.Generate.FaceFX.Local"},
        {127, u"Tools.DialogEditor.Generate.FaceFX.Network"},
        {40068, u"Tools.DialogEditor.Preview.Line"},
        {40065, u"Tools.DialogEditor.Preview.Line.NoVOFaceFX"},
        {40062, u"Tools.DialogEditor.Preview.Line.ReRobozelt"},
        {40069, u"Edit.DialogEditor.Preview.Line"},
        {40073, u"Edit.DialogEditor.Process.Camera.Line"},
        {40074, u"Edit.DialogEditor.Process.Camera.Children"},
        {40075, u"Edit.DialogEditor.View.FaceFX"},
        {40076, u"Tools.DialogEditor.View.FaceFX"},
        {40080, u"Edit.DialogEditor.Count.NPC.Lines.In.Branch"},
        {40023, u"Edit.Cut"},
        {40011, u"Edit.Copy"},
        {40012, u"Edit.Paste"},
        {40013, u"Edit.Delete"},
    };
    return commands;
}

std::vector<MenuEntry> ReadMenuDescription(std::u16string_view section) {
    std::vector<MenuEntry> entries;
    CTsComPtr<ITsConfiguration> configuration;
    if (SUCCEEDED(TsGetConfiguration(configuration.Put())))
        configuration->GetMenus(std::u16string(section) + u"Menus", &entries);
    return entries;
}

std::vector<CommandRecord*> BuildConversationEditorCommands(CommandTable& table,
                                                            const std::vector<MenuEntry>& menus) {
    table.Clear();
    for (const auto& command : ConversationEditorCommands())
        table.AddCommand(command.id, command.name);
    return table.BuildMenus(menus);
}

}  // namespace dlg
