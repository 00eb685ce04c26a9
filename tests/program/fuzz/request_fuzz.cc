// request_fuzz.cc: a whole request over a valid index, without the extensions and with all of them.
// Input: a query string; behind a first line "POST", a body.
#include <map>
#include <string>

#include "program/fuzz/check.h"
#include "program/fuzz/whole_request.h"
#include "support/scratch_directory.h"
#include "support/with_extensions.h"

namespace {

const std::filesystem::path& IndexPath() {
  static const vela::support::ScratchDirectory scratch;
  static const bool written = (vela::fuzz::WholeIndex().WriteTo(scratch.path()), true);
  VELA_CHECK(written);
  return scratch.path();
}

const std::filesystem::path& ExtendedIndexPath() {
  static const vela::support::ScratchDirectory scratch;
  static const bool written = (vela::fuzz::WholeIndex().WriteTo(scratch.path()),
                               vela::support::SwitchExtensionsOn(scratch.path()));
  VELA_CHECK(written);
  return scratch.path();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using vela::fuzz::Answer;
  std::string_view input = vela::fuzz::Text(data, size);
  std::map<std::string, std::string> environment = {{"SCRIPT_NAME", "/search.cgi"}};
  std::string body;
  if (input.starts_with("POST\n")) {
    body = input.substr(5);
    environment["REQUEST_METHOD"] = "POST";
    environment["CONTENT_TYPE"] = "application/x-www-form-urlencoded";
    environment["CONTENT_LENGTH"] = std::to_string(body.size());
  } else {
    environment["REQUEST_METHOD"] = "GET";
    environment["QUERY_STRING"] = input.substr(0, input.find_first_of(std::string_view("\0\n", 2)));
  }
  for (const std::filesystem::path& path : {IndexPath(), ExtendedIndexPath()}) {
    const Answer answer = vela::fuzz::AnswerRequest(path, environment, body);
    VELA_CHECK(answer.exitStatus == 0);
    VELA_CHECK(answer.output.starts_with("Content-type: text/"));
    // The page, or the document, is whole; a list of suggestions stands without one.
    const bool xml = answer.output.starts_with("Content-type: text/xml");
    if (input.find("vela_ac=") == std::string_view::npos) {
      VELA_CHECK(answer.output.ends_with(xml ? "</rss>" : "</body>\n"));
    }
    const Answer again = vela::fuzz::AnswerRequest(path, environment, body);
    VELA_CHECK(answer.output == again.output);
  }
  return 0;
}
