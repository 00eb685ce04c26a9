// tree_construction.h: which elements are open where, as the HTML standard's tree construction has
// it, without a tree: elements and texts are told to HtmlContent as they come. Left out is what
// does not change the text or its order: formatting elements that a page leaves open are not opened
// anew in the next block, and the quirks of old document types are not looked at. Scripts are taken
// to run, so that noscript holds only characters.
//
// Every token takes a bounded number of steps, most of them one.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "indexer/extract/html_content.h"
#include "indexer/extract/html_tokens.h"
#include "indexer/extract/nesting.h"
#include "indexer/extract/reading_budget.h"

namespace vela::indexer {

class TreeConstruction {
 public:
  // All must outlive this.
  TreeConstruction(std::string_view html, HtmlContent& told, ReadingBudget& takenFrom)
      : tokens(html, takenFrom, told.askedAttributes()),
        content(told),
        budget(takenFrom),
        nesting(told, takenFrom) {}

  // To the end of the page, or until the budget is used up.
  void Run();

 private:
  // The insertion modes of the standard, by its names.
  enum class Mode : uint8_t {
    kBeforeHtml,
    kBeforeHead,
    kInHead,
    kAfterHead,
    kInBody,
    kInTable,
    kInCaption,
    kInColumnGroup,
    kInTableBody,
    kInRow,
    kInCell,
    kInSelect,
    kInSelectInTable,
    kInTemplate,
    kAfterBody,
    kInFrameset,
    kAfterFrameset,
  };

  // What became of a token.
  enum class Outcome : uint8_t { kDone, kAgain };  // kAgain: to take by the rules that hold now

  void Take(TokenKind kind);
  void TakeComment();
  bool IsForeignNow();
  bool TakesForeignRules(TokenKind kind);
  Outcome TakeForeign(TokenKind kind);
  Outcome TakeByMode(TokenKind kind);

  Outcome BeforeHtml(TokenKind kind);
  Outcome BeforeHead(TokenKind kind);
  Outcome InHead(TokenKind kind);
  Outcome AfterHead(TokenKind kind);
  Outcome InBody(TokenKind kind);
  Outcome InTable(TokenKind kind);
  Outcome InCaption(TokenKind kind);
  Outcome InColumnGroup(TokenKind kind);
  Outcome InTableBody(TokenKind kind);
  Outcome InRow(TokenKind kind);
  Outcome InCell(TokenKind kind);
  Outcome InSelect(TokenKind kind);
  Outcome InSelectInTable(TokenKind kind);
  Outcome InTemplate(TokenKind kind);
  Outcome AfterBody(TokenKind kind);
  Outcome InFrameset(TokenKind kind);
  Outcome AfterFrameset(TokenKind kind);

  Outcome BesideTable(TokenKind kind);
  void TableText();
  void FlushTableText();

  void BodyStart();
  bool PrepareBodyStart(Element element);
  void BodyEnd();
  void EndForm();
  void EndOpenLink();
  void StartForeign(Namespace space);
  void StartFrameset();
  bool PassBlanks(TokenKind kind);
  bool IsEndThatBegins() const;
  bool TakeHeadElement(TokenKind kind, const TextState& around);
  void StartTemplate(const TextState& around);

  void AddCharacters(const TextState& around);
  void OpenTablePart(Element element);
  void CloseToTableBody();
  void CloseToRow();
  void CloseCell();
  void ResetMode();

  HtmlTokens tokens;
  HtmlContent& content;
  ReadingBudget& budget;
  Nesting nesting;

  Mode mode = Mode::kBeforeHtml;
  std::vector<Mode> templateModes;  // of each open template, the mode for what is in it
  std::string_view text;            // of the token
  bool hasForm = false;             // a form began, and no end tag of a form came since
  TextState headState;              // what holds in the head, kept for what comes late
  bool framesetOk = true;           // nothing was shown yet that a frameset would not replace
  bool tableTextIsOut = false;      // text of a table since its last tag went before the table
  bool tableBlank = false;          // blanks since then, of which that is not known yet
};

}  // namespace vela::indexer
