// index_file_fuzz.cc: a whole request over an index in which one file is replaced. Input: the
// letter of the file (see below), a line feed, then the file.
#include <array>
#include <fstream>
#include <map>
#include <string>

#include "program/fuzz/check.h"
#include "program/fuzz/whole_request.h"
#include "support/scratch_directory.h"

namespace {

struct Replaceable {
  char letter;
  const char* name;
};
constexpr std::array kFiles = {
    Replaceable{'s', "settings.vdat"},          Replaceable{'d', "vela_dictionary.vdat"},
    Replaceable{'w', "vela_wordmap.vdat"},      Replaceable{'i', "vela_pageinfo.vdat"},
    Replaceable{'g', "vela_pagedata.vdat"},     Replaceable{'t', "vela_pagetext.vdat"},
    Replaceable{'p', "vela_spelling.vdat"},     Replaceable{'r', "vela_recommended.vdat"},
    Replaceable{'a', "vela_autocomplete.vdat"}, Replaceable{'h', "search_template.html"},
};
constexpr const char* kQueries[] = {
    "vela_query=apple+%22pear+plum%22+pea*&vela_cat[]=0&vela_cat[]=1",
    "vela_query=apple+pear&vela_xml=1&masternode=1&vela_sort=1",
    "vela_ac=1&vela_query=ap",
};

void WriteFile(const std::filesystem::path& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const vela::support::ScratchDirectory scratch;
  static const auto whole = [] {
    const vela::support::IndexBuilder index = vela::fuzz::WholeIndex();
    index.WriteTo(scratch.path());
    return index.Files();
  }();
  std::string_view input = vela::fuzz::Text(data, size);
  const std::string_view letter = vela::fuzz::TakeLine(input);
  for (const Replaceable& file : kFiles) {
    if (letter != std::string_view(&file.letter, 1)) continue;
    WriteFile(scratch.path() / file.name, input);
    for (const char* query : kQueries) {
      const vela::fuzz::Answer answer = vela::fuzz::AnswerRequest(
          scratch.path(),
          {{"REQUEST_METHOD", "GET"}, {"QUERY_STRING", query}, {"SCRIPT_NAME", "/search.cgi"}}, "");
      VELA_CHECK(answer.exitStatus == 0 || answer.exitStatus == 1);
      VELA_CHECK(!answer.output.empty());
    }
    WriteFile(scratch.path() / file.name, whole.at(file.name));
  }
  return 0;
}
