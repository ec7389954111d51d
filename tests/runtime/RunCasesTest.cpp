// Stacks with scripts: a message is sent, and answers, failure and stored values are what is expected.
#include "core/CVelumMsg.h"
#include "core/CVelumValue.h"
#include "core/text/CVelumLocale.h"
#include "persist/CVelumStackFile.h"
#include "script/CVelumPlainHost.h"
#include "support/CaseFiles.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"

#include <QJsonArray>

namespace {

class RunCases : public testing::TestWithParam<std::string> {
protected:
  RunCases() {
    CVelumModel::Install();
    CVelumMsg::InitMessages();
    CVelumLocale::Init(u"en_US"_s);
    const QString path = CaseFiles::Folder("runs") + u'/' + QString::fromStdString(GetParam());
    iExpected = CaseFiles::Expected(path);
    CVelumStackFile(path).LoadStack(iStack, iView);
  }

  // The failure as the files tell it; empty when there is none.
  QJsonObject Failure(const CVelumException& aFailure, const CVelumInterpreter& aInterpreter) {
    if (aFailure.Number() == EMsgRunError) {
      const TRunError& error = aInterpreter.GetError();
      return {{u"kind"_s, u"run"_s},
              {u"msg"_s, error.iMsg},
              {u"p0"_s, error.iParam0},
              {u"p1"_s, error.iParam1},
              {u"line"_s, error.iLine},
              {u"owner"_s, error.iObj->Name()},
              {u"proc"_s, CVelumError::GetErrorRecord().iProc}};
    }
    if (aFailure.Number() == EMsgAssertFailed) {
      const QString text = iPresenter.LastText().section(u'<', 1).trimmed();
      const QString wanted =
          iExpected.value(u"result").toObject().value(u"error").toObject().value(u"text").toString();
      return {{u"kind"_s, u"assert"_s},
              {u"msg"_s, aFailure.Number()},
              {u"text"_s, text.startsWith(wanted) ? wanted : text}};
    }
    return {{u"kind"_s, u"system"_s},
            {u"system"_s, aFailure.Number() == EHostIndex ? u"index"_s : QString::number(aFailure.Number())}};
  }

  // The values of all cards in internal text, undefined ones left out.
  QJsonObject Fields() const {
    QJsonObject all;
    Ref<CVelumCard> card;
    qint32 index = 0;
    for (bool found = iStack->GetFirstCard(card, index); found; found = iStack->GetNextCard(card, index)) {
      QJsonObject values;
      const Ref<CVelumControlSet> set = card->Background();
      for (qint32 i = 0; i < set->NumControls(); ++i) {
        const CVelumControl* control = set->ControlAt(i);
        if (!card->ControlValDef(control->Id())) continue;
        const TVelumValue value = card->GetControlVal(control->Id(), false);
        values.insert(control->Name(), CVelumValue::ValToIntText(value));
      }
      all.insert(card->Name(), values);
    }
    return all;
  }

  ScriptedPresenter iPresenter;
  QJsonObject iExpected;
  Ref<CVelumStack> iStack;
  Ref<CVelumViewState> iView;
};

} // namespace

TEST_P(RunCases, GivesWhatIsExpected) {
  const QJsonObject send = iExpected.value(u"send").toObject();
  const QJsonObject result = iExpected.value(u"result").toObject();
  const auto interpreter = MakeRef<CVelumInterpreter>();
  CVelumPlainHost host(iStack, interpreter);
  Ref<CVelumCard> card;
  ASSERT_TRUE(iStack->GetCard(send.value(u"card").toString(), card));
  host.SetCurCard(card);
  Ref<CVelumControl> control;
  if (send.value(u"control").isString()) {
    ASSERT_TRUE(card->Background()->GetControlByName(send.value(u"control").toString(), control));
  }
  interpreter->SetParamVal(send.value(u"param").toString());
  QJsonObject failure;
  try {
    const Ref<CVelumScripted> owner = host.Send(card, control, send.value(u"message").toString());
    EXPECT_EQ(bool(owner), result.value(u"found").toBool());
    if (owner) {
      EXPECT_EQ(owner->Name(), result.value(u"owner").toString());
    }
  } catch (const CVelumException& e) {
    failure = Failure(e, *interpreter);
  }
  EXPECT_EQ(QJsonDocument(failure).toJson().toStdString(),
            QJsonDocument(result.value(u"error").toObject()).toJson().toStdString());
  EXPECT_EQ(QJsonDocument(QJsonArray::fromStringList(iPresenter.Told())).toJson().toStdString(),
            QJsonDocument(result.value(u"answers").toArray()).toJson().toStdString());
  EXPECT_EQ(host.CurCard()->Name(), result.value(u"currentCard").toString());
  EXPECT_EQ(QJsonDocument(Fields()).toJson().toStdString(),
            QJsonDocument(result.value(u"fields").toObject()).toJson().toStdString());
}

INSTANTIATE_TEST_SUITE_P(Files, RunCases,
                         testing::ValuesIn(CaseFiles::Names("runs", QStringLiteral("*.Orvelle"))),
                         CaseFiles::TestName);
