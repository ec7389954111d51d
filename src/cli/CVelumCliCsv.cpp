#include "cli/CVelumCliCsv.h"

#include "core/file/CVelumFile.h"

QChar CVelumCliCsv::Delimiter(const QString& aText) {
  if (aText == u"comma") return u',';
  if (aText == u"semicolon") return u';';
  if (aText == u"tab") return u'\t';
  if (aText == u"bar") return u'|';
  const bool usable = aText.size() == 1 && aText != u" " && aText != u"\"" && aText != u"\r" &&
                      aText != u"\n" && !aText.front().isSurrogate();
  if (!usable)
    throw TVelumUsage{u"'%1' is no delimiter: comma, semicolon, tab, bar or one character."_s.arg(aText)};
  return aText.front();
}

qint32 CVelumCliCsv::Coding(const QString& aText) {
  if (aText == u"latin1") return ECodLatin1;
  if (aText == u"utf8") return ECodUtf8;
  throw TVelumUsage{u"There is no coding '%1': latin1 or utf8."_s.arg(aText)};
}

ECsvEncoding CVelumCliCsv::Encoding(const QString& aText) {
  if (aText == u"latin1") return ECsvEncoding::Windows1252;
  if (aText == u"utf8") return ECsvEncoding::Utf8;
  if (aText == u"utf16") return ECsvEncoding::Utf16Le;
  throw TVelumUsage{u"There is no coding '%1': latin1, utf8 or utf16."_s.arg(aText)};
}

qint32 CVelumCliCsv::Type(const QString& aText) {
  static const QStringList names{u"text"_s, u"integer"_s, u"real"_s, u"date"_s, u"time"_s, u"boolean"_s};
  const QString name = aText.toLower();
  if (name == u"float") return EConReal;
  const qsizetype type = names.indexOf(name);
  if (type < 0)
    throw TVelumUsage{u"There is no type '%1': text, integer, real, date, time or boolean."_s.arg(aText)};
  return static_cast<qint32>(type);
}

int CVelumCliCsv::Column(const QString& aText, const QStringList& aNames) {
  if (const qsizetype place = aNames.indexOf(aText); place >= 0) return static_cast<int>(place);
  bool isNumber = false;
  const int number = aText.toInt(&isNumber);
  if (!isNumber || number < 1 || number > aNames.size())
    throw TVelumUsage{u"There is no column '%1'."_s.arg(aText)};
  return number - 1;
}

std::pair<QString, QString> CVelumCliCsv::Assignment(const QString& aText, const QString& aOption) {
  const qsizetype at = aText.lastIndexOf(u'=');
  if (at < 0) throw TVelumUsage{u"'%1' has no '=', which --%2 needs."_s.arg(aText, aOption)};
  return {aText.left(at), aText.mid(at + 1)};
}

QHash<int, qint32> CVelumCliCsv::Types(const TVelumArgs& aArgs, const QStringList& aNames) {
  QHash<int, qint32> types;
  for (const QString& text : aArgs.Values(u"type"_s)) {
    const auto [column, type] = Assignment(text, u"type"_s);
    types.insert(Column(column, aNames), Type(type));
  }
  return types;
}
