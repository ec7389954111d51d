#include "core/text/CVelumXmlLib.h"

#include "core/CVelumObject.h"

#include <array>

namespace {

struct TEntity {
  QStringView iText;
  QStringView iName;
};

constexpr std::array<TEntity, 6> EEntities = {{{u"&", u"&amp;"},
                                               {u"<", u"&lt;"},
                                               {u">", u"&gt;"},
                                               {u"\"", u"&quot;"},
                                               {u"'", u"&apos;"},
                                               {u"\r\n", u"&eol;"}}};

// The entity for what stands at aPos, or null.
const TEntity* ToEscape(QStringView aText, qsizetype aPos) {
  const QStringView rest = aText.mid(aPos, 2);
  for (const TEntity& entity : EEntities)
    if (rest.startsWith(entity.iText)) return &entity;
  return nullptr;
}

const TEntity* ToUnescape(QStringView aText, qsizetype aPos) {
  const QStringView rest = aText.mid(aPos, 6);
  for (const TEntity& entity : EEntities)
    if (rest.startsWith(entity.iName)) return &entity;
  return nullptr;
}

bool IsSpecial(QChar aCh) {
  return aCh == u'&' || aCh == u'<' || aCh == u'>' || aCh == u'"' || aCh == u'\'' || aCh == u'\r';
}

} // namespace

void CVelumLib::EscapeXml(QString& aText) {
  qsizetype pos = 0;
  while (pos < aText.size() && !IsSpecial(aText.at(pos))) ++pos;
  if (pos == aText.size()) return;
  QString escaped = aText.first(pos);
  while (pos < aText.size()) {
    const TEntity* entity = IsSpecial(aText.at(pos)) ? ToEscape(aText, pos) : nullptr;
    if (entity)
      escaped += entity->iName;
    else
      escaped += aText.at(pos);
    pos += entity ? entity->iText.size() : 1;
  }
  aText = escaped;
}

// One pass from the left gives what replacing one entity after the other with "&amp;" last gives: no
// replaced text can become part of another entity.
void CVelumLib::UnescapeXml(QString& aText) {
  qsizetype pos = aText.indexOf(u'&');
  if (pos < 0) return;
  QString plain = aText.first(pos);
  while (pos < aText.size()) {
    const TEntity* entity = aText.at(pos) == u'&' ? ToUnescape(aText, pos) : nullptr;
    if (entity)
      plain += entity->iText;
    else
      plain += aText.at(pos);
    pos += entity ? entity->iName.size() : 1;
  }
  aText = plain;
}
