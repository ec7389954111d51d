#include "cli/CVelumImportFacts.h"

#include "cli/CVelumCliOutput.h"
#include "cli/CVelumCliStack.h"
#include "cli/CVelumTerminal.h"

namespace {

constexpr qsizetype EShownFields = 20;

QJsonArray Fields(const CVelumControlSet& aBackground, QString& aNaming) {
  QJsonArray fields;
  for (qint32 i = 0; i < aBackground.NumControls(); ++i) {
    const CVelumControl* control = aBackground.ControlAt(i);
    if (!control) continue;
    fields.append(QJsonObject{{u"name"_s, control->Name()}, {u"type"_s, control->TypeStr()}});
    if (control->Flag(EConCardName)) aNaming = control->Name();
  }
  return fields;
}

// The names of the fields by which the cards are kept sorted.
QJsonArray SortedBy(CVelumControlSet& aBackground) {
  QJsonArray names;
  if (!aBackground.Flag(ECseKeepCardsSorted)) return names;
  const Ref<CVelumArray> index = aBackground.KeyIndex();
  const Ref<CVelumKeyOrder> order = index ? index->SortKey() : nullptr;
  const auto* key = dynamic_cast<const CVelumSortKey*>(order.Get());
  TVelumKeyPart part;
  qint32 at = 0;
  for (bool found = key && key->GetFirstKeyPart(part, at); found; found = key->GetNextKeyPart(part, at))
    if (const CVelumControl* control = aBackground.FindControl(part.iControlId))
      names.append(control->Name());
  return names;
}

QString CountOf(int aCount, const QString& aOne, const QString& aMany) {
  return QString::number(aCount) + u' ' + (aCount == 1 ? aOne : aMany);
}

QString FieldsText(const QJsonArray& aFields) {
  QStringList texts;
  for (const QJsonValue& value : aFields) {
    const QJsonObject field = value.toObject();
    if (texts.size() < EShownFields)
      texts.append(u"%1 (%2)"_s.arg(field.value(u"name"_s).toString(), field.value(u"type"_s).toString()));
  }
  QString text = texts.join(u", "_s);
  if (aFields.size() > EShownFields) text += u" and %1 more"_s.arg(aFields.size() - EShownFields);
  return text;
}

QString LineOf(const QJsonObject& aBackground) {
  const bool added = aBackground.value(u"added"_s).toBool();
  QString line = CountOf(aBackground.value(u"cards"_s).toInt(), u"card"_s, u"cards"_s) +
                 (added ? u" added to background '%1'"_s : u" in background '%1'"_s)
                     .arg(aBackground.value(u"name"_s).toString());
  const QString fields = FieldsText(aBackground.value(u"fields"_s).toArray());
  if (!fields.isEmpty()) line += u": "_s + fields;
  if (aBackground.contains(u"cardName"_s))
    line += u"; named by "_s + aBackground.value(u"cardName"_s).toString();
  QStringList sorted;
  for (const QJsonValue& name : aBackground.value(u"sortedBy"_s).toArray()) sorted.append(name.toString());
  if (!sorted.isEmpty()) line += u"; sorted by "_s + sorted.join(u", "_s);
  return line;
}

} // namespace

QJsonObject CVelumImportFacts::Of(const CVelumControlSet& aBackground, qint32 aCards) {
  return {{u"name"_s, aBackground.Name()}, {u"cards"_s, aCards}};
}

QJsonObject CVelumImportFacts::WithFields(CVelumControlSet& aBackground, qint32 aCards) {
  QString naming;
  QJsonObject facts{
      {u"name"_s, aBackground.Name()}, {u"cards"_s, aCards}, {u"fields"_s, Fields(aBackground, naming)}};
  if (!naming.isEmpty()) facts.insert(u"cardName"_s, naming);
  const QJsonArray sorted = SortedBy(aBackground);
  if (!sorted.isEmpty()) facts.insert(u"sortedBy"_s, sorted);
  return facts;
}

QJsonObject CVelumImportFacts::Of(const QString& aFile, const QString& aOut, const QJsonArray& aBackgrounds) {
  return {{u"file"_s, aFile}, {u"stack"_s, aOut}, {u"backgrounds"_s, aBackgrounds}};
}

QString CVelumImportFacts::AsText(const QJsonObject& aFacts) {
  const QString stack = aFacts.value(u"stack"_s).toString() + u": "_s;
  QStringList lines;
  for (const QJsonValue& background : aFacts.value(u"backgrounds"_s).toArray())
    lines.append(CVelumCliStack::OneLine(stack + LineOf(background.toObject())));
  return lines.isEmpty() ? stack + u"no card was added"_s : lines.join(u'\n');
}

void CVelumImportFacts::Print(const QJsonObject& aFacts, const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  if (aArgs.iJson) return aTerminal.Json(aFacts);
  if (CVelumCliOutput::IsStandard(aFacts.value(u"stack"_s).toString()))
    aTerminal.Complain(AsText(aFacts));
  else
    aTerminal.Line(AsText(aFacts));
}

void CVelumImportFacts::CheckOutput(const QString& aOut, const TVelumArgs& aArgs) {
  if (aArgs.iJson && CVelumCliOutput::IsStandard(aOut))
    throw TVelumUsage{u"The stack goes to standard output, so --json has no place."_s};
}
