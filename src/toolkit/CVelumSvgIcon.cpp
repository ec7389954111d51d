#include "toolkit/CVelumSvgIcon.h"

#include "toolkit/CVelumBaseColor.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QSvgRenderer>

namespace {

// What icons are painted in; null for the desktop's palette.
const QPalette* gColors = nullptr;

// Keeps the hue of the accent, and enough contrast to the window behind it.
QColor Accent(const QPalette& aPalette) {
  const QColor wanted = aPalette.color(QPalette::Active, QPalette::Highlight);
  const TVelumColors colors = CVelumBaseColor::Resolve(CVelumBaseColor::FromColor(wanted), ENoInt,
                                                       aPalette.color(QPalette::Active, QPalette::Window));
  return colors.iText.isValid() ? colors.iText : wanted;
}

class CVelumSvgEngine final : public QIconEngine {
public:
  explicit CVelumSvgEngine(QByteArray aSvg) : iSvg(std::move(aSvg)) {}

  void paint(QPainter* aPainter, const QRect& aRect, QIcon::Mode aMode, QIcon::State) override {
    QSvgRenderer renderer(Colored(aMode));
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    renderer.render(aPainter, aRect);
  }
  QPixmap pixmap(const QSize& aSize, QIcon::Mode aMode, QIcon::State aState) override {
    QPixmap pixmap(aSize);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect(QPoint(), aSize), aMode, aState);
    return pixmap;
  }
  [[nodiscard]] QIconEngine* clone() const override { return new CVelumSvgEngine(iSvg); }
  [[nodiscard]] QString key() const override { return u"CVelumSvgEngine"_s; }
  bool isNull() override { return iSvg.isEmpty(); }

private:
  [[nodiscard]] QByteArray Colored(QIcon::Mode aMode) const {
    const QPalette palette = gColors ? *gColors : QGuiApplication::palette();
    QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    QColor accent = Accent(palette);
    if (aMode == QIcon::Disabled)
      text = accent = palette.color(QPalette::Disabled, QPalette::WindowText);
    else if (aMode == QIcon::Selected)
      text = accent = palette.color(QPalette::Active, QPalette::HighlightedText);
    QByteArray svg = iSvg;
    svg.replace("currentColor", text.name().toLatin1());
    svg.replace("Highlight", accent.name().toLatin1());
    return svg;
  }

  QByteArray iSvg;
};

} // namespace

CVelumSvgIcon::CColors::CColors(QPalette aPalette) : iPalette(std::move(aPalette)), iBefore(gColors) {
  gColors = &iPalette;
}

CVelumSvgIcon::CColors::~CColors() {
  gColors = iBefore;
}

QIcon CVelumSvgIcon::Load(const QString& aPath) {
  QFile file(aPath);
  return file.open(QIODevice::ReadOnly) ? QIcon(new CVelumSvgEngine(file.readAll())) : QIcon();
}
