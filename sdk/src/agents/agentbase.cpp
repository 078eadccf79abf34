#include "agents/agentbase.h"

#include "ts/format.h"

namespace {
constexpr char16_t kAgentNode[] = u"Agent";
}

bool CAgentBase::BuildProperties() {
    if (node_) return SUCCEEDED(node_->Reset());
    CTsComPtr<ITsProperty> root;
    if (FAILED(TsCreateProperty(kAgentNode, kTsTypeList, 2, kAgentNode, {}, {}, {}, {}, root.Put())))
        return false;
    node_ = root;
    return true;
}

bool CAgentBase::CreateOn(ITsProperty* node) {
    Bind(node);
    return BuildProperties() && SetDefaults();
}

bool CAgentBase::AddProperty(std::u16string_view name, std::uint32_t type, std::uint32_t flags,
                             std::u16string_view displayName, std::u16string_view category,
                             std::u16string_view subCategory, std::u16string_view description,
                             std::u16string_view editorKind) {
    if (!node_) return false;
    CTsComPtr<ITsProperty> child;
    if (FAILED(node_->CreateProperty(name, type, flags, displayName, category, subCategory,
                                     description, editorKind, child.Put())))
        return false;
    return SUCCEEDED(node_->InsertChild(kTsAppend, child.Get()));
}

bool CAgentBase::DeclareFields(std::span<const TsFieldDecl> fields) {
    for (const auto& f : fields)
        if (!AddProperty(f.name, f.type, f.flags, f.displayName, f.category, f.subCategory,
                         f.description, f.editorKind))
            return false;
    return true;
}

bool CAgentBase::WriteDefaults(std::span<const TsFieldDecl> fields) {
    for (const auto& f : fields) {
        if (f.defaultValue.kind == TsFieldDefault::Kind::None) continue;
        auto node = FieldNode(TsAddAtom(f.name), f.type, kSourceHeader, __LINE__);
        if (!node || FAILED(node->SetValue(TsDefaultVariant(f)))) return false;
    }
    return true;
}

CTsComPtr<ITsProperty> CAgentBase::FieldNode(TsAtom atom, std::uint32_t type, const char* source,
                                             int line) const {
    ITsProperty* const* children = nullptr;
    std::uint32_t count = 0;
    if (node_ && SUCCEEDED(node_->GetChildArray(&children, &count))) {
        // Records of a kind hold their fields in declaration order, so the place where a field
        // was found last time is nearly always its place in the next record: try it before
        // scanning. The places are kept per thread by the atom's low byte; a clash only costs a
        // scan. Field names are unique within a record, so any match is the field.
        static thread_local std::uint16_t lastPlace[256] = {};
        std::uint16_t& hint = lastPlace[atom & 0xFF];
        ITsProperty* found = nullptr;
        if (hint < count && children[hint]->GetNameAtom() == atom) {
            found = children[hint];
        } else {
            for (std::uint32_t i = 0; i < count && !found; ++i)
                if (children[i]->GetNameAtom() == atom) {
                    found = children[i];
                    hint = static_cast<std::uint16_t>(i);
                }
        }
        if (found && found->GetType() == type) return CTsComPtr<ITsProperty>(found);
    }
    Report(ReportLevel::Assert, source, line, u"Request for invalid property");
    return {};
}

bool CAgentBase::FindProperty(TsAtom name, std::uint32_t index, CTsComPtr<ITsProperty>& node) const {
    node.Reset();
    return node_ && SUCCEEDED(node_->FindChild(name, index, node.Put()));
}

bool CAgentBase::FindOrCreateProperty(std::u16string_view name, CTsComPtr<ITsProperty>& node, bool create) {
    if (FindProperty(TsAddAtom(name), 0, node)) return true;
    if (!create || !node_) return false;
    CTsComPtr<ITsProperty> created;
    if (FAILED(node_->CreateProperty(name, kTsTypeList, 0, {}, {}, {}, {}, {}, created.Put())) ||
        FAILED(node_->InsertChild(kTsAppend, created.Get())))
        return false;
    node = created;
    return true;
}

bool CAgentBase::FindOrCreateProperty(TsAtom name, CTsComPtr<ITsProperty>& node, bool create) {
    std::u16string text = TsGetAtomName(name, 256);
    if (text.empty()) return false;
    return FindOrCreateProperty(text, node, create);
}

void CAgentBase::ReportListFailure(const char16_t* pattern, TsAtom listName, int line) const {
    Report(ReportLevel::Assert, kSourceHeader, line, ts::Format(pattern, TsGetAtomName(listName)));
}

std::uint32_t CAgentBase::GetPropertyListEntryCount(std::u16string_view listName) const {
    return GetPropertyListEntryCount(TsAddAtom(listName));
}

std::uint32_t CAgentBase::GetPropertyListEntryCount(TsAtom listName) const {
    CTsComPtr<ITsProperty> list;
    std::uint32_t count = 0;
    if (FindProperty(listName, 0, list) && SUCCEEDED(list->GetChildCount(0, &count))) return count;
    ReportListFailure(u"CAgentBase::GetPropertyListEntryCount failed to get count for list %s", listName, __LINE__);
    return 0;
}

bool CAgentBase::GetPropertyFromList(std::u16string_view listName, std::uint32_t index,
                                     CTsComPtr<ITsProperty>& node) const {
    return GetPropertyFromList(TsAddAtom(listName), index, node);
}

bool CAgentBase::GetPropertyFromList(TsAtom listName, std::uint32_t index,
                                     CTsComPtr<ITsProperty>& node) const {
    node.Reset();
    CTsComPtr<ITsProperty> list;
    if (FindProperty(listName, 0, list) && SUCCEEDED(list->GetChildAt(index, node.Put()))) return true;
    ReportListFailure(u"CAgentBase::GetPropertyFromList failed to get item for list %s", listName, __LINE__);
    return false;
}

bool CAgentBase::AddItemToPropertyList(const CTsProperty& item, std::u16string_view listName,
                                       std::uint32_t index) {
    return AddItemToPropertyList(item.GetNode(), TsAddAtom(listName), index);
}

bool CAgentBase::AddItemToPropertyList(ITsProperty* item, TsAtom listName, std::uint32_t index) {
    CTsComPtr<ITsProperty> list;
    if (item && FindProperty(listName, 0, list) && list->GetType() == kTsTypeList &&
        SUCCEEDED(list->InsertChild(index, item)))
        return true;
    ReportListFailure(u"CAgentBase::AddItemToPropertyList failed to add a property to list %s", listName, __LINE__);
    return false;
}

bool CAgentBase::CopyPropertyList(ITsProperty* source, std::u16string_view listName, bool deepCopy) {
    if (!source) return false;
    TsAtom atom = TsAddAtom(listName);
    std::uint32_t count = 0;
    if (FAILED(source->GetChildCount(0, &count))) return false;
    for (std::uint32_t i = 0; i < count; ++i) {
        CTsComPtr<ITsProperty> element;
        if (FAILED(source->GetChildAt(i, element.Put()))) return false;
        if (deepCopy) {
            CTsComPtr<ITsProperty> copy;
            if (FAILED(element->Clone(kTsCloneDeep, copy.Put()))) return false;
            element = copy;
        }
        if (!AddItemToPropertyList(element.Get(), atom)) return false;
    }
    return true;
}
