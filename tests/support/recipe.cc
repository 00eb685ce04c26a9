#include "support/recipe.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace vela::support {
namespace {

std::vector<std::string> SplitLines(std::string_view text) {
  std::vector<std::string> lines;
  std::istringstream in{std::string(text)};
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::vector<std::string> SplitBlanks(std::string_view text) {
  std::istringstream in{std::string(text)};
  return {std::istream_iterator<std::string>(in), std::istream_iterator<std::string>()};
}

std::vector<std::string> SplitAt(std::string_view text, char separator) {
  std::vector<std::string> parts;
  std::istringstream in{std::string(text)};
  for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
  return parts;
}

// The first word of `line`; `rest` is what follows it and one blank.
std::string FirstWord(std::string_view line, std::string_view& rest) {
  const size_t blank = line.find(' ');
  rest = blank == std::string_view::npos ? std::string_view() : line.substr(blank + 1);
  return std::string(line.substr(0, blank));
}

uint64_t ParseNumber(const std::string& text, int base = 10) {
  size_t used = 0;
  const uint64_t value = std::stoull(text, &used, base);
  if (used != text.size()) throw std::runtime_error("not a number: " + text);
  return value;
}

std::string BytesFromHex(const std::string& hex) {
  if (hex.size() % 2 != 0) throw std::runtime_error("odd hexadecimal bytes: " + hex);
  std::string bytes;
  for (size_t i = 0; i < hex.size(); i += 2) {
    bytes.push_back(static_cast<char>(ParseNumber(hex.substr(i, 2), 16)));
  }
  return bytes;
}

PageFields ParsePage(std::string_view text) {
  std::string fields[4];
  for (std::string& field : fields) {
    const size_t bar = text.find('|');
    if (bar == std::string_view::npos) throw std::runtime_error("a page needs four fields");
    field = Unescape(text.substr(0, bar));
    text.remove_prefix(bar + 1);
  }
  PageFields page;
  page.url = fields[0];
  page.title = fields[1];
  page.description = fields[2];
  page.image = fields[3];
  for (const std::string& attribute : SplitBlanks(text)) {
    const size_t equals = attribute.find('=');
    if (equals == std::string::npos) throw std::runtime_error("no value: " + attribute);
    const std::string name = attribute.substr(0, equals);
    const std::string value = attribute.substr(equals + 1);
    if (name == "size") {
      page.fileSize = static_cast<uint32_t>(ParseNumber(value));
    } else if (name == "date") {
      page.dateTime = static_cast<uint32_t>(ParseNumber(value));
    } else if (name == "boost") {
      page.boost = static_cast<uint8_t>(ParseNumber(value));
    } else if (name == "type") {
      page.fileType = static_cast<uint8_t>(ParseNumber(value));
    } else if (name == "cats") {
      page.categoryBits = BytesFromHex(value);
    } else if (name == "meta") {
      page.metaData = Unescape(value);
    } else {
      throw std::runtime_error("unknown page attribute: " + attribute);
    }
  }
  return page;
}

void ParseWord(std::string_view text, IndexBuilder& index) {
  const std::vector<std::string> parts = SplitBlanks(text);
  if (parts.empty()) throw std::runtime_error("a word line without a word");
  const std::string word = Unescape(parts[0]);
  if (parts.size() == 2 && parts[1] == "empty") {
    index.WordWithEmptyList(word);
    return;
  }
  if (parts.size() == 2 && parts[1].starts_with("offset=")) {
    index.WordWithOffset(word, parts[1].substr(7));
    return;
  }
  std::vector<Occurrence> occurrences;
  for (size_t i = 1; i < parts.size(); ++i) {
    const std::vector<std::string> numbers = SplitAt(parts[i], ':');
    if (numbers.size() < 2 || numbers.size() > 4) {
      throw std::runtime_error("not an occurrence: " + parts[i]);
    }
    Occurrence o;
    o.page = static_cast<uint32_t>(ParseNumber(numbers[0]));
    o.score = static_cast<uint8_t>(ParseNumber(numbers[1]));
    if (numbers.size() > 2) o.flags = static_cast<uint8_t>(ParseNumber(numbers[2], 16));
    if (numbers.size() > 3) {
      o.isToken = numbers[3].starts_with('#');
      o.position = ParseNumber(o.isToken ? numbers[3].substr(1) : numbers[3]);
    }
    occurrences.push_back(o);
  }
  index.Word(word, occurrences);
}

// A word's number, given as it is or by the word.
uint32_t ParseWordNumber(const std::string& text, const IndexBuilder& index) {
  const bool isNumber = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
  return isNumber ? static_cast<uint32_t>(ParseNumber(text)) : index.WordNumber(Unescape(text));
}

void ParseTokens(std::string_view text, IndexBuilder& index) {
  for (const std::string& part : SplitBlanks(text)) {
    const std::vector<std::string> times = SplitAt(part, '*');
    const std::vector<std::string> pieces = SplitAt(times.at(0), ':');
    PageTextToken token;
    token.word = ParseWordNumber(pieces.at(0), index);
    if (pieces.size() > 1) token.variant = static_cast<uint8_t>(ParseNumber(pieces[1]));
    const size_t count = times.size() > 1 ? ParseNumber(times[1]) : 1;
    index.Tokens(std::vector<PageTextToken>(count, token));
  }
}

void ParseSpelling(std::string_view text, IndexBuilder& index) {
  const std::vector<std::string> parts = SplitBlanks(text);
  if (parts.empty()) throw std::runtime_error("a spelling line without a key");
  std::vector<int64_t> words;
  for (size_t i = 1; i < parts.size(); ++i) words.push_back(ParseWordNumber(parts[i], index));
  index.Spelling(Unescape(parts[0]), words);
}

// Splits "KEY = VALUE".
void ParseSetting(std::string_view text, IndexBuilder& index) {
  const size_t equals = text.find(" = ");
  if (equals == std::string_view::npos) throw std::runtime_error("no \" = \" in the setting");
  index.Set(text.substr(0, equals), Unescape(text.substr(equals + 3)));
}

// A change to a finished file: NAME, then for some a number, then for some bytes.
void ParseChange(const std::string& verb, std::string_view text, IndexBuilder& index) {
  std::string_view rest;
  const std::string name = FirstWord(text, rest);
  if (verb == "omit") {
    index.Omit(name);
  } else if (verb == "directory") {
    index.Directory(name);
  } else if (verb == "link") {
    index.Link(name, rest);
  } else if (verb == "cut") {
    index.Cut(name, ParseNumber(std::string(rest)));
  } else if (verb == "append") {
    index.AppendTo(name, Unescape(rest));
  } else if (verb == "patch") {
    std::string_view bytes;
    const uint64_t offset = ParseNumber(FirstWord(rest, bytes));
    index.Patch(name, offset, Unescape(bytes));
  } else {
    throw std::runtime_error("unknown line");
  }
}

// The text of a "|" line, with its line feed unless a lone backslash takes it away.
std::string BlockLine(std::string_view line) {
  line.remove_prefix(1);
  size_t backslashes = 0;
  while (backslashes < line.size() && line[line.size() - 1 - backslashes] == '\\') ++backslashes;
  if (backslashes % 2 == 1) return Unescape(line.substr(0, line.size() - 1));
  return Unescape(line) + "\n";
}

// One recipe being read; `file` and `inSettings` say where "|" lines go.
struct RecipeReader {
  const std::filesystem::path& indexes;
  IndexBuilder& index;
  std::string file;
  std::string fileText;
  bool inSettings = false;

  void Line(std::string_view line) {
    if (line.starts_with('|')) {
      Block(line);
      return;
    }
    EndBlock();
    if (line.empty() || line[0] == '#') return;
    std::string_view rest;
    const std::string verb = FirstWord(line, rest);
    if (verb == "base") {
      ApplyRecipe(ReadWholeFile(indexes / std::string(rest)), indexes, index);
    } else if (verb == "set") {
      ParseSetting(rest, index);
    } else if (verb == "drop") {
      index.Drop(rest);
    } else if (verb == "settings") {
      inSettings = true;
    } else if (verb == "page") {
      index.Page(ParsePage(rest));
    } else if (verb == "word") {
      ParseWord(rest, index);
    } else if (verb == "variant") {
      index.Variant(Unescape(rest));
    } else if (verb == "tokens") {
      ParseTokens(rest, index);
    } else if (verb == "spelling") {
      ParseSpelling(rest, index);
    } else if (verb == "recommend") {
      std::string_view keywords;
      const uint64_t page = ParseNumber(FirstWord(rest, keywords));
      index.Recommend(page, Unescape(keywords));
    } else if (verb == "suggest") {
      index.Suggest(Unescape(rest));
    } else if (verb == "folder") {
      index.Folder(rest);
    } else if (verb == "file") {
      file = rest;
      index.File(file, "");
    } else {
      ParseChange(verb, rest, index);
    }
  }

  void Block(std::string_view line) {
    if (inSettings) {
      const std::string text = BlockLine(line);
      index.SettingsLine(std::string_view(text).substr(0, text.size() - 1));
    } else if (!file.empty()) {
      fileText += BlockLine(line);
      index.File(file, fileText);
    } else {
      throw std::runtime_error("a \"|\" line that belongs to nothing");
    }
  }

  void EndBlock() {
    file.clear();
    fileText.clear();
    inSettings = false;
  }
};

}  // namespace

std::string ReadWholeFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + path.string());
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string Unescape(std::string_view text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      out.push_back(text[i]);
      continue;
    }
    const char code = ++i < text.size() ? text[i] : '\0';
    if (code == '\\') {
      out.push_back('\\');
    } else if (code == 'n') {
      out.push_back('\n');
    } else if (code == 'r') {
      out.push_back('\r');
    } else if (code == 't') {
      out.push_back('\t');
    } else if (code == 's') {
      out.push_back(' ');
    } else if (code == 'x' && i + 2 < text.size()) {
      out += BytesFromHex(std::string(text.substr(i + 1, 2)));
      i += 2;
    } else {
      throw std::runtime_error("unknown escape in: " + std::string(text));
    }
  }
  return out;
}

void ApplyRecipe(std::string_view recipe, const std::filesystem::path& indexes,
                 IndexBuilder& index) {
  RecipeReader reader{indexes, index, {}, {}, false};
  for (const std::string& line : SplitLines(recipe)) {
    try {
      reader.Line(line);
    } catch (const std::exception& error) {
      throw std::runtime_error("in the index recipe: " + line + "\n  " + error.what());
    }
  }
}

Request ParseRequest(std::string_view text) {
  Request request;
  request.programPath = "index/search.cgi";
  request.environment["TZ"] = "UTC";
  for (const std::string& line : SplitLines(text)) {
    if (line.empty() || line[0] == '#') continue;
    std::string_view rest;
    const std::string verb = FirstWord(line, rest);
    if (const size_t equals = verb.find('='); equals != std::string::npos) {
      request.environment[line.substr(0, equals)] = Unescape(line.substr(equals + 1));
    } else if (verb == "program") {
      request.programPath = Unescape(rest);
    } else if (verb == "argument") {
      request.arguments.push_back(Unescape(rest));
    } else if (verb == "inside") {
      request.workingDirectory = std::string(rest);
    } else if (verb == "body") {
      request.body += Unescape(rest);
    } else {
      throw std::runtime_error("in the request: " + line);
    }
  }
  return request;
}

}  // namespace vela::support
