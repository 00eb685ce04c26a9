#include "request/usage.h"

namespace vela {

namespace {

constexpr std::string_view kVersionText = "vela_search " VELA_VERSION "\n";

constexpr std::string_view kHelpText =
    "This is the search program of Vela Search. A web server runs it as a CGI, once for each\n"
    "search; it is not meant to be started by hand.\n"
    "\n"
    "It stands beside an index, usually as search.cgi, and answers from the files there:\n"
    "  vela_index --site DIR --base-url URL --out INDEXDIR --program vela_search\n"
    "writes an index and puts the program into it.\n"
    "\n"
    "To see an answer without a web server, ask as one would:\n"
    "  REQUEST_METHOD=GET QUERY_STRING='vela_query=WORDS' INDEXDIR/search.cgi\n"
    "\n"
    "  /I INDEXDIR   answer from the index in this folder\n"
    "  --version     print the version\n"
    "  --help        print this text\n"
    "\n"
    "More: man vela_search, man vela_index.\n";

bool IsRequest(const CgiSource& source) {
  for (const char* name : {"REQUEST_METHOD", "GATEWAY_INTERFACE"}) {
    if (source.environment(name) != nullptr) return true;
  }
  return false;
}

}  // namespace

std::string_view UsageText(std::span<const char* const> arguments, const CgiSource& source) {
  if (arguments.size() != 2 || IsRequest(source)) return {};
  const std::string_view argument = arguments[1];
  if (argument == "--help") return kHelpText;
  if (argument == "--version") return kVersionText;
  return {};
}

}  // namespace vela
