#include "ts/atoms.h"

#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "ts/text.h"

namespace {

struct AtomTable {
    std::mutex mutex;
    std::unordered_map<std::u16string, TsAtom> byFoldedName;
    std::vector<std::u16string> names;  // index = atom - kTsFirstAtom
};

AtomTable& Table() {
    static auto* table = new AtomTable;  // lives for the whole process, like the system's table
    return *table;
}

constexpr std::size_t kCapacity = 0x10000 - kTsFirstAtom;

}  // namespace

TsAtom TsAddAtom(std::u16string_view name) {
    if (name.empty() || name.size() > kTsMaxAtomName) return 0;
    auto& t = Table();
    std::u16string folded = ts::AsciiLower(name);
    std::lock_guard lock(t.mutex);
    if (auto it = t.byFoldedName.find(folded); it != t.byFoldedName.end()) return it->second;
    if (t.names.size() >= kCapacity) return 0;
    auto atom = static_cast<TsAtom>(kTsFirstAtom + t.names.size());
    t.names.emplace_back(name);
    t.byFoldedName.emplace(std::move(folded), atom);
    return atom;
}

TsAtom TsFindAtom(std::u16string_view name) {
    if (name.empty() || name.size() > kTsMaxAtomName) return 0;
    auto& t = Table();
    std::u16string folded = ts::AsciiLower(name);
    std::lock_guard lock(t.mutex);
    auto it = t.byFoldedName.find(folded);
    return it == t.byFoldedName.end() ? 0 : it->second;
}

std::u16string TsGetAtomName(TsAtom atom, std::size_t maxLength) {
    auto& t = Table();
    std::lock_guard lock(t.mutex);
    if (atom < kTsFirstAtom || std::size_t(atom - kTsFirstAtom) >= t.names.size()) return {};
    const auto& name = t.names[atom - kTsFirstAtom];
    return name.substr(0, maxLength);
}

std::size_t TsAtomCount() {
    auto& t = Table();
    std::lock_guard lock(t.mutex);
    return t.names.size();
}
