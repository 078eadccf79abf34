#include "cli.h"

#include <algorithm>

#include "ts/format.h"
#include "ts/text.h"

namespace cli {

bool Arguments::Has(std::string_view option) const {
    return std::find(options.begin(), options.end(), option) != options.end();
}

Arguments Split(int argc, char** argv, int first) {
    Arguments args;
    for (int i = first; i < argc; ++i) {
        std::string_view word = argv[i];
        if (word.size() > 2 && word.substr(0, 2) == "--")
            args.options.emplace_back(word);
        else
            args.words.emplace_back(word);
    }
    return args;
}

bool Expect(const Arguments& args, std::string_view command, std::size_t min, std::size_t max,
            std::initializer_list<std::string_view> known) {
    for (const auto& option : args.options)
        if (std::find(known.begin(), known.end(), option) == known.end()) {
            Fail(ts::Format(u"%s does not know the option %ls", command, ts::MessageText(option)),
                 kUsage);
            return false;
        }
    if (args.words.size() < min || args.words.size() > max) {
        Fail(ts::Format(u"%s takes %ls; see toolset-cli --help", command,
                        args.words.size() < min ? u"more arguments" : u"fewer arguments"),
             kUsage);
        return false;
    }
    return true;
}

void Print(std::u16string_view text) {
    std::string line = ts::Utf16ToUtf8(text);
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stdout);
}

int Fail(std::u16string_view message, int code) {
    std::string line = "toolset-cli: " + ts::Utf16ToUtf8(message) + "\n";
    std::fflush(stdout);
    std::fwrite(line.data(), 1, line.size(), stderr);
    return code;
}

int Usage(std::FILE* to) {
    std::fputs(
        "Usage: toolset-cli COMMAND ...\n"
        "  module create SOURCES MODULE [--force]\n"
        "                 build a module file from a folder of sources (resources as JSON, tables\n"
        "                 as CSV); --force replaces an existing module file\n"
        "  list MODULE [TYPE]            list the module's resources (of one type)\n"
        "  export MODULE NAME.TYPE [FILE] [--short]\n"
        "                 write a resource as JSON (to standard output without FILE); --short\n"
        "                 writes only what differs from the defaults of its records\n"
        "  import MODULE FILE [--replace]\n"
        "                 store a resource from JSON; the name and type come from the document\n"
        "                 or from a file name NAME.TYPE.json; --replace saves over an existing "
        "one\n"
        "  check MODULE   read and decode every resource and table, and report damage\n"
        "  report MODULE  summarise the module: resources, conversations, tables, strings\n"
        "  validate MODULE [NAME.dlg ...]\n"
        "                 run the conversation editor's validation over every conversation (or\n"
        "                 those named) and print each fault as NAME.dlg:LINE: message, LINE\n"
        "                 being the line's number in the editor's tree (0 for the root); exit\n"
        "                 code 1 when any fault is found\n"
        "  plugins [FOLDER]  load the plugins of a folder (default: the host's) and list their "
        "classes\n"
        "  info           the framework's version and services\n"
        "  --version, --help\n"
        "Exit codes: 0 done, 1 failed (bad input, damaged module, refused change), 2 bad command "
        "line.\n",
        to);
    return to == stdout ? kOk : kUsage;
}

std::unique_ptr<ts::ResourceStore> OpenModule(const std::string& path, bool readOnly) {
    // Commands that only read still open for writing when they may: the last program to close a
    // module tidies its log files away, which a read-only connection cannot do. They never write.
    ts::StoreResult result;
    auto store = ts::OpenSqliteStore(path, {}, &result);
    if (!store && readOnly && result.status == ts::StoreStatus::Failed)
        store = ts::OpenSqliteStore(path, {.readOnly = true}, &result);
    if (!store) Fail(result.message);
    return store;
}

bool SplitResourceName(std::string_view text, std::u16string& name, std::u16string& type) {
    auto dot = text.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || dot + 1 == text.size()) return false;
    name = ts::Utf8ToUtf16(text.substr(0, dot));
    type = ts::Utf8ToUtf16(text.substr(dot + 1));
    return true;
}

}  // namespace cli
