#include "indexer/config/completion.h"

#include <algorithm>

#include "indexer/config/option_table.h"
#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace {

std::string Joined(const std::vector<std::string_view>& words, std::string_view between) {
  std::string text;
  for (const std::string_view word : words) {
    if (!text.empty()) text += between;
    text += word;
  }
  return text;
}

std::vector<std::string_view> NamesOf(const OptionRow& row) {
  return row.offer.names == nullptr ? std::vector<std::string_view>() : row.offer.names();
}

// Each of `signs` in `text` with a backslash before it.
std::string Escaped(std::string_view text, std::string_view signs) {
  std::string escaped;
  for (const char c : text) {
    if (signs.find(c) != signs.npos) escaped += '\\';
    escaped += c;
  }
  return escaped;
}

// A word in single quotes, which a shell takes as it stands.
std::string Quoted(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

bool MayLackValue(const OptionRow& row) { return row.value.starts_with('['); }

// "FILE" of "[FILE]".
std::string ValueName(const OptionRow& row) {
  return std::string(MayLackValue(row) ? row.value.substr(1, row.value.size() - 2) : row.value);
}

std::string BashScript() {
  std::string cases;
  std::vector<std::string_view> options;
  for (const OptionRow& row : OptionTable()) {
    options.push_back(LongName(row));
    if (row.value.empty()) continue;
    cases.append("    ").append(LongName(row)).append(")");
    if (row.offer.names != nullptr) cases += " names=" + Quoted(Joined(NamesOf(row), " "));
    if (row.offer.files) cases += " paths=-f";
    if (row.offer.folders) cases += " paths=-d";
    cases += " ;;\n";
  }
  return R"(# Completes the options of vela_index in bash. Written by: vela_index --completion bash
_vela_index() {
  local word=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD-1]} names= paths=
  # "--out=x" arrives as three words.
  if [[ $word == = ]]; then
    word=
  elif [[ $option == = ]]; then
    option=${COMP_WORDS[COMP_CWORD-2]}
  fi
  [[ $word == -* ]] && option=
  case $option in
)" + cases +
         "    *) names=" + Quoted(Joined(options, " ")) + R"( ;;
  esac
  [[ -n $paths ]] && compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(
    compgen -W "$names" -- "$word"
    [[ -n $paths ]] && compgen $paths -- "$word")
}
complete -F _vela_index vela_index
)";
}

// "default minimal" as an action of _arguments, with or without paths beside the names.
std::string ZshAction(const OptionRow& row) {
  const std::string names = Joined(NamesOf(row), " ");
  const std::string paths = row.offer.folders ? "_files -/" : row.offer.files ? "_files" : "";
  if (names.empty()) return paths.empty() ? " " : paths;
  return paths.empty() ? "(" + names + ")" : "{ compadd " + names + "; " + paths + " }";
}

std::string ZshScript() {
  std::string text = R"(#compdef vela_index
# Completes the options of vela_index in zsh. Written by: vela_index --completion zsh
_vela_index() {
  _arguments)";
  for (const OptionRow& row : OptionTable()) {
    std::string option;
    if (std::holds_alternative<std::vector<std::string> Options::*>(row.target)) option += '*';
    option += LongName(row);
    if (!row.value.empty()) option += '=';
    option += "[" + Escaped(row.help, "\\[]:") + "]";
    if (MayLackValue(row)) option += ':';
    if (!row.value.empty()) option += ":" + ValueName(row) + ":" + ZshAction(row);
    text += " \\\n    " + Quoted(option);
  }
  return text + R"(
}
# Read as a file of $fpath it is the function itself, read by `source` it defines it.
if [[ ${funcstack[1]} == _vela_index ]]; then
  _vela_index "$@"
else
  compdef _vela_index vela_index
fi
)";
}

std::string FishScript() {
  std::string text =
      "# Completes the options of vela_index in fish. Written by: vela_index --completion fish\n"
      "complete -c vela_index -f\n";
  for (const OptionRow& row : OptionTable()) {
    text.append("complete -c vela_index -l ").append(LongName(row).substr(2));
    if (!row.value.empty() && !MayLackValue(row)) text += row.offer.files ? " -r" : " -x";
    if (row.offer.files) text += " -F";
    std::vector<std::string_view> offered = NamesOf(row);
    if (row.offer.folders) offered.emplace_back("(__fish_complete_directories)");
    // Of a value that may be missing, fish would offer "--option=" beside the option.
    if (!offered.empty() && !MayLackValue(row)) text += " -a " + Quoted(Joined(offered, " "));
    // In single quotes fish knows \\ and \' alone.
    text += " -d '" + Escaped(row.help, "\\'") + "'\n";
  }
  return text;
}

struct Shell {
  std::string_view name;
  std::string (*script)();
};
constexpr Shell kShells[] = {{"bash", &BashScript}, {"zsh", &ZshScript}, {"fish", &FishScript}};

}  // namespace

std::vector<std::string_view> CompletionShells() {
  std::vector<std::string_view> names;
  for (const Shell& shell : kShells) names.push_back(shell.name);
  return names;
}

std::string CompletionScript(std::string_view shell) {
  const auto* found = std::ranges::find(kShells, shell, &Shell::name);
  if (found == std::end(kShells)) {
    throw IndexError(ExitStatus::kUsage, "There is no completion for \"" + std::string(shell) +
                                             "\". Give one of " + Joined(CompletionShells(), ", ") +
                                             ".");
  }
  return found->script();
}

}  // namespace vela::indexer
