#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "ts/hostui.h"

namespace ts::test {

// Stands in for the user while it lives: records every message box and answers from a script
// (the default button once the script runs out).
class ScriptedUi : public HostUi {
public:
    struct Shown {
        std::u16string text;
        std::u16string caption;
        std::uint32_t style;
    };

    ScriptedUi() : previous_(SetHostUi(this)) {}
    ~ScriptedUi() override { SetHostUi(previous_); }
    ScriptedUi(const ScriptedUi&) = delete;
    ScriptedUi& operator=(const ScriptedUi&) = delete;

    void Answer(int answer) { answers_.push_back(answer); }
    // The command the next popup menu chooses (0: none, also once the script runs out).
    void Choose(std::uint32_t id) { choices_.push_back(id); }
    const std::vector<Shown>& shown() const { return shown_; }

    int MessageBox(std::u16string_view text, std::u16string_view caption,
                   std::uint32_t style) override {
        shown_.push_back({std::u16string(text), std::u16string(caption), style});
        if (answers_.empty()) return DefaultMessageBoxAnswer(style);
        int answer = answers_.front();
        answers_.pop_front();
        return answer;
    }

    // Every popup menu shown, and whether TsIsPopupMenuShowing said so while it was.
    std::uint32_t PopupMenu(const std::vector<TsPopupMenuItem>& items) override {
        menus.push_back(items);
        showingWhileShown = TsIsPopupMenuShowing();
        if (choices_.empty()) return 0;
        std::uint32_t id = choices_.front();
        choices_.pop_front();
        return id;
    }
    std::vector<std::vector<TsPopupMenuItem>> menus;
    bool showingWhileShown = false;

    // The error lists the editors published, by resource; a resource leaves when its list is
    // emptied. `published` counts every call.
    void ReplaceErrors(std::u16string_view resource, const std::vector<ErrorEntry>& list) override {
        ++published;
        if (list.empty())
            errors.erase(std::u16string(resource));
        else
            errors[std::u16string(resource)] = list;
    }
    std::map<std::u16string, std::vector<ErrorEntry>> errors;
    int published = 0;

    // The resource ("NAME.TYPE") the next resource picker chooses; without one it is cancelled.
    // `pickers` records each picker's title and filter.
    void Pick(std::u16string name) { picks_.push_back(std::move(name)); }
    bool PickResource(std::u16string_view title, std::u16string_view filter,
                      std::u16string& chosen) override {
        pickers.emplace_back(title, filter);
        if (picks_.empty()) return false;
        chosen = picks_.front();
        picks_.pop_front();
        return true;
    }
    std::vector<std::pair<std::u16string, std::u16string>> pickers;

private:
    HostUi* previous_;
    std::deque<int> answers_;
    std::deque<std::uint32_t> choices_;
    std::deque<std::u16string> picks_;
    std::vector<Shown> shown_;
};

}  // namespace ts::test
