#include "cli.h"
#include "ts/format.h"
#include "ts/modulebuilder.h"

namespace cli {

int Check(const Arguments& args) {
    if (!Expect(args, "check", 1, 1)) return kUsage;
    auto store = OpenModule(args.words[0], true);
    if (!store) return kFailed;
    ts::ModuleCheck check = ts::CheckModule(*store);
    for (const auto& p : check.storeProblems) Print(u"damaged: " + p);
    std::size_t damaged = 0;
    for (const auto& r : check.resources) {
        if (r.sound) {
            Print(ts::Format(u"ok       %ls.%ls (%u nodes)", r.info.name, r.info.type, r.nodes));
        } else {
            ++damaged;
            Print(ts::Format(u"damaged  %ls.%ls: %ls", r.info.name, r.info.type, r.problem));
        }
    }
    for (const auto& p : check.tableProblems) Print(u"damaged: " + p);
    if (check.Sound()) {
        Print(ts::Format(u"The module is sound: %lu resources and %u tables read back whole.",
                         check.resources.size(), check.tables));
        return kOk;
    }
    return Fail(
        ts::Format(u"the module is damaged: %lu of %lu resources cannot be read%ls", damaged,
                   check.resources.size(),
                   check.storeProblems.empty() ? u"" : u", and the module file itself has damage"));
}

}  // namespace cli
