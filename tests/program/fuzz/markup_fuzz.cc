// markup_fuzz.cc: every XML answer is well-formed, and every HTML answer closes what it opens.
// Input: a line of letters, each of which turns one setting over, then the query string.
//
// Requests are of printable ASCII here: what a browser sends for other bytes is cut at limits that
// may fall inside a character.
#include <expat.h>

#include <map>
#include <string>

#include "program/fuzz/check.h"
#include "program/fuzz/whole_request.h"
#include "support/markup_balance.h"
#include "support/scratch_directory.h"

namespace {

using vela::support::IndexBuilder;

// A letter of the input, the key, and its value in place of the recipe's.
struct Switch {
  char letter;
  const char* key;
  const char* value;
};
constexpr Switch kSwitches[] = {
    {'a', "AllowExactPhrase", "0"},
    {'b', "SearchAsSubstring", "1"},
    {'c', "UseCats", "0"},
    {'d', "DisplayContext", "0"},
    {'e', "DisplayMetaDesc", "0"},
    {'f', "FormFormat", "1"},
    {'g', "GotoHighlight", "0"},
    {'h', "Highlighting", "0"},
    {'i', "UseVelaImage", "0"},
    {'j', "RecommendedMax", "1"},
    {'k', "MaxResultsPerQuery", "1"},
    {'l', "ToLowerSearchWords", "0"},
    {'m', "UseMetaFields", "0"},
    {'n', "DisplayNumber", "0"},
    {'o', "SearchMultiCats", "0"},
    {'p', "PdfHighlight", "0"},
    {'q', "MaxSearchTime", "-1"},
    {'r', "DateRangeSearch", "0"},
    {'s', "Spelling", "0"},
    {'t', "UseStemming", "0"},
    {'u', "UseUTF8", "0"},
    {'v', "VelaInfo", "0"},
    {'w', "MinWordLen", "4"},
    {'x', "XMLHighlight", "0"},
    {'y', "MaxMatches", "1"},
    {'z', "DefaultToAnd", "1"},
    {'A', "ContextSize", "1"},
    {'B', "MaxContextKeywords", "1"},
    {'C', "DisplayURL", "0"},
    {'D', "FormFormat", "0"},
    {'E', "UseLinkTarget", "0"},
    {'F', "DefaultSort", "2"},
    {'G', "LinkBackURL", "\"find\""},
    {'H', "DisplayCatSummary", "0"},
    {'I', "XMLXSLTURL", "\"\""},
    {'J', "TruncateShowURL", "0"},
};

// A directory for these switches; each is written once.
const std::filesystem::path& IndexPath(const std::string& letters) {
  static const vela::support::ScratchDirectory scratch;
  static std::map<std::string, std::filesystem::path> written;
  std::string key;
  for (const Switch& each : kSwitches) {
    if (letters.find(each.letter) != std::string::npos) key += each.letter;
  }
  auto [found, isNew] = written.try_emplace(key);
  if (!isNew) return found->second;
  IndexBuilder index = vela::fuzz::WholeIndex();
  index.Set("Logging", "0");
  // Two words that are too long for one passage together.
  const std::string first(1010, 'a');
  const std::string second(1010, 'b');
  index.Word(first, {{.page = 0, .score = 10, .flags = 6, .position = 56, .isToken = true}});
  index.Word(second, {{.page = 0, .score = 10, .flags = 6, .position = 57, .isToken = true}});
  index.Tokens({{.word = index.WordNumber(first)}, {.word = index.WordNumber(second)}, {}});
  for (const Switch& each : kSwitches) {
    if (key.find(each.letter) != std::string::npos) index.Set(each.key, each.value);
  }
  found->second = scratch.path() / std::to_string(written.size());
  index.WriteTo(found->second);
  return found->second;
}

bool IsPrintable(char c) { return c >= ' ' && c <= '~'; }

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

// Whether the query string stays printable however often it is decoded; a part of it is twice.
bool StaysPrintable(std::string text) {
  for (;;) {
    std::string decoded;
    for (size_t i = 0; i < text.size(); ++i) {
      if (!IsPrintable(text[i])) return false;
      if (text[i] != '%') {
        decoded += text[i];
        continue;
      }
      if (i + 2 >= text.size() || HexDigit(text[i + 1]) < 0 || HexDigit(text[i + 2]) < 0) {
        return false;
      }
      decoded += static_cast<char>(HexDigit(text[i + 1]) * 16 + HexDigit(text[i + 2]));
      if (!IsPrintable(decoded.back())) return false;
      i += 2;
    }
    if (decoded == text) return true;
    // A lone "%" comes out of "%25"; decoded once more it would be the end of the check above.
    if (decoded.find('%') != decoded.npos) return false;
    text = decoded;
  }
}

bool IsWellFormed(std::string_view xml, std::string& why) {
  XML_Parser parser = XML_ParserCreateNS(nullptr, '|');
  const auto status = XML_Parse(parser, xml.data(), static_cast<int>(xml.size()), XML_TRUE);
  if (status != XML_STATUS_OK) {
    why = XML_ErrorString(XML_GetErrorCode(parser));
    why += " in line " + std::to_string(XML_GetCurrentLineNumber(parser));
  }
  XML_ParserFree(parser);
  return status == XML_STATUS_OK;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view input = vela::fuzz::Text(data, size);
  const std::string letters(vela::fuzz::TakeLine(input));
  const std::string query(input);
  if (!StaysPrintable(query)) return 0;
  const auto answer = vela::fuzz::AnswerRequest(
      IndexPath(letters),
      {{"SCRIPT_NAME", "/search.cgi"}, {"REQUEST_METHOD", "GET"}, {"QUERY_STRING", query}}, "");
  const size_t body = answer.output.find("\n\n");
  VELA_CHECK(body != answer.output.npos);
  const std::string_view text = std::string_view(answer.output).substr(body + 2);
  std::string wrong;
  if (!answer.output.starts_with("Content-type: text/xml")) {
    wrong = vela::support::UnbalancedElement(text);
  } else if (query.find("vela_ac=") == query.npos) {  // a list of suggestions is no document
    IsWellFormed(text, wrong);
  }
  if (!wrong.empty()) {
    fprintf(stderr, "%s\n%s\n%s\n", query.c_str(), wrong.c_str(), answer.output.c_str());
  }
  VELA_CHECK(wrong.empty());
  return 0;
}
