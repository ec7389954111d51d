// render: the picture of a card as its window shows it. The one command that needs widgets, on no screen.
#include "cli/CVelumCliFiles.h"
#include "cli/CVelumCliStack.h"
#include "cli/CVelumCommands.h"
#include "core/CVelumMsg.h"
#include "runtime/CVelumRuntimeLib.h"
#include "runtime/view/CVelumGenForm.h"
#include "runtime/view/CVelumStackView.h"
#include "toolkit/CVelumToolkitLib.h"
#include "toolkit/CVelumWinMan.h"

#include <QRegularExpression>
#include <QSaveFile>

namespace {

constexpr int EMinSize = 16;
constexpr int EMaxSize = 5000;

// The view of the open stack while the command works.
class COpenView {
public:
  explicit COpenView(const TVelumOpenStack& aOpen) {
    CVelumWinMan::InitWinMan();
    CVelumLib::InitRuntime();
    aOpen.iView->iCardListOpen = false;
    gStackView = MakeRef<CVelumStackView>(aOpen.iView, aOpen.iStack);
    gStackView->OpenViews();
  }
  ~COpenView() {
    gStackView->Release();
    gStackView = nullptr;
  }
  COpenView(const COpenView&) = delete;
  COpenView& operator=(const COpenView&) = delete;
};

// In pixels; invalid without the option.
QSize SizeOf(const TVelumArgs& aArgs) {
  if (!aArgs.Has(u"size"_s)) return {};
  static const QRegularExpression form(u"^(\\d{1,5})x(\\d{1,5})$"_s);
  const QRegularExpressionMatch match = form.match(aArgs.Value(u"size"_s));
  const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
  const auto inside = [](int aPixels) { return aPixels >= EMinSize && aPixels <= EMaxSize; };
  if (!match.hasMatch() || !inside(size.width()) || !inside(size.height()))
    throw TVelumUsage{
        u"--size takes width and height, such as 400x500, each from %1 to %2 pixels."_s.arg(EMinSize).arg(
            EMaxSize)};
  return size;
}

void GoTo(const TVelumArgs& aArgs) {
  Ref<CVelumCard> card = gStackView->CurCard();
  const QString name = aArgs.Value(u"card"_s);
  if (aArgs.Has(u"card"_s) && !gStackView->Stack()->GetCard(name, card)) card = nullptr;
  if (!card) CVelumError::Throw(EMsgCardNotFound, u"Run"_s, name, {});
  gStackView->GoToCard(card);
}

void Save(const QImage& aImage, const QString& aPath) {
  QSaveFile file(aPath);
  const bool done = file.open(QIODevice::WriteOnly) && aImage.save(&file, "PNG") && file.commit();
  if (!done) CVelumError::RaiseHost(EHostDeviceIo, aPath + u": "_s + file.errorString());
}

int Run(const TVelumArgs& aArgs, CVelumTerminal&) {
  const QSize wanted = SizeOf(aArgs);
  CVelumCliFiles::CheckFolder(aArgs.Operand(1));
  const TVelumOpenStack open = CVelumCliStack::Open(aArgs.iOperands.at(0));
  const COpenView view(open);
  CVelumGenForm& form = gStackView->CardView()->ViewForm();
  // The place that the stack keeps is that of the window with its frame.
  const QSize stored = form.size() - CVelumLib::ChildFrameSize();
  form.resize(wanted.isValid() ? wanted : stored.expandedTo(QSize(EMinSize, EMinSize)));
  GoTo(aArgs);
  gStackView->RefreshViews(true, false);
  form.DropFocus();
  Save(form.grab().toImage(), aArgs.iOperands.at(1));
  return EExitDone;
}

} // namespace

const TVelumCliCommand& CVelumCommands::Render() {
  static const TVelumCliCommand command{
      u"render"_s,
      {u"STACK"_s, u"OUT.png"_s},
      u"draw a card as its window shows it"_s,
      u"The picture is a PNG file. No script runs."_s,
      {{u"card"_s, u"NAME"_s, u"the card to draw (the first one)"_s},
       {u"size"_s, u"WxH"_s, u"pixels of the picture (the size kept in the stack)"_s}},
      false,
      Run,
  };
  return command;
}
