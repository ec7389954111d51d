#include "shell/dialogs/CVelumWelcome.h"

#include "runtime/CVelumIcons.h"
#include "shell/frame/CVelumFrame.h"
#include "shell/frame/CVelumScriptBar.h"
#include "toolkit/CVelumToolkitLib.h"
#include "toolkit/CVelumWinMan.h"
#include "ui_CVelumWelcome.h"

#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QTimer>
#include <chrono>

using namespace std::chrono_literals;

namespace {

constexpr int EPictureSize = 64;

QString Licences() {
  struct TLicence {
    QString iName;
    QString iTerms;
    QString iLink;
  };
  const TLicence all[] = {
      {u"Orvelles"_s, u"MIT License"_s, u"https://opensource.org/license/mit"_s},
      {u"Qt "_s + QString::fromLatin1(qVersion()), u"GNU Lesser General Public License 3"_s,
       u"https://www.gnu.org/licenses/lgpl-3.0.html"_s},
      {u"ICU"_s, u"Unicode License"_s, u"https://www.unicode.org/license.txt"_s},
      {u"FreeImage"_s, u"FreeImage Public License 1.0, or GNU General Public License 2 or 3"_s,
       u"https://freeimage.sourceforge.io/license.html"_s},
  };
  QString html;
  for (const TLicence& licence : all)
    html += u"<p><b>%1</b><br><a href=\"%3\">%2</a></p>"_s.arg(licence.iName, licence.iTerms, licence.iLink);
  return html;
}

} // namespace

CVelumWelcome::CVelumWelcome()
    : CVelumDialogForm(u"CVelumWelcome"_s, false), iUi(new Ui::CVelumWelcome), fWaitTimer(new QTimer(this)) {
  iUi->setupUi(this);
  iUi->fPicture->setPixmap(
      CVelumIcons::AppIcon().pixmap(QSize(EPictureSize, EPictureSize), devicePixelRatio()));
  QFont large = font();
  large.setPointSizeF(2 * large.pointSizeF());
  iUi->fProgram->setFont(large);
  iUi->fVersion->setText(tr("Version %1").arg(QCoreApplication::applicationVersion()));
  ShowLicences();
  iUi->fLicences->installEventFilter(this);
  iUi->fSample->setEnabled(!SampleFile().isEmpty());
  fWaitTimer->setObjectName(u"fWaitTimer"_s);
  fWaitTimer->setInterval(7000ms);
  fWaitTimer->setSingleShot(true);
  // A message that came up over it stays, and so does the box.
  connect(fWaitTimer, &QTimer::timeout, this, [this] {
    if (QApplication::activeModalWidget())
      Stay();
    else
      DoOk();
  });
  connect(iUi->fOk, &QPushButton::clicked, this, &CVelumWelcome::DoOk);
  connect(iUi->fSample, &QPushButton::clicked, this, &CVelumWelcome::OpenSample);
}

CVelumWelcome::~CVelumWelcome() = default;

bool CVelumWelcome::eventFilter(QObject* aObject, QEvent* aEvent) {
  if (aObject == iUi->fLicences && aEvent->type() == QEvent::PaletteChange) ShowLicences();
  return CVelumDialogForm::eventFilter(aObject, aEvent);
}

void CVelumWelcome::ShowLicences() {
  CVelumLib::ColorLinks(*iUi->fLicences);
  iUi->fLicences->setHtml(Licences());
}

void CVelumWelcome::Load() {
  layout()->setSizeConstraint(QLayout::SetFixedSize);
  adjustSize();
  PlaceOverFrame();
  iUi->fOk->setFocus();
  Stay();
}

void CVelumWelcome::Unload() {
  fWaitTimer->stop();
}

void CVelumWelcome::PlaceOverFrame() {
  if (!gFrame) return;
  const QRect over = gFrame->frameGeometry();
  const QSize room = over.size() - frameSize();
  const int x = room.width() > 0 ? room.width() / 2 : 0;
  const int y = room.height() > 0 ? room.height() / 5 : 0;
  move(over.topLeft() + QPoint(x, y));
}

void CVelumWelcome::Stay() {
  fWaitTimer->start();
}

void CVelumWelcome::StayUntilOk() {
  fWaitTimer->stop();
}

void CVelumWelcome::DoOk() {
  CVelumWinMan::UnloadForm(*this);
}

QString CVelumWelcome::SampleFile() {
  const QDir program(QCoreApplication::applicationDirPath());
  for (const QString& folder : {u"../share/orvelles"_s, u"../samples"_s}) {
    const QFileInfo file(program.filePath(folder + u"/Countries.Orvelle"_s));
    if (file.isFile()) return file.canonicalFilePath();
  }
  return {};
}

void CVelumWelcome::OpenSample() {
  const QString path = SampleFile();
  DoOk();
  if (gFrame && !path.isEmpty())
    CVelumDialogLib::WhenNoScriptRuns([path] { gFrame->Commands().OpenRecent(path); });
}
