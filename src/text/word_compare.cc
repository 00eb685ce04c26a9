#include "text/word_compare.h"

#include "text/lower.h"

namespace vela {

namespace {

// Gives the bytes of a word one by one, lower-cased or as they are.
class ByteSource {
 public:
  ByteSource(std::string_view text, bool lower, bool utf8)
      : text_(text), lower_(lower), utf8_(utf8) {}

  // The next byte, -1 at the end.
  int Next() {
    if (pending_ == lowered_.length) {
      if (text_.empty()) return -1;
      Refill();
    }
    return static_cast<unsigned char>(lowered_.bytes[pending_++]);
  }

 private:
  void Refill() {
    pending_ = 0;
    if (lower_ && utf8_) {
      lowered_ = LowerCharacter(text_);
    } else {
      lowered_.bytes[0] = text_[0];
      lowered_.length = 1;
      if (lower_) LowerSingleByte(lowered_.bytes, 1);
    }
    text_.remove_prefix(lowered_.length);
  }

  std::string_view text_;
  bool lower_;
  bool utf8_;
  LoweredCharacter lowered_;
  size_t pending_ = 0;
};

int Compare(ByteSource a, ByteSource b) {
  for (;;) {
    const int left = a.Next();
    const int right = b.Next();
    if (left != right) return left < right ? -1 : 1;
    if (left < 0) return 0;
  }
}

}  // namespace

int WordCompare(TextMode mode, std::string_view a, std::string_view b) {
  return Compare({a, mode.foldCase, mode.utf8}, {b, mode.foldCase, mode.utf8});
}

int WordCompareN(TextMode mode, std::string_view a, std::string_view b, size_t length) {
  return WordCompare(mode, a.substr(0, length), b.substr(0, length));
}

int WordCompareLowered(TextMode mode, std::string_view a, std::string_view b) {
  return Compare({a, false, mode.utf8}, {b, mode.foldCase, mode.utf8});
}

}  // namespace vela
