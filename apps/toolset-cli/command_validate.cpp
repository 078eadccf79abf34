// validate: the conversation editor's own validation over a module's conversations. Each is
// opened in the editor as check opens it; what the editor publishes as the conversation's error
// list is what is printed, so the rules live in one place, the editor.
#include <algorithm>
#include <cstdint>

#include "cli.h"
#include "editor_check.h"
#include "ts/format.h"
#include "ts/hostui.h"
#include "ts/text.h"

namespace cli {

namespace {

// Keeps the error list an editor publishes while it is open; messages and log output go on to
// the user interface it replaces (the console), so nothing an editor says is lost.
class PublishedErrors : public ts::HostUi {
public:
    PublishedErrors() : next_(ts::SetHostUi(this)) {}
    ~PublishedErrors() override { ts::SetHostUi(next_); }
    PublishedErrors(const PublishedErrors&) = delete;
    PublishedErrors& operator=(const PublishedErrors&) = delete;

    int MessageBox(std::u16string_view text, std::u16string_view caption,
                   std::uint32_t style) override {
        return next_ ? next_->MessageBox(text, caption, style) : ts::DefaultMessageBoxAnswer(style);
    }
    void LogOutput(std::u16string_view text) override {
        next_ ? next_->LogOutput(text) : HostUi::LogOutput(text);
    }
    void ReplaceErrors(std::u16string_view resource,
                       const std::vector<ts::ErrorEntry>& errors) override {
        resource_ = resource;
        errors_ = errors;
    }

    void Forget() {
        resource_.clear();
        errors_.clear();
    }
    // The last list published for `resource`; false when none was.
    bool Take(std::u16string_view resource, std::vector<ts::ErrorEntry>& errors) const {
        if (resource_.empty() || !ts::EqualsIgnoreAsciiCase(resource_, resource)) return false;
        errors = errors_;
        return true;
    }

private:
    ts::HostUi* next_;
    std::u16string resource_;
    std::vector<ts::ErrorEntry> errors_;
};

bool IsConversation(std::u16string_view type) {
    return ts::EqualsIgnoreAsciiCase(type, u"dlg");
}

// "3 faults in 1 of 4 conversations".
std::u16string Summary(std::size_t faults, std::size_t faulty, std::size_t conversations) {
    const char16_t* noun = conversations == 1 ? u"conversation" : u"conversations";
    if (faults == 0) return ts::Format(u"no faults in %lu %ls", conversations, noun);
    return ts::Format(u"%lu %ls in %lu of %lu %ls", faults, faults == 1 ? u"fault" : u"faults",
                      faulty, conversations, noun);
}

}  // namespace

int Validate(const Arguments& args) {
    if (!Expect(args, "validate", 1, SIZE_MAX)) return kUsage;
    std::shared_ptr<ts::ResourceStore> store = OpenModule(args.words[0], true);
    if (!store) return kFailed;

    // The conversations to validate: those named, each checked before any is opened, or all.
    std::vector<std::u16string> names;
    if (args.words.size() == 1) {
        std::vector<ts::ResourceInfo> list;
        if (auto r = store->ListResources(u"dlg", list); !r) return Fail(r.message);
        for (const auto& info : list) names.push_back(info.name);
    }
    for (std::size_t i = 1; i < args.words.size(); ++i) {
        std::u16string name, type;
        if (!SplitResourceName(args.words[i], name, type) || !IsConversation(type))
            return Fail(ts::Format(u"\"%ls\" does not name a conversation as NAME.dlg",
                                   ts::MessageText(args.words[i])),
                        kUsage);
        ts::ResourceInfo info;
        if (auto r = store->GetResourceInfo(name, u"dlg", info); !r)
            return Fail(r.message, r.status == ts::StoreStatus::NotFound ? kUsage : kFailed);
        auto same = [&](const std::u16string& n) {
            return ts::EqualsIgnoreAsciiCase(n, info.name);
        };
        if (std::none_of(names.begin(), names.end(), same)) names.push_back(info.name);
    }

    EditorCheck editors;
    if (std::u16string why; !editors.Start(store, why)) return Fail(why);
    PublishedErrors published;
    std::size_t faults = 0, faulty = 0;
    for (const std::u16string& name : names) {
        const std::u16string file = name + u".dlg";
        std::vector<ts::ErrorEntry> errors;
        std::u16string problem;
        bool told = false;
        published.Forget();
        if (!editors.Open(name, u"dlg", problem, [&] { told = published.Take(file, errors); }))
            errors = {{0, ts::Format(u"cannot be opened: %ls", problem)}};
        else if (!told)
            errors = {{0, u"its editor did not say what validation found"}};
        for (const ts::ErrorEntry& error : errors)
            Print(ts::Format(u"%ls:%d: %ls", file, error.line, error.message));
        faults += errors.size();
        faulty += errors.empty() ? 0 : 1;
    }
    return Fail(Summary(faults, faulty, names.size()), faults == 0 ? kOk : kFailed);
}

}  // namespace cli
