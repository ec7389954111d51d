#include "persist/CVelumSaveCheck.h"

#include "core/CVelumLimits.h"
#include "core/CVelumMsg.h"

namespace {

qint64 Length(CVelumStored& aObj) {
  CVelumFile file({}, EFilMeasure);
  file.OpenFile();
  aObj.Externalize(file);
  return file.CurrentPos();
}

// Whether aObj can be written so that it can be read; aReason tells why not.
bool Fits(CVelumStored& aObj, QString& aReason) {
  try {
    static_cast<void>(Length(aObj));
    return true;
  } catch (const CVelumException& e) {
    aReason = e.Descr();
    return false;
  }
}

// Names the text in a script that is too long; nothing where none is.
QString LongScript(const CVelumScripted& aObj) {
  const QString tooLong = u"%1 has %2 characters, at most %3 can be stored"_s;
  const auto told = [&](const QString& aWhat, qsizetype aSize) {
    return tooLong.arg(aWhat).arg(aSize).arg(EMaxStoredText);
  };
  if (aObj.ScriptSource().size() > EMaxStoredText) return told(u"its script"_s, aObj.ScriptSource().size());
  const Ref<CVelumArray> script = aObj.Script();
  TVelumElem elem;
  for (qint32 next = 0; script && script->ReadNext(elem, next);)
    if (elem.iVal.Str().size() > EMaxStoredText)
      return told(u"the code of its handler '%1'"_s.arg(elem.iStrKey), elem.iVal.Str().size());
  return {};
}

// The same of the values of a card.
QString LongValue(const CVelumCard& aCard) {
  const CVelumArray& values = aCard.Value();
  for (qint32 i = 0; i < values.Count(); ++i) {
    const qsizetype size = values.ValRef(i).Str().size();
    if (size <= EMaxStoredText) continue;
    const Ref<CVelumControl> control = aCard.ControlById(values.IntKeyAt(i));
    // Card lists are cut when they are written.
    if (control && control->Flag(EConCardList)) continue;
    return u"the text of its field '%1' has %2 characters, at most %3 can be stored"_s
        .arg(control ? control->Name() : QString::number(values.IntKeyAt(i)))
        .arg(size)
        .arg(EMaxStoredText);
  }
  return LongScript(aCard);
}

// And of the fields of a background.
QString LongPart(const CVelumControlSet& aBackground) {
  for (qint32 i = 0; i < aBackground.NumControls(); ++i) {
    const Ref<CVelumControl> control = aBackground.ControlAt(i);
    const QString part = control ? LongScript(*control) : QString();
    if (!part.isEmpty()) return u"field '%1': "_s.arg(control->Name()) + part;
  }
  return LongScript(aBackground);
}

// aPart where it is known, else the reason that writing gave.
QString PartOr(const QString& aPart, const QString& aReason) {
  return aPart.isEmpty() ? aReason : aPart;
}

// Names the part of the stack that cannot be written.
[[noreturn]] void RefuseCulprit(CVelumStack& aStack) {
  QString reason;
  Ref<CVelumCard> card;
  qint32 at = 0;
  for (bool more = aStack.GetFirstCard(card, at); more; more = aStack.GetNextCard(card, at))
    if (!Fits(*card, reason))
      CVelumSaveCheck::Refuse(u"Card '%1' holds a text that is too long: %2"_s.arg(
          card->Name(), PartOr(LongValue(*card), reason)));
  Ref<CVelumControlSet> background;
  for (bool more = aStack.GetFirstBackground(background, at); more;
       more = aStack.GetNextBackground(background, at))
    if (!Fits(*background, reason))
      CVelumSaveCheck::Refuse(u"Background '%1' holds a text that is too long: %2"_s.arg(
          background->Name(), PartOr(LongPart(*background), reason)));
  static_cast<void>(Fits(aStack, reason));
  CVelumSaveCheck::Refuse(
      u"The stack holds a text that is too long: %1"_s.arg(PartOr(LongScript(aStack), reason)));
}

void CheckBlob(const CVelumBlob& aBlob) {
  qsizetype size = aBlob.Bytes().size();
  if (!aBlob.InfoOnly() && (size < 1 || size > EMaxStoredBlock))
    CVelumSaveCheck::Refuse(u"The picture '%1' has %2 bytes; 1 to %3 can be stored."_s.arg(aBlob.Name())
                                .arg(size)
                                .arg(EMaxStoredBlock));
  for (const QString* text : {&aBlob.Name(), &aBlob.Filename(), &aBlob.MimeType()})
    if (text->size() > EMaxStoredText)
      CVelumSaveCheck::Refuse(u"The description of picture %1 is too long."_s.arg(aBlob.Id()));
}

} // namespace

void CVelumSaveCheck::CheckBlobs(const CVelumBlobStore& aStore) {
  for (qint32 i = 0; i < aStore.Cache().Count(); ++i)
    if (auto* blob = static_cast<const CVelumBlob*>(aStore.Cache().ValRef(i).Obj())) CheckBlob(*blob);
}

void CVelumSaveCheck::RefuseUnreadable(const std::function<void()>& aLoad) {
  if (!CVelumError::WasOverruled()) return;
  CVelumError::CStrict strict;
  try {
    aLoad();
  } catch (const std::exception&) {
    CVelumError::CatchError(u"CVelumSaveCheck.RefuseUnreadable"_s);
    const TVelumError error = CVelumError::GetErrorRecord();
    const QString why = error.iMsgId < EMsgAssertFailed ? error.iSysDescr
                                                        : CVelumMsg::Text(error.iMsgId, error.iP0, error.iP1);
    Refuse(
        u"After the failures that were passed over, the stack holds what could not be opened again: %1"_s.arg(
            why));
  }
}

void CVelumSaveCheck::Refuse(const QString& aReason) {
  throw CVelumException(EMsgCouldNotSave, u"CVelumSaveCheck"_s, aReason);
}

qint64 CVelumSaveCheck::Measure(CVelumStack& aStack, CVelumViewState& aView) {
  try {
    return Length(aStack) + Length(aView);
  } catch (const CVelumException& e) {
    if (e.Number() != EHostOverflow) throw;
    RefuseCulprit(aStack);
  }
}
