#include "shell/frame/CVelumStackName.h"

#include "persist/CVelumAccess.h"
#include "support/PrintQt.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace {

Ref<CVelumStack> Stack(const QString& aName, const QString& aDescr = {}, const QString& aFilename = {}) {
  const auto stack = MakeRef<CVelumStack>(aName);
  stack->SetDescr(aDescr);
  stack->SetFilename(aFilename);
  return stack;
}

} // namespace

TEST(CVelumStackName, IsThatOfTheFile) {
  const Ref<CVelumStack> stack = Stack(u"n"_s, u"d"_s, u"/x/y/My books.Orvelle"_s);
  EXPECT_EQ(CVelumStackName::Title(*stack), u"My books.Orvelle"_s);
  EXPECT_EQ(CVelumStackName::FileName(*stack), u"My books.Orvelle"_s);
}

TEST(CVelumStackName, WithoutAFileIsTheDescription) {
  const Ref<CVelumStack> stack = Stack(u"Orvelle"_s, u"\n  My   books \n of all times"_s);
  EXPECT_EQ(CVelumStackName::Title(*stack), u"My books"_s);
  EXPECT_EQ(CVelumStackName::FileName(*stack), u"My books.Orvelle"_s);
  EXPECT_EQ(CVelumStackName::Caption(*stack), u"My books"_s);
  EXPECT_EQ(CVelumStackName::Title(*Stack(u"x"_s, QString(500, u'a'))), QString(60, u'a'));
}

TEST(CVelumStackName, AnImportIsCalledByItsFile) {
  const Ref<CVelumStack> stack = Stack(u"/home/me/tables/books 2024.v2.csv"_s);
  EXPECT_EQ(CVelumStackName::Title(*stack), u"books 2024.v2"_s);
  EXPECT_EQ(CVelumStackName::FileName(*stack), u"books 2024.v2.Orvelle"_s);
  EXPECT_EQ(CVelumStackName::Caption(*stack), u"books 2024.v2"_s);
}

TEST(CVelumStackName, ElseItIsANewOne) {
  for (const QString& name : {u"Orvelle"_s, QString()}) {
    EXPECT_EQ(CVelumStackName::Title(*Stack(name)), u"New stack"_s);
    EXPECT_EQ(CVelumStackName::FileName(*Stack(name)), u"New stack.Orvelle"_s);
  }
}

TEST(CVelumStackName, AFileNameHasNoFolderAndIsNotHidden) {
  EXPECT_EQ(CVelumStackName::FileName(*Stack(u"x"_s, u"../a/b"_s)), u"-a-b.Orvelle"_s);
  EXPECT_EQ(CVelumStackName::FileName(*Stack(u"x"_s, u"..."_s)), u"New stack.Orvelle"_s);
}

TEST(CVelumStackName, CaptionTellsWhatCanOnlyBeRead) {
  const TempFolder folder;
  const QString path = folder.Write(u"a.Orvelle"_s, "x");
  EXPECT_EQ(CVelumStackName::Caption(*Stack(u"x"_s, {}, path)), path);
  CVelumAccess::SetInstalledFolder(folder.Path());
  EXPECT_EQ(CVelumStackName::Caption(*Stack(u"x"_s, {}, path)), path + u" (read only)"_s);
  CVelumAccess::SetInstalledFolder({});
}
