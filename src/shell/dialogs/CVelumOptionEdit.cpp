#include "shell/dialogs/CVelumOptionEdit.h"

#include "shell/dialogs/CVelumOptions.h"
#include "toolkit/CVelumGuard.h"
#include "toolkit/CVelumToolkitLib.h"
#include "ui_CVelumOptionEdit.h"

CVelumOptionEdit::CVelumOptionEdit()
    : CVelumDialogForm(u"CVelumOptionEdit"_s, false), iUi(new Ui::CVelumOptionEdit),
      fSelectDialog(tr("Auto-load Stack"), u"orv"_s, tr("Orvelle (*.Orvelle)|*.Orvelle|All Files (*.*)|*")) {
  iUi->setupUi(this);
  connect(iUi->fSelectAutoBut, &QPushButton::clicked, this, &CVelumOptionEdit::SelectAuto);
  connect(iUi->fSelectFolderBut, &QPushButton::clicked, this, &CVelumOptionEdit::SelectFolder);
  connect(iUi->fOkBut, &QPushButton::clicked, this, &CVelumOptionEdit::Ok);
  connect(iUi->fCancelBut, &QPushButton::clicked, this, &CVelumOptionEdit::reject);
}

CVelumOptionEdit::~CVelumOptionEdit() = default;

void CVelumOptionEdit::Load() {
  CVelumDialogForm::Load();
  iUi->fAutoLoadName->setText(gOptions.iAutoLoadName);
  iUi->fStackFolder->setText(gOptions.iStackFolder);
  iUi->fShowWelcome->setChecked(gOptions.iShowWelcome);
}

void CVelumOptionEdit::SelectAuto() {
  if (fSelectDialog.InitDir().isEmpty()) fSelectDialog.SetInitDir(CVelumOptions::StartFolder({}));
  if (fSelectDialog.ShowOpen(this)) iUi->fAutoLoadName->setText(fSelectDialog.FileName());
}

void CVelumOptionEdit::SelectFolder() {
  const QString start = CVelumOptions::StartFolder(iUi->fStackFolder->text());
  const QString folder = CVelumLib::BrowseForFolder(this, tr("Select Stack Folder"), start);
  if (!folder.isEmpty()) iUi->fStackFolder->setText(folder);
}

void CVelumOptionEdit::Ok() {
  gOptions.iAutoLoadName = iUi->fAutoLoadName->text();
  gOptions.iStackFolder = iUi->fStackFolder->text();
  gOptions.iShowWelcome = iUi->fShowWelcome->isChecked();
  if (CVelumGuard::Run(u"CVelumOptionEdit.fOkBut"_s, [] { CVelumOptions::SaveOptions(); })) accept();
}
