#include "cli.h"
#include "editor_check.h"
#include "ts/format.h"
#include "ts/modulebuilder.h"
#include "ts/text.h"

namespace cli {

int Check(const Arguments& args) {
    if (!Expect(args, "check", 1, 1)) return kUsage;
    std::shared_ptr<ts::ResourceStore> store = OpenModule(args.words[0], true);
    if (!store) return kFailed;
    ts::ModuleCheck check = ts::CheckModule(*store);

    // What decodes must also open: every resource that has an editor is loaded in it.
    EditorCheck editors;
    std::u16string editorsMissing;
    bool tryEditors = editors.Start(store, editorsMissing);
    std::size_t damaged = 0, refused = 0;
    for (const auto& p : check.storeProblems) Print(u"damaged: " + p);
    for (const auto& r : check.resources) {
        std::u16string problem;
        if (!r.sound) {
            ++damaged;
            Print(ts::Format(u"damaged  %ls.%ls: %ls", ts::MessageText(r.info.name),
                             ts::MessageText(r.info.type), r.problem));
        } else if (tryEditors && !editors.Open(ts::MessageText(r.info.name),
                                               ts::MessageText(r.info.type), problem)) {
            ++refused;
            Print(ts::Format(u"refused  %ls.%ls: its editor cannot open it: %ls", r.info.name,
                             r.info.type, problem));
        } else {
            Print(ts::Format(u"ok       %ls.%ls (%u nodes)", ts::MessageText(r.info.name),
                             ts::MessageText(r.info.type), r.nodes));
        }
    }
    for (const auto& p : check.tableProblems) Print(u"damaged: " + p);
    if (!tryEditors) return Fail(editorsMissing);
    if (check.Sound() && refused == 0) {
        Print(ts::Format(u"The module is sound: %lu %ls and %u %ls read back whole.",
                         check.resources.size(),
                         check.resources.size() == 1 ? u"resource" : u"resources", check.tables,
                         check.tables == 1 ? u"table" : u"tables"));
        return kOk;
    }
    std::u16string what;
    if (damaged)
        what = ts::Format(u"%lu of %lu resources cannot be read", damaged, check.resources.size());
    if (refused)
        what += ts::Format(u"%ls%lu of %lu resources cannot be opened in their editor",
                           what.empty() ? u"" : u", ", refused, check.resources.size());
    if (!check.tableProblems.empty())
        what += ts::Format(u"%ls%lu %ls cannot be read", what.empty() ? u"" : u", ",
                           check.tableProblems.size(),
                           check.tableProblems.size() == 1 ? u"table" : u"tables");
    if (!check.storeProblems.empty())
        what += ts::Format(u"%lsthe module file itself has damage", what.empty() ? u"" : u", and ");
    return Fail(ts::Format(u"the module %ls: %ls",
                           damaged || !check.storeProblems.empty() || !check.tableProblems.empty()
                               ? u"is damaged"
                               : u"has problems",
                           what));
}

}  // namespace cli
