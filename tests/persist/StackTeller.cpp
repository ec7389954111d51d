#include "persist/StackTeller.h"

#include "core/CVelumValue.h"
#include "model/CVelumModel.h"

#include <QCryptographicHash>
#include <QJsonArray>

namespace {

using CVelumModel::ObjAs;

QJsonValue TellObj(const TVelumValue& aVal);

QJsonValue TellVal(const TVelumValue& aVal) {
  switch (aVal.Type()) {
  case EValStr:
    return aVal.Str();
  case EValInt:
  case EValBlobId:
    return aVal.Int();
  case EValReal:
    return aVal.Real();
  case EValDate:
    return CVelumValue::DateToInt(aVal.Date());
  case EValTime:
    return CVelumValue::TimeToInt(aVal.Time());
  case EValBoolean:
    return aVal.Boolean();
  case EValIntPair:
    return QJsonArray{aVal.Int0(), aVal.Int1()};
  default:
    return TellObj(aVal);
  }
}

QJsonObject TellArray(const CVelumArray& aArray) {
  QJsonArray elems;
  for (qint32 i = 0; i < aArray.Count(); ++i) {
    QJsonObject elem;
    const TVelumValue& val = aArray.ValRef(i);
    elem[u"type"_s] = val.Type();
    if (aArray.Flags() & EArrStrKey) elem[u"strKey"_s] = aArray.StrKeyAt(i);
    if (aArray.Flags() & EArrIntKey) elem[u"intKey"_s] = aArray.IntKeyAt(i);
    if (val.Type() != EValUndef) elem[u"val"_s] = TellVal(val);
    elems.append(elem);
  }
  return {{u"alloc"_s, aArray.Alloc()},         {u"allocStep"_s, aArray.AllocStep()},
          {u"count"_s, aArray.Count()},         {u"elems"_s, elems},
          {u"flags"_s, aArray.Flags()},         {u"id"_s, aArray.Id()},
          {u"sortKeyId"_s, aArray.SortKeyId()}, {u"type"_s, aArray.Type()}};
}

QJsonValue TellFont(const Ref<CVelumFont>& aFont) {
  if (!aFont) return QJsonValue::Null;
  return QJsonObject{{u"face_name"_s, aFont->FaceName()},
                     {u"size"_s, aFont->Size()},
                     {u"fore_color"_s, aFont->ForeColor()},
                     {u"flags"_s, aFont->Flags()}};
}

QJsonValue TellOptional(const Ref<CVelumArray>& aArray) {
  return aArray ? QJsonValue(TellArray(*aArray)) : QJsonValue(QJsonValue::Null);
}

QJsonObject TellCommon(const CVelumScripted& aObj) {
  return {{u"name"_s, aObj.Name()},
          {u"id"_s, aObj.Id()},
          {u"flags"_s, aObj.Flags()},
          {u"script_source"_s, aObj.ScriptSource()},
          {u"script"_s, TellOptional(aObj.Script())},
          {u"font"_s, TellFont(aObj.Font())},
          {u"back_color"_s, aObj.BackColor()}};
}

QJsonObject TellControl(const CVelumControl& aControl) {
  QJsonObject told = TellCommon(aControl);
  told[u"descr"_s] = aControl.Descr();
  told[u"label"_s] = aControl.Label();
  told[u"con_type"_s] = aControl.ConType();
  told[u"default_val"_s] = aControl.DefaultVal();
  told[u"vis_lines"_s] = aControl.VisLines();
  told[u"vis_char"_s] = aControl.VisChar();
  told[u"max_char"_s] = aControl.MaxChar();
  told[u"digits"_s] = aControl.Digits();
  told[u"list_vis_char"_s] = aControl.TrueListVisChar();
  told[u"list_col_title"_s] = aControl.TrueListColTitle();
  told[u"partner_id"_s] = aControl.PartnerId();
  told[u"ref_control_id"_s] = aControl.RefControlId();
  told[u"sel_background_id"_s] = aControl.SelBackgroundId();
  told[u"sel_control_id"_s] = aControl.SelControlId();
  told[u"list_col"_s] = TellOptional(aControl.ListCol());
  told[u"std_cmd"_s] = aControl.StdCmd();
  told[u"dest_card_id"_s] = aControl.DestCardId();
  return told;
}

QJsonObject TellBackground(const CVelumControlSet& aBackground) {
  QJsonObject told = TellCommon(aBackground);
  told[u"descr"_s] = aBackground.Descr();
  told[u"wall_paper_id"_s] = aBackground.WallPaperId();
  told[u"key_index_id"_s] = aBackground.KeyIndexId();
  QJsonArray elems;
  for (qint32 i = 0; i < aBackground.NumControls(); ++i)
    elems.append(QJsonObject{{u"val"_s, TellControl(*aBackground.ControlAt(i))}});
  told[u"set"_s] = QJsonObject{{u"elems"_s, elems}};
  return told;
}

QJsonObject TellCard(const CVelumCard& aCard) {
  QJsonObject told = TellCommon(aCard);
  told[u"order_num"_s] = aCard.OrderNum();
  told[u"background_id"_s] = aCard.BackgroundId();
  told[u"cre_date"_s] = CVelumValue::DateToInt(aCard.CreDate());
  told[u"cre_time"_s] = CVelumValue::TimeToInt(aCard.CreTime());
  told[u"mod_date"_s] = CVelumValue::DateToInt(aCard.ModDate());
  told[u"mod_time"_s] = CVelumValue::TimeToInt(aCard.ModTime());
  told[u"value"_s] = TellArray(aCard.Value());
  return told;
}

QJsonObject TellSortKey(const CVelumSortKey& aKey) {
  QJsonArray parts;
  TVelumKeyPart part;
  qint32 at = 0;
  for (bool more = aKey.GetFirstKeyPart(part, at); more; more = aKey.GetNextKeyPart(part, at))
    parts.append(QJsonObject{{u"type"_s, part.iType},
                             {u"control_id"_s, part.iControlId},
                             {u"way"_s, part.iWay},
                             {u"len"_s, part.iLen},
                             {u"pos"_s, part.iPos}});
  return {{u"id"_s, aKey.Id()},
          {u"name"_s, aKey.Name()},
          {u"background_id"_s, aKey.BackgroundId()},
          {u"parts"_s, parts}};
}

QJsonValue TellObj(const TVelumValue& aVal) {
  if (auto* card = ObjAs<CVelumCard>(aVal, EValCard)) return TellCard(*card);
  if (auto* array = ObjAs<CVelumArray>(aVal, EValArray)) return TellArray(*array);
  return QJsonValue::Null;
}

// Elements with the objects alone: the arrays themselves are the stack's own.
QJsonObject ElemsOf(const QJsonArray& aObjects) {
  QJsonArray elems;
  for (const QJsonValue& obj : aObjects) elems.append(QJsonObject{{u"val"_s, obj}});
  return {{u"elems"_s, elems}};
}

QJsonObject TellBlob(const CVelumBlob& aBlob) {
  QByteArray sum = QCryptographicHash::hash(aBlob.Bytes(), QCryptographicHash::Sha256).toHex();
  return {{u"id"_s, aBlob.Id()},
          {u"blob_type"_s, aBlob.BlobType()},
          {u"name"_s, aBlob.Name()},
          {u"filename"_s, aBlob.Filename()},
          {u"cre_date"_s, CVelumValue::DateToInt(aBlob.CreDate())},
          {u"cre_time"_s, CVelumValue::TimeToInt(aBlob.CreTime())},
          {u"file_date"_s, CVelumValue::DateToInt(aBlob.FileDate())},
          {u"file_time"_s, CVelumValue::TimeToInt(aBlob.FileTime())},
          {u"mime_type"_s, aBlob.MimeType()},
          {u"original_id"_s, aBlob.OriginalId()},
          {u"sample_id"_s, aBlob.SampleId()},
          {u"width"_s, aBlob.Width()},
          {u"height"_s, aBlob.Height()},
          {u"ref_count"_s, aBlob.RefCount()},
          {u"length"_s, aBlob.Bytes().size()},
          {u"sha256"_s, QString::fromLatin1(sum)}};
}

QJsonObject TellBlobs(CVelumBlobStore& aStore) {
  QJsonArray blobs;
  Ref<CVelumBlob> blob;
  qint32 at = 0;
  for (bool more = aStore.ReadFirstBlob(blob, at); more; more = aStore.ReadNextBlob(blob, at))
    blobs.append(TellBlob(*blob));
  return {{u"blobs"_s, blobs}};
}

QJsonObject TellRect(const CVelumRect& aRect) {
  return {{u"x"_s, static_cast<double>(aRect.X())},
          {u"y"_s, static_cast<double>(aRect.Y())},
          {u"width"_s, static_cast<double>(aRect.Width())},
          {u"height"_s, static_cast<double>(aRect.Height())}};
}

QJsonObject TellView(const CVelumViewState& aView) {
  return {{u"name"_s, aView.iName},
          {u"card_view_open"_s, aView.iCardViewOpen},
          {u"card_view_rect"_s, TellRect(*aView.iCardViewRect)},
          {u"card_list_open"_s, aView.iCardListOpen},
          {u"card_list_rect"_s, TellRect(*aView.iCardListRect)}};
}

template <class T> using TWalk = bool (CVelumStack::*)(Ref<T>&, qint32&) const;

// What aTell says of each object of a walk.
template <class T, class TTell>
QJsonObject TellAll(const CVelumStack& aStack, TWalk<T> aFirst, TWalk<T> aNext, const TTell& aTell) {
  QJsonArray told;
  Ref<T> obj;
  qint32 at = 0;
  for (bool more = (aStack.*aFirst)(obj, at); more; more = (aStack.*aNext)(obj, at)) told.append(aTell(*obj));
  return ElemsOf(told);
}

QJsonObject TellBackgrounds(const CVelumStack& aStack) {
  return TellAll<CVelumControlSet>(aStack, &CVelumStack::GetFirstBackground, &CVelumStack::GetNextBackground,
                                   TellBackground);
}

QJsonObject TellSortKeys(const CVelumStack& aStack) {
  return TellAll<CVelumSortKey>(aStack, &CVelumStack::GetFirstSortKey, &CVelumStack::GetNextSortKey,
                                TellSortKey);
}

QJsonObject TellKeyIndexes(const CVelumStack& aStack) {
  return TellAll<CVelumArray>(aStack, &CVelumStack::GetFirstKeyIndex, &CVelumStack::GetNextKeyIndex,
                              TellArray);
}

} // namespace

QJsonObject StackTeller::Tell(CVelumStack& aStack, const CVelumViewState& aView) {
  QJsonObject told = TellCommon(aStack);
  told[u"descr"_s] = aStack.Descr();
  told[u"list_font"_s] = TellFont(aStack.ListFont());
  told[u"id_gen"_s] = QJsonObject{{u"next_id"_s, aStack.IdGen().PeekId()}};
  told[u"background"_s] = TellBackgrounds(aStack);
  told[u"card"_s] = TellArray(aStack.Cards());
  // The order is kept in another form, so the array told of here is only made for reading.
  QJsonObject order = TellArray(aStack.OrderIndex());
  told[u"order_index"_s] = QJsonObject{{u"elems"_s, order[u"elems"_s]}, {u"flags"_s, order[u"flags"_s]}};
  told[u"name_index"_s] = TellArray(aStack.NameIndex());
  told[u"sort_key"_s] = TellSortKeys(aStack);
  told[u"key_index"_s] = TellKeyIndexes(aStack);
  told[u"blob_store"_s] = TellBlobs(*aStack.BlobStore());
  told[u"view"_s] = TellView(aView);
  return told;
}

QJsonObject StackTeller::TellLayout(const CVelumBlobStore& aStore) {
  return {{u"flags"_s, aStore.Flags()},
          {u"startPos"_s, aStore.StartPos()},
          {u"index"_s, TellArray(aStore.Index())},
          {u"posTab"_s, TellArray(aStore.PosTab())}};
}

QString StackTeller::Difference(const QJsonValue& aExpected, const QJsonValue& aTold, const QString& aPath) {
  if (aTold.isObject()) {
    const QJsonObject told = aTold.toObject();
    for (auto at = told.begin(); at != told.end(); ++at) {
      QString found = Difference(aExpected.toObject().value(at.key()), at.value(), aPath + u'.' + at.key());
      if (!found.isEmpty()) return found;
    }
    return {};
  }
  if (aTold.isArray() && aExpected.isArray() && aTold.toArray().size() == aExpected.toArray().size()) {
    for (qsizetype i = 0; i < aTold.toArray().size(); ++i) {
      QString found = Difference(aExpected.toArray().at(i), aTold.toArray().at(i), aPath + u"[%1]"_s.arg(i));
      if (!found.isEmpty()) return found;
    }
    return {};
  }
  if (aExpected == aTold) return {};
  // Rectangles are of single precision, whatever the digits of their text.
  if (aPath.contains(u"_rect."_s) && float(aExpected.toDouble()) == float(aTold.toDouble())) return {};
  auto text = [](const QJsonValue& aVal) { return aVal.toVariant().toString(); };
  return u"%1: expected %2, told %3"_s.arg(aPath, text(aExpected), text(aTold));
}
