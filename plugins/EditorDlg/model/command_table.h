#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ts/atoms.h"
#include "ts/configuration.h"

namespace dlg {

inline constexpr std::uint32_t kNoCommandId = 0xFFFFFFFFu;

// One command name, its numeric id, and for a submenu its entries in menu order (a null entry
// is a separator).
struct CommandRecord {
    TsAtom atom = 0;
    std::u16string name;
    std::u16string category;
    std::uint32_t id = kNoCommandId;
    bool isSubmenu = false;
    std::vector<CommandRecord*> children;
};

// An entry of a menu description: a "Popup" with its caption and entries, a "Separator", or a
// command name, as the host's configuration holds it.
using MenuEntry = ts::MenuEntry;

// The editor's commands: each name tied to its id and, for menus, to its place in a menu tree.
// Indexed by id and by atom.
class CommandTable {
public:
    // Returns the record of the name, creating it when needed. Inconsistent registrations are
    // reported and registration goes on.
    CommandRecord* AddCommand(std::uint32_t id, TsAtom atom, std::u16string_view name,
                              std::u16string_view category, bool isSubmenu);
    CommandRecord* AddCommand(std::uint32_t id, std::u16string_view name) {
        return AddCommand(id, TsAddAtom(name), name, u"", false);
    }
    // Adds the records of a menu description; returns its top-level entries.
    std::vector<CommandRecord*> BuildMenus(const std::vector<MenuEntry>& menus);
    void Clear();

    const CommandRecord* FindById(std::uint32_t id) const;
    const CommandRecord* FindByAtom(TsAtom atom) const;
    const CommandRecord* FindByName(std::u16string_view name) const {
        return FindByAtom(TsFindAtom(name));
    }
    std::size_t Size() const { return records_.size(); }
    // Records in registration order.
    const std::vector<std::unique_ptr<CommandRecord>>& Records() const { return records_; }

private:
    std::vector<CommandRecord*> AddEntries(const std::vector<MenuEntry>& entries);

    std::vector<std::unique_ptr<CommandRecord>> records_;
    std::map<std::uint32_t, CommandRecord*> byId_;
    std::map<TsAtom, CommandRecord*> byAtom_;
};

// The conversation editor's commands and their ids, in registration order.
struct EditorCommand {
    std::uint32_t id;
    const char16_t* name;
};
const std::vector<EditorCommand>& ConversationEditorCommands();

// The menu description of a section ("DialogEditor"), read from the host's configuration under
// the section's name followed by "Menus"; empty when the host has none.
std::vector<MenuEntry> ReadMenuDescription(std::u16string_view section);

// The section whose menus the conversation editor builds.
inline constexpr std::u16string_view kConversationEditorMenus = u"DialogEditor";

// Clears the table, adds every editor command, then the menus of the description.
std::vector<CommandRecord*> BuildConversationEditorCommands(CommandTable& table,
                                                            const std::vector<MenuEntry>& menus);

}  // namespace dlg
