// sample_documents.h: small documents of each kind, written out as the formats have them.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "support/zip_archive.h"

namespace vela::support {

inline constexpr char kOfficeTypes[] =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";

// "id", type, target of each.
inline std::string RelationshipsXml(const std::vector<std::array<std::string, 3>>& all) {
  std::string xml =
      "<Relationships xmlns='http://schemas.openxmlformats.org/package/2006/relationships'>";
  for (const auto& [id, type, target] : all) {
    xml += "<Relationship Id='" + id + "' Type='" + kOfficeTypes + type + "' Target='" + target +
           "'/>";
  }
  return xml + "</Relationships>";
}

// A document whose main part is `main` ("word/document.xml").
inline ZipParts OfficeParts(const std::string& main, const std::string& content) {
  return {{"_rels/.rels", RelationshipsXml({{"r1", "officeDocument", main},
                                            {"r2", "core-properties", "docProps/core.xml"}})},
          {"docProps/core.xml",
           "<cp:coreProperties xmlns:cp='c' xmlns:dc='d' xmlns:dcterms='t'>"
           "<dc:title>The  title</dc:title><dc:creator>Ann</dc:creator>"
           "<dc:description>What it is</dc:description>"
           "<dcterms:created>2020-01-02T03:04:05Z</dcterms:created>"
           "<dcterms:modified>2021-01-02T03:04:05Z</dcterms:modified></cp:coreProperties>"},
          {main, content}};
}

inline ZipParts WordParts(const std::string& body) {
  ZipParts parts =
      OfficeParts("word/document.xml", "<w:document xmlns:w='w' xmlns:mc='mc'><w:body>" + body +
                                           "</w:body></w:document>");
  parts.emplace_back(
      "word/_rels/document.xml.rels",
      RelationshipsXml({{"r1", "styles", "styles.xml"}, {"r2", "footnotes", "footnotes.xml"}}));
  parts.emplace_back(
      "word/styles.xml",
      "<w:styles xmlns:w='w'><w:style w:styleId='berschrift1'><w:name w:val='heading 1'/></w:style>"
      "<w:style w:styleId='Mine'><w:name w:val='Mine'/><w:basedOn w:val='berschrift1'/></w:style>"
      "<w:style w:styleId='Deep'><w:name w:val='x'/><w:pPr><w:outlineLvl w:val='2'/></w:pPr>"
      "</w:style></w:styles>");
  parts.emplace_back("word/footnotes.xml",
                     "<w:footnotes xmlns:w='w'><w:footnote><w:p><w:r><w:t>A note.</w:t></w:r></w:p>"
                     "</w:footnote></w:footnotes>");
  return parts;
}

inline ZipParts OpenDocumentParts(const std::string& body) {
  return {{"mimetype", "application/vnd.oasis.opendocument.text"},
          {"META-INF/manifest.xml", "<m:manifest xmlns:m='m'><m:file-entry/></m:manifest>"},
          {"meta.xml",
           "<o:document-meta xmlns:o='o' xmlns:dc='d' xmlns:meta='m'><o:meta>"
           "<dc:title>Its title</dc:title><meta:initial-creator>Ben</meta:initial-creator>"
           "<dc:date>2022-03-04T05:06:07</dc:date></o:meta></o:document-meta>"},
          {"content.xml",
           "<o:document-content xmlns:o='o' xmlns:text='t' xmlns:table='a' "
           "xmlns:draw='d' xmlns:p='p'><o:body>" +
               body + "</o:body></o:document-content>"}};
}

inline ZipParts EpubParts() {
  return {{"mimetype", "application/epub+zip"},
          {"META-INF/container.xml",
           "<container xmlns='c'><rootfiles><rootfile full-path='OPS/book.opf' "
           "media-type='application/oebps-package+xml'/></rootfiles></container>"},
          {"OPS/book.opf",
           "<package xmlns='p' xmlns:dc='d'><metadata><dc:title>A book</dc:title>"
           "<dc:creator>Cy</dc:creator><dc:language>en</dc:language>"
           "<meta property='dcterms:modified'>2019-05-06T07:08:09Z</meta></metadata>"
           "<manifest><item id='a' href='one%20.xhtml'/><item id='b' href='../two.xhtml'/>"
           "<item id='c' href='three.xhtml'/></manifest>"
           "<spine><itemref idref='b'/><itemref idref='c' linear='no'/><itemref idref='a'/>"
           "</spine></package>"},
          {"OPS/one .xhtml",
           "<html xmlns='http://www.w3.org/1999/xhtml'><body><p>Last.</p></body></html>"},
          {"two.xhtml",
           "<html xmlns='http://www.w3.org/1999/xhtml'><body><h1 id='x'>First</h1></body></html>"},
          {"OPS/three.xhtml",
           "<html xmlns='http://www.w3.org/1999/xhtml'><body><p>Aside</p></body></html>"}};
}

}  // namespace vela::support
