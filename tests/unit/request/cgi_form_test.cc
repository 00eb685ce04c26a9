// cgi_form_test.cc: decoding of the request into names and values, and looking them up.

#include "request/cgi_form.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/failing_allocation.h"
#include "unit/request/fake_request.h"

namespace vela {
namespace {

using namespace std::string_literals;

using Pairs = std::vector<std::pair<std::string, std::string>>;

Pairs PairsOf(const CgiForm& form) {
  Pairs pairs;
  for (int32_t i = 0; i < form.pairCount; ++i) {
    const CgiPair& pair = form.pairs[static_cast<size_t>(i)];
    pairs.emplace_back(pair.name, pair.value);
  }
  return pairs;
}

class CgiFormTest : public testing::Test {
 protected:
  void SetUp() override { signal(SIGPIPE, SIG_IGN); }
  void TearDown() override { g_failAllocationNumber = 0; }

  // The form of a GET request.
  CgiResult Read(const std::string& queryString) {
    const FakeRequest request(queryString);
    return CgiReadForm(form_, request.source());
  }

  CgiForm form_;
};

TEST_F(CgiFormTest, MessagesOfEveryCode) {
  const char* const messages[] = {"The function successfully performed",
                                  "Out-of-memory error",
                                  "MIME content type error",
                                  "Request method error",
                                  "I/O error",
                                  "Value was cut short",
                                  "Value was not a legal type",
                                  "Value contained no data",
                                  "No value was submitted"};
  for (int code = 0; code < 9; ++code) {
    EXPECT_EQ(CgiResultMessage(static_cast<CgiResult>(code)), messages[code]);
  }
  for (const int code : {-1, 9, 100, INT32_MAX, INT32_MIN}) {
    EXPECT_EQ(CgiResultMessage(static_cast<CgiResult>(code)), "") << code;
  }
}

TEST_F(CgiFormTest, TheCodes) {
  const CgiResult inOrder[] = {
      CgiResult::kOk,         CgiResult::kNoMemory, CgiResult::kContentType,
      CgiResult::kMethod,     CgiResult::kInput,    CgiResult::kCutShort,
      CgiResult::kNotANumber, CgiResult::kNoData,   CgiResult::kAbsent};
  for (int code = 0; code < 9; ++code) EXPECT_EQ(static_cast<int>(inOrder[code]), code);
}

TEST_F(CgiFormTest, AnUnsetVariableIsEmpty) {
  FakeRequest request;
  request.Set("THERE", "value");
  EXPECT_STREQ(CgiEnv(request.source(), "THERE"), "value");
  EXPECT_STREQ(CgiEnv(request.source(), "MISSING"), "");
}

TEST_F(CgiFormTest, APostWithACharsetSuffixIsRefused) {
  FakeRequest request;
  request.Post("a=1");
  request.Set("CONTENT_TYPE", "application/x-www-form-urlencoded; charset=UTF-8");
  const CgiResult result = CgiReadForm(form_, request.source());
  EXPECT_EQ(result, CgiResult::kContentType);
  EXPECT_EQ(CgiResultMessage(result), "MIME content type error");
  EXPECT_EQ(form_.pairCount, 0);
}

TEST_F(CgiFormTest, ARequestWithoutAMethodIsRefused) {
  FakeRequest request;
  request.Set("QUERY_STRING", "a=1");
  const CgiResult result = CgiReadForm(form_, request.source());
  EXPECT_EQ(result, CgiResult::kMethod);
  EXPECT_EQ(CgiResultMessage(result), "Request method error");
}

TEST_F(CgiFormTest, MethodsAndContentTypesAreComparedWhole) {
  const struct {
    const char* what;
    const char* method;
    const char* contentType;
    CgiResult expected;
  } cases[] = {
      {"get in small letters", "get", nullptr, CgiResult::kMethod},
      {"a longer method", "GETS", nullptr, CgiResult::kMethod},
      {"head", "HEAD", nullptr, CgiResult::kMethod},
      {"an empty method", "", nullptr, CgiResult::kMethod},
      {"post in small letters", "post", "application/x-www-form-urlencoded", CgiResult::kMethod},
      {"no content type", "POST", nullptr, CgiResult::kContentType},
      {"an empty content type", "POST", "", CgiResult::kContentType},
      {"a file upload", "POST", "multipart/form-data", CgiResult::kContentType},
      {"capitals", "POST", "Application/X-WWW-Form-URLEncoded", CgiResult::kContentType},
      {"the exact type and no body", "POST", "application/x-www-form-urlencoded", CgiResult::kOk},
      {"a get needs no content type", "GET", "text/plain", CgiResult::kOk},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    FakeRequest request;
    request.Set("REQUEST_METHOD", c.method);
    if (c.contentType != nullptr) request.Set("CONTENT_TYPE", c.contentType);
    EXPECT_EQ(CgiReadForm(form_, request.source()), c.expected);
  }
}

TEST_F(CgiFormTest, AnEmptyQueryStringGivesAnEmptyForm) {
  EXPECT_EQ(Read(""), CgiResult::kOk);
  EXPECT_EQ(form_.pairCount, 0);
  EXPECT_EQ(CgiFirstValue(form_, "a"), nullptr);
  int32_t number = 0;
  EXPECT_EQ(CgiGetInteger(form_, "a", number, 42), CgiResult::kAbsent);
  EXPECT_EQ(number, 42);
  EXPECT_EQ(CgiResultMessage(CgiResult::kAbsent), "No value was submitted");
  double real = 0;
  EXPECT_EQ(CgiGetReal(form_, "a", real, 1.5), CgiResult::kAbsent);
  EXPECT_EQ(real, 1.5);
  char text[8] = "before";
  EXPECT_EQ(CgiGetString(form_, "a", text, 7), CgiResult::kAbsent);
  EXPECT_STREQ(text, "");
  std::array<int32_t, 3> list = {};
  size_t count = 9;
  EXPECT_EQ(CgiGetIntegerList(form_, "a", list, 0, count), CgiResult::kAbsent);
  FakeRequest unset;
  unset.Set("REQUEST_METHOD", "GET");
  EXPECT_EQ(CgiReadForm(form_, unset.source()), CgiResult::kOk);
  EXPECT_EQ(form_.pairCount, 0);
}

TEST_F(CgiFormTest, ThreePairsOfOneName) {
  ASSERT_EQ(Read("a=1&a=2&a=3"), CgiResult::kOk);
  EXPECT_EQ(PairsOf(form_), (Pairs{{"a", "1"}, {"a", "2"}, {"a", "3"}}));
  EXPECT_STREQ(CgiFirstValue(form_, "a"), "1");
  EXPECT_STREQ(CgiNextValue(form_, "a"), "2");
  EXPECT_STREQ(CgiNextValue(form_, "a"), "3");
  EXPECT_EQ(CgiNextValue(form_, "a"), nullptr);
  EXPECT_EQ(CgiNextValue(form_, "a"), nullptr);
  EXPECT_STREQ(CgiFirstValue(form_, "a"), "1");
  EXPECT_EQ(CgiCountValues(form_, "a"), 3u);
  EXPECT_EQ(CgiCountValues(form_, "A"), 0u);
}

TEST_F(CgiFormTest, ANextLookupGoesOnBehindAnotherName) {
  ASSERT_EQ(Read("a=1&b=2&a=3&b=4"), CgiResult::kOk);
  EXPECT_STREQ(CgiFirstValue(form_, "b"), "2");
  EXPECT_STREQ(CgiNextValue(form_, "a"), "3");
  EXPECT_STREQ(CgiNextValue(form_, "b"), "4");
  EXPECT_EQ(CgiFirstValue(form_, "c"), nullptr);
  EXPECT_EQ(CgiNextValue(form_, "a"), nullptr) << "a search in vain has gone to the end";
}

TEST_F(CgiFormTest, NamesAreNotDecoded) {
  ASSERT_EQ(Read("vela%5Fquery=x&A=1"), CgiResult::kOk);
  EXPECT_STREQ(CgiFirstValue(form_, "vela%5Fquery"), "x");
  EXPECT_EQ(CgiFirstValue(form_, "vela_query"), nullptr);
  EXPECT_EQ(CgiFirstValue(form_, "a"), nullptr) << "names have their case";
}

TEST_F(CgiFormTest, Splits) {
  const struct {
    const char* what;
    std::string queryString;
    Pairs expected;
  } cases[] = {
      {"one", "a=1", {{"a", "1"}}},
      {"several, in their order", "b=2&a=1&c=", {{"b", "2"}, {"a", "1"}, {"c", ""}}},
      {"no equals sign", "abc", {}},
      {"no equals sign but an ampersand", "a&b&c", {}},
      {"a name with an ampersand", "x&y=1", {{"x&y", "1"}}},
      {"a leading ampersand", "&a=1", {{"&a", "1"}}},
      {"a trailing ampersand", "a=1&", {{"a", "1"}}},
      {"a rest without an equals sign", "a=1&b", {{"a", "1"}}},
      {"two ampersands", "a=1&&b=2", {{"a", "1"}, {"&b", "2"}}},
      {"empty values", "a=&b=&", {{"a", ""}, {"b", ""}}},
      {"an empty name", "=1&a=2", {{"", "1"}, {"a", "2"}}},
      {"an equals sign alone", "=", {{"", ""}}},
      {"an equals sign in a value that is not the last", "q=a=b&c=1", {{"q", "a=b"}, {"c", "1"}}},
      {"an escaped one in a value that is not the last", "q=a%3Db&c=1", {{"q", "a=b"}, {"c", "1"}}},
      {"the last value is split again", "q=a=b", {{"q", "a"}, {"a", "b"}}},
      {"the last value is split again at an escape", "q=a%3Db", {{"q", "a"}, {"a", "b"}}},
      {"and again", "q=a=b=c", {{"q", "a"}, {"a", "b"}, {"b", "c"}}},
      {"also behind others", "p=1&q=a%3Db", {{"p", "1"}, {"q", "a"}, {"a", "b"}}},
      {"what was split off is decoded twice", "q=a%3Db%2Bc", {{"q", "a"}, {"a", "b c"}}},
      {"names that were split off are decoded once",
       "x=%2541%3Dy=%2541",
       {{"x", "%41"}, {"%41", "y"}, {"y", "A"}}},
      {"a decoded ampersand ends a value that was split off",
       "q=a%3Db%26c%3Dd",
       {{"q", "a"}, {"a", "b"}, {"c", "d"}}},
      {"an equals sign that appears by the second decoding",
       "a=%3D%253D",
       {{"a", ""}, {"", ""}, {"", ""}}},
      {"a row of them", "x====", {{"x", ""}, {"", ""}, {"", ""}, {"", ""}}},
      {"a plus in what is split again", "a=b=c+d=e", {{"a", "b"}, {"b", "c d"}, {"c d", "e"}}},
      {"an escape that appears when it is split again", "x=%3D%25=+", {{"x", ""}, {"", "\xC0"}}},
      {"only an equals sign behind the ampersand sign goes on there",
       "a=1&b=2=3",
       {{"a", "1"}, {"b", "2"}, {"2", "3"}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    ASSERT_EQ(Read(c.queryString), CgiResult::kOk);
    EXPECT_EQ(PairsOf(form_), c.expected);
  }
}

TEST_F(CgiFormTest, DecodesValues) {
  const struct {
    const char* what;
    std::string raw;
    std::string expected;
  } cases[] = {
      {"plain", "abc", "abc"},
      {"plus signs", "a+b++c", "a b  c"},
      {"an escape", "a%20b", "a b"},
      {"capital and small digits", "%4A%4a%6A%6a", "JJjj"},
      {"high bytes", "caf%C3%A9", "caf\xC3\xA9"},
      {"an escaped plus stays a plus", "%2B", "+"},
      {"an escaped percent is not decoded again", "%2541", "%41"},
      {"an escaped ampersand", "a%26b=c", "a&b=c"},
      {"a digit above F", "%G1", "\x01"},
      {"a byte below the digits", "%-1", "\xD1"},
      {"letters at the end of the alphabet", "%zz", "S"},
      {"their capitals", "%ZZ", "S"},
      {"a percent sign as a digit", "%%41", "T1"},
      {"a percent sign as the second digit", "%4%", "5"},
      {"a plus is a blank before it is a digit", "%4+", "0"},
      {"high bytes count as below the letters", "%\xE9\xE9", "I"},
      {"one digit alone", "%4", "@"},
      {"one digit alone behind text", "ab%4", "ab@"},
      {"one letter alone", "%c", "\xC0"},
      {"a percent sign alone", "%", ""},
      {"a percent sign alone behind text", "100%", "100"},
      {"a NUL ends the value", "a%00b", "a"},
      {"a NUL by the formula", "a%0", "a"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    // Another pair behind it, as the last value would be split again.
    ASSERT_EQ(Read("x=" + c.raw + "&y=1"), CgiResult::kOk);
    EXPECT_EQ(PairsOf(form_), (Pairs{{"x", c.expected}, {"y", "1"}}));
    if (c.raw.find("=") != c.raw.npos) continue;
    ASSERT_EQ(Read("x=" + c.raw), CgiResult::kOk);
    EXPECT_EQ(PairsOf(form_), (Pairs{{"x", c.expected}}));
  }
}

TEST_F(CgiFormTest, NothingBehindADecodedNulIsSplit) {
  ASSERT_EQ(Read("q=a%00%3Db"), CgiResult::kOk);
  EXPECT_EQ(PairsOf(form_), (Pairs{{"q", "a"}}));
}

TEST_F(CgiFormTest, ManyPairs) {
  std::string queryString;
  for (int i = 0; i < 5000; ++i) queryString += "a=" + std::to_string(i) + "&";
  ASSERT_EQ(Read(queryString), CgiResult::kOk);
  EXPECT_EQ(form_.pairCount, 5000);
  ASSERT_EQ(Read("a" + std::string(3000, '=')), CgiResult::kOk);
  EXPECT_EQ(form_.pairCount, 3000);
  std::string escapes;
  for (int i = 0; i < 3000; ++i) escapes += "%3D";
  ASSERT_EQ(Read("a=" + escapes), CgiResult::kOk);
  EXPECT_EQ(form_.pairCount, 3001);
}

// Bodies.

TEST_F(CgiFormTest, ReadsABodyThroughAPipe) {
  FakeRequest request;
  request.Post("vela_query=a+b&vela_page=2");
  request.Set("QUERY_STRING", "vela_query=other");
  ASSERT_EQ(CgiReadForm(form_, request.source()), CgiResult::kOk);
  EXPECT_EQ(PairsOf(form_), (Pairs{{"vela_query", "a b"}, {"vela_page", "2"}}));
}

TEST_F(CgiFormTest, ReadsABodyThatComesInPieces) {
  const std::string value(300000, 'v');
  FakeRequest request;
  request.Post("a=" + value + "&b=1", std::to_string(value.size() + 6), 7001);
  ASSERT_EQ(CgiReadForm(form_, request.source()), CgiResult::kOk);
  EXPECT_EQ(PairsOf(form_), (Pairs{{"a", value}, {"b", "1"}}));
}

TEST_F(CgiFormTest, ABodyShorterThanAnnounced) {
  for (const char* announced : {"4", "1000", "1000000", "100000000"}) {
    SCOPED_TRACE(announced);
    FakeRequest request;
    request.Post("a=1", announced);
    const CgiResult result = CgiReadForm(form_, request.source());
    EXPECT_EQ(result, CgiResult::kInput);
    EXPECT_EQ(CgiResultMessage(result), "I/O error");
    EXPECT_EQ(form_.pairCount, 0);
    EXPECT_TRUE(form_.rawData.empty());
  }
}

TEST_F(CgiFormTest, ALongerBodyIsReadAsFarAsAnnounced) {
  FakeRequest request;
  request.Post("a=12345&b=1", "5");
  ASSERT_EQ(CgiReadForm(form_, request.source()), CgiResult::kOk);
  EXPECT_EQ(PairsOf(form_), (Pairs{{"a", "123"}}));
}

TEST_F(CgiFormTest, ContentLengths) {
  const struct {
    const char* what;
    std::string length;
    CgiResult result;
    Pairs pairs;
  } cases[] = {
      {"zero", "0", CgiResult::kOk, {}},
      {"empty", "", CgiResult::kOk, {}},
      {"no number", "many", CgiResult::kOk, {}},
      {"text behind the number", "3 bytes", CgiResult::kOk, {{"a", "1"}}},
      {"negative", "-1", CgiResult::kInput, {}},
      {"far negative", "-99999999999", CgiResult::kInput, {}},
      {"no room for the terminator", "2147483647", CgiResult::kNoMemory, {}},
      {"saturated", "99999999999", CgiResult::kNoMemory, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    FakeRequest request;
    request.Post("a=1", c.length);
    EXPECT_EQ(CgiReadForm(form_, request.source()), c.result);
    EXPECT_EQ(PairsOf(form_), c.pairs);
  }
}

TEST_F(CgiFormTest, OfANegativeLengthNothingIsRead) {
  FakeRequest request;
  request.Post("a=1", "-1");
  EXPECT_EQ(CgiReadForm(form_, request.source()), CgiResult::kInput);
  char rest[8] = {};
  EXPECT_EQ(read(request.source().bodyDescriptor, rest, 3), 3);
  EXPECT_STREQ(rest, "a=1");
}

TEST_F(CgiFormTest, ANulInABodyEndsIt) {
  FakeRequest request;
  request.Post("a=1\0b=2&c=3"s);
  ASSERT_EQ(CgiReadForm(form_, request.source()), CgiResult::kOk);
  EXPECT_EQ(PairsOf(form_), (Pairs{{"a", "1"}}));
}

// Numbers and texts.

TEST_F(CgiFormTest, TwoBlanksAndMinusSevenReadAsMinusSeven) {
  ASSERT_EQ(Read("n=++-7&z="), CgiResult::kOk);
  int32_t number = 0;
  EXPECT_EQ(CgiGetInteger(form_, "n", number, 42), CgiResult::kOk);
  EXPECT_EQ(number, -7);
}

TEST_F(CgiFormTest, ALoneSignIsNoNumber) {
  for (const char* sign : {"-", "%2B"}) {
    SCOPED_TRACE(sign);
    ASSERT_EQ(Read("n="s + sign + "&z="), CgiResult::kOk);
    int32_t number = 0;
    EXPECT_EQ(CgiGetInteger(form_, "n", number, 42), CgiResult::kNotANumber);
    EXPECT_EQ(number, 42);
  }
}

TEST_F(CgiFormTest, SevenDaysAreSeven) {
  ASSERT_EQ(Read("n=7+days&z="), CgiResult::kOk);
  int32_t number = 0;
  EXPECT_EQ(CgiGetInteger(form_, "n", number, 42), CgiResult::kOk);
  EXPECT_EQ(number, 7);
}

TEST_F(CgiFormTest, Integers) {
  const struct {
    const char* what;
    std::string raw;
    CgiResult result;
    int32_t expected;
  } cases[] = {
      {"plain", "12", CgiResult::kOk, 12},
      {"zero", "0", CgiResult::kOk, 0},
      {"negative", "-12", CgiResult::kOk, -12},
      {"a plus", "%2B12", CgiResult::kOk, 12},
      {"text behind", "12abc", CgiResult::kOk, 12},
      {"leading zeros", "0012", CgiResult::kOk, 12},
      {"a fraction is cut", "1.9", CgiResult::kOk, 1},
      {"hexadecimal is a zero", "0x1F", CgiResult::kOk, 0},
      {"blanks before", "++12", CgiResult::kOk, 12},
      {"empty", "", CgiResult::kNoData, 42},
      {"blanks alone", "+++", CgiResult::kNoData, 42},
      {"text", "abc", CgiResult::kNotANumber, 42},
      {"text before", "a12", CgiResult::kNotANumber, 42},
      {"two signs", "--5", CgiResult::kNotANumber, 42},
      {"a blank behind the sign", "-+5", CgiResult::kNotANumber, 42},
      {"only blanks are skipped, no tab", "%095", CgiResult::kNotANumber, 42},
      {"a tab alone is no blank", "%09", CgiResult::kNotANumber, 42},
      {"a point", ".5", CgiResult::kNotANumber, 42},
      {"the greatest", "2147483647", CgiResult::kOk, INT32_MAX},
      {"one above", "2147483648", CgiResult::kOk, INT32_MAX},
      {"far above", "99999999999", CgiResult::kOk, INT32_MAX},
      {"the smallest", "-2147483648", CgiResult::kOk, INT32_MIN},
      {"one below", "-2147483649", CgiResult::kOk, INT32_MIN},
      {"far below", "-99999999999999999999", CgiResult::kOk, INT32_MIN},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    ASSERT_EQ(Read("n=" + c.raw + "&z="), CgiResult::kOk);
    int32_t number = 7;
    EXPECT_EQ(CgiGetInteger(form_, "n", number, 42), c.result);
    EXPECT_EQ(number, c.expected);
  }
}

TEST_F(CgiFormTest, TheFirstValueOfANameCounts) {
  ASSERT_EQ(Read("n=x&n=5&z="), CgiResult::kOk);
  int32_t number = 0;
  EXPECT_EQ(CgiGetInteger(form_, "n", number, 42), CgiResult::kNotANumber);
  EXPECT_EQ(number, 42);
}

TEST_F(CgiFormTest, Reals) {
  const struct {
    const char* what;
    std::string raw;
    CgiResult result;
    double expected;
  } cases[] = {
      {"whole", "12", CgiResult::kOk, 12},
      {"a fraction", "1.25", CgiResult::kOk, 1.25},
      {"a point alone behind", "3.", CgiResult::kOk, 3},
      {"negative", "++-0.5", CgiResult::kOk, -0.5},
      {"text behind", "1.5km", CgiResult::kOk, 1.5},
      {"empty", "", CgiResult::kNoData, 4.5},
      {"blanks", "++", CgiResult::kNoData, 4.5},
      {"a sign", "-", CgiResult::kNotANumber, 4.5},
      {"text", "pi", CgiResult::kNotANumber, 4.5},
      {"the special words are text", "inf", CgiResult::kNotANumber, 4.5},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    ASSERT_EQ(Read("n=" + c.raw + "&z="), CgiResult::kOk);
    double number = 7;
    EXPECT_EQ(CgiGetReal(form_, "n", number, 4.5), c.result);
    EXPECT_EQ(number, c.expected);
  }
}

TEST_F(CgiFormTest, Strings) {
  const struct {
    const char* what;
    std::string raw;
    CgiResult result;
    std::string expected;
  } cases[] = {
      {"empty", "", CgiResult::kOk, ""},
      {"one below the limit", "1234", CgiResult::kOk, "1234"},
      {"at the limit", "12345", CgiResult::kOk, "12345"},
      {"one over", "123456", CgiResult::kCutShort, "12345"},
      {"decoded before it is measured", "%41%42%43", CgiResult::kOk, "ABC"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    ASSERT_EQ(Read("s=" + c.raw + "&z="), CgiResult::kOk);
    char text[16] = "before";
    EXPECT_EQ(CgiGetString(form_, "s", text, 5), c.result);
    EXPECT_EQ(text, c.expected);
  }
}

TEST_F(CgiFormTest, IntegerLists) {
  const struct {
    const char* what;
    std::string queryString;
    size_t capacity;
    int32_t maximum;
    CgiResult result;
    std::vector<int32_t> expected;
  } cases[] = {
      {"one", "a=4&z=", 5, 0, CgiResult::kOk, {4}},
      {"several in their order", "a=3&b=9&a=1&a=2&z=", 5, 0, CgiResult::kOk, {3, 1, 2}},
      {"no more than there is room", "a=1&a=2&a=3&z=", 2, 0, CgiResult::kOk, {1, 2}},
      {"an empty one is skipped", "a=1&a=&a=2&z=", 5, 0, CgiResult::kOk, {1, 2}},
      {"an empty first one", "a=&a=1&z=", 5, 0, CgiResult::kNoData, {}},
      {"not there", "b=1&z=", 5, 0, CgiResult::kAbsent, {}},
      {"text reads as 0", "a=x&a=y2&z=", 5, 0, CgiResult::kOk, {0, 0}},
      {"text behind the digits", "a=7x&z=", 5, 0, CgiResult::kOk, {7}},
      {"blanks alone read as 0", "a=+&z=", 5, 0, CgiResult::kOk, {0}},
      {"negative ones are kept", "a=-3&a=-4&z=", 5, 5, CgiResult::kOk, {-3, -4}},
      {"equal to the maximum", "a=5&a=5&z=", 5, 5, CgiResult::kOk, {5, 5}},
      {"above the maximum", "a=2&a=9&a=3&z=", 5, 5, CgiResult::kOk, {2, 3}},
      {"what is not kept takes no room", "a=1&a=9&a=2&a=3&z=", 2, 5, CgiResult::kOk, {1, 2}},
      {"the first above the maximum", "a=6&a=1&z=", 5, 5, CgiResult::kNoData, {}},
      {"a maximum of 0 is none", "a=1000000&z=", 5, 0, CgiResult::kOk, {1000000}},
      {"a negative maximum", "a=-1&z=", 5, -5, CgiResult::kNoData, {}},
      {"saturated", "a=99999999999&z=", 5, 0, CgiResult::kOk, {INT32_MAX}},
      {"saturated and above the maximum", "a=99999999999&z=", 5, 255, CgiResult::kNoData, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    ASSERT_EQ(Read(c.queryString), CgiResult::kOk);
    std::vector<int32_t> list(c.capacity);
    size_t count = 0;
    EXPECT_EQ(CgiGetIntegerList(form_, "a", list, c.maximum, count), c.result);
    if (c.result == CgiResult::kOk) {
      list.resize(count);
      EXPECT_EQ(list, c.expected);
    } else {
      EXPECT_EQ(list, std::vector<int32_t>(c.capacity)) << "nothing is stored";
    }
  }
}

TEST_F(CgiFormTest, WalksOverAllPairs) {
  ASSERT_EQ(Read("a=1&b=2&c=3"), CgiResult::kOk);
  CgiRewind(form_);
  EXPECT_STREQ(CgiCurrentName(form_), "a");
  EXPECT_STREQ(CgiCurrentValue(form_), "1");
  EXPECT_TRUE(CgiStep(form_));
  EXPECT_STREQ(CgiCurrentName(form_), "b");
  EXPECT_TRUE(CgiStep(form_));
  EXPECT_STREQ(CgiCurrentValue(form_), "3");
  EXPECT_FALSE(CgiStep(form_));
  EXPECT_EQ(CgiCurrentName(form_), nullptr);
  EXPECT_EQ(CgiCurrentValue(form_), nullptr);
  EXPECT_FALSE(CgiStep(form_));
  CgiRewind(form_);
  EXPECT_STREQ(CgiCurrentName(form_), "a");
}

TEST_F(CgiFormTest, EveryShellMetacharacterIsTakenOut) {
  std::string all = "a&b;c`d'e\"f|g*h?i~j<k>l^m(n)o[p]q{r}s$t\\u";
  CgiStripMetacharacters(all.data());
  EXPECT_STREQ(all.c_str(), "abcdefghijklmnopqrstu");
  std::string rest = "A 1-_+=!@#%,./:\n\xC3\xA9";
  const std::string before = rest;
  CgiStripMetacharacters(rest.data());
  EXPECT_EQ(rest, before);
  std::string nothing = "&&;;";
  CgiStripMetacharacters(nothing.data());
  EXPECT_STREQ(nothing.c_str(), "");
}

// Memory.

TEST_F(CgiFormTest, AFailedAllocationLeavesAnEmptyForm) {
  for (int32_t failing = 1; failing <= 2; ++failing) {
    SCOPED_TRACE(failing);
    g_failAllocationNumber = failing;
    EXPECT_EQ(Read("a=1&b=2"), CgiResult::kNoMemory);
    EXPECT_EQ(g_failAllocationNumber, 0);
    EXPECT_EQ(form_.pairCount, 0);
    EXPECT_TRUE(form_.rawData.empty());
    EXPECT_TRUE(form_.pairs.empty());
    FakeRequest request;
    request.Post("a=1&b=2");
    g_failAllocationNumber = failing;
    EXPECT_EQ(CgiReadForm(form_, request.source()), CgiResult::kNoMemory);
    EXPECT_EQ(g_failAllocationNumber, 0);
    EXPECT_EQ(form_.pairCount, 0);
  }
  g_failAllocationNumber = 3;
  EXPECT_EQ(Read("a=1&b=2"), CgiResult::kOk);
}

TEST_F(CgiFormTest, ASecondReadingReplacesTheFirst) {
  ASSERT_EQ(Read("a=1"), CgiResult::kOk);
  ASSERT_EQ(Read("b=2"), CgiResult::kOk);
  EXPECT_EQ(PairsOf(form_), (Pairs{{"b", "2"}}));
}

TEST_F(CgiFormTest, RefusedBodyIsReadToItsAnnouncedEnd) {
  FakeRequest request;
  request.Post(std::string(10000, 'x'), "9000", 1000);
  request.Set("CONTENT_TYPE", "text/plain");
  EXPECT_EQ(CgiReadForm(form_, request.source()), CgiResult::kContentType);
  CgiDiscardBody(request.source());
  std::string rest(10000, '\0');
  size_t left = 0;
  for (ssize_t got; (got = read(request.source().bodyDescriptor, rest.data(), rest.size())) > 0;) {
    left += static_cast<size_t>(got);
  }
  EXPECT_EQ(left, 1000u);
}

TEST_F(CgiFormTest, RefusedBodyMayEndEarlyOrNotBeThere) {
  FakeRequest request;
  request.Post("abc", "2147483647");
  CgiDiscardBody(request.source());
  char byte;
  EXPECT_EQ(read(request.source().bodyDescriptor, &byte, 1), 0);
  FakeRequest none("vela_query=a");
  none.Set("CONTENT_LENGTH", "5");
  CgiDiscardBody(none.source());  // its descriptor is none
}

}  // namespace
}  // namespace vela
