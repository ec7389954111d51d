// XML stacks in a test: loading texts, and what becomes of them.
#pragma once

#include "core/CVelumMsg.h"
#include "core/text/CVelumLocale.h"
#include "model/CVelumModel.h"
#include "persist/CVelumStackFile.h"
#include "support/CaseFiles.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

inline constexpr const char* EGood = "stacks/xml";
inline constexpr const char* EOdd = "stacks/xml-damaged";

class XmlStack : public testing::TestWithParam<std::string> {
protected:
  XmlStack() {
    CVelumModel::Install();
    CVelumLocale::Init(u"en_US"_s);
  }
  [[nodiscard]] static QString PathOf(const char* aFolder, const std::string& aName) {
    return CaseFiles::Folder(aFolder) + u'/' + QString::fromStdString(aName);
  }
  void Load(const QByteArray& aBytes) {
    iPath = iFolder.Write(u"t.xml"_s, aBytes);
    CVelumStackFile(iPath).LoadStack(iStack, iView);
  }
  void LoadCase(const char* aFolder, const std::string& aName) {
    Load(CaseFiles::Bytes(PathOf(aFolder, aName)));
  }
  QByteArray Saved() {
    const QString path = iFolder.Path(u"saved.xml"_s);
    CVelumStackFile(path).SaveStack(iStack, iView);
    return iFolder.Read(u"saved.xml"_s);
  }
  // What a load of these bytes ends in: the question that was answered with no, else the error's number.
  QString Failure(const QByteArray& aBytes) {
    iPresenter.Clear();
    try {
      Load(aBytes);
    } catch (const CVelumException& e) {
      return iPresenter.Count() > 0 ? iPresenter.LastText() : QString::number(e.Number());
    }
    return {};
  }

  TempFolder iFolder;
  ScriptedPresenter iPresenter;
  QString iPath;
  Ref<CVelumStack> iStack;
  Ref<CVelumViewState> iView;
};
