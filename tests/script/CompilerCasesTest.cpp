// Sources with the byte code or the failure that comes of them.
#include "support/CaseFiles.h"

#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "script/CVelumCompiler.h"
#include "support/ScriptedPresenter.h"

#include <QJsonValue>

namespace {

class CompilerCases : public testing::TestWithParam<std::string> {
protected:
  ScriptedPresenter iPresenter;
};

QJsonObject Handlers(const CVelumArray& aHandlers) {
  QJsonObject all;
  TVelumElem elem;
  qint32 next = 0;
  while (aHandlers.ReadNext(elem, next)) all.insert(elem.iStrKey, elem.iVal.Str());
  return all;
}

// The place and parameters of a compile error under the names of the case files.
QJsonObject Error(const TCompError& aError) {
  return {{QStringLiteral("msg"), aError.iMsg},
          {QStringLiteral("p0"), aError.iParam0},
          {QStringLiteral("p1"), aError.iParam1},
          {QStringLiteral("line"), aError.iLine},
          {QStringLiteral("lineIndex"), aError.iLineIndex},
          {QStringLiteral("start"), aError.iStart},
          {QStringLiteral("end"), aError.iEnd},
          {QStringLiteral("pos"), aError.iPos}};
}

int HostNumber(const QString& aName) {
  if (aName == u"index") return EHostIndex;
  if (aName == u"overflow") return EHostOverflow;
  return -1;
}

} // namespace

TEST_P(CompilerCases, GivesWhatIsExpected) {
  const QString path = CaseFiles::Folder("scripts") + u'/' + QString::fromStdString(GetParam());
  const QJsonObject expected = CaseFiles::Expected(path);
  CVelumCompiler compiler;
  CVelumArray handlers(EArrStrKey, EValStr);
  const QString kind = expected.value(u"kind").toString();
  try {
    compiler.Compile(CVelumLib::ToCrLf(CVelumLib::FromCodePage(CaseFiles::Bytes(path))), handlers);
    ASSERT_EQ(expected.value(u"outcome").toString().toStdString(), "ok");
    EXPECT_EQ(QJsonDocument(Handlers(handlers)).toJson(),
              QJsonDocument(expected.value(u"handlers").toObject()).toJson());
  } catch (const CVelumException& e) {
    ASSERT_EQ(expected.value(u"outcome").toString().toStdString(), "error") << e.what();
    if (kind == u"compile") {
      ASSERT_EQ(e.Number(), EMsgCompileError);
      EXPECT_EQ(CVelumError::GetErrorRecord().iProc,
                expected.value(u"proc").toString(CVelumError::GetErrorRecord().iProc));
      const QJsonObject error = Error(compiler.GetError());
      for (auto it = error.begin(); it != error.end(); ++it)
        EXPECT_EQ(it.value(), expected.value(it.key())) << it.key().toStdString();
    } else if (kind == u"assert") {
      EXPECT_EQ(e.Number(), EMsgAssertFailed);
      EXPECT_TRUE(iPresenter.LastText().contains(expected.value(u"text").toString()));
    } else {
      EXPECT_EQ(e.Number(), HostNumber(expected.value(u"system").toString()));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Files, CompilerCases,
                         testing::ValuesIn(CaseFiles::Names("scripts", QStringLiteral("*.txt"))),
                         CaseFiles::TestName);
