// A stack on the screen for tests: a fixed measure, a main window that remembers what it was asked for, and
// a script runner that remembers messages.
#pragma once

#include "runtime/CVelumRuntimeLib.h"
#include "runtime/view/CVelumFrameHost.h"
#include "runtime/view/CVelumGenForm.h"
#include "runtime/view/CVelumStackView.h"
#include "support/NotingRunner.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/WidgetApp.h"
#include "toolkit/CVelumBaseControl.h"

#include <QAction>
#include <QMenu>
#include <functional>
#include <gtest/gtest.h>
#include <map>

// Each character is 100 twips wide; a line is 20 twips high for each point of the font.
class FixedMeasure final : public CVelumBaseMeasure {
public:
  [[nodiscard]] float TextHeight(const QString&) const override {
    return 20.0F * static_cast<float>(Font().pointSizeF());
  }
  [[nodiscard]] float TextWidth(const QString& aText) const override {
    return 100.0F * static_cast<float>(aText.size());
  }
};

class FakeFrame : public CVelumFrameHost {
public:
  FakeFrame();
  ~FakeFrame() override { gFrameHost = nullptr; }
  [[nodiscard]] QAction* FindAction(const QString& aName) override;
  [[nodiscard]] QMenu* CmdMenu() override { return &iMenu; }
  [[nodiscard]] QIcon ToolbarIcon(const QString& aKey) override;
  void AddChild(QWidget* aForm) override;
  void RemoveChild(QWidget* aForm) override;
  void ShowChild(QWidget* aForm, bool aRaise) override;
  void HideChild(QWidget* aForm) override { aForm->hide(); }
  [[nodiscard]] bool CloseStack() override;
  QWidget* ShowForm(const QString& aName) override;
  void ShowPicture() override { iCalls.append(u"ShowPicture"_s); }
  void CardShown() override { ++iShown; }
  void AddToFileHistory(const QString& aPath) override { iCalls.append(u"AddToFileHistory "_s + aPath); }

  QWidget iArea;
  QMenu iMenu;
  std::map<QString, QAction*> iActions;
  QStringList iCalls;
  int iShown = 0;      // calls of CardShown
  bool iCloses = true; // what CloseStack answers
  int iFailures = 0;   // so many calls of ShowChild fail with host error 7
};

class RuntimeTest : public testing::Test {
protected:
  RuntimeTest();
  ~RuntimeTest() override;

  // A field or command at the end of a background.
  Ref<CVelumControl> AddField(const Ref<CVelumControlSet>& aSet, const QString& aName, qint32 aType,
                              qint32 aMoreFlags = 0);
  Ref<CVelumCard> AddCard(const QString& aName, const Ref<CVelumControlSet>& aSet = nullptr);
  Ref<CVelumControlSet> AddBackground(const QString& aName);
  // Opens the window on the first card, aWidth by aHeight twips of client area.
  void Open(float aWidth = 6000, float aHeight = 7500);
  // Gives the window another size, in pixels, and lets it be laid out.
  void Resize(int aWidth, int aHeight);
  CVelumStackView& View() { return *gStackView; }
  CVelumGenForm& Form() { return gStackView->CardView()->ViewForm(); }
  CVelumBaseControl& Base(const Ref<CVelumControl>& aControl);
  CVelumBaseControl& Label(const Ref<CVelumControl>& aControl);
  CVelumBaseControl& Pool(const QString& aName);
  // Goes into a field, types at its end and stays there.
  void Type(const Ref<CVelumControl>& aControl, const QString& aText);
  [[nodiscard]] QString TextOf(const Ref<CVelumCard>& aCard, const Ref<CVelumControl>& aControl);

  QApplication& iApp = WidgetApp();
  TVelumMetrics iMetrics = CVelumSeams::Metrics();
  ScriptedPresenter iPresenter;
  FixedMeasure iMeasure;
  FakeFrame iFrame;
  NotingRunner iRunner;
  Ref<CVelumControlSet> iSet; // the first background, dense and without a header unless a test changes that
};

// Left, top, width and height of a control, for comparisons.
[[nodiscard]] inline QRectF RectOf(const CVelumBaseControl& aBase) {
  return {static_cast<qreal>(aBase.Left()), static_cast<qreal>(aBase.Top()),
          static_cast<qreal>(aBase.Width()), static_cast<qreal>(aBase.Height())};
}
inline void PrintTo(const QRectF& aRect, std::ostream* aOut) {
  *aOut << aRect.x() << "," << aRect.y() << " " << aRect.width() << "x" << aRect.height();
}
