#include "cli/CVelumCliCsv.h"

#include "core/CVelumFile.h"

QChar CVelumCliCsv::Delimiter(const QString& aText) {
  if (aText == u"comma") return u',';
  if (aText == u"semicolon") return u';';
  if (aText == u"tab") return u'\t';
  const bool usable = aText.size() == 1 && aText != u" " && aText != u"\"";
  if (!usable)
    throw TVelumUsage{u"'%1' is no delimiter: comma, semicolon, tab or one character."_s.arg(aText)};
  return aText.front();
}

qint32 CVelumCliCsv::Coding(const QString& aText) {
  if (aText == u"latin1") return ECodLatin1;
  if (aText == u"utf8") return ECodUtf8;
  throw TVelumUsage{u"There is no coding '%1': latin1 or utf8."_s.arg(aText)};
}
