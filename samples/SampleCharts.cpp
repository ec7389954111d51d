#include "SampleCharts.h"

#include "core/CVelumValue.h"
#include "exchange/CVelumExchangeLib.h"

#include <QBuffer>
#include <QImage>
#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

namespace {

// Whole numbers only, so that every machine draws the same.
constexpr int EWidth = 480;
constexpr int EHeight = 300;
constexpr int EMargin = 16;
constexpr int EMostBars = 12;
constexpr QRgb EPaper = qRgb(253, 252, 248);
constexpr QRgb EGrid = qRgb(214, 210, 200);
constexpr int EGridStep = 56;
// The day of the pictures, so that they do not differ from one run to the next.
constexpr qint32 EMade = 20250101;

void Fill(QImage& aImage, const QRect& aRect, QRgb aColor) {
  const QRect rect = aRect.intersected(aImage.rect());
  for (int y = rect.top(); y <= rect.bottom(); ++y)
    std::fill_n(reinterpret_cast<QRgb*>(aImage.scanLine(y)) + rect.left(), rect.width(), aColor);
}

QRgb Darker(QRgb aColor, int aPercent) {
  return qRgb(qRed(aColor) * aPercent / 100, qGreen(aColor) * aPercent / 100, qBlue(aColor) * aPercent / 100);
}

// The strong form of a continent's colour, which is stored as 0xBBGGRR.
QRgb BarColor(const QString& aContinent) {
  const qint32 color = SampleLayout::ContinentColor(aContinent);
  const auto strong = [](int aChannel) { return std::clamp((aChannel - 200) * 5 - 10, 0, 255); };
  return qRgb(strong(color & 0xFF), strong(color >> 8 & 0xFF), strong(color >> 16 & 0xFF));
}

// A horizontal bar for each country, with an edge below that gives it body.
QImage Chart(const QList<TCountry>& aCountries, QRgb aColor) {
  QImage image(EWidth, EHeight, QImage::Format_RGB32);
  image.fill(EPaper);
  for (int x = EMargin; x < EWidth - EMargin; x += EGridStep)
    Fill(image, {x, EMargin / 2, 1, EHeight - EMargin}, EGrid);
  const int step = (EHeight - 2 * EMargin) / static_cast<int>(aCountries.size());
  for (int i = 0; i < aCountries.size(); ++i) {
    const double share = aCountries[i].iThousands / aCountries[0].iThousands;
    const int length = std::max(2, static_cast<int>(std::lround(share * (EWidth - 2 * EMargin))));
    const QRect bar(EMargin, EMargin + i * step, length, step * 7 / 10);
    Fill(image, bar, Darker(aColor, 100 - 3 * i));
    Fill(image, {bar.left(), bar.bottom() - 2, bar.width(), 3}, Darker(aColor, 70 - 3 * i));
  }
  Fill(image, {EMargin, EMargin / 2, 2, EHeight - EMargin}, qRgb(70, 66, 60));
  return image;
}

QByteArray Png(const QImage& aImage) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  if (!buffer.open(QIODevice::WriteOnly) || !aImage.save(&buffer, "PNG"))
    throw std::runtime_error("cannot encode a picture");
  return bytes;
}

void SetDay(CVelumBlob& aBlob) {
  aBlob.SetCreDate(CVelumValue::IntToDate(EMade));
  aBlob.SetCreTime(0);
}

Ref<CVelumBlob> AddPicture(CVelumStack& aStack, const QString& aName, const QImage& aImage,
                           CVelumLib::EPicSample aSample) {
  Ref<CVelumBlob> blob;
  const CVelumLib::TPicSource source{Png(aImage), aName, {}, CVelumValue::IntToDate(EMade), 0};
  if (!CVelumLib::HandleImportPic(aStack, source, blob, aSample))
    throw std::runtime_error("cannot take a picture");
  SetDay(*blob);
  if (blob->SampleId() != ENoInt) SetDay(*aStack.BlobStore()->ReadBlob(blob->SampleId(), false));
  return blob;
}

// The countries of a continent with the most people, largest first.
QList<TCountry> Largest(QList<TCountry> aCountries, const QString& aContinent) {
  aCountries.removeIf([&](const TCountry& aCountry) { return aCountry.iContinent != aContinent; });
  std::stable_sort(aCountries.begin(), aCountries.end(),
                   [](const TCountry& aA, const TCountry& aB) { return aA.iThousands > aB.iThousands; });
  return aCountries.mid(0, EMostBars);
}

QString Legend(const QList<TCountry>& aCountries) {
  QStringList lines{u"People in millions, from the top:"_s};
  for (const TCountry& country : aCountries)
    lines.append(u"%1  %2"_s.arg(country.iName).arg(country.iThousands / 1000, 0, 'f', 1));
  return lines.join(u"\r\n"_s);
}

} // namespace

void SampleCharts::AddTo(CVelumStack& aStack, const TChartLayout& aLayout,
                         const QList<TCountry>& aCountries) {
  for (const QString& continent :
       {u"Africa"_s, u"Asia"_s, u"Europe"_s, u"North America"_s, u"South America"_s, u"Oceania"_s}) {
    const QList<TCountry> largest = Largest(aCountries, continent);
    if (largest.isEmpty()) continue;
    auto card = MakeRef<CVelumCard>(u"People of "_s + continent, aLayout.iBackground);
    aStack.AddCard(card, nullptr, false);
    const Ref<CVelumBlob> chart = AddPicture(aStack, continent + u".png"_s,
                                             Chart(largest, BarColor(continent)), CVelumLib::EPicSample::Yes);
    card->SetControlVal(aLayout.iChart, TVelumValue::OfBlobId(CVelumLib::FieldBlobId(*chart)));
    card->SetControlVal(aLayout.iLegend, TVelumValue::OfStr(Legend(largest)));
  }
}

void SampleCharts::AddWallPaper(CVelumStack& aStack, CVelumControlSet& aBackground) {
  constexpr int ETile = 24;
  QImage tile(ETile, ETile, QImage::Format_RGB32);
  tile.fill(qRgb(240, 238, 230));
  Fill(tile, {0, 0, ETile, 1}, qRgb(228, 225, 214));
  Fill(tile, {0, 0, 1, ETile}, qRgb(228, 225, 214));
  const Ref<CVelumBlob> blob = AddPicture(aStack, u"Paper.png"_s, tile, CVelumLib::EPicSample::No);
  blob->IncRefCount();
  aBackground.SetWallPaperId(blob->Id());
  aBackground.SetFlag(ECseShowWallPaper, true);
  aBackground.SetFlag(ECseTileWallPaper, true);
}
