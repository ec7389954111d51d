#include "runtime/RuntimeFixture.h"

#include "core/CVelumMsg.h"
#include "core/CVelumValue.h"
#include "core/text/CVelumLocale.h"
#include "model/CVelumModel.h"
#include "toolkit/CVelumWinMan.h"

#include <QComboBox>
#include <QLineEdit>
#include <QTest>
#include <QTextEdit>

namespace {

// The one window that ShowForm really opens.
const QString EWikiEdit = u"CVelumWikiTextEdit"_s;

} // namespace

FakeFrame::FakeFrame() {
  gFrameHost = this;
  iArea.resize(1000, 800);
  iArea.show();
  iArea.activateWindow();
  EXPECT_TRUE(QTest::qWaitForWindowActive(&iArea));
  for (int i = 0; i < 10; ++i) iActions[u"fGenFunc"_s + QString::number(i)] = nullptr;
  iActions[u"fNoCmd"_s] = nullptr;
  for (auto& [name, action] : iActions) action = iMenu.addAction(name);
  iActions[u"fCmd"_s] = iMenu.menuAction();
}

QAction* FakeFrame::FindAction(const QString& aName) {
  const auto found = iActions.find(aName);
  return found == iActions.end() ? nullptr : found->second;
}

QIcon FakeFrame::ToolbarIcon(const QString& aKey) {
  iCalls.append(u"ToolbarIcon "_s + aKey);
  QPixmap pixmap(16, 16);
  pixmap.fill(Qt::red);
  return pixmap;
}

void FakeFrame::AddChild(QWidget* aForm) {
  aForm->setParent(&iArea);
}

void FakeFrame::RemoveChild(QWidget* aForm) {
  aForm->hide();
  aForm->setParent(nullptr);
}

void FakeFrame::ShowChild(QWidget* aForm, bool aRaise) {
  if (iFailures > 0 && iFailures-- > 0) CVelumError::RaiseHost(EHostOutOfMemory);
  aForm->show();
  if (!aRaise) return;
  aForm->raise();
  iCalls.append(u"raise "_s + aForm->objectName());
}

bool FakeFrame::CloseStack() {
  iCalls.append(u"CloseStack"_s);
  return iCloses;
}

QWidget* FakeFrame::ShowForm(const QString& aName) {
  iCalls.append(u"ShowForm "_s + aName);
  if (aName != EWikiEdit) return nullptr;
  CVelumForm* form = CVelumWinMan::NameToForm(aName);
  CVelumWinMan::ShowDialog(*form);
  return form->Widget();
}

RuntimeTest::RuntimeTest() {
  CVelumLocale::Init(u"en_US"_s);
  CVelumMsg::InitMessages();
  CVelumModel::Install();
  CVelumWinMan::InitWinMan();
  CVelumLib::InitRuntime();
  CVelumSeams::SetMetrics(TVelumMetrics{200, 120, 100, 130, 50, 100, 20});
  CVelumCardView::SetMeasure(&iMeasure);
  gStack = MakeRef<CVelumStack>(u"Test"_s);
  qint32 index = 0;
  EXPECT_TRUE(gStack->GetFirstBackground(iSet, index));
  iSet->SetFlags(ECseDenseLayout);
}

RuntimeTest::~RuntimeTest() {
  if (CVelumWinMan::FormIsLoaded(EWikiEdit)) CVelumWinMan::UnloadForm(*CVelumWinMan::NameToForm(EWikiEdit));
  if (gStackView) gStackView->Release();
  gStackView = nullptr;
  gStack = nullptr;
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  CVelumCardView::SetMeasure(nullptr);
  CVelumSeams::SetMetrics(iMetrics);
}

Ref<CVelumControl> RuntimeTest::AddField(const Ref<CVelumControlSet>& aSet, const QString& aName,
                                         qint32 aType, qint32 aMoreFlags) {
  const Ref<CVelumControl> control = MakeRef<CVelumControl>(gStack->IdGen().NextId(), aName, aType);
  control->SetLabel(aName);
  control->SetVisChar(aType == EConCommand ? ENoShort : qint16{10});
  control->SetFlags(control->Flags() | aMoreFlags);
  aSet->AddControl(control, ENoInt);
  return control;
}

Ref<CVelumCard> RuntimeTest::AddCard(const QString& aName, const Ref<CVelumControlSet>& aSet) {
  const Ref<CVelumCard> card = MakeRef<CVelumCard>(aName, aSet ? aSet : iSet);
  gStack->AddCard(card, nullptr, false);
  return card;
}

Ref<CVelumControlSet> RuntimeTest::AddBackground(const QString& aName) {
  const Ref<CVelumControlSet> set = MakeRef<CVelumControlSet>(aName, gStack->IdGen().NextId());
  set->SetFlags(ECseDenseLayout);
  gStack->AddBackground(set);
  return set;
}

void RuntimeTest::Open(float aWidth, float aHeight) {
  const Ref<CVelumViewState> state = MakeRef<CVelumViewState>(u"View"_s);
  state->iCardViewRect = MakeRef<CVelumRect>(0.0F, 0.0F, aWidth, aHeight);
  state->iCardListOpen = false;
  gStackView = MakeRef<CVelumStackView>(state, gStack);
  gStackView->OpenViews();
}

void RuntimeTest::Resize(int aWidth, int aHeight) {
  Form().resize(aWidth, aHeight);
  QCoreApplication::processEvents();
}

CVelumBaseControl& RuntimeTest::Base(const Ref<CVelumControl>& aControl) {
  auto* base = qobject_cast<CVelumBaseControl*>(aControl->BaseControl());
  if (!base) throw std::runtime_error("no base control: " + aControl->Name().toStdString());
  return *base;
}

CVelumBaseControl& RuntimeTest::Label(const Ref<CVelumControl>& aControl) {
  auto* base = qobject_cast<CVelumBaseControl*>(aControl->BaseLabel());
  if (!base) throw std::runtime_error("no label: " + aControl->Name().toStdString());
  return *base;
}

CVelumBaseControl& RuntimeTest::Pool(const QString& aName) {
  CVelumBaseControl* base = Form().FindControl(aName);
  if (!base) throw std::runtime_error("no such control: " + aName.toStdString());
  return *base;
}

void RuntimeTest::Type(const Ref<CVelumControl>& aControl, const QString& aText) {
  CVelumBaseControl& base = Base(aControl);
  base.SetFocus();
  QTest::keyClick(base.Widget(), Qt::Key_End, Qt::ControlModifier);
  QTest::keyClick(base.Widget(), Qt::Key_End);
  QTest::keyClicks(base.Widget(), aText);
}

QString RuntimeTest::TextOf(const Ref<CVelumCard>& aCard, const Ref<CVelumControl>& aControl) {
  return CVelumValue::ValToExtText(aCard->GetControlVal(aControl->Id(), false), aControl->FieldInfo());
}
