// cgi_form_fuzz.cc: the form decoder. Input: a query string, or the same text as a body.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "program/fuzz/check.h"
#include "request/cgi_form.h"

namespace vela::fuzz {
namespace {

std::string g_text;  // what the environment of the request says
std::string g_length;
bool g_isPost = false;

const char* Environment(const char* name) {
  if (strcmp(name, "REQUEST_METHOD") == 0) return g_isPost ? "POST" : "GET";
  if (strcmp(name, "QUERY_STRING") == 0) return g_text.c_str();
  if (strcmp(name, "CONTENT_TYPE") == 0) return "application/x-www-form-urlencoded";
  if (strcmp(name, "CONTENT_LENGTH") == 0) return g_length.c_str();
  return nullptr;
}

void Read(CgiForm& form, bool isPost) {
  g_isPost = isPost;
  g_length = std::to_string(g_text.size());
  const int body = memfd_create("body", 0);
  VELA_CHECK(write(body, g_text.data(), g_text.size()) == static_cast<ssize_t>(g_text.size()));
  lseek(body, 0, SEEK_SET);
  VELA_CHECK(CgiReadForm(form, {Environment, body}) == CgiResult::kOk);
  close(body);
}

void CheckForm(CgiForm& form) {
  VELA_CHECK(form.pairCount >= 0 && static_cast<size_t>(form.pairCount) <= form.pairs.size());
  const char* begin = form.rawData.data();
  const char* end = begin + form.rawData.size();
  for (int32_t i = 0; i < form.pairCount; ++i) {
    const CgiPair& pair = form.pairs[static_cast<size_t>(i)];
    VELA_CHECK(pair.name >= begin && pair.name < end);
    VELA_CHECK(pair.value >= begin && pair.value < end);
    const char* first = CgiFirstValue(form, pair.name);
    VELA_CHECK(first != nullptr);
    size_t found = 1;
    while (CgiNextValue(form, pair.name) != nullptr) ++found;
    VELA_CHECK(found == CgiCountValues(form, pair.name));

    char copy[11] = {};
    const CgiResult cut = CgiGetString(form, pair.name, copy, 10);
    VELA_CHECK((cut == CgiResult::kCutShort) == (strlen(first) > 10));
    VELA_CHECK(strncmp(copy, first, 10) == 0);
    int32_t number = 0;
    if (CgiGetInteger(form, pair.name, number, -7) != CgiResult::kOk) VELA_CHECK(number == -7);
    int32_t numbers[4] = {};
    size_t count = 0;
    if (CgiGetIntegerList(form, pair.name, numbers, 9, count) == CgiResult::kOk) {
      VELA_CHECK(count >= 1 && count <= 4);
      VELA_CHECK(std::all_of(numbers, numbers + count, [](int32_t n) { return n <= 9; }));
    }
  }
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  // An environment variable ends at its first NUL.
  const std::string_view input = Text(data, size);
  g_text = input.substr(0, input.find('\0'));
  CgiForm get;
  CgiForm post;
  Read(get, false);
  Read(post, true);
  CheckForm(get);
  CheckForm(post);
  VELA_CHECK(get.pairCount == post.pairCount);
  for (int32_t i = 0; i < get.pairCount; ++i) {
    const auto at = static_cast<size_t>(i);
    VELA_CHECK(strcmp(get.pairs[at].name, post.pairs[at].name) == 0);
    VELA_CHECK(strcmp(get.pairs[at].value, post.pairs[at].value) == 0);
  }
  return 0;
}
