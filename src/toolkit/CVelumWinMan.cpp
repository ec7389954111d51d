#include "toolkit/CVelumWinMan.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/CVelumLog.h"
#include "core/CVelumSeams.h"
#include "toolkit/CVelumReg.h"
#include "toolkit/CVelumScreenFit.h"
#include "toolkit/CVelumToolkitLib.h"

#include <QDialog>
#include <QGuiApplication>
#include <QHash>
#include <QScopeGuard>
#include <QScreen>
#include <array>
#include <cmath>

// Keeps the marks of loaded forms in step with the list of them.
class CVelumFormList {
public:
  void Add(CVelumForm& aForm) {
    aForm.iLoaded = true;
    iForms.append(&aForm);
  }
  void Remove(CVelumForm& aForm) {
    aForm.iLoaded = false;
    iForms.removeOne(&aForm);
  }
  [[nodiscard]] const QList<CVelumForm*>& Forms() const { return iForms; }

private:
  QList<CVelumForm*> iForms;
};

namespace {

const QString EFrameName = u"CVelumFrame"_s;
const QString EWindows = u"Windows"_s;
// Registered, but no such form exists.
const QString ENoForm = u"CVelumSortKeyEdit"_s;
// Wider or taller than any desktop; keeps a broken place from asking for endless memory.
constexpr double EMaxTwips = 32767.0 * 15.0;

struct TVelumWindows {
  std::array<QString, 31> iNames;
  int iCount = 0;
  QHash<QString, CVelumWinMan::TVelumFormFactory> iFactories;
  QHash<QString, CVelumForm*> iInstances;
  CVelumFormList iLoaded;
};

// Never destroyed: forms with static storage may still be forgotten at the end of the process.
TVelumWindows& Windows() {
  static auto* windows = new TVelumWindows;
  return *windows;
}

class CVelumWindowSink final : public CVelumChangeSink {
public:
  void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) override {
    CVelumWinMan::ChangeNotify(aKind, aObj1, aObj2);
  }
};

bool IsKnownName(const QString& aName) {
  const TVelumWindows& w = Windows();
  return std::find(w.iNames.begin(), w.iNames.begin() + w.iCount, aName) != w.iNames.begin() + w.iCount;
}

// The number in the host's form: a blank stands where a negative one has its sign.
QString NumText(double aNum) {
  return (aNum < 0 ? QString() : u" "_s) + QString::number(aNum, 'g', QLocale::FloatingPointShortest);
}

// The four numbers of aText; false when one is missing or not a number.
bool ParsePlace(const QString& aText, QRectF& aRect) {
  std::array<double, 4> num{};
  QString rest = aText;
  for (double& n : num) {
    QString item;
    CVelumLib::SplitAt(rest, u","_s, item, rest);
    bool ok = false;
    n = item.trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(n)) return false;
  }
  aRect = QRectF(num[0], num[1], num[2], num[3]);
  return true;
}

// Whether some of the place can lie on the screen.
bool IsSound(const QRectF& aRect) {
  return aRect.width() > 0 && aRect.x() + aRect.width() > 0 && aRect.height() > 0 &&
         aRect.y() + aRect.height() > 0;
}

QSizeF ScreenTwips() {
  const QScreen* screen = QGuiApplication::primaryScreen();
  const QSize size = screen ? screen->virtualSize() : QSize(1024, 768);
  return {CVelumLib::PixelsToTwips(size.width()), CVelumLib::PixelsToTwips(size.height())};
}

// The middle of the screen with a twentieth left free on each side, 1000 by 800 pixels at most.
QRectF DefaultFrameRect() {
  const QScreen* screen = QGuiApplication::primaryScreen();
  const QSizeF size = screen ? QSizeF(screen->size()) * CVelumLib::PixelsToTwips(1) : ScreenTwips();
  const double x = size.width() / 20;
  const double y = size.height() / 20;
  return {x, y, std::min(size.width() - 2 * x, CVelumLib::PixelsToTwips(1000)),
          std::min(size.height() - 2 * y, CVelumLib::PixelsToTwips(800))};
}

QSizeF BoundsOf(const CVelumForm& aForm) {
  CVelumForm* frame = CVelumWinMan::Frame();
  return CVelumWinMan::IsFrame(aForm) || !frame ? ScreenTwips() : frame->Place().size();
}

} // namespace

namespace CVelumWinMan {

void InitWinMan() {
  static CVelumWindowSink sink;
  TVelumWindows& w = Windows();
  w.iNames.fill({});
  w.iCount = 0;
  for (const auto& name : {u"CVelumFrame"_s,
                           u"CVelumStackEdit"_s,
                           u"CVelumGenForm"_s,
                           u"CVelumCardListForm"_s,
                           u"CVelumSearchForm"_s,
                           u"CVelumNewStackForm"_s,
                           u"CVelumSortKeyEdit"_s,
                           u"CVelumControlEdit"_s,
                           u"CVelumOptionEdit"_s,
                           u"CVelumFontSelect"_s,
                           u"CVelumCardSelect"_s,
                           u"CVelumBackgroundEdit"_s,
                           u"CVelumCardEdit"_s,
                           u"CVelumValueEdit"_s,
                           u"CVelumCsvImportOptions"_s,
                           u"CVelumWikiTextEdit"_s,
                           u"CVelumSortKeyEdit1"_s,
                           u"CVelumControlSelect"_s,
                           u"CVelumScriptEdit"_s,
                           u"CVelumWelcome"_s,
                           u"CVelumExportOptions"_s,
                           u"CVelumCsvExportOptions"_s,
                           u"CVelumImportOptions"_s,
                           u"CVelumPictureViewer"_s})
    RegisterFormName(name);
  CVelumSeams::SetChangeSink(&sink);
}

void RegisterFormName(const QString& aName) {
  TVelumWindows& w = Windows();
  const int at = CVelumChecked::Index(w.iCount, static_cast<int>(w.iNames.size()));
  w.iNames[static_cast<size_t>(at)] = aName;
  ++w.iCount;
}

int FormCount() {
  return Windows().iCount;
}

const QString& FormName(int aIndex) {
  return Windows().iNames[static_cast<size_t>(CVelumChecked::Index(aIndex, FormCount()))];
}

void SetFactory(const QString& aName, TVelumFormFactory aFactory) {
  Windows().iFactories.insert(aName, std::move(aFactory));
}

bool HasForm(const QString& aName) {
  return Windows().iFactories.value(aName) != nullptr;
}

CVelumForm* NameToForm(const QString& aName) {
  CVelumError::Assert(IsKnownName(aName) && aName != ENoForm, u"NameToForm name "_s + aName);
  TVelumWindows& w = Windows();
  if (CVelumForm* form = w.iInstances.value(aName)) return form;
  const TVelumFormFactory factory = w.iFactories.value(aName);
  CVelumForm* form = factory ? factory() : nullptr;
  if (form) w.iInstances.insert(aName, form);
  return form;
}

bool IsKnownForm(const CVelumForm& aForm) {
  return IsKnownName(aForm.Name());
}

bool IsFrame(const CVelumForm& aForm) {
  return aForm.Name() == EFrameName;
}

CVelumForm* Frame() {
  for (CVelumForm* form : Windows().iLoaded.Forms())
    if (IsFrame(*form)) return form;
  return nullptr;
}

bool FormIsLoaded(const QString& aName) {
  const auto& forms = Windows().iLoaded.Forms();
  return std::any_of(forms.begin(), forms.end(), [&](const CVelumForm* f) { return f->Name() == aName; });
}

QList<CVelumForm*> LoadedForms() {
  return Windows().iLoaded.Forms();
}

void LoadForm(CVelumForm& aForm) {
  if (aForm.IsLoaded()) return;
  qCDebug(gLogToolkit) << "load" << aForm.Name();
  Windows().iLoaded.Add(aForm);
  aForm.Load();
}

void UnloadForm(CVelumForm& aForm) {
  if (!aForm.IsLoaded()) return;
  qCDebug(gLogToolkit) << "unload" << aForm.Name();
  // A window whose place cannot be kept goes all the same.
  const auto gone = qScopeGuard([&aForm] {
    Forget(aForm);
    aForm.Widget()->hide();
    aForm.Widget()->deleteLater();
  });
  aForm.Unload();
}

void Forget(CVelumForm& aForm) {
  TVelumWindows& w = Windows();
  w.iLoaded.Remove(aForm);
  if (w.iInstances.value(aForm.Name()) == &aForm) w.iInstances.remove(aForm.Name());
}

void ShowDialog(CVelumForm& aForm, bool aModal, QWidget* aOwner) {
  LoadForm(aForm);
  QWidget* widget = aForm.Widget();
  if (aOwner && widget->parentWidget() != aOwner) widget->setParent(aOwner, widget->windowFlags());
  if (auto* dialog = qobject_cast<QDialog*>(widget); aModal && dialog) {
    dialog->exec();
    return;
  }
  CVelumLib::BringUp(*widget);
}

void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) {
  qCDebug(gLogToolkit) << "change of kind" << aKind;
  // Listeners may drop the last other reference.
  const Ref<CVelumObject> keep1(aObj1);
  const Ref<CVelumObject> keep2(aObj2);
  const TVelumWindows& w = Windows();
  const QList<CVelumForm*> forms = w.iLoaded.Forms();
  for (CVelumForm* form : forms) {
    if (!w.iLoaded.Forms().contains(form) || !IsKnownForm(*form)) continue;
    CVelumSeams::EventPump().PumpPaint();
    if (w.iLoaded.Forms().contains(form)) form->ChangeNotify(aKind, aObj1, aObj2);
    CVelumSeams::EventPump().PumpPaint();
  }
}

void SaveWindow(CVelumForm& aForm) {
  const QRectF place = aForm.Place();
  const QStringList items{NumText(place.x()), NumText(place.y()), NumText(place.width()),
                          NumText(place.height())};
  CVelumReg::PutVal(EWindows, aForm.Name(), items.join(u","_s), false);
}

void RestoreWindow(CVelumForm& aForm) {
  QString text;
  bool found = false;
  CVelumReg::GetVal(EWindows, aForm.Name(), text, found, false);
  QRectF rect;
  if (found && ParsePlace(text, rect) && IsSound(rect))
    SetFormRect(aForm, rect);
  else if (IsFrame(aForm))
    SetFormRect(aForm, DefaultFrameRect());
  else
    return;
  CVelumScreenFit::KeepOnScreen(*aForm.Widget(), IsFrame(aForm) || aForm.Sizable());
}

void SetFormRect(CVelumForm& aForm, const QRectF& aRect) {
  const QSizeF bounds = BoundsOf(aForm);
  const QSizeF limit = IsFrame(aForm) ? bounds : QSizeF(EMaxTwips, EMaxTwips);
  const auto start = [](double aEdge, double aBound) {
    return aEdge > aBound ? 0.0 : std::max(aEdge, -EMaxTwips);
  };
  const QRectF place(QPointF(start(aRect.x(), bounds.width()), start(aRect.y(), bounds.height())),
                     aRect.size().boundedTo(limit));
  aForm.SetPlace(place, IsFrame(aForm) || aForm.Sizable());
}

} // namespace CVelumWinMan
