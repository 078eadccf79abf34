#include <map>
#include <set>

#include "agents/agentconversation.h"
#include "agents/resourceschemas.h"
#include "cli.h"
#include "ts/format.h"
#include "ts/modulebuilder.h"
#include "ts/resourcecodec.h"

namespace cli {

namespace {

struct ConversationFigures {
    std::uint32_t starts = 0, npcLines = 0, playerLines = 0, links = 0, comments = 0;
    std::uint32_t ambient = 0;  // lines that start an ambient branch (their own flag)
    std::uint32_t sentForVoiceOver = 0;
};

void CountLines(const CAgentConversation& conversation, TsAtom list, bool npc,
                ts::ResourceStore& store, ConversationFigures& f) {
    std::uint32_t count = conversation.GetPropertyListEntryCount(list);
    (npc ? f.npcLines : f.playerLines) = count;
    for (std::uint32_t i = 0; i < count; ++i) {
        CTsComPtr<ITsProperty> node;
        if (!conversation.GetPropertyFromList(list, i, node)) continue;
        CAgentConversationLine line(node.Get());
        std::u16string text, comment;
        bool ambient = false;
        std::int32_t id = -1;
        line.GetText(text);
        line.GetComment(comment);
        line.GetAmbient(ambient);
        line.GetStringID(id);
        if (npc && text.empty() && !comment.empty()) ++f.comments;
        if (ambient) ++f.ambient;
        ts::VORecordingStatus vo;
        if (id >= 0 && store.GetVORecordingStatus(id, vo) && vo.sentForRecordingOn != 0)
            ++f.sentForVoiceOver;
        for (std::uint32_t t = 0; t < line.TransitionListCount(); ++t) {
            CTsComPtr<ITsProperty> item;
            bool link = false;
            if (line.GetTransitionListItem(t, item) &&
                CAgentConversationTransition(item.Get()).GetIsLink(link) && link)
                ++f.links;
        }
    }
}

std::u16string Describe(ts::ResourceStore& store, const ts::ResourceInfo& info) {
    if (info.type != u"dlg") return {};
    std::vector<std::uint8_t> bytes;
    CTsComPtr<ITsProperty> root;
    if (!store.ReadResource(info.name, info.type, bytes) || !ts::DecodeResource(bytes, root))
        return u"  (cannot be read)";
    CAgentConversation conversation(root.Get());
    ConversationFigures f;
    f.starts = conversation.StartListCount();
    CountLines(conversation, TsAddAtom(u"NPCLineList"), true, store, f);
    CountLines(conversation, TsAddAtom(u"PlayerLineList"), false, store, f);
    auto count = [](std::uint32_t n, const char16_t* one, const char16_t* many) {
        return ts::Format(u"%u %ls", n, n == 1 ? one : many);
    };
    return ts::Format(u"  %ls, %u NPC and %u player lines, %ls, %ls, %ls, %u sent for voice-over",
                      count(f.starts, u"start", u"starts"), f.npcLines, f.playerLines,
                      count(f.links, u"link", u"links"), count(f.comments, u"comment", u"comments"),
                      count(f.ambient, u"ambient branch", u"ambient branches"), f.sentForVoiceOver);
}

}  // namespace

int Report(const Arguments& args) {
    if (!Expect(args, "report", 1, 1)) return kUsage;
    auto store = OpenModule(args.words[0], true);
    if (!store) return kFailed;
    ts::ModuleInfo module;
    if (auto r = store->GetModuleInfo(module); !r) return Fail(r.message);
    Print(ts::Format(u"Module \"%ls\" (id %d): %s", module.name, module.moduleId, args.words[0]));
    if (!module.description.empty()) Print(u"  " + module.description);

    std::vector<ts::ResourceInfo> list;
    if (auto r = store->ListResources({}, list); !r) return Fail(r.message);
    std::map<std::u16string, std::vector<const ts::ResourceInfo*>> byType;
    for (const auto& info : list) byType[info.type].push_back(&info);
    Print(ts::Format(u"\nResources: %lu", list.size()));
    for (const auto& [type, resources] : byType) {
        std::u16string_view description = ts::ResourceTypeDescription(type);
        Print(ts::Format(u"  %ls (%ls): %lu", type,
                         description.empty() ? u"unknown type" : description, resources.size()));
        for (const auto* info : resources) {
            std::u16string state;
            if (!info->checkedOutBy.empty())
                state += ts::Format(u", checked out by %ls", info->checkedOutBy);
            if (info->locked) state += u", locked";
            Print(ts::Format(u"    %ls  (version %d, %ld bytes%ls)%ls", info->name, info->version,
                             static_cast<long>(info->size), state, Describe(*store, *info)));
        }
    }

    std::vector<std::u16string> tables;
    if (auto r = store->ListTables(tables); !r) return Fail(r.message);
    Print(ts::Format(u"\nTables: %lu", tables.size()));
    for (const auto& name : tables) {
        ts::GameTable table;
        if (auto r = store->ReadTable(name, table); !r)
            Print(u"  " + name + u": " + r.message);
        else
            Print(ts::Format(u"  %ls: %lu rows, %lu columns", name, table.RowCount(),
                             table.ColumnCount()));
    }

    std::vector<ts::LocalizedString> strings;
    std::int64_t vo = 0, localization = 0;
    if (auto r = store->ListStrings(strings); !r) return Fail(r.message);
    if (auto r = store->CountStatusRecords(vo, localization); !r) return Fail(r.message);
    std::set<std::int32_t> ids, languages;
    for (const auto& s : strings) {
        ids.insert(s.stringId);
        languages.insert(s.language);
    }
    Print(
        ts::Format(u"\nStrings: %lu texts of %lu string ids in %lu languages; %ld voice-over and "
                   u"%ld localization "
                   u"status records",
                   strings.size(), ids.size(), languages.size(), static_cast<long>(vo),
                   static_cast<long>(localization)));

    ts::ModuleCheck check = ts::CheckModule(*store);
    if (check.Sound()) {
        Print(u"\nCheck: every resource and table reads back whole.");
        return kOk;
    }
    Print(u"\nCheck: the module is damaged (toolset-cli check tells where).");
    return Fail(u"the module is damaged; toolset-cli check tells where");
}

}  // namespace cli
