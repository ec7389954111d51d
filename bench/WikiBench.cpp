// A long wiki text with many links: parsed, and shown in a rich text box.
#include "Bench.h"

#include "runtime/wiki/CVelumWikiTextBox.h"
#include "toolkit/CVelumBaseRichTextBox.h"

#include <QApplication>
#include <QTextEdit>

namespace {

// aLength characters in paragraphs, with aLinks links and some bold and italic words among them.
QString Text(qsizetype aLength, int aLinks) {
  const qsizetype share = aLength / aLinks;
  QString text;
  for (int i = 0; i < aLinks; ++i) {
    QString part = u"[[Card %1|the card %1]] **bold** and //italic// 20\u20AC"_s.arg(i);
    while (part.size() < share - 4) part += part.size() % 7 == 0 ? u' ' : u'w';
    text += part.left(share - 4) + (i % 5 == 4 ? u"\r\n\r\n"_s : u"\r\n"_s);
  }
  return text;
}

} // namespace

int main(int aArgc, char** aArgv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication app(aArgc, aArgv);
  Bench::Init();
  QWidget form;
  form.resize(640, 480);
  CVelumBaseRichTextBox base(u"fBox"_s, &form, nullptr);
  base.SetSize(9000, 7000);
  base.SetLocked(true);
  base.SetVisible(true);
  form.show();
  CVelumWikiTextBox box;
  const auto finder = [&box](int aPos, QString& aTarget) { return box.GetLink(aPos, aTarget); };
  Bench::Head({u"characters"_s, u"links"_s, u"parsed"_s, u"parsed and shown"_s, u"next link found"_s});
  for (const auto& [length, links] : {std::pair<qsizetype, int>{3000, 50}, {30000, 500}, {30000, 1000}}) {
    const QString text = Text(length, links);
    const double parsed = Bench::Seconds(9, [&] { box.SetStr(text); });
    const double shown = Bench::Seconds(
        9,
        [&] {
          box.SetStr(text);
          base.SetRtf(box.TextStr(), finder);
          // Lays out all of it, as the scroll bar needs.
          form.grab();
        },
        [&] { base.Clear(); });
    QString target;
    const double found = Bench::Seconds(9, [&] { static_cast<void>(box.GetLink(32000, target)); });
    Bench::Row({QString::number(text.size()), QString::number(links), Bench::Ms(parsed), Bench::Ms(shown),
                Bench::Ms(found)});
  }
  return 0;
}
