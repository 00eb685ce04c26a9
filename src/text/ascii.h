// ascii.h: character classes and digits of ASCII, independent of any locale. Bytes from 0x80 up are
// in none.
#pragma once

namespace vela {

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool IsUpper(char c) { return c >= 'A' && c <= 'Z'; }
constexpr bool IsLower(char c) { return c >= 'a' && c <= 'z'; }
constexpr bool IsAlpha(char c) { return IsUpper(c) || IsLower(c); }
constexpr bool IsAlphaNumeric(char c) { return IsAlpha(c) || IsDigit(c); }
// White space as the C library's formatted reading skips it.
constexpr bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool IsControl(char c) { return (c >= 0 && c < 0x20) || c == 0x7F; }
constexpr bool IsPunctuation(char c) { return c > 0x20 && c < 0x7F && !IsAlphaNumeric(c); }
constexpr char ToLowerAscii(char c) { return IsUpper(c) ? static_cast<char>(c + 0x20) : c; }
constexpr char ToUpperAscii(char c) { return IsLower(c) ? static_cast<char>(c - 0x20) : c; }
// The value of a hexadecimal digit of either case, or -1.
constexpr int HexDigitValue(char c) {
  if (IsDigit(c)) return c - '0';
  const char lower = ToLowerAscii(c);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

}  // namespace vela
