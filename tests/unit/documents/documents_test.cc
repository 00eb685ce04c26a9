#include "indexer/documents/documents.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "support/sample_documents.h"

namespace vela::indexer {
namespace {

using namespace support;

Reason Read(FileType type, const std::string& bytes, PageContent& page,
            const ReadingLimits& limits = {}) {
  ReadingBudget budget = StartReading(limits, bytes.size());
  return ReadDocument(type, bytes, budget, page);
}

// "2 Heading|Text": the runs of a page, each behind its heading level.
std::string RunsOf(FileType type, const ZipParts& parts) {
  PageContent page;
  const Reason reason = Read(type, ZipOf(parts), page);
  if (reason != Reason::kNone) return std::string(ReasonCode(reason));
  std::string all;
  for (const TextRun& run : page.body) {
    all += all.empty() ? "" : "|";
    if (run.headingLevel != 0) all += std::to_string(run.headingLevel) + " ";
    std::string text = run.text;
    while (text.ends_with(' ')) text.pop_back();
    all += text;
  }
  return all;
}

std::string Paragraph(const std::string& text, const std::string& properties = {}) {
  return "<w:p>" + properties + "<w:r><w:t>" + text + "</w:t></w:r></w:p>";
}

TEST(WordPage, TakesTheProperties) {
  PageContent page;
  ASSERT_EQ(Read(FileType::kWord, ZipOf(WordParts(Paragraph("x"))), page), Reason::kNone);
  EXPECT_EQ(page.title, "The title");
  EXPECT_EQ(page.description, "What it is");
  EXPECT_EQ(page.metas, (std::vector<MetaElement>{{"author", "Ann"},
                                                  {"dcterms.date", "2020-01-02T03:04:05Z"},
                                                  {"dcterms.modified", "2021-01-02T03:04:05Z"}}));
}

TEST(WordPage, TakesTheText) {
  const struct {
    const char* what;
    std::string body;
    std::string runs;  // before that of the note
  } cases[] = {
      {"paragraphs are parted", Paragraph("One.") + Paragraph("Two."), "One. Two. "},
      {"a heading by the name of its style",
       Paragraph("Head", "<w:pPr><w:pStyle w:val='berschrift1'/></w:pPr>") + Paragraph("text"),
       "1 Head|text "},
      {"by a style that rests on it",
       Paragraph("Head", "<w:pPr><w:pStyle w:val='Mine'/></w:pPr>") + Paragraph("text"),
       "1 Head|text "},
      {"by the outline level of a style, of the paragraph itself",
       Paragraph("A", "<w:pPr><w:pStyle w:val='Deep'/></w:pPr>") +
           Paragraph("B", "<w:pPr><w:pStyle w:val='Deep'/><w:outlineLvl w:val='1'/></w:pPr>"),
       "3 A|2 B|"},
      {"two headings in a row stay two",
       Paragraph("A", "<w:pPr><w:pStyle w:val='Deep'/></w:pPr>") +
           Paragraph("B", "<w:pPr><w:pStyle w:val='Deep'/></w:pPr>"),
       "3 A|3 B|"},
      {"a word in several runs is one",
       "<w:p><w:r><w:t>wo</w:t></w:r><w:r><w:t>rd</w:t></w:r></w:p>", "word "},
      {"tabs and breaks part words, stops of tabs do not",
       "<w:p><w:pPr><w:tabs><w:tab/></w:tabs></w:pPr><w:r><w:t>a</w:t><w:tab/><w:t>b</w:t><w:br/>"
       "<w:t>c</w:t><w:noBreakHyphen/><w:t>d</w:t></w:r></w:p>",
       "a b c-d "},
      {"deleted, moved and hidden text is none",
       "<w:p><w:del><w:r><w:t>x</w:t></w:r></w:del><w:moveFrom><w:r><w:t>y</w:t></w:r></w:moveFrom>"
       "<w:r><w:rPr><w:vanish/></w:rPr><w:t>z</w:t></w:r>"
       "<w:r><w:rPr><w:vanish w:val='0'/></w:rPr><w:t>seen</w:t></w:r></w:p>",
       "seen "},
      {"one of two forms of a text box counts",
       "<w:p><w:r><w:t>a</w:t><mc:AlternateContent><mc:Choice><w:p><w:r><w:t>box</w:t></w:r></w:p>"
       "</mc:Choice><mc:Fallback><w:p><w:r><w:t>box</w:t></w:r></w:p></mc:Fallback>"
       "</mc:AlternateContent></w:r></w:p>",
       "a box "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(RunsOf(FileType::kWord, WordParts(c.body)), c.runs + "A note.");
  }
}

TEST(WordPage, IsFoundWhereverItsMainPartLies) {
  ZipParts parts = OfficeParts("other/main.xml", "<w:d xmlns:w='w'>" + Paragraph("x") + "</w:d>");
  EXPECT_EQ(RunsOf(FileType::kWord, parts), "x");
  parts[0].second = RelationshipsXml({{"r1", "officeDocument", "/other/main.xml"}});
  EXPECT_EQ(RunsOf(FileType::kWord, parts), "x");
  parts[0].second = RelationshipsXml({{"r1", "officeDocument", "../../main.xml"}});
  EXPECT_EQ(RunsOf(FileType::kWord, parts), "damaged");
}

TEST(SlidesPage, TakesShownSlidesInTheirOrder) {
  ZipParts parts = OfficeParts("ppt/presentation.xml",
                               "<p:presentation xmlns:p='p' xmlns:r='r'><p:sldIdLst>"
                               "<p:sldId id='256' r:id='s2'/><p:sldId id='257' r:id='s1'/>"
                               "<p:sldId id='258' r:id='s3'/></p:sldIdLst></p:presentation>");
  parts.emplace_back("ppt/_rels/presentation.xml.rels",
                     RelationshipsXml({{"s1", "slide", "slides/a.xml"},
                                       {"s2", "slide", "slides/b.xml"},
                                       {"s3", "slide", "slides/c.xml"}}));
  const auto shape = [](const std::string& type, const std::string& text) {
    return "<p:sp><p:nvPr><p:ph type='" + type + "'/></p:nvPr><a:p><a:r><a:t>" + text +
           "</a:t></a:r></a:p></p:sp>";
  };
  const auto slide = [](const std::string& shapes, const std::string& more = {}) {
    return "<p:sld xmlns:p='p' xmlns:a='a'" + more + ">" + shapes + "</p:sld>";
  };
  parts.emplace_back("ppt/slides/a.xml", slide(shape("title", "Second") + shape("body", "Point") +
                                               shape("sldNum", "2") + shape("ftr", "Foot")));
  parts.emplace_back("ppt/slides/b.xml", slide(shape("ctrTitle", "Main")));
  parts.emplace_back("ppt/slides/c.xml", slide(shape("title", "Hidden"), " show='0'"));
  EXPECT_EQ(RunsOf(FileType::kSlides, parts), "1 Main|2 Second|Point");
  // The notes of the speaker stand behind their slide; those of a hidden one are hidden.
  const auto addNotes = [&](const std::string& name, const std::string& shapes) {
    parts.emplace_back("ppt/slides/_rels/" + name + ".xml.rels",
                       RelationshipsXml({{"n", "notesSlide", "../notes/" + name + ".xml"}}));
    parts.emplace_back("ppt/notes/" + name + ".xml",
                       "<p:notes xmlns:p='p' xmlns:a='a'>" + shapes + "</p:notes>");
  };
  addNotes("b", shape("sldImg", "") + shape("body", "Say hello") + shape("sldNum", "1"));
  addNotes("c", shape("body", "Not said"));
  addNotes("a", "<broken");
  EXPECT_EQ(RunsOf(FileType::kSlides, parts), "1 Main|Say hello|2 Second|Point");
}

TEST(SheetsPage, TakesTextsRowByRow) {
  ZipParts parts = OfficeParts(
      "xl/workbook.xml",
      "<workbook xmlns='x' xmlns:r='r'><sheets><sheet name='Prices' r:id='r1'/>"
      "<sheet name='Sheet2' r:id='r2'/><sheet name='H' state='hidden' r:id='r1'/></sheets>"
      "</workbook>");
  parts.emplace_back("xl/_rels/workbook.xml.rels",
                     RelationshipsXml({{"r1", "worksheet", "s1.xml"},
                                       {"r2", "worksheet", "s2.xml"},
                                       {"r3", "sharedStrings", "texts.xml"}}));
  parts.emplace_back("xl/texts.xml",
                     "<sst xmlns='x'><si><t>Bread</t></si><si><r><t>Ry</t></r><r><t>e</t></r>"
                     "<rPh><t>spoken</t></rPh></si></sst>");
  parts.emplace_back("xl/s1.xml",
                     "<worksheet xmlns='x'><row><c t='s'><v>0</v></c><c><v>4.5</v></c></row>"
                     "<row><c t='s'><v>1</v></c><c t='s'><v>2</v></c><c t='s'><v>-1</v></c></row>"
                     "</worksheet>");
  parts.emplace_back("xl/s2.xml",
                     "<worksheet xmlns='x'><row><c t='inlineStr'><is><t>Here</t></is></c>"
                     "<c t='str'><f>1+1</f><v>made</v></c></row></worksheet>");
  EXPECT_EQ(RunsOf(FileType::kSheets, parts), "2 Prices|Bread Rye Here made");
}

TEST(OpenDocumentPage, TakesPropertiesAndText) {
  PageContent page;
  ASSERT_EQ(Read(FileType::kOpenDocument,
                 ZipOf(OpenDocumentParts("<o:text><text:p>x</text:p></o:text>")), page),
            Reason::kNone);
  EXPECT_EQ(page.title, "Its title");
  EXPECT_EQ(page.metas, (std::vector<MetaElement>{{"author", "Ben"},
                                                  {"dcterms.modified", "2022-03-04T05:06:07"}}));
  const struct {
    const char* what;
    std::string body;
    std::string runs;
  } cases[] = {
      {"headings and paragraphs",
       "<text:h text:outline-level='2'>Head</text:h><text:p>a<text:s/>b<text:tab/>c</text:p>",
       "2 Head|a b c"},
      {"a note stands where it belongs to, without its number",
       "<text:p>a<text:note><text:note-citation>1</text:note-citation><text:note-body>"
       "<text:p>note</text:p></text:note-body></text:note>b</text:p>",
       "a note b"},
      {"deleted text and comments are none",
       "<text:tracked-changes><text:p>x</text:p></text:tracked-changes>"
       "<text:p>a<o:annotation><text:p>y</text:p></o:annotation></text:p>",
       "a"},
      {"a slide begins with its title",
       "<draw:page><draw:frame p:class='title'><text:p>T</text:p></draw:frame>"
       "<draw:frame><text:p>b</text:p></draw:frame><p:notes><text:p>n</text:p></p:notes>"
       "</draw:page>",
       "2 T|b n"},
      {"cells are what they show",
       "<o:spreadsheet><table:table table:name='Costs'><table:table-cell><text:p>4,50 "
       "\u20AC</text:p>"
       "</table:table-cell></table:table><table:table table:name='Sheet1'/></o:spreadsheet>",
       "2 Costs|4,50 \u20AC"},
      {"text outside of paragraphs is none", "stray<text:p>a</text:p>", "a"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(RunsOf(FileType::kOpenDocument, OpenDocumentParts(c.body)), c.runs);
  }
}

TEST(EpubPage, TakesChaptersInReadingOrder) {
  PageContent page;
  ASSERT_EQ(Read(FileType::kEpub, ZipOf(EpubParts()), page), Reason::kNone);
  EXPECT_EQ(page.title, "A book");
  EXPECT_EQ(page.metas,
            (std::vector<MetaElement>{{"author", "Cy"},
                                      {"language", "en"},
                                      {"article:modified_time", "2019-05-06T07:08:09Z"}}));
  EXPECT_EQ(RunsOf(FileType::kEpub, EpubParts()), "1 First|Last.");
  for (const TextRun& run : page.body) EXPECT_EQ(run.anchor, "");
}

TEST(Documents, TellWhyTheyAreNotRead) {
  const std::string word = ZipOf(WordParts(Paragraph("x")));
  std::string encrypted = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
  for (const char c : std::string("EncryptedPackage")) encrypted.append({c, '\0'});
  ZipParts sealed = OpenDocumentParts("");
  sealed[1].second = "<m:manifest xmlns:m='m'><m:encryption-data/></m:manifest>";
  ZipParts book = EpubParts();
  book.emplace_back("META-INF/encryption.xml",
                    "<e xmlns='e'><CipherReference URI='two.xhtml'/></e>");
  ZipParts fonts = EpubParts();
  fonts.emplace_back("META-INF/encryption.xml",
                     "<e xmlns='e'><CipherReference URI='OPS/f.ttf'/></e>");
  const struct {
    const char* what;
    FileType type;
    std::string bytes;
    Reason reason;
  } cases[] = {
      {"nothing", FileType::kWord, "", Reason::kDamaged},
      {"no archive", FileType::kWord, "<html>", Reason::kDamaged},
      {"cut short", FileType::kWord, word.substr(0, word.size() / 2), Reason::kDamaged},
      {"another archive", FileType::kWord, ZipOf({{"a.xml", "<a/>"}}), Reason::kDamaged},
      {"XML that is none", FileType::kWord, ZipOf(WordParts("<w:p>")), Reason::kDamaged},
      {"a container of an encrypted one", FileType::kSheets, encrypted, Reason::kEncrypted},
      {"a container of another kind", FileType::kWord, encrypted.substr(0, 8), Reason::kDamaged},
      {"encrypted parts", FileType::kOpenDocument, ZipOf(sealed), Reason::kEncrypted},
      {"an encrypted chapter", FileType::kEpub, ZipOf(book), Reason::kEncrypted},
      {"encrypted fonts", FileType::kEpub, ZipOf(fonts), Reason::kNone},
      {"a type that is not read here", FileType::kPdf, "%PDF", Reason::kDamaged},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    PageContent page;
    EXPECT_EQ(Read(c.type, c.bytes, page), c.reason);
    EXPECT_EQ(page.body.empty(), c.reason != Reason::kNone);
  }
}

TEST(Documents, GrowWithinTheirBudget) {
  const ReadingLimits small = {.bytes = size_t{1} << 20};
  PageContent page;
  // Ten megabytes of blanks pack into ten kilobytes.
  const std::string bomb = ZipOf(WordParts(Paragraph(std::string(10'000'000, ' '))));
  ASSERT_LT(bomb.size(), 100'000u);
  EXPECT_EQ(Read(FileType::kWord, bomb, page, small), Reason::kMarkupTooLarge);
  EXPECT_EQ(Read(FileType::kWord, bomb, page), Reason::kNone);
  // One long text that a thousand cells share.
  ZipParts sheets =
      OfficeParts("xl/w.xml", "<w xmlns='x' xmlns:r='r'><sheet name='S1' r:id='r1'/></w>");
  sheets.emplace_back("xl/_rels/w.xml.rels", RelationshipsXml({{"r1", "worksheet", "s.xml"},
                                                               {"r2", "sharedStrings", "t.xml"}}));
  sheets.emplace_back("xl/t.xml",
                      "<t xmlns='x'><si><t>" + std::string(100'000, 'x') + "</t></si></t>");
  std::string cells;
  for (int i = 0; i < 1000; ++i) cells += "<c t='s'><v>0</v></c>";
  sheets.emplace_back("xl/s.xml", "<s xmlns='x'><row>" + cells + "</row></s>");
  EXPECT_EQ(Read(FileType::kSheets, ZipOf(sheets), page, small), Reason::kMarkupTooLarge);
}

TEST(Documents, DeclareNoEntities) {
  ZipParts parts = WordParts("");
  parts[2].second =
      "<!DOCTYPE d [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;&a;&a;'>]>"
      "<w:d xmlns:w='w'><w:p><w:r><w:t>&b;</w:t></w:r></w:p></w:d>";
  EXPECT_EQ(RunsOf(FileType::kWord, parts), "damaged");
  parts[2].second =
      "<!DOCTYPE d [<!ENTITY a SYSTEM 'file:///etc/passwd'>]>"
      "<w:d xmlns:w='w'><w:p><w:r><w:t>&a;</w:t></w:r></w:p></w:d>";
  EXPECT_EQ(RunsOf(FileType::kWord, parts), "damaged");
  std::string deep;
  for (int i = 0; i < 3000; ++i) deep += "<w:p>";
  EXPECT_EQ(RunsOf(FileType::kWord, WordParts(deep)), "damaged");
}

// The part of a document of that type which holds its text: its number.
struct Kind {
  const char* what;
  FileType type;
  ZipParts parts;
  size_t main;
};
std::vector<Kind> Kinds() {
  ZipParts slides = OfficeParts("a.xml", "<p xmlns:r='r'><sldId r:id='r1'/></p>");
  slides.emplace_back("_rels/a.xml.rels", RelationshipsXml({{"r1", "slide", "s.xml"}}));
  slides.emplace_back("s.xml", "");
  ZipParts sheets = OfficeParts("a.xml", "<w xmlns:r='r'><sheet name='S1' r:id='r1'/></w>");
  sheets.emplace_back("_rels/a.xml.rels", RelationshipsXml({{"r1", "worksheet", "s.xml"}}));
  sheets.emplace_back("s.xml", "");
  return {{"word", FileType::kWord, WordParts(""), 2},
          {"slides", FileType::kSlides, slides, 4},
          {"sheets", FileType::kSheets, sheets, 4},
          {"open", FileType::kOpenDocument, OpenDocumentParts(""), 3},
          {"the properties of an open one", FileType::kOpenDocument, OpenDocumentParts("x"), 2},
          {"the package of a book", FileType::kEpub, EpubParts(), 2},
          {"a chapter", FileType::kEpub, EpubParts(), 4}};
}

TEST(Documents, OfEachKindEndWhateverTheirPartsAre) {
  const ReadingLimits small = {.bytes = size_t{2} << 20};
  for (const Kind& kind : Kinds()) {
    SCOPED_TRACE(kind.what);
    const auto reasonOf = [&](const std::string& part, const ReadingLimits& limits) {
      ZipParts parts = kind.parts;
      parts[kind.main].second = part;
      PageContent page;
      const Reason reason = Read(kind.type, ZipOf(parts), page, limits);
      size_t bytes = page.title.size() + page.description.size();
      for (const TextRun& run : page.body) bytes += run.text.size();
      EXPECT_LT(bytes, part.size() + 1000);
      return reason;
    };
    EXPECT_EQ(reasonOf("<d>" + std::string(10'000'000, ' ') + "</d>", small),
              Reason::kMarkupTooLarge);
    std::string deep;
    for (int i = 0; i < 100'000; ++i) deep += "<p>";
    (void)reasonOf(deep, small);
    // Each of these entities holds ten of the one before it: three gigabytes in all.
    std::string entities = "<!DOCTYPE d [<!ENTITY e0 'ten bytes!'>";
    for (int i = 1; i < 9; ++i) {
      const std::string before = "&e" + std::to_string(i - 1) + ";";
      entities += "<!ENTITY e" + std::to_string(i) + " '";
      for (int each = 0; each < 10; ++each) entities += before;
      entities += "'>";
    }
    (void)reasonOf(entities + "]><d><p>&e8;</p></d>", small);
    (void)reasonOf("<!DOCTYPE d [<!ENTITY a SYSTEM 'file:///etc/passwd'>]><d><p>&a;</p></d>", {});
    (void)reasonOf("\xFF\xFE<\0d", {});
    (void)reasonOf("", {});
  }
}

// Four gigabytes, or less than there is, where the archive says how large a part is.
TEST(Documents, WrongLengthsAreNoticed) {
  for (const Kind& kind : Kinds()) {
    SCOPED_TRACE(kind.what);
    ZipParts parts = kind.parts;
    parts[kind.main].second = "<d><p>Some text that packs &amp; unpacks</p></d>";
    const std::string whole = ZipOf(parts);
    for (const char* field : {"PK\1\2", "PK\3\4"}) {
      const size_t lengths = field[2] == '\1' ? 20 : 18;
      for (const char value : {'\0', '\1', '\xFF'}) {
        std::string changed = whole;
        for (size_t at = whole.find(field); at != whole.npos; at = whole.find(field, at + 4)) {
          changed.replace(at + lengths, 8, 8, value);
        }
        PageContent page;
        const Reason reason = Read(kind.type, changed, page, {.bytes = size_t{1} << 20});
        EXPECT_TRUE(lengths != 20 || reason != Reason::kNone);
        EXPECT_LT(page.body.size(), 3u);
      }
    }
  }
}

TEST(OpenDocumentPage, RepetitionsAreNotWrittenOut) {
  EXPECT_EQ(RunsOf(FileType::kOpenDocument,
                   OpenDocumentParts(
                       "<o:spreadsheet><table:table table:name='Ropes'>"
                       "<table:table-row table:number-rows-repeated='1048576'>"
                       "<table:table-cell table:number-columns-repeated='16384'><text:p>hemp"
                       "<text:s text:c='4000000000'/>wire</text:p></table:table-cell>"
                       "</table:table-row></table:table></o:spreadsheet>")),
            "2 Ropes|hemp wire");
}

TEST(OpenDocumentPage, LeavesOutWhatIsHidden) {
  const std::string styles =
      "<o:automatic-styles><o:style o:name='a' o:family='table'>"
      "<o:table-properties table:display='false'/></o:style>"
      "<o:style o:name='b' o:family='drawing-page'>"
      "<o:drawing-page-properties p:visibility='hidden'/></o:style>"
      "<o:style o:name='c' o:family='text'><o:text-properties text:display='none'/></o:style>"
      "<o:style o:name='d' o:family='paragraph'><o:text-properties text:display='none'/></o:style>"
      "<o:style o:name='e' o:family='text'><o:text-properties o:color='#000000'/></o:style>"
      "</o:automatic-styles>";
  EXPECT_EQ(RunsOf(FileType::kOpenDocument,
                   OpenDocumentParts(styles +
                                     "<text:p text:style-name='a'>Of another family,</text:p>"
                                     "<text:p text:style-name='d'>hidden</text:p>"
                                     "<text:p>shown <text:span text:style-name='c'>hidden"
                                     "<text:span>too</text:span></text:span>"
                                     "<text:span text:style-name='e'>as well</text:span></text:p>"
                                     "<o:spreadsheet><table:table table:name='Hidden ones' "
                                     "table:style-name='a'><text:p>hidden</text:p></table:table>"
                                     "<table:table table:name='Shown' table:style-name='c'>"
                                     "<text:p>cell</text:p></table:table></o:spreadsheet>"
                                     "<draw:page draw:style-name='b'><text:p>hidden</text:p>"
                                     "<p:notes><text:p>too</text:p></p:notes></draw:page>"
                                     "<draw:page><text:p>slide</text:p></draw:page>")),
            "Of another family, shown as well|2 Shown|cell slide");
}

TEST(OpenDocumentPage, FramesInFramesEnd) {
  std::string open;
  std::string close;
  for (int i = 0; i < 500; ++i) {
    open += "<draw:frame p:class='title'><text:p>";
    close += "</text:p></draw:frame>";
  }
  const std::string body = "<draw:page>" + open + "Rope" + close + "</draw:page>";
  EXPECT_EQ(RunsOf(FileType::kOpenDocument, OpenDocumentParts(body)), "2 Rope");
}

// However often a part is named, and however long the name of its folder is.
TEST(Documents, APartIsReadOnce) {
  const std::string folder(30'000, 'f');
  const ReadingLimits small = {.bytes = size_t{1} << 20, .factor = 0};
  std::string list;
  std::vector<std::array<std::string, 3>> relationships;
  std::string items;
  std::string chapters;
  for (int i = 0; i < 1000; ++i) {
    const std::string id = "r" + std::to_string(i);
    relationships.push_back({id, "slide", "s.xml"});
    list += "<sldId r:id='" + id + "'/><sheet name='S1' r:id='" + id + "'/>";
    items += "<item id='" + id + "' href='c.html'/>";
    chapters += "<itemref idref='" + id + "'/>";
  }
  const auto office = [&](const std::string& in) {
    ZipParts parts = OfficeParts(in + "a.xml", "<p xmlns:r='r'>" + list + "</p>");
    parts.emplace_back(in + "_rels/a.xml.rels", RelationshipsXml(relationships));
    parts.emplace_back(in + "s.xml",
                       "<s><sp><txBody><p><r><t>Once.</t></r></p></txBody></sp>"
                       "<row><c t='inlineStr'><is><t>Once.</t></is></c></row></s>");
    return parts;
  };
  const auto book = [&](const std::string& in) {
    return ZipParts{
        {"META-INF/container.xml", "<c><rootfile full-path='" + in +
                                       "b.opf' media-type='application/oebps-package+xml'/></c>"},
        {in + "b.opf", "<p>" + items + chapters + "</p>"},
        {in + "c.html", "<html><body><p>Once.</p></body></html>"}};
  };
  EXPECT_EQ(RunsOf(FileType::kSlides, office("")), "Once.");
  EXPECT_EQ(RunsOf(FileType::kSheets, office("")), "Once.");
  EXPECT_EQ(RunsOf(FileType::kEpub, book("")), "Once.");
  PageContent page;
  EXPECT_EQ(Read(FileType::kSlides, ZipOf(office(folder + "/")), page, small),
            Reason::kMarkupTooLarge);
  EXPECT_EQ(Read(FileType::kEpub, ZipOf(book(folder + "/")), page, small), Reason::kMarkupTooLarge);
}

// What a book names outside of its archive is not there.
TEST(EpubPage, ReadsNothingOutsideOfTheBook) {
  for (const char* reference : {"../../../../etc/passwd", "/etc/passwd", "file:///etc/passwd",
                                "http://127.0.0.1/x.html", "book.opf", ""}) {
    SCOPED_TRACE(reference);
    ZipParts parts = EpubParts();
    parts[2].second = "<p><manifest><item id='a' href='" + std::string(reference) +
                      "'/></manifest><spine><itemref idref='a'/></spine></p>";
    EXPECT_EQ(RunsOf(FileType::kEpub, parts), "");
    parts[1].second = "<c><rootfile full-path='" + std::string(reference) +
                      "' media-type='application/oebps-package+xml'/></c>";
    EXPECT_EQ(RunsOf(FileType::kEpub, parts), "damaged");
  }
}

TEST(Documents, EveryCutOfOneEnds) {
  const std::string word = ZipOf(WordParts(Paragraph("text")));
  for (size_t size = 0; size < word.size(); size += 7) {
    PageContent page;
    EXPECT_NE(Read(FileType::kWord, word.substr(0, size), page), Reason::kNone) << size;
  }
}

TEST(Documents, AChangedByteIsNoticedOrHarmless) {
  const std::string word = ZipOf(WordParts(Paragraph("text")));
  PageContent whole;
  ASSERT_EQ(Read(FileType::kWord, word, whole), Reason::kNone);
  for (size_t at = 0; at < word.size(); ++at) {
    std::string changed = word;
    changed[at] = static_cast<char>(changed[at] ^ 0x55);
    PageContent page;
    const Reason reason = Read(FileType::kWord, changed, page);
    EXPECT_TRUE(reason == Reason::kNone || reason == Reason::kDamaged ||
                reason == Reason::kEncrypted || reason == Reason::kMarkupTooLarge)
        << at;
    // What it says has a checksum; notes may be gone with the name of their part.
    if (reason != Reason::kNone) continue;
    ASSERT_EQ(page.body.size(), 1u) << at;
    EXPECT_TRUE(whole.body[0].text.starts_with(page.body[0].text)) << at;
  }
}

}  // namespace
}  // namespace vela::indexer
