#include "shell/dialogs/CVelumSave.h"

#include "runtime/CVelumIcons.h"
#include "toolkit/CVelumToolkitLib.h"
#include "ui_CVelumSave.h"

int iDialogRes = ESaveResBack;

CVelumSave::CVelumSave(const QString& aStackName, QWidget* aFrame)
    : QDialog(aFrame), iUi(new Ui::CVelumSave) {
  iUi->setupUi(this);
  iUi->fPicture->setPixmap(CVelumIcons::Icon(u"Question"_s).pixmap(QSize(48, 48), devicePixelRatio()));
  iUi->fQuestion->setText(tr("The stack \u201c%1\u201d has changes that are not saved.").arg(aStackName));
  const auto answer = [this](QPushButton* aButton, int aRes) {
    connect(aButton, &QPushButton::clicked, this, [this, aRes] {
      iDialogRes = aRes;
      accept();
    });
  };
  answer(iUi->fSaveBut, ESaveResSave);
  answer(iUi->fDiscardBut, ESaveResDiscard);
  answer(iUi->fBackBut, ESaveResBack);
  iDialogRes = ESaveResBack;
  adjustSize();
  CVelumLib::CentreOver(*this, aFrame);
}

CVelumSave::~CVelumSave() = default;
