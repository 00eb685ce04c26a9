#include "text/presentation_forms.h"

#include <algorithm>
#include <iterator>

#include "text/utf8.h"

namespace vela {

namespace {

// Forms that stand side by side: of one letter alone, at the end, the beginning and in the middle
// of a word, as far as it has them.
struct FormRange {
  char32_t first;
  char32_t last;
  std::string_view letters;
};

// In order.
constexpr FormRange kForms[] = {
    // Letters of Persian, Urdu and other languages.
    {0xFB50, 0xFB51, "\u0671"},
    {0xFB52, 0xFB55, "\u067B"},
    {0xFB56, 0xFB59, "\u067E"},
    {0xFB5A, 0xFB5D, "\u0680"},
    {0xFB5E, 0xFB61, "\u067A"},
    {0xFB62, 0xFB65, "\u067F"},
    {0xFB66, 0xFB69, "\u0679"},
    {0xFB6A, 0xFB6D, "\u06A4"},
    {0xFB6E, 0xFB71, "\u06A6"},
    {0xFB72, 0xFB75, "\u0684"},
    {0xFB76, 0xFB79, "\u0683"},
    {0xFB7A, 0xFB7D, "\u0686"},
    {0xFB7E, 0xFB81, "\u0687"},
    {0xFB82, 0xFB83, "\u068D"},
    {0xFB84, 0xFB85, "\u068C"},
    {0xFB86, 0xFB87, "\u068E"},
    {0xFB88, 0xFB89, "\u0688"},
    {0xFB8A, 0xFB8B, "\u0698"},
    {0xFB8C, 0xFB8D, "\u0691"},
    {0xFB8E, 0xFB91, "\u06A9"},
    {0xFB92, 0xFB95, "\u06AF"},
    {0xFB96, 0xFB99, "\u06B3"},
    {0xFB9A, 0xFB9D, "\u06B1"},
    {0xFB9E, 0xFB9F, "\u06BA"},
    {0xFBA0, 0xFBA3, "\u06BB"},
    {0xFBA4, 0xFBA5, "\u06C0"},
    {0xFBA6, 0xFBA9, "\u06C1"},
    {0xFBAA, 0xFBAD, "\u06BE"},
    {0xFBAE, 0xFBAF, "\u06D2"},
    {0xFBB0, 0xFBB1, "\u06D3"},
    {0xFBD3, 0xFBD6, "\u06AD"},
    {0xFBD7, 0xFBD8, "\u06C7"},
    {0xFBD9, 0xFBDA, "\u06C6"},
    {0xFBDB, 0xFBDC, "\u06C8"},
    {0xFBDE, 0xFBDF, "\u06CB"},
    {0xFBE0, 0xFBE1, "\u06C5"},
    {0xFBE2, 0xFBE3, "\u06C9"},
    {0xFBE4, 0xFBE7, "\u06D0"},
    {0xFBE8, 0xFBE9, "\u0649"},
    {0xFBFC, 0xFBFF, "\u06CC"},
    // Those of Arabic.
    {0xFE80, 0xFE80, "\u0621"},
    {0xFE81, 0xFE82, "\u0622"},
    {0xFE83, 0xFE84, "\u0623"},
    {0xFE85, 0xFE86, "\u0624"},
    {0xFE87, 0xFE88, "\u0625"},
    {0xFE89, 0xFE8C, "\u0626"},
    {0xFE8D, 0xFE8E, "\u0627"},
    {0xFE8F, 0xFE92, "\u0628"},
    {0xFE93, 0xFE94, "\u0629"},
    {0xFE95, 0xFE98, "\u062A"},
    {0xFE99, 0xFE9C, "\u062B"},
    {0xFE9D, 0xFEA0, "\u062C"},
    {0xFEA1, 0xFEA4, "\u062D"},
    {0xFEA5, 0xFEA8, "\u062E"},
    {0xFEA9, 0xFEAA, "\u062F"},
    {0xFEAB, 0xFEAC, "\u0630"},
    {0xFEAD, 0xFEAE, "\u0631"},
    {0xFEAF, 0xFEB0, "\u0632"},
    {0xFEB1, 0xFEB4, "\u0633"},
    {0xFEB5, 0xFEB8, "\u0634"},
    {0xFEB9, 0xFEBC, "\u0635"},
    {0xFEBD, 0xFEC0, "\u0636"},
    {0xFEC1, 0xFEC4, "\u0637"},
    {0xFEC5, 0xFEC8, "\u0638"},
    {0xFEC9, 0xFECC, "\u0639"},
    {0xFECD, 0xFED0, "\u063A"},
    {0xFED1, 0xFED4, "\u0641"},
    {0xFED5, 0xFED8, "\u0642"},
    {0xFED9, 0xFEDC, "\u0643"},
    {0xFEDD, 0xFEE0, "\u0644"},
    {0xFEE1, 0xFEE4, "\u0645"},
    {0xFEE5, 0xFEE8, "\u0646"},
    {0xFEE9, 0xFEEC, "\u0647"},
    {0xFEED, 0xFEEE, "\u0648"},
    {0xFEEF, 0xFEF0, "\u0649"},
    {0xFEF1, 0xFEF4, "\u064A"},
    // Lam and alef, written as one.
    {0xFEF5, 0xFEF6, "\u0644\u0622"},
    {0xFEF7, 0xFEF8, "\u0644\u0623"},
    {0xFEF9, 0xFEFA, "\u0644\u0625"},
    {0xFEFB, 0xFEFC, "\u0644\u0627"},
};

// The first byte of every form.
constexpr char kLeadByte = '\xEF';

}  // namespace

std::string_view LettersOfForm(char32_t c) {
  if (c < std::begin(kForms)->first) return {};
  const FormRange* found =
      std::ranges::lower_bound(kForms, c, std::ranges::less(), &FormRange::last);
  return found != std::end(kForms) && c >= found->first ? found->letters : std::string_view();
}

bool MayHoldForms(std::string_view text) { return text.find(kLeadByte) != text.npos; }

size_t WriteWithoutForms(std::string_view text, char* out, size_t capacity) {
  size_t written = 0;
  size_t length = 1;
  for (size_t at = 0; at < text.size(); at += length) {
    const std::string_view letters = LettersOfForm(DecodeCharacter(text, at, length));
    const std::string_view bytes = letters.empty() ? text.substr(at, length) : letters;
    if (bytes.size() > capacity - written) break;
    bytes.copy(out + written, bytes.size());
    written += bytes.size();
  }
  return written;
}

}  // namespace vela
