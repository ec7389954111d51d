#include "cli/CVelumStackFacts.h"

#include <QJsonArray>

namespace {

// Unset numbers are left out.
void AddNum(const QString& aName, qint32 aNum, qint32 aUnset, QJsonObject& aFacts) {
  if (aNum != aUnset) aFacts.insert(aName, aNum);
}

void AddText(const QString& aName, const QString& aText, QJsonObject& aFacts) {
  if (!aText.isEmpty()) aFacts.insert(aName, aText);
}

// 0xBBGGRR as #RRGGBB.
void AddColor(const QString& aName, qint32 aColor, QJsonObject& aFacts) {
  if (aColor == ENoInt) return;
  const auto color = static_cast<quint32>(aColor);
  const quint32 rgb = (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF);
  aFacts.insert(aName, u"#%1"_s.arg(rgb, 6, 16, QChar(u'0')));
}

void AddFont(const QString& aName, const Ref<CVelumFont>& aFont, QJsonObject& aFacts) {
  if (!aFont) return;
  QJsonObject font;
  AddText(u"name"_s, aFont->FaceNameWithFlags().trimmed(), font);
  AddText(u"points"_s, aFont->PointSizeStr(), font);
  AddColor(u"color"_s, aFont->ForeColor(), font);
  aFacts.insert(aName, font);
}

QJsonObject ControlFacts(const CVelumControl& aControl) {
  QJsonObject facts{{u"id"_s, aControl.Id()}, {u"name"_s, aControl.Name()}, {u"type"_s, aControl.TypeStr()}};
  AddText(u"label"_s, aControl.Label(), facts);
  AddText(u"default"_s, aControl.DefaultVal(), facts);
  AddNum(u"digits"_s, aControl.Digits(), ENoShort, facts);
  AddNum(u"maxChar"_s, aControl.MaxChar(), ENoShort, facts);
  AddNum(u"partner"_s, aControl.PartnerId(), ENoInt, facts);
  if (aControl.Flag(EConCardName)) facts.insert(u"cardName"_s, true);
  if (!aControl.ScriptSource().isEmpty()) facts.insert(u"script"_s, true);
  AddFont(u"font"_s, aControl.Font(), facts);
  AddColor(u"color"_s, aControl.BackColor(), facts);
  return facts;
}

QJsonObject BackgroundFacts(const CVelumStack& aStack, const CVelumControlSet& aBackground) {
  QJsonArray fields;
  for (qint32 i = 0; i < aBackground.NumControls(); ++i) {
    const CVelumControl* control = aBackground.ControlAt(i);
    if (control) fields.append(ControlFacts(*control));
  }
  QJsonObject facts{{u"id"_s, aBackground.Id()},
                    {u"name"_s, aBackground.Name()},
                    {u"cards"_s, aStack.NumBackgroundCards(aBackground.Id())},
                    {u"keptSorted"_s, aBackground.Flag(ECseKeepCardsSorted)},
                    {u"fields"_s, fields}};
  AddText(u"description"_s, aBackground.Descr(), facts);
  AddNum(u"wallpaper"_s, aBackground.WallPaperId(), ENoInt, facts);
  if (!aBackground.ScriptSource().isEmpty()) facts.insert(u"script"_s, true);
  AddFont(u"font"_s, aBackground.Font(), facts);
  AddColor(u"color"_s, aBackground.BackColor(), facts);
  return facts;
}

QJsonArray Backgrounds(const CVelumStack& aStack) {
  QJsonArray all;
  Ref<CVelumControlSet> background;
  qint32 index = 0;
  for (bool found = aStack.GetFirstBackground(background, index); found;
       found = aStack.GetNextBackground(background, index))
    all.append(BackgroundFacts(aStack, *background));
  return all;
}

QJsonObject SortKeyFacts(const CVelumStack& aStack, const CVelumSortKey& aKey) {
  const Ref<CVelumControlSet> background = aStack.Background(aKey.BackgroundId());
  QJsonArray parts;
  TVelumKeyPart part;
  qint32 index = 0;
  for (bool found = aKey.GetFirstKeyPart(part, index); found; found = aKey.GetNextKeyPart(part, index)) {
    const CVelumControl* control = background ? background->FindControl(part.iControlId) : nullptr;
    parts.append(QJsonObject{{u"field"_s, control ? control->Name() : QString::number(part.iControlId)},
                             {u"descending"_s, part.iWay == EWayDescending},
                             {u"width"_s, part.iLen}});
  }
  return {{u"id"_s, aKey.Id()},
          {u"name"_s, aKey.Name()},
          {u"background"_s, background ? background->Name() : QString()},
          {u"parts"_s, parts}};
}

QJsonArray SortKeys(const CVelumStack& aStack) {
  QJsonArray all;
  Ref<CVelumSortKey> key;
  qint32 index = 0;
  for (bool found = aStack.GetFirstSortKey(key, index); found; found = aStack.GetNextSortKey(key, index))
    all.append(SortKeyFacts(aStack, *key));
  return all;
}

QJsonArray Blobs(const Ref<CVelumBlobStore>& aStore) {
  QJsonArray all;
  for (qint32 i = 0; aStore && i < aStore->NumBlobs(); ++i) {
    const Ref<CVelumBlob> blob = aStore->ReadBlob(aStore->Index().IntKeyAt(i), true);
    QJsonObject facts{{u"id"_s, blob->Id()}, {u"references"_s, blob->RefCount()}};
    AddText(u"name"_s, blob->Name(), facts);
    AddText(u"mimeType"_s, blob->MimeType(), facts);
    AddNum(u"width"_s, blob->Width(), ENoShort, facts);
    AddNum(u"height"_s, blob->Height(), ENoShort, facts);
    AddNum(u"sample"_s, blob->SampleId(), ENoInt, facts);
    AddNum(u"sampleOf"_s, blob->OriginalId(), ENoInt, facts);
    all.append(facts);
  }
  return all;
}

QString FontText(const QJsonObject& aFont) {
  QStringList parts{aFont.value(u"name"_s).toString()};
  if (aFont.contains(u"points"_s)) parts.append(aFont.value(u"points"_s).toString() + u" points"_s);
  parts.append(aFont.value(u"color"_s).toString());
  parts.removeAll(QString());
  return parts.join(u", "_s);
}

void AddLine(const QString& aName, const QString& aText, QStringList& aLines) {
  constexpr int EColumn = 14;
  if (!aText.isEmpty()) aLines.append((aName + u':').leftJustified(EColumn) + CVelumCliStack::OneLine(aText));
}

// The members that stack and backgrounds share.
void AddLooks(const QString& aIndent, const QJsonObject& aFacts, QStringList& aLines) {
  for (const auto& [name, title] : {std::pair{u"font"_s, u"Font"_s}, {u"listFont"_s, u"List font"_s}})
    AddLine(aIndent + title, FontText(aFacts.value(name).toObject()), aLines);
  AddLine(aIndent + u"Colour"_s, aFacts.value(u"color"_s).toString(), aLines);
  if (aFacts.contains(u"script"_s)) AddLine(aIndent + u"Script"_s, u"yes"_s, aLines);
}

QString FieldLine(const QJsonObject& aField) {
  QStringList notes;
  if (aField.contains(u"cardName"_s)) notes.append(u"gives the card's name"_s);
  if (aField.contains(u"default"_s))
    notes.append(u"default '%1'"_s.arg(aField.value(u"default"_s).toString()));
  if (aField.contains(u"script"_s)) notes.append(u"script"_s);
  if (aField.contains(u"font"_s)) notes.append(FontText(aField.value(u"font"_s).toObject()));
  if (aField.contains(u"color"_s)) notes.append(u"on "_s + aField.value(u"color"_s).toString());
  const QString line = u"    %1 %2 %3"_s.arg(aField.value(u"name"_s).toString(), -24)
                           .arg(aField.value(u"type"_s).toString(), -8)
                           .arg(notes.join(u"; "_s));
  return CVelumCliStack::OneLine(line).trimmed().prepend(u"    "_s);
}

void AddBackground(const QJsonObject& aFacts, QStringList& aLines) {
  aLines.append(QString());
  AddLine(u"Background"_s, aFacts.value(u"name"_s).toString(), aLines);
  AddLine(u"  About"_s, aFacts.value(u"description"_s).toString(), aLines);
  AddLine(u"  Cards"_s, QString::number(aFacts.value(u"cards"_s).toInt()), aLines);
  if (aFacts.value(u"keptSorted"_s).toBool()) AddLine(u"  Sorted"_s, u"kept sorted"_s, aLines);
  AddLooks(u"  "_s, aFacts, aLines);
  const QJsonArray fields = aFacts.value(u"fields"_s).toArray();
  AddLine(u"  Fields"_s, QString::number(fields.size()), aLines);
  for (const QJsonValue& field : fields) aLines.append(FieldLine(field.toObject()));
}

void AddSortKey(const QJsonObject& aFacts, QStringList& aLines) {
  QStringList parts;
  for (const QJsonValue& value : aFacts.value(u"parts"_s).toArray()) {
    const QJsonObject part = value.toObject();
    parts.append(part.value(u"field"_s).toString() +
                 (part.value(u"descending"_s).toBool() ? u" descending"_s : QString()));
  }
  aLines.append(QString());
  AddLine(u"Sort key"_s, aFacts.value(u"name"_s).toString(), aLines);
  AddLine(u"  Background"_s, aFacts.value(u"background"_s).toString(), aLines);
  AddLine(u"  Fields"_s, parts.join(u", "_s), aLines);
}

void AddBlob(const QJsonObject& aFacts, QStringList& aLines) {
  QStringList notes{aFacts.value(u"name"_s).toString(), aFacts.value(u"mimeType"_s).toString()};
  if (aFacts.contains(u"width"_s))
    notes.append(u"%1 x %2"_s.arg(aFacts.value(u"width"_s).toInt()).arg(aFacts.value(u"height"_s).toInt()));
  if (aFacts.contains(u"sampleOf"_s))
    notes.append(u"sample of %1"_s.arg(aFacts.value(u"sampleOf"_s).toInt()));
  notes.append(u"references: %1"_s.arg(aFacts.value(u"references"_s).toInt()));
  notes.removeAll(QString());
  AddLine(u"  %1"_s.arg(aFacts.value(u"id"_s).toInt()), notes.join(u", "_s), aLines);
}

} // namespace

QJsonObject CVelumStackFacts::Of(const TVelumOpenStack& aOpen) {
  const CVelumStack& stack = *aOpen.iStack;
  QJsonObject facts{{u"file"_s, stack.Filename()},
                    {u"name"_s, stack.Name()},
                    {u"format"_s, stack.Flag(EStaBinary) ? u"binary"_s : u"xml"_s},
                    {u"cards"_s, stack.NumCards()},
                    {u"orderCorrections"_s, stack.OrderCorrections()},
                    {u"backgrounds"_s, Backgrounds(stack)},
                    {u"sortKeys"_s, SortKeys(stack)},
                    {u"blobs"_s, Blobs(stack.BlobStore())}};
  AddText(u"description"_s, stack.Descr(), facts);
  if (!stack.ScriptSource().isEmpty()) facts.insert(u"script"_s, true);
  AddFont(u"font"_s, stack.Font(), facts);
  AddFont(u"listFont"_s, stack.ListFont(), facts);
  AddColor(u"color"_s, stack.BackColor(), facts);
  return facts;
}

QString CVelumStackFacts::AsText(const QJsonObject& aFacts) {
  QStringList lines;
  const QJsonArray blobs = aFacts.value(u"blobs"_s).toArray();
  AddLine(u"Stack"_s, aFacts.value(u"name"_s).toString(), lines);
  AddLine(u"About"_s, aFacts.value(u"description"_s).toString(), lines);
  AddLine(u"File"_s, aFacts.value(u"file"_s).toString(), lines);
  AddLine(u"Format"_s, aFacts.value(u"format"_s).toString(), lines);
  AddLine(u"Cards"_s, QString::number(aFacts.value(u"cards"_s).toInt()), lines);
  AddLooks(QString(), aFacts, lines);
  AddLine(u"Backgrounds"_s, QString::number(aFacts.value(u"backgrounds"_s).toArray().size()), lines);
  AddLine(u"Sort keys"_s, QString::number(aFacts.value(u"sortKeys"_s).toArray().size()), lines);
  AddLine(u"Blobs"_s, QString::number(blobs.size()), lines);
  for (const QJsonValue& blob : blobs) AddBlob(blob.toObject(), lines);
  for (const QJsonValue& background : aFacts.value(u"backgrounds"_s).toArray())
    AddBackground(background.toObject(), lines);
  for (const QJsonValue& key : aFacts.value(u"sortKeys"_s).toArray()) AddSortKey(key.toObject(), lines);
  return lines.join(u'\n');
}
