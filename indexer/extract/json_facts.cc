#include "indexer/extract/json_facts.h"

#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "indexer/extract/declared_facts.h"
#include "indexer/extract/meta_elements.h"

namespace vela::indexer {

namespace {

constexpr size_t kFactLimit = 100;
constexpr size_t kValueBytesLimit = 2000;
constexpr size_t kNameBytesLimit = 100;
constexpr size_t kDepthLimit = 16;

// Takes what the parser finds: the page's own objects are gathered up to their end, as their type
// may come last.
class JsonFacts : public nlohmann::json_sax<nlohmann::json> {
 public:
  explicit JsonFacts(PageContent& filled) : page_(filled) {}

  bool null() override { return true; }
  bool boolean(bool value) override { return Value(value ? "true" : "false"); }
  bool number_integer(number_integer_t value) override { return Value(std::to_string(value)); }
  bool number_unsigned(number_unsigned_t value) override { return Value(std::to_string(value)); }
  bool number_float(number_float_t, const string_t& written) override { return Value(written); }
  bool string(string_t& value) override { return Value(value); }
  bool binary(binary_t&) override { return true; }
  bool start_object(std::size_t) override { return Begin(false); }
  bool key(string_t& name) override {
    open_.back().member = name.size() <= kNameBytesLimit ? LocalName(name) : std::string();
    return true;
  }
  bool end_object() override {
    EndObject();
    return true;
  }
  bool start_array(std::size_t) override { return Begin(true); }
  bool end_array() override {
    open_.pop_back();
    return true;
  }
  bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override {
    return false;
  }

  // To call once, when all was read or a fault ended it.
  void Finish() {
    while (!open_.empty()) {
      if (open_.back().isList) {
        open_.pop_back();
      } else {
        EndObject();
      }
    }
  }

 private:
  struct Open {
    bool isList = false;
    bool isOwn = false;       // an object that may tell of the page, or a list of such
    bool isBeside = false;    // by its type it does not
    std::string name = {};    // of what it is a value of, with a dot behind it; empty: an own one
    std::string member = {};  // under way; of a list empty
    // By what an object that is a value is known.
    std::string value = {};
    std::string called = {};
    std::string url = {};
    std::vector<MetaElement> facts = {};  // of an own object
  };

  // The name of a value that stands here; empty for none.
  std::string NameHere() const {
    const Open& at = open_.back();
    if (at.isList) return at.name.substr(0, at.name.size() - (at.name.empty() ? 0 : 1));
    return at.member.empty() || at.member[0] == '@' ? std::string() : at.name + at.member;
  }

  bool Begin(bool isList) {
    if (open_.size() == kDepthLimit) return false;
    Open next = {.isList = isList, .isOwn = open_.empty()};
    if (!open_.empty()) {
      const Open& at = open_.back();
      const bool leadsOn = at.isList || at.member == "@graph" || at.member == "mainentity";
      next.isOwn = at.isOwn && leadsOn;
      if (!next.isOwn) next.name = NameHere() + '.';
    }
    open_.push_back(std::move(next));
    return true;
  }

  bool Value(const std::string& value) {
    if (open_.empty() || value.empty() || value.size() > kValueBytesLimit) return true;
    Open& at = open_.back();
    // A list of types is the type of the object around it.
    Open& object = at.isList && open_.size() > 1 ? open_[open_.size() - 2] : at;
    if (!object.isList && object.member == "@type") {
      const std::string type = LocalName(value);
      object.isBeside = object.isBeside || !TellsOfPage(type);
      if (object.isOwn) object.facts.emplace_back("json-ld:type", value);
      return true;
    }
    const bool isUrl = at.member == "url" || at.member == "contenturl";
    if (at.value.empty() && at.member == "@value") at.value = value;
    if (at.called.empty() && at.member == "name") at.called = value;
    if (at.url.empty() && isUrl) at.url = value;
    Add(NameHere(), value);
    return true;
  }

  // To the own object that is open.
  void Add(const std::string& name, const std::string& value) {
    const bool isNamed = !name.empty() && name.front() != '.' && name.size() <= kNameBytesLimit;
    if (!isNamed || value.empty()) return;
    const auto own = std::find_if(open_.rbegin(), open_.rend(),
                                  [](const Open& each) { return each.isOwn && !each.isList; });
    if (own == open_.rend() || own->facts.size() == kFactLimit) return;
    own->facts.emplace_back("json-ld:" + name, value);
  }

  void EndObject() {
    const Open ended = std::move(open_.back());
    open_.pop_back();
    if (!ended.isOwn) {
      const std::string name = ended.name.substr(0, ended.name.size() - 1);
      const bool isPicture = name.ends_with("image") && !ended.url.empty();
      const std::string& known = isPicture || ended.called.empty() ? ended.url : ended.called;
      Add(name, ended.value.empty() ? known : ended.value);
    } else if (!ended.isBeside) {
      for (const auto& [name, value] : ended.facts) {
        if (added_++ < kFactLimit) AddMeta(name, value, page_);
      }
    }
  }

  PageContent& page_;
  std::vector<Open> open_;
  size_t added_ = 0;
};

}  // namespace

void AddJsonFacts(std::string_view json, ReadingBudget& budget, PageContent& page) {
  // A script may be wrapped into a comment or a section of characters, whose end is a fault behind
  // all that counts.
  constexpr std::string_view kSection = "<![CDATA[";
  const size_t section = json.find(kSection);
  if (section < json.find('{')) json.remove_prefix(section + kSection.size());
  const size_t begin = json.find_first_of("{[");
  if (begin == json.npos) return;
  if (!TakeBytes(budget, json.size()) || !TakeSteps(budget, json.size())) return;
  std::string text(json.substr(begin));
  // A line end inside of a text is a fault that people make; elsewhere it is a blank as well.
  std::ranges::replace_if(
      text, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
  JsonFacts facts(page);
  nlohmann::json::sax_parse(text, &facts, nlohmann::json::input_format_t::json, true);
  facts.Finish();
}

}  // namespace vela::indexer
