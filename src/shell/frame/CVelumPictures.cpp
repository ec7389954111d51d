#include "shell/frame/CVelumPictures.h"

#include "core/CVelumMsg.h"
#include "core/CVelumSeams.h"
#include "runtime/view/CVelumStackView.h"
#include "shell/dialogs/CVelumMsgForm.h"
#include "shell/dialogs/CVelumNotBuilt.h"
#include "shell/dialogs/CVelumSave.h"
#include "shell/frame/CVelumEditors.h"
#include "shell/frame/CVelumFrame.h"
#include "shell/frame/CVelumMain.h"
#include "shell/help/CVelumHelpForm.h"
#include "toolkit/CVelumWinMan.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QPalette>
#include <QPixmap>
#include <utility>

namespace {

QPalette DarkPalette() {
  QPalette palette(QColor(56, 56, 60), QColor(45, 45, 48));
  palette.setColor(QPalette::Base, QColor(30, 30, 32));
  palette.setColor(QPalette::Highlight, QColor(42, 130, 218));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(QPalette::Disabled, role, QColor(130, 130, 134));
  return palette;
}

void Settle() {
  for (int i = 0; i < 5; ++i) QApplication::processEvents();
}

bool Grab(QWidget& aWindow, const QString& aPath) {
  Settle();
  return aWindow.grab().save(aPath);
}

bool WriteBoxes(const QString& aStem, const QString& aEnding) {
  CVelumMsgForm message(gFrame);
  message.SetClass(EMsgQuestion);
  message.SetText(CVelumMsg::Text(
      EMsgDeleteCardOk, gStackView && gStackView->CurCard() ? gStackView->CurCard()->Name() : QString()));
  message.show();
  CVelumSave save(QFileInfo(gStack ? gStack->Filename() : QString()).fileName(), gFrame);
  save.show();
  CVelumMsg::ShowHelp(gFrame->Name(), {});
  QWidget& help = *CVelumHelpForm::Instance();
  const bool good = Grab(message, aStem + u"question"_s + aEnding) &&
                    Grab(save, aStem + u"save"_s + aEnding) && Grab(help, aStem + u"help"_s + aEnding);
  help.close();
  return good;
}

// The picture of the card in full, where it has one.
bool WriteViewer(const QString& aStem, const QString& aEnding) {
  gFrame->ShowPicture();
  if (!CVelumWinMan::FormIsLoaded(u"CVelumPictureViewer"_s)) return true;
  QWidget* viewer = CVelumWinMan::NameToForm(u"CVelumPictureViewer"_s)->Widget();
  const bool good = Grab(*viewer, aStem + u"picture"_s + aEnding);
  viewer->close();
  return good;
}

// Windows that are opened by something on a card, or are in other pictures.
bool NeedsACard(const QString& aName) {
  static const QStringList names{u"CVelumFrame"_s,         u"CVelumGenForm"_s,      u"CVelumCardListForm"_s,
                                 u"CVelumPictureViewer"_s, u"CVelumWikiTextEdit"_s, u"CVelumCardSelect"_s};
  return names.contains(aName);
}

// All other windows, as they are when they open.
bool WriteDialogs(const QString& aStem, const QString& aEnding) {
  bool good = true;
  for (int i = 0; i < CVelumWinMan::FormCount(); ++i) {
    const QString& name = CVelumWinMan::FormName(i);
    if (NeedsACard(name) || !CVelumWinMan::HasForm(name)) continue;
    CVelumForm* form = CVelumWinMan::NameToForm(name);
    CVelumWinMan::ShowDialog(*form);
    if (auto* cards = dynamic_cast<CVelumCardEditor*>(form); cards && gStackView)
      cards->SetAndShowCard(gStackView->CurCard());
    good = Grab(*form->Widget(), aStem + name.sliced(6).toLower() + aEnding) && good;
    form->Widget()->close();
  }
  CVelumNotBuilt::Tell(u"Stack, Sort Keys"_s, gFrame);
  good = Grab(*CVelumNotBuilt::Instance(), aStem + u"notbuilt"_s + aEnding) && good;
  CVelumNotBuilt::Instance()->close();
  return good;
}

// The first card with wiki text and its field; false when there is none.
bool FindWiki(Ref<CVelumCard>& aCard, Ref<CVelumControl>& aField) {
  Ref<CVelumControlSet> set;
  for (qint32 at = 0; gStack && gStack->GetNextBackground(set, at);)
    for (qint32 i = 0; i < set->NumControls(); ++i) {
      aField = set->ControlAt(i);
      qint32 index = 0;
      if (aField && aField->Flag(EConWikiText) && gStack->GetFirstCardInBackground(set->Id(), aCard, index))
        return true;
    }
  return false;
}

// A card with wiki text, and the windows for its source and for choosing a card.
bool WriteWiki(const QString& aStem, const QString& aEnding) {
  Ref<CVelumCard> card;
  Ref<CVelumControl> field;
  if (!gStackView || !FindWiki(card, field)) return true;
  gStackView->GoToCard(card);
  bool good = Grab(*gFrame, aStem + u"wiki"_s + aEnding);
  gStackView->BaseObjDblClick(qobject_cast<CVelumBaseControl*>(field->BaseControl()));
  gFrame->ShowForm(u"CVelumCardSelect"_s);
  for (const auto& [name, file] :
       {std::pair(u"CVelumWikiTextEdit"_s, u"wikiedit"_s), std::pair(u"CVelumCardSelect"_s, u"select"_s)}) {
    if (!CVelumWinMan::FormIsLoaded(name)) continue;
    QWidget* form = CVelumWinMan::NameToForm(name)->Widget();
    good = Grab(*form, aStem + file + aEnding) && good;
    form->close();
  }
  return good;
}

bool WriteAll(const QString& aStem, const QString& aEnding) {
  bool good = Grab(*gFrame, aStem + u"main"_s + aEnding);
  Ref<CVelumCard> card;
  if (gStackView && gStackView->OrderLast(card))
    good = Grab(*gFrame, aStem + u"last"_s + aEnding) && WriteViewer(aStem, aEnding) && good;
  good = WriteWiki(aStem, aEnding) && good;
  if (gStackView) static_cast<void>(gStackView->OrderFirst(card));
  good = WriteDialogs(aStem, aEnding) && good;
  return WriteBoxes(aStem, aEnding) && good;
}

} // namespace

int CVelumPictures::Write(const QString& aFolder, const QString& aStack) {
  QDir().mkpath(aFolder);
  CVelumMain::Main(aStack);
  const QPalette light = QApplication::palette();
  const QString ending = u"-%1x.png"_s.arg(gFrame->devicePixelRatio());
  const QDir folder(aFolder);
  bool good = WriteAll(folder.filePath(u"light-"_s), ending);
  QApplication::setPalette(DarkPalette());
  good = WriteAll(folder.filePath(u"dark-"_s), ending) && good;
  QApplication::setPalette(light);
  CVelumMain::End();
  return good ? 0 : 1;
}
