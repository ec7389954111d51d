#include "model/CVelumRect.h"

#include "core/CVelumLib.h"
#include "core/file/CVelumFile.h"
#include "core/text/CVelumXmlParser.h"
#include "core/text/CVelumXmlWriter.h"

#include <cmath>
#include <limits>

namespace {
constexpr int ETypeId = 8;
constexpr int EGen = 1;

// A file may hold any bits; what is no number must not reach the windows.
float ReadNumber(CVelumFile& aFile) {
  const float num = aFile.ReadSingle();
  return std::isfinite(num) ? num : 0.0F;
}

float ReadNumber(const CVelumXmlParser& aParser, const QString& aName) {
  const double num = aParser.RealAttr(aName);
  return std::abs(num) <= std::numeric_limits<float>::max() ? static_cast<float>(num) : 0.0F;
}
} // namespace

CVelumRect::CVelumRect(float aX, float aY, float aWidth, float aHeight)
    : iX(aX), iY(aY), iWidth(aWidth), iHeight(aHeight) {}

void CVelumRect::SetX(float aX) {
  iX = aX;
  iChanged = true;
}

void CVelumRect::SetY(float aY) {
  iY = aY;
  iChanged = true;
}

void CVelumRect::SetWidth(float aWidth) {
  iWidth = aWidth;
  iChanged = true;
}

void CVelumRect::SetHeight(float aHeight) {
  iHeight = aHeight;
  iChanged = true;
}

bool CVelumRect::IsNull() const {
  return iX == 0 && iY == 0 && iWidth == 0 && iHeight == 0;
}

void CVelumRect::Internalize(CVelumFile& aFile) {
  static_cast<void>(CVelumLib::ReadBinObjStart(aFile, ETypeId, EGen, EGen));
  iX = ReadNumber(aFile);
  iY = ReadNumber(aFile);
  iWidth = ReadNumber(aFile);
  iHeight = ReadNumber(aFile);
  iChanged = false;
}

void CVelumRect::Externalize(CVelumFile& aFile) {
  CVelumLib::WriteBinObjStart(aFile, ETypeId, EGen);
  aFile.WriteSingle(iX);
  aFile.WriteSingle(iY);
  aFile.WriteSingle(iWidth);
  aFile.WriteSingle(iHeight);
}

qint64 CVelumRect::ExtLen() const {
  return 4 + 4 * 4;
}

void CVelumRect::InternalizeXml(CVelumXmlParser& aParser) {
  aParser.ReadAttrTerm();
  CVelumError::AssertObj(aParser.ShortAttr(u"gen"_s) == EGen, this, u"InternalizeXml"_s, u"gen"_s);
  iX = ReadNumber(aParser, u"x"_s);
  iY = ReadNumber(aParser, u"y"_s);
  iWidth = ReadNumber(aParser, u"width"_s);
  iHeight = ReadNumber(aParser, u"height"_s);
  iChanged = false;
}

void CVelumRect::ExternalizeXml(CVelumXmlWriter& aWriter) {
  aWriter.BeginElem(u"Rect"_s);
  aWriter.AddShortAttr(u"gen"_s, EGen);
  aWriter.AddSingleAttr(u"x"_s, iX);
  aWriter.AddSingleAttr(u"y"_s, iY);
  aWriter.AddSingleAttr(u"width"_s, iWidth);
  aWriter.AddSingleAttr(u"height"_s, iHeight);
  aWriter.EndEmptyElem();
}
