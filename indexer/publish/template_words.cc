#include "indexer/publish/template_words.h"

namespace vela::indexer {

namespace {

struct TemplateWords {
  std::string_view language;
  std::string_view code;  // of the lang attribute
  std::string_view search;
  std::string_view options;
};

constexpr TemplateWords kTemplateWords[] = {
    {"dutch", "nl", "Zoeken", "Opties"},       {"french", "fr", "Recherche", "Options"},
    {"german", "de", "Suche", "Optionen"},     {"italian", "it", "Ricerca", "Opzioni"},
    {"polish", "pl", "Wyszukiwanie", "Opcje"}, {"portuguese", "pt", "Pesquisa", "Opções"},
    {"russian", "ru", "Поиск", "Параметры"},   {"spanish", "es", "Búsqueda", "Opciones"},
    {"swedish", "sv", "Sök", "Alternativ"},
};

void Replace(std::string& text, std::string_view from, const std::string& to) {
  for (size_t at = text.find(from); at != text.npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

}  // namespace

void TranslateTemplate(std::string& page, std::string_view language) {
  for (const TemplateWords& words : kTemplateWords) {
    if (words.language != language) continue;
    const std::string search(words.search);
    Replace(page, "lang=\"en\"", "lang=\"" + std::string(words.code) + "\"");
    Replace(page, "<title>Search ", "<title>" + search + " ");
    Replace(page, "title=\"Search\"", "title=\"" + search + "\"");
    Replace(page, ">Search<", ">" + search + "<");
    Replace(page, ">Options<", ">" + std::string(words.options) + "<");
  }
}

}  // namespace vela::indexer
