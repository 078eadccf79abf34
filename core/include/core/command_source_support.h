#pragma once

#include <string>
#include <vector>

// The identity of a window as a source of commands: the name the host files its commands
// under, and its command bars, held as one text of names separated by line feeds.
template <class W>
class CTsUICommandSourceSupport {
public:
    CTsUICommandSourceSupport(std::u16string name, std::u16string commandBars)
        : name_(std::move(name)), commandBars_(std::move(commandBars)) {}

    const std::u16string& CommandSourceName() const { return name_; }

    std::vector<std::u16string> CommandBarNames() const {
        std::vector<std::u16string> names;
        std::u16string_view rest = commandBars_;
        while (!rest.empty()) {
            std::size_t feed = rest.find(u'\n');
            std::u16string_view name = rest.substr(0, feed);
            if (!name.empty()) names.emplace_back(name);
            rest =
                feed == std::u16string_view::npos ? std::u16string_view() : rest.substr(feed + 1);
        }
        return names;
    }

private:
    std::u16string name_;
    std::u16string commandBars_;
};
