#include "persist/CVelumSaveCheck.h"

#include "core/CVelumMsg.h"

namespace {

constexpr qsizetype EMaxText = 15000;
constexpr qsizetype EMaxBlock = 10000000;

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

// Names the part of the stack that cannot be written.
[[noreturn]] void RefuseCulprit(CVelumStack& aStack) {
  QString reason;
  Ref<CVelumCard> card;
  qint32 at = 0;
  for (bool more = aStack.GetFirstCard(card, at); more; more = aStack.GetNextCard(card, at))
    if (!Fits(*card, reason))
      CVelumSaveCheck::Refuse(u"Card '%1' holds a text that is too long: %2"_s.arg(card->Name(), reason));
  Ref<CVelumControlSet> background;
  for (bool more = aStack.GetFirstBackground(background, at); more;
       more = aStack.GetNextBackground(background, at))
    if (!Fits(*background, reason))
      CVelumSaveCheck::Refuse(
          u"Background '%1' holds a text that is too long: %2"_s.arg(background->Name(), reason));
  static_cast<void>(Fits(aStack, reason));
  CVelumSaveCheck::Refuse(u"The stack holds a text that is too long: %1"_s.arg(reason));
}

void CheckBlob(const CVelumBlob& aBlob) {
  qsizetype size = aBlob.Bytes().size();
  if (!aBlob.InfoOnly() && (size < 1 || size > EMaxBlock))
    CVelumSaveCheck::Refuse(u"The picture '%1' has %2 bytes; 1 to %3 can be stored."_s.arg(aBlob.Name())
                                .arg(size)
                                .arg(EMaxBlock));
  for (const QString* text : {&aBlob.Name(), &aBlob.Filename(), &aBlob.MimeType()})
    if (text->size() > EMaxText)
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
