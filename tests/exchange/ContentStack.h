// A small stack to export from and import into.
#pragma once

#include "core/CVelumMsg.h"
#include "exchange/CVelumExports.h"
#include "model/CVelumStackHost.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

// First Background: Text (text), Size (integer), Price (real, two decimals), Since (date), Open (boolean),
// Go (command), Photo (picture). Second: Text (text).
class ContentStack : public testing::Test {
protected:
  ContentStack();
  static Ref<CVelumControl> AddField(CVelumStack& aStack, const Ref<CVelumControlSet>& aSet,
                                     const QString& aName, qint32 aType);
  // A card at the end, its text set to aText unless that is empty.
  Ref<CVelumCard> AddCard(const Ref<CVelumControlSet>& aSet, const QString& aName, const QString& aText = {});
  static void Set(const Ref<CVelumCard>& aCard, const QString& aField, const TVelumValue& aVal);
  // Another stack of the same structure, without cards.
  [[nodiscard]] static Ref<CVelumStack> MakeStack();
  [[nodiscard]] static Ref<CVelumControlSet> Background(const CVelumStack& aStack, const QString& aName);
  // Background, name and internal texts of the fields that have a value, a card to a line.
  [[nodiscard]] static QStringList Cards(const CVelumStack& aStack);
  // The internal text of a field, "(none)" when the card has no value of its own.
  [[nodiscard]] static QString Val(const CVelumStack& aStack, qint32 aNum, const QString& aField);

  TempFolder iFolder;
  ScriptedPresenter iPresenter;
  Ref<CVelumStack> iStack;
  Ref<CVelumControlSet> iFirst;
  Ref<CVelumControlSet> iSecond;
};
