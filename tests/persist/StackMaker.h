// A document with pictures, and what tests do to it.
#pragma once

#include "persist/CVelumStackFile.h"

#include <QJsonObject>

// One stack with its view; every picture field value has a blob of its own.
class StackMaker {
public:
  // A new stack in the binary form with one background, a text field and a picture field, and aCards cards.
  // Each card has a picture of aBytes bytes (0: none).
  static StackMaker New(int aCards, qsizetype aBytes);
  static StackMaker Load(const QString& aPath);

  // Saves under the stack's name, which it thereby gets if it had none.
  void Save(const QString& aPath);
  // A card with a picture; its content differs from card to card.
  Ref<CVelumCard> AddCard(const QString& aName, qsizetype aBytes);
  // Gives the card another picture.
  void SetPicture(CVelumCard& aCard, const QByteArray& aBytes);
  // Changes the content of the blob that the card shows.
  void ChangePicture(CVelumCard& aCard, const QByteArray& aBytes);
  // The picture's bytes, none when the card has no picture.
  [[nodiscard]] QByteArray Picture(CVelumCard& aCard);
  [[nodiscard]] Ref<CVelumCard> Card(int aNum);
  // The id of the picture field, and of the text field.
  [[nodiscard]] qint32 PictureId() const;
  [[nodiscard]] qint32 TextId() const;
  // All that the stack holds, blobs included.
  [[nodiscard]] QJsonObject Tell();

  Ref<CVelumStack> iStack;
  Ref<CVelumViewState> iView;
};
