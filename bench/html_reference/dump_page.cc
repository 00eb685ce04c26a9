// dump_page: what the indexer's HTML reader takes out of pages, a line of JSON for each file named
// on standard input. For the comparison of this folder.
#include <cinttypes>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>

#include "indexer/extract/html_page.h"

namespace {

void PutText(std::string_view text) {
  putchar('"');
  for (const char c : text) {
    if (c == '"' || c == '\\') putchar('\\');
    if (static_cast<unsigned char>(c) < 0x20) {
      printf("\\u%04x", static_cast<unsigned>(c));
    } else {
      putchar(c);
    }
  }
  putchar('"');
}

void PutField(const char* name, std::string_view text) {
  printf("\"%s\":", name);
  PutText(text);
  putchar(',');
}

void PutPage(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  vela::indexer::PageContent page;
  vela::indexer::ReadingBudget budget;
  const auto status = vela::indexer::ParseHtmlPage(bytes, budget, page);
  printf("{\"status\":%d,\"steps\":%" PRIu64 ",", static_cast<int>(status), budget.steps);
  PutField("title", page.title);
  PutField("canonical", page.canonical);
  PutField("base", page.base);
  PutField("time", page.time);
  printf("\"noindex\":%s,\"metas\":[",
         status == vela::indexer::Reason::kNoindex ? "true" : "false");
  for (size_t i = 0; i < page.metas.size(); ++i) {
    printf("%s[", i == 0 ? "" : ",");
    PutText(page.metas[i].first);
    putchar(',');
    PutText(page.metas[i].second);
    putchar(']');
  }
  printf("],\"body\":[");
  for (size_t i = 0; i < page.body.size(); ++i) {
    printf("%s[%d,", i == 0 ? "" : ",", page.body[i].headingLevel);
    PutText(page.body[i].text);
    putchar(']');
  }
  printf("]}\n");
}

}  // namespace

int main() {
  std::string path;
  while (std::getline(std::cin, path)) {
    PutPage(path);
    fflush(stdout);
  }
  return 0;
}
