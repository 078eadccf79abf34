#include "ts/format.h"
#include "ts/modulebuilder.h"
#include "ts/resourcecodec.h"
#include "ts/text.h"

namespace ts {

namespace {

std::uint32_t CountNodes(ITsProperty* node) {
    std::uint32_t n = 1;
    ITsProperty* const* children = nullptr;
    std::uint32_t count = 0;
    if (node->GetType() == kTsTypeList && SUCCEEDED(node->GetChildArray(&children, &count)))
        for (std::uint32_t i = 0; i < count; ++i) n += CountNodes(children[i]);
    return n;
}

}  // namespace

bool ModuleCheck::Sound() const {
    if (!storeProblems.empty() || !tableProblems.empty()) return false;
    for (const auto& r : resources)
        if (!r.sound) return false;
    return true;
}

ModuleCheck CheckModule(ResourceStore& store) {
    ModuleCheck check;
    std::vector<std::u16string> problems;
    if (auto r = store.CheckIntegrity(problems); !r) check.storeProblems.push_back(r.message);
    for (auto& p : problems) check.storeProblems.push_back(std::move(p));

    std::vector<ResourceInfo> list;
    if (auto r = store.ListResources({}, list); !r) check.storeProblems.push_back(r.message);
    for (const ResourceInfo& info : list) {
        ResourceCheck& c = check.resources.emplace_back();
        c.info = info;
        // Rows the store itself would never write (it checks names, types and versions on the
        // way in) are damage too: no editor or command could name or save them.
        if (!IsValidResourceName(info.name)) {
            c.problem = Format(u"\"%ls\" is not a valid resource name", MessageText(info.name));
            continue;
        }
        if (!IsValidResourceType(info.type)) {
            c.problem = Format(u"\"%ls\" is not a valid resource type", MessageText(info.type));
            continue;
        }
        if (info.version < 1) {
            c.problem =
                Format(u"its version %d is not one a save makes (they start at 1)", info.version);
            continue;
        }
        std::vector<std::uint8_t> bytes;
        if (auto r = store.ReadResource(info.name, info.type, bytes); !r) {
            c.problem = r.message;
            continue;
        }
        CTsComPtr<ITsProperty> root;
        if (!DecodeResource(bytes, root, &c.problem)) continue;
        c.nodes = CountNodes(root.Get());
        c.sound = true;
    }

    std::vector<std::u16string> tables;
    if (auto r = store.ListTables(tables); !r) check.tableProblems.push_back(r.message);
    for (const auto& name : tables) {
        GameTable table;
        if (auto r = store.ReadTable(name, table); !r)
            check.tableProblems.push_back(r.message);
        else
            ++check.tables;
    }
    return check;
}

}  // namespace ts
