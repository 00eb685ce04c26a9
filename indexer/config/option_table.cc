#include "indexer/config/option_table.h"

#include "indexer/config/built_in_template.h"
#include "indexer/config/completion.h"
#include "indexer/config/language_file.h"

namespace vela::indexer {

namespace {

const OptionRow kOptions[] = {
    {.name = "-h,--help",
     .value = "",
     .help = "Print this help message and exit",
     .target = Shown::kHelp},
    {.name = "--version",
     .value = "",
     .help = "Display program version information and exit",
     .target = Shown::kVersion},
    {.name = "--config",
     .value = "FILE",
     .help = "Configuration of the site and its search; the options below win over it",
     .target = &CommandLine::configFile,
     .offer = {.files = true}},
    {.name = "--init",
     .value = "[FILE]",
     .help = "Write a commented configuration file and end",
     .target = &CommandLine::initFile,
     .otherwise = kConfigFileName,
     .offer = {.files = true},
     .alone = "writes an example",
     .after = ", then change the file"},
    {.name = "--completion",
     .value = "SHELL",
     .help = "Write the script by which bash, zsh or fish completes these options, and end",
     .target = &CommandLine::shell,
     .offer = {.names = &CompletionShells},
     .alone = "writes a script"},
    {.name = "--site",
     .value = "DIR",
     .help = "Folder with the site's HTML and text files",
     .target = &Options::site,
     .offer = {.folders = true},
     .needed = "the site's folder",
     .key = "folder"},
    {.name = "--base-url",
     .value = "URL",
     .help = "Address of that folder on the web, such as https://www.example.org/ or /docs/",
     .target = &Options::baseUrl,
     .needed = "the site's address",
     .key = "base_url"},
    {.name = "--out",
     .value = "INDEXDIR",
     .help = "Folder for the index; made, or replaced in one step when it exists",
     .target = &Options::out,
     .offer = {.folders = true},
     .needed = "the folder for the index",
     .key = "out"},
    {.name = "--template",
     .value = "NAME|FILE",
     .help = "Page around the results: default, minimal, embed or a file of your own",
     .target = &Options::templateName,
     .otherwise = "the one in INDEXDIR, else default",
     .offer = {.files = true, .names = &BuiltInTemplates}},
    {.name = "--language",
     .value = "NAME|FILE",
     .help = "Language of the search page: a built-in one or a .vlang file",
     .target = &Options::language,
     .offer = {.files = true, .names = &BuiltInLanguages}},
    {.name = "--exclude",
     .value = "PATTERN",
     .help = "Leave out files and folders of this name or path; * and ? are wild; repeatable",
     .target = &Options::exclude},
    {.name = "--memory",
     .value = "MB",
     .help = "Memory for collecting words before they go to disk, in MB",
     .target = &Options::memoryMegabytes,
     .limit = kMemoryMegabytesLimit},
    {.name = "--max-file-size",
     .value = "MB",
     .help = "Leave out larger files, in MB",
     .target = &Options::maxFileMegabytes,
     .limit = kFileMegabytesLimit},
    {.name = "--quiet",
     .value = "",
     .help = "No progress and no summary",
     .target = &Options::quiet},
};

}  // namespace

std::span<const OptionRow> OptionTable() { return kOptions; }

std::string_view LongName(const OptionRow& row) { return row.name.substr(row.name.find("--")); }

}  // namespace vela::indexer
