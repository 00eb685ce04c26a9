#include "indexer/extract/declared_charset.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

using Names = std::vector<std::string>;

TEST(DeclaredCharset, TheMarkupNamesIt) {
  const struct {
    const char* what;
    std::string markup;
    Names expected;
  } kCases[] = {
      {"a meta element", "<META CharSet=' KOI8-R '>", {"koi8-r"}},
      {"without quotes", "<meta charset=koi8-r>", {"koi8-r"}},
      {"closed", "<meta charset=koi8-r />", {"koi8-r"}},
      {"its content",
       "<meta content='text/html; charset=koi8-r' http-equiv=Content-Type>",
       {"koi8-r"}},
      {"in quotes",
       "<meta http-equiv=content-type content='x;charset = \"koi8-r\" ;y'>",
       {"koi8-r"}},
      {"up to a semicolon", "<meta http-equiv=content-type content=charset=koi8-r;a>", {"koi8-r"}},
      {"a word before that is no key",
       "<meta http-equiv=content-type content='charset x charset=koi8-r'>",
       {"koi8-r"}},
      {"a quote without an end", "<meta http-equiv=content-type content='charset=\"koi8-r'>", {}},
      {"a description", "<meta name=description content='charset=koi8-r'>", {}},
      {"another header", "<meta http-equiv=refresh content='5;url=a?charset=koi8-r'>", {}},
      {"charset goes before content",
       "<meta charset=koi8-r http-equiv=content-type content='charset=utf-8'>",
       {"koi8-r"}},
      {"nothing", "<meta charset><meta charset=''><meta>", {}},
      {"several", "<meta charset=a><meta charset=b>", {"a", "b"}},
      {"a comment", "<!-- <meta charset=koi8-r> --><meta charset=utf-8>", {"utf-8"}},
      {"a comment without an end", "<!-- <meta charset=koi8-r>", {}},
      {"a script", "<script>s='<meta charset=koi8-r>'</script><meta charset=utf-8>", {"utf-8"}},
      {"a title", "<title><meta charset=koi8-r></title><meta charset=utf-8>", {"utf-8"}},
      {"the value of an attribute", "<p title='<meta charset=koi8-r>'>", {}},
      {"another element", "<metadata charset=koi8-r>", {}},
      {"an end tag", "</meta charset=koi8-r>", {}},
      {"a tag without an end", "<meta charset=koi8-r", {}},
      {"an XML declaration",
       "<?xml version=\"1.0\" encoding=\"KOI8-R\"?><meta charset=utf-8>",
       {"koi8-r", "utf-8"}},
      {"one behind the start", " <?xml version='1.0' encoding='koi8-r'?>", {}},
      {"one without quotes", "<?xml version='1.0' encoding=koi8-r?>", {}},
      {"behind 4 kB", std::string(4096, ' ') + "<meta charset=koi8-r>", {}},
      {"before", std::string(4000, ' ') + "<meta charset=koi8-r>", {"koi8-r"}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    std::vector<std::string> names;
    ForEachDeclaredCharset(c.markup, [&names](const std::string& name) {
      names.push_back(name);
      return false;
    });
    EXPECT_EQ(names, c.expected);
  }
}

TEST(DeclaredCharset, EndsAtTheNameThatIsTaken) {
  std::vector<std::string> names;
  ForEachDeclaredCharset("<meta charset=a><meta charset=b><meta charset=c>",
                         [&names](const std::string& name) {
                           names.push_back(name);
                           return name == "b";
                         });
  EXPECT_EQ(names, (std::vector<std::string>{"a", "b"}));
}

}  // namespace
}  // namespace vela::indexer
