#include "persist/StackMaker.h"

#include "model/CVelumModel.h"
#include "persist/StackTeller.h"

#include <gtest/gtest.h>

namespace {

Ref<CVelumControlSet> FirstBackground(const CVelumStack& aStack) {
  Ref<CVelumControlSet> background;
  qint32 at = 0;
  EXPECT_TRUE(aStack.GetFirstBackground(background, at));
  return background;
}

qint32 FieldId(const CVelumStack& aStack, const QString& aName) {
  Ref<CVelumControl> control;
  EXPECT_TRUE(FirstBackground(aStack)->GetControlByName(aName, control));
  return control->Id();
}

void AddField(CVelumStack& aStack, const QString& aName, qint32 aConType) {
  FirstBackground(aStack)->AddControl(MakeRef<CVelumControl>(aStack.IdGen().NextId(), aName, aConType),
                                      ENoInt);
}

} // namespace

StackMaker StackMaker::New(int aCards, qsizetype aBytes) {
  CVelumModel::Install();
  StackMaker made;
  made.iStack = MakeRef<CVelumStack>(u"Test"_s);
  made.iStack->SetFlag(EStaBinary, true);
  made.iView = MakeRef<CVelumViewState>(u"Test"_s);
  AddField(*made.iStack, u"Text"_s, EConText);
  AddField(*made.iStack, u"Photo"_s, EConPicture);
  made.iStack->SetControlDynFlags();
  for (int i = 0; i < aCards; ++i) made.AddCard(u"Card %1"_s.arg(i), aBytes);
  return made;
}

StackMaker StackMaker::Load(const QString& aPath) {
  CVelumModel::Install();
  StackMaker made;
  CVelumStackFile(aPath).LoadStack(made.iStack, made.iView);
  return made;
}

void StackMaker::Save(const QString& aPath) {
  CVelumStackFile(aPath).SaveStack(iStack, iView);
  iStack->SetFilename(aPath);
  iStack->ResetChanged();
}

qint32 StackMaker::PictureId() const {
  return FieldId(*iStack, u"Photo"_s);
}

qint32 StackMaker::TextId() const {
  return FieldId(*iStack, u"Text"_s);
}

Ref<CVelumCard> StackMaker::AddCard(const QString& aName, qsizetype aBytes) {
  auto card = MakeRef<CVelumCard>(aName, FirstBackground(*iStack));
  iStack->AddCard(card, nullptr, true);
  if (aBytes > 0) SetPicture(*card, QByteArray(aBytes, static_cast<char>('a' + card->Id() % 26)));
  return card;
}

void StackMaker::SetPicture(CVelumCard& aCard, const QByteArray& aBytes) {
  auto blob = MakeRef<CVelumBlob>(iStack->IdGen().NextId());
  blob->SetBytes(aBytes);
  iStack->BlobStore()->AddBlob(blob);
  aCard.SetControlVal(PictureId(), TVelumValue::OfBlobId(blob->Id()));
}

void StackMaker::ChangePicture(CVelumCard& aCard, const QByteArray& aBytes) {
  iStack->BlobStore()->ReadBlob(aCard.GetControlVal(PictureId(), false).Int(), false)->SetBytes(aBytes);
}

QByteArray StackMaker::Picture(CVelumCard& aCard) {
  TVelumValue val = aCard.GetControlVal(PictureId(), false);
  return val.Type() == EValBlobId ? iStack->BlobStore()->ReadBlob(val.Int(), false)->Bytes() : QByteArray();
}

Ref<CVelumCard> StackMaker::Card(int aNum) {
  Ref<CVelumCard> card;
  EXPECT_TRUE(iStack->GetCardByNum(aNum, card));
  return card;
}

QJsonObject StackMaker::Tell() {
  return StackTeller::Tell(*iStack, *iView);
}
