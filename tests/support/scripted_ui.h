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
    const std::vector<Shown>& shown() const { return shown_; }

    int MessageBox(std::u16string_view text, std::u16string_view caption,
                   std::uint32_t style) override {
        shown_.push_back({std::u16string(text), std::u16string(caption), style});
        if (answers_.empty()) return DefaultMessageBoxAnswer(style);
        int answer = answers_.front();
        answers_.pop_front();
        return answer;
    }

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

private:
    HostUi* previous_;
    std::deque<int> answers_;
    std::vector<Shown> shown_;
};

}  // namespace ts::test
