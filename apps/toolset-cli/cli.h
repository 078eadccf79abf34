#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ts/resourcestore.h"

// Shared pieces of the command-line host's commands.
namespace cli {

// Exit codes: the command did what was asked; it could not (bad input, a damaged module, a
// refused change); the command line itself was wrong.
inline constexpr int kOk = 0;
inline constexpr int kFailed = 1;
inline constexpr int kUsage = 2;

// The words of the command line after the command, split into positional words and "--options".
struct Arguments {
    std::vector<std::string> words;
    std::vector<std::string> options;

    bool Has(std::string_view option) const;
};
Arguments Split(int argc, char** argv, int first);
// Checks the counts of positional words and that every option is among `known`; prints what is
// wrong and returns false otherwise.
bool Expect(const Arguments& args, std::string_view command, std::size_t min, std::size_t max,
            std::initializer_list<std::string_view> known = {});

void Print(std::u16string_view text);  // a line on standard output
int Fail(std::u16string_view message,
         int code = kFailed);  // a line on standard error, then the code
int Usage(std::FILE* to);

// Opens an existing module for the command, printing why when it cannot. `readOnly` says the
// command only reads, so a module that cannot be written is still opened.
std::unique_ptr<ts::ResourceStore> OpenModule(const std::string& path, bool readOnly);

// "tavern.dlg" -> name "tavern", type "dlg".
bool SplitResourceName(std::string_view text, std::u16string& name, std::u16string& type);

int ModuleCreate(const Arguments& args);
int List(const Arguments& args);
int Export(const Arguments& args);
int Import(const Arguments& args);
int Check(const Arguments& args);
int Report(const Arguments& args);
int Validate(const Arguments& args);

}  // namespace cli
