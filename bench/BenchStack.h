// The stacks that are measured.
#pragma once

#include "model/CVelumStack.h"

#include <random>

// Makes stacks of cards with 10 values: 5 texts of 12 characters, 3 integers, a real and a date. Names are
// numbers of 12 characters in random order. The same arguments make the same stack.
class BenchStack {
public:
  // Plain: one background. Lists: the cards in two kept-sorted backgrounds in turn, sorted by a text and by
  // a number, and a third background with one card that shows a card list. Wide: two backgrounds of 15
  // fields.
  enum EKind { EPlain, EKeptSorted, ELists, EWide };

  explicit BenchStack(EKind aKind);

  [[nodiscard]] static QString KindName(EKind aKind);
  [[nodiscard]] const Ref<CVelumStack>& Stack() const { return iStack; }
  // The background of the aNum-th card.
  [[nodiscard]] const Ref<CVelumControlSet>& BackgroundFor(qint32 aNum) const;
  // A card that is not in the stack yet. aNum is its number among all, and decides its background.
  [[nodiscard]] Ref<CVelumCard> NewCard(const QString& aName, qint32 aNum);
  // aCount names of 12 characters in random order.
  [[nodiscard]] QList<QString> Names(qint32 aCount);
  // Adds cards one by one.
  void AddCards(const QList<QString>& aNames);
  // Adds them at once.
  void AddBulk(const QList<QString>& aNames);

private:
  Ref<CVelumControlSet> NewBackground(const QString& aName);
  void KeepSorted(const Ref<CVelumControlSet>& aBackground, const QString& aField);
  void AddListBackground();
  [[nodiscard]] TVelumValue ValFor(const CVelumControl& aControl);
  [[nodiscard]] qint32 Below(qint32 aLimit);

  EKind iKind;
  std::mt19937 iRandom{1};
  Ref<CVelumStack> iStack;
  QList<Ref<CVelumControlSet>> iBackgrounds; // those of the cards
};
