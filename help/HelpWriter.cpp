#include "HelpWriter.h"

#include <QDir>
#include <QSaveFile>
#include <QXmlStreamWriter>
#include <cmark-gfm-core-extensions.h>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

struct TParserFree {
  void operator()(cmark_parser* aParser) const { cmark_parser_free(aParser); }
};
struct TNodeFree {
  void operator()(cmark_node* aNode) const { cmark_node_free(aNode); }
};
struct TTextFree {
  void operator()(char* aText) const { std::free(aText); }
};

// Markdown with tables to HTML.
QString ToHtml(const QString& aText) {
  cmark_gfm_core_extensions_ensure_registered();
  const std::unique_ptr<cmark_parser, TParserFree> parser(cmark_parser_new(CMARK_OPT_DEFAULT));
  cmark_parser_attach_syntax_extension(parser.get(), cmark_find_syntax_extension("table"));
  const QByteArray utf8 = aText.toUtf8();
  cmark_parser_feed(parser.get(), utf8.constData(), static_cast<size_t>(utf8.size()));
  const std::unique_ptr<cmark_node, TNodeFree> document(cmark_parser_finish(parser.get()));
  const std::unique_ptr<char, TTextFree> html(
      cmark_render_html(document.get(), CMARK_OPT_DEFAULT, cmark_parser_get_syntax_extensions(parser.get())));
  return QString::fromUtf8(html.get())
      .replace(u"<table>"_s, u"<table border=\"1\" cellspacing=\"0\" cellpadding=\"4\">"_s);
}

QString Link(const THelpPage& aPage) {
  return u"<a href=\"%1.htm\">%2</a>"_s.arg(aPage.iName, aPage.iTitle.toHtmlEscaped());
}

// The same words on every page that tells of something yet to come.
QString Status(const THelpPage& aPage) {
  if (!aPage.iMissing) return {};
  return u"<p class=\"status\"><b>Not in this version.</b> A later one will have it; until then the command "
         u"for it says so and does nothing.</p>\n"_s;
}

// An id may stand only once.
void WriteKeyword(QXmlStreamWriter& aXml, const QString& aName, const QString& aId, const THelpPage& aPage) {
  aXml.writeEmptyElement(u"keyword"_s);
  aXml.writeAttribute(u"name"_s, aName);
  if (!aId.isEmpty()) aXml.writeAttribute(u"id"_s, aId);
  aXml.writeAttribute(u"ref"_s, aPage.iName + u".htm"_s);
}

} // namespace

bool HelpWriter::Write() const {
  if (!QDir(iFolder).removeRecursively() || !QDir().mkpath(iFolder)) return false;
  for (int i = 0; i < iBook.Pages().size(); ++i)
    if (!WriteFile(iBook.Pages()[i].iName + u".htm"_s, Html(i).toUtf8())) return false;
  return WriteFile(u"orvelles.qhp"_s, Project());
}

bool HelpWriter::WriteFile(const QString& aName, const QByteArray& aContent) const {
  QSaveFile file(iFolder + u'/' + aName);
  return file.open(QIODevice::WriteOnly) && file.write(aContent) == aContent.size() && file.commit();
}

QString HelpWriter::Html(int aPage) const {
  const THelpPage& page = iBook.Pages()[aPage];
  const QString title = page.iTitle.toHtmlEscaped();
  return u"<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>"_s + title +
         u"</title></head><body>\n"_s + Way(aPage) + u"<h1>"_s + title + u"</h1>\n"_s + Status(page) +
         ToHtml(page.iText) + Parts(aPage) + u"</body></html>\n"_s;
}

QString HelpWriter::Way(int aPage) const {
  QStringList links;
  for (int i = iBook.Pages()[aPage].iParent; i >= 0; i = iBook.Pages()[i].iParent)
    links.prepend(Link(iBook.Pages()[i]));
  return links.isEmpty() ? QString() : u"<p class=\"way\">"_s + links.join(u" \u203a "_s) + u"</p>\n"_s;
}

QString HelpWriter::Parts(int aPage) const {
  QString items;
  for (const int child : iBook.Children(aPage))
    items += u"<li>"_s + Link(iBook.Pages()[child]) + u"</li>\n"_s;
  return items.isEmpty() ? QString() : u"<ul class=\"parts\">\n"_s + items + u"</ul>\n"_s;
}

QByteArray HelpWriter::Project() const {
  QByteArray project;
  QXmlStreamWriter xml(&project);
  xml.setAutoFormatting(true);
  xml.writeStartDocument();
  xml.writeStartElement(u"QtHelpProject"_s);
  xml.writeAttribute(u"version"_s, u"1.0"_s);
  xml.writeTextElement(u"namespace"_s, u"orvelles"_s);
  xml.writeTextElement(u"virtualFolder"_s, u"help"_s);
  xml.writeStartElement(u"filterSection"_s);
  xml.writeStartElement(u"toc"_s);
  int depth = 0;
  for (const THelpPage& page : iBook.Pages()) {
    for (; depth > page.iLevel; --depth) xml.writeEndElement();
    xml.writeStartElement(u"section"_s);
    xml.writeAttribute(u"title"_s, page.iTitle);
    xml.writeAttribute(u"ref"_s, page.iName + u".htm"_s);
    ++depth;
  }
  for (; depth > 0; --depth) xml.writeEndElement();
  xml.writeEndElement();
  xml.writeStartElement(u"keywords"_s);
  for (const THelpPage& page : iBook.Pages()) {
    WriteKeyword(xml, page.iTitle, page.iName, page);
    for (const QString& word : page.iIndex) WriteKeyword(xml, word, {}, page);
  }
  xml.writeEndElement();
  xml.writeStartElement(u"files"_s);
  xml.writeTextElement(u"file"_s, u"*.htm"_s);
  xml.writeEndDocument();
  return project;
}
