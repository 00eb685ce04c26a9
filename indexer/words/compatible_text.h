// compatible_text.h: characters that stand for others, as those: "m2" for "m²", "カメラ" for "ｶﾒﾗ",
// "iv" for "ⅳ", "5キロ" for "5㌔".
#pragma once

#include <string>
#include <string_view>

namespace vela::indexer {

// `word` (UTF-8) in compatibility form (NFKC); empty when it already is.
std::string CompatibleText(std::string_view word);

}  // namespace vela::indexer
