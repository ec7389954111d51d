// Verifies a loaded stack: everything that loading takes on trust, and what it found and put right.
#pragma once

#include "model/order/CVelumIndexCheck.h"

#include <QHash>

// Looks at ids, backgrounds, fields, cards, the order and name indexes, sort keys and key indexes, and has
// the blobs and the layout of the file looked at by CVelumBlobCheck and CVelumLayoutCheck. Changes nothing.
class CVelumStackCheck {
public:
  // The stack must live as long as the check.
  explicit CVelumStackCheck(CVelumStack& aStack) : iStack(aStack) {}

  // A line of text per problem; none for a sound stack.
  [[nodiscard]] QStringList Run();

private:
  void Add(const QString& aProblem) { iProblems.append(aProblem); }
  void CheckId(qint32 aId, const QString& aOwner);
  void CheckBackgrounds();
  void CheckControl(const CVelumControlSet& aBackground, const CVelumControl& aControl);
  void CheckPartner(const CVelumControlSet& aBackground, const CVelumControl& aControl);
  void CheckCardList(const CVelumControlSet& aBackground, const CVelumControl& aControl);
  void CheckCards();
  void CheckCard(CVelumCard& aCard, qint32 aSlot);
  void CheckValue(const CVelumCard& aCard, const CVelumControlSet& aBackground, qint32 aControlId,
                  const TVelumValue& aVal);
  void CheckSortKeys();
  void CheckKeyIndexes();
  void CheckKeptSorted(const CVelumControlSet& aBackground);

  CVelumStack& iStack;
  CVelumIndexCheck iIndexes{iStack, std::numeric_limits<qsizetype>::max()};
  QStringList iProblems;
  QHash<qint32, QString> iIds; // what each id of the stack's id space belongs to
};
