// cgi_form.h: the form of one request, decoded from the CGI environment.
//
// Names are kept as sent, values are decoded. Every operation gives a result code. The search
// itself has no use for CgiGetReal, CgiCountValues, the walk over all pairs and
// CgiStripMetacharacters; they complete the interface.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "text/owned_array.h"

namespace vela {

enum class CgiResult : int {
  kOk = 0,
  kNoMemory = 1,
  kContentType = 2,  // POST with another content type
  kMethod = 3,       // neither POST nor GET
  kInput = 4,        // the body is shorter than announced
  kCutShort = 5,     // the value is longer than the caller's limit
  kNotANumber = 6,
  kNoData = 7,  // the value is empty, or above the caller's greatest
  kAbsent = 8,  // the name is not in the request
};

// The message of a code; "" outside the list.
std::string_view CgiResultMessage(CgiResult result);

// One name and value; both point into the form's raw data.
struct CgiPair {
  const char* name = nullptr;   // NUL-terminated, not decoded
  const char* value = nullptr;  // NUL-terminated, decoded
};

// Owns the query string or body, cut up in place, and the pairs in the order of the request.
struct CgiForm {
  OwnedArray<char> rawData;
  OwnedArray<CgiPair> pairs;
  int32_t pairCount = 0;
  int32_t cursor = 0;  // where a continued lookup resumes
};

// Where the request is read from: the process environment and standard input, or a test's.
struct CgiSource {
  const char* (*environment)(const char* name) = nullptr;
  int bodyDescriptor = 0;
};

// The variable's value; "" when it is not set.
const char* CgiEnv(const CgiSource& source, const char* name);

// Reads the request of the environment (GET), or of the body (POST). The form is empty after a
// failure.
[[nodiscard]] CgiResult CgiReadForm(CgiForm& form, const CgiSource& source);

// Reads the body of a request that was refused, up to its announced length, and forgets it: some
// web servers lose the answer of a program that ends while they still send. Call it last of all.
void CgiDiscardBody(const CgiSource& source);

// Splits and decodes the raw data of `length` bytes, which a NUL follows. A name runs to the next
// "=", its value to the next "&". Kept: a value that ends the data and holds a "=" after decoding
// is split and decoded once more (golden request/last_pair_is_split_again).
[[nodiscard]] CgiResult CgiSplit(CgiForm& form, size_t length);

// The value of the first pair of that name, or null; CgiNextValue goes on behind the pair found.
const char* CgiFirstValue(CgiForm& form, const char* name);
const char* CgiNextValue(CgiForm& form, const char* name);

// Stores the number that the first value of `name` begins with, or `fallback` unless the result is
// kOk. Blanks may precede it and any text follow it.
CgiResult CgiGetInteger(CgiForm& form, const char* name, int32_t& out, int32_t fallback);

// The same for a decimal number with an optional point and fraction.
CgiResult CgiGetReal(CgiForm& form, const char* name, double& out, double fallback);

// Copies the first value of `name`. `out` has room for limit + 1 bytes; a longer value is cut there
// and gives kCutShort. Terminated in any case.
CgiResult CgiGetString(CgiForm& form, const char* name, char* out, size_t limit);

// Stores the numbers of all values of `name`, in request order, up to out.size(). The first value
// must be there and not above `maximum`, or nothing is stored; later ones that are empty or above
// are passed over. A maximum of 0 is none. `count` is what was stored.
CgiResult CgiGetIntegerList(CgiForm& form, const char* name, std::span<int32_t> out,
                            int32_t maximum, size_t& count);

// How many pairs have that name.
size_t CgiCountValues(const CgiForm& form, const char* name);

// Walking over all pairs: CgiRewind goes to the first, CgiStep to the next; false behind the last.
void CgiRewind(CgiForm& form);
bool CgiStep(CgiForm& form);
const char* CgiCurrentName(const CgiForm& form);   // null behind the last pair
const char* CgiCurrentValue(const CgiForm& form);  // null behind the last pair

// Takes every shell metacharacter out of the text.
void CgiStripMetacharacters(char* text);

}  // namespace vela
