#include "property/attribute_table.h"

#include <deque>
#include <mutex>
#include <unordered_map>

namespace ts {

namespace {

struct Table {
    std::mutex mutex;
    std::deque<AttributeSet> sets{AttributeSet{}};  // a deque keeps references stable
    std::unordered_map<std::u16string, std::uint32_t> index{{std::u16string(), 0}};
};

Table& TheTable() {
    static auto* table = new Table;
    return *table;
}

// One string that tells sets apart: each attribute followed by a separator that can't occur
// inside (a lone low surrogate is not valid text).
std::u16string Key(const std::array<std::u16string_view, kTsPropertyAttributeCount>& values) {
    std::u16string key;
    for (auto v : values) {
        key += v;
        key += char16_t(0xDFFF);
    }
    return key;
}

}  // namespace

std::uint32_t AttributeTable::Intern(const std::array<std::u16string_view, kTsPropertyAttributeCount>& values) {
    bool allEmpty = true;
    for (auto v : values) allEmpty = allEmpty && v.empty();
    if (allEmpty) return 0;
    auto key = Key(values);
    auto& t = TheTable();
    std::lock_guard lock(t.mutex);
    if (auto it = t.index.find(key); it != t.index.end()) return it->second;
    AttributeSet set;
    for (std::size_t i = 0; i < values.size(); ++i) set[i] = values[i];
    t.sets.push_back(std::move(set));
    auto handle = static_cast<std::uint32_t>(t.sets.size() - 1);
    t.index.emplace(std::move(key), handle);
    return handle;
}

std::uint32_t AttributeTable::WithAttribute(std::uint32_t handle, TsPropertyAttribute which,
                                            std::u16string_view text) {
    const AttributeSet& current = Get(handle);
    std::array<std::u16string_view, kTsPropertyAttributeCount> values;
    for (std::size_t i = 0; i < values.size(); ++i) values[i] = current[i];
    values[static_cast<std::size_t>(which)] = text;
    return Intern(values);
}

const AttributeSet& AttributeTable::Get(std::uint32_t handle) {
    auto& t = TheTable();
    std::lock_guard lock(t.mutex);
    return handle < t.sets.size() ? t.sets[handle] : t.sets[0];
}

std::size_t AttributeTable::Size() {
    auto& t = TheTable();
    std::lock_guard lock(t.mutex);
    return t.sets.size();
}

}  // namespace ts
