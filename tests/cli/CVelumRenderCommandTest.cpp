#include "cli/CliRun.h"
#include "core/CVelumObject.h"
#include "support/PrintQt.h"
#include "support/TempFolder.h"

#include <QFile>
#include <QImage>
#include <gtest/gtest.h>

namespace {

class CVelumRenderCommandTest : public testing::Test {
protected:
  // The picture that the command draws with aMore behind the operands.
  QImage Render(const QStringList& aMore) {
    const QString out = iFolder.Path(u"out.png"_s);
    QFile::remove(out);
    const TCliResult result = CliRun::Run(QStringList{u"render"_s, CliRun::Sample(), out} + aMore);
    EXPECT_EQ(result.iStatus, 0) << result.iErr.toStdString();
    EXPECT_TRUE(result.iOut.isEmpty());
    return QImage(out, "PNG");
  }
  static int Colours(const QImage& aImage) {
    QSet<QRgb> colours;
    for (int y = 0; y < aImage.height(); ++y)
      for (int x = 0; x < aImage.width(); ++x) colours.insert(aImage.pixel(x, y));
    return static_cast<int>(colours.size());
  }

  TempFolder iFolder;
};

TEST_F(CVelumRenderCommandTest, DrawsTheFirstCardInTheSizeThatTheStackKeeps) {
  const QImage image = Render({});
  EXPECT_GT(image.width(), 100);
  EXPECT_GT(image.height(), 100);
  EXPECT_GT(Colours(image), 10);
}

TEST_F(CVelumRenderCommandTest, TakesASizeAndACard) {
  const TCliResult cards = CliRun::Run({u"cards"_s, u"--json"_s, CliRun::Sample()});
  ASSERT_EQ(cards.iStatus, 0);
  const QImage first = Render({u"--size"_s, u"300x200"_s});
  EXPECT_EQ(first.size(), QSize(300, 200));
  EXPECT_EQ(Render({u"--size"_s, u"300x200"_s}), first) << "the same picture each time";
  const QImage other = Render({u"--size"_s, u"300x200"_s, u"--card"_s, u"Austria"_s});
  EXPECT_EQ(other.size(), QSize(300, 200));
  EXPECT_NE(other, first);
}

TEST_F(CVelumRenderCommandTest, WrongUsageAndFailuresWriteNothing) {
  const QString out = iFolder.Path(u"out.png"_s);
  for (const auto& size : {u"3x"_s, u"0x10"_s, u"99999x20"_s, u"300"_s, u"x"_s, u"-5x20"_s})
    EXPECT_EQ(CliRun::Run({u"render"_s, CliRun::Sample(), out, u"--size="_s + size}).iStatus, 2)
        << size.toStdString();
  const TCliResult none = CliRun::Run({u"render"_s, CliRun::Sample(), out, u"--card"_s, u"no such"_s});
  EXPECT_EQ(none.iStatus, 1);
  EXPECT_TRUE(none.iErr.contains("EMsgCardNotFound")) << none.iErr.toStdString();
  EXPECT_FALSE(QFile::exists(out));
  const TCliResult nowhere = CliRun::Run({u"render"_s, CliRun::Sample(), iFolder.Path(u"none/out.png"_s)});
  EXPECT_EQ(nowhere.iStatus, 1);
  EXPECT_TRUE(nowhere.iErr.contains("out.png"));
  EXPECT_EQ(CliRun::Run({u"render"_s, iFolder.Path(u"none"_s), out}).iStatus, 1);
}

TEST_F(CVelumRenderCommandTest, SaysHowItIsUsed) {
  const TCliResult help = CliRun::Run({u"render"_s, u"--help"_s});
  EXPECT_EQ(help.iStatus, 0);
  for (const char* text : {"render STACK OUT.png", "--card NAME", "--size WxH"})
    EXPECT_TRUE(help.iOut.contains(text)) << text;
}

} // namespace
