// The file types that an installation makes known to the desktop.
#include "support/PrintQt.h"
#include "support/TempFolder.h"

#include "core/CVelumObject.h"
#include "support/TestTree.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QProcess>
#include <QThread>
#include <gtest/gtest.h>
#include <memory>

namespace {

// Our description installed beside that of the system, while it lives.
class CInstalled {
public:
  CInstalled() {
    EXPECT_TRUE(QDir().mkpath(iFolder.Path(u"mime/packages"_s)));
    Install(TestTree::Source() + u"/packaging/orvelles-mime.xml"_s);
    Install(u"/usr/share/mime/packages/freedesktop.org.xml"_s);
    EXPECT_EQ(QProcess::execute(u"update-mime-database"_s, {iFolder.Path(u"mime"_s)}), 0);
    qputenv("XDG_DATA_HOME", iFolder.Path().toLocal8Bit());
    qputenv("XDG_DATA_DIRS", iFolder.Path().toLocal8Bit());
  }
  ~CInstalled() {
    qunsetenv("XDG_DATA_HOME");
    if (iDataDirs.isNull())
      qunsetenv("XDG_DATA_DIRS");
    else
      qputenv("XDG_DATA_DIRS", iDataDirs);
  }
  CInstalled(const CInstalled&) = delete;
  CInstalled& operator=(const CInstalled&) = delete;

private:
  void Install(const QString& aPath) const {
    EXPECT_TRUE(QFile::copy(aPath, iFolder.Path(u"mime/packages/"_s + QFileInfo(aPath).fileName())));
  }

  TempFolder iFolder;
  QByteArray iDataDirs = qgetenv("XDG_DATA_DIRS");
};

// Asks as the file manager does. One installation serves all tests of a process: the toolkit looks for
// another one only every 5 seconds, and reads names and icons of a type when they are first asked for.
class MimeTypeTest : public testing::Test {
protected:
  static void SetUpTestSuite() {
    iInstalled = std::make_unique<CInstalled>();
    QDeadlineTimer late(30000);
    while (!QMimeDatabase().mimeTypeForName(u"application/x-orvelle"_s).isValid() && !late.hasExpired())
      QThread::msleep(50);
  }
  static void TearDownTestSuite() { iInstalled.reset(); }

  static QString OfContent(const QByteArray& aContent) {
    return QMimeDatabase().mimeTypeForFileNameAndData(u"x.Orvelle"_s, aContent).name();
  }
  static QByteArray Content(const QString& aPath) {
    QFile file(TestTree::Data() + aPath);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << aPath.toStdString();
    return file.readAll();
  }

private:
  static inline std::unique_ptr<CInstalled> iInstalled;
};

} // namespace

TEST_F(MimeTypeTest, StacksAreKnownByTheirFirstBytes) {
  const QByteArray binary = Content(u"/stacks/good/multi_background.Orvelle"_s);
  EXPECT_EQ(QMimeDatabase().mimeTypeForData(binary).name(), u"application/x-orvelle"_s);
  EXPECT_EQ(OfContent(binary), u"application/x-orvelle"_s);
  const QByteArray xml = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n<VelumStack>\n  <Stack gen=\"4\"/>\n";
  EXPECT_EQ(QMimeDatabase().mimeTypeForData(xml).name(), u"application/x-orvelle+xml"_s);
  EXPECT_EQ(OfContent(xml), u"application/x-orvelle+xml"_s);
}

TEST_F(MimeTypeTest, OtherFilesAreNotTakenForStacks) {
  for (const QByteArray& content :
       {QByteArray("Orvelles is a program.\n"),
        QByteArray("<?xml version=\"1.0\"?>\n<orvelle version=\"1.0\">\n"), QByteArray("a;b;c\n")})
    EXPECT_FALSE(QMimeDatabase().mimeTypeForData(content).name().contains(u"orvelle"_s))
        << content.toStdString();
}

TEST_F(MimeTypeTest, TypesHaveNamesAndAnIcon) {
  const QMimeType binary = QMimeDatabase().mimeTypeForName(u"application/x-orvelle"_s);
  EXPECT_EQ(binary.iconName(), u"application-x-orvelle"_s);
  EXPECT_FALSE(binary.comment().isEmpty());
  EXPECT_TRUE(QMimeDatabase().mimeTypeForName(u"application/x-orvelle+xml"_s).inherits(u"application/xml"_s));
}
