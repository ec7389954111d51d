// The part of CVelumLib that frames stored objects.
#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "core/file/CVelumFile.h"

namespace CVelumLib {
namespace {

const QString EReadProc = u"CVelumLib.ReadBinObjStart"_s;

// The host's text of a number: a blank stands for the sign of one that is not negative.
QString NumText(int aNum) {
  return (aNum < 0 ? QString() : u" "_s) + QString::number(aNum);
}

} // namespace

void WriteBinObjStart(CVelumFile& aFile, int aTypeId, int aGen) {
  aFile.WriteShort(CVelumChecked::Narrow<qint16>(aTypeId));
  aFile.WriteShort(CVelumChecked::Narrow<qint16>(aGen));
}

int ReadBinObjStart(CVelumFile& aFile, int aTypeId, int aMinGen, int aMaxGen) {
  int typeId = aFile.ReadShort();
  if (typeId != aTypeId)
    CVelumError::ThrowBadStruct(false, &aFile, EReadProc,
                                u"typeId expected="_s + NumText(aTypeId) + u", got="_s + NumText(typeId));
  int gen = aFile.ReadShort();
  // Both failures name the lowest generation; only two classes have a range, where that shows.
  if (gen < aMinGen || gen > aMaxGen)
    CVelumError::Throw(gen < aMinGen ? EMsgGenTooLow : EMsgGenTooHigh, EReadProc,
                       u"expected="_s + NumText(aMinGen), u"got="_s + NumText(gen));
  return gen;
}

void CheckRead(const CVelumFile& aFile, bool aCond, const CVelumObject* aObj, const QString& aProc,
               const QString& aDetail) {
  CVelumError::ThrowBadStruct(aCond || aFile.PastEnd(), aObj, aProc, aDetail);
}

} // namespace CVelumLib
