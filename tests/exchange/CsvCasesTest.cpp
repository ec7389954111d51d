// CSV files of every kind: proposals, messages, fields, key and cards are what is expected.
#include "core/CVelumValue.h"
#include "core/text/CVelumLocale.h"
#include "exchange/CVelumCsvProposal.h"
#include "exchange/CVelumImports.h"
#include "support/CaseFiles.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"

#include <QJsonArray>

namespace {

QJsonArray Fields(const CVelumControlSet& aSet) {
  QJsonArray fields;
  for (qint32 i = 0; i < aSet.NumControls(); ++i) {
    const CVelumControl& field = *aSet.ControlAt(i);
    fields.append(QJsonObject{{u"flags"_s, field.Flags()},
                              {u"label"_s, field.Label()},
                              {u"listVisChar"_s, field.TrueListVisChar()},
                              {u"name"_s, field.Name()},
                              {u"type"_s, field.ConType()},
                              {u"visChar"_s, field.VisChar()},
                              {u"visLines"_s, field.VisLines()}});
  }
  return fields;
}

QJsonArray Cards(const CVelumStack& aStack) {
  QJsonArray cards;
  Ref<CVelumCard> card;
  qint32 index = 0;
  for (bool found = aStack.GetFirstCard(card, index); found; found = aStack.GetNextCard(card, index)) {
    const Ref<CVelumControlSet> set = card->Background();
    QJsonArray values;
    for (qint32 i = 0; i < set->NumControls(); ++i) {
      const qint32 id = set->ControlAt(i)->Id();
      const bool stored = card->ControlValDef(id);
      values.append(stored ? QJsonValue(CVelumValue::ValToIntText(card->GetControlVal(id, false)))
                           : QJsonValue(QJsonValue::Null));
    }
    cards.append(QJsonObject{{u"name"_s, card->Name()}, {u"values"_s, values}});
  }
  return cards;
}

QJsonArray SortKeys(const CVelumStack& aStack) {
  QJsonArray keys;
  Ref<CVelumSortKey> key;
  for (qint32 i = 0; aStack.GetNextSortKey(key, i);) {
    QJsonArray parts;
    TVelumKeyPart part;
    for (qint32 p = 0; key->GetNextKeyPart(part, p);)
      parts.append(QJsonObject{{u"control_id"_s, part.iControlId},
                               {u"len"_s, part.iLen},
                               {u"pos"_s, part.iPos},
                               {u"type"_s, part.iType},
                               {u"way"_s, part.iWay}});
    keys.append(QJsonObject{{u"name"_s, key->Name()}, {u"parts"_s, parts}});
  }
  return keys;
}

class CsvCases : public testing::TestWithParam<std::string> {
protected:
  CsvCases() {
    CVelumModel::Install();
    CVelumMsg::InitMessages();
    CVelumLocale::Init(u"en_US"_s);
    const QJsonObject options = iExpected.value(u"options").toObject();
    iOptions.iDelim = options.value(u"delim").toString().front();
    iOptions.iCoding = options.value(u"coding").toInt();
    iOptions.iHeaderLine = options.value(u"header_line").toBool();
    iOptions.iDetectTypes = options.value(u"detect_types").toBool();
    iOptions.iGuessKey = options.value(u"guess_key").toBool();
    iOptions.iTryCardName = options.value(u"try_card_name").toBool();
  }

  [[nodiscard]] QJsonArray Messages() const {
    QJsonArray messages;
    for (const ScriptedPresenter::TShown& shown : iPresenter.Shown())
      messages.append(QJsonArray{shown.iMsg, QJsonArray()});
    return messages;
  }

  const QString iPath = CaseFiles::Folder("csv") + u'/' + QString::fromStdString(GetParam());
  const QJsonObject iExpected = CaseFiles::Expected(iPath);
  TCsvOptions iOptions;
  ScriptedPresenter iPresenter;
};

TEST_P(CsvCases, ProposesDelimiterAndCoding) {
  const TCsvProposal proposal = CVelumImports::ProposeCsv(iPath);
  EXPECT_EQ(QString(proposal.iDelim), iExpected.value(u"proposedDelim").toString());
  EXPECT_EQ(proposal.iCoding, iExpected.value(u"proposedCoding").toInt());
}

TEST_P(CsvCases, ImportsAsExpected) {
  CVelumImportWatch watch;
  TNewStack imported;
  ASSERT_EQ(CVelumImports::ImportCsv1(iPath, iOptions, watch, imported), ECsvOutcome::Done);
  const CVelumStack& stack = *imported.iStack;
  Ref<CVelumControlSet> set;
  qint32 index = 0;
  ASSERT_TRUE(stack.GetFirstBackground(set, index));
  EXPECT_EQ(Messages(), iExpected.value(u"messages").toArray());
  EXPECT_EQ(Fields(*set), iExpected.value(u"fields").toArray());
  EXPECT_EQ(Cards(stack), iExpected.value(u"cards").toArray());
  EXPECT_EQ(SortKeys(stack), iExpected.value(u"sortKeys").toArray());
  EXPECT_EQ(set->Flag(ECseKeepCardsSorted), iExpected.value(u"keptSorted").toBool());
  EXPECT_EQ(set->ControlAt(0)->Flag(EConCardName), iExpected.value(u"cardName").toBool());
  EXPECT_EQ(stack.Name(), iPath);
  EXPECT_EQ(imported.iView->iName, iPath);
}

INSTANTIATE_TEST_SUITE_P(Files, CsvCases, testing::ValuesIn(CaseFiles::Names("csv", u"*.csv"_s)),
                         CaseFiles::TestName);

} // namespace
