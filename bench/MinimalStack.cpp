#include "MinimalStack.h"

#include <QFile>
#include <cstring>
#include <stdexcept>
#include <unistd.h>

namespace {

enum EFlag : qint32 { EStrKey = 1, EIntKey = 2 };
enum EHead { EId, EFlags, EStep, EAlloc, ECount, ESortKeyId };

} // namespace

class MinimalStack::CReader {
public:
  explicit CReader(const QByteArray& aBytes) : iPos(aBytes.constData()), iEnd(iPos + aBytes.size()) {}

  [[nodiscard]] const char* Pos() const { return iPos; }
  [[nodiscard]] QByteArray From(const char* aStart) const { return {aStart, iPos - aStart}; }
  [[nodiscard]] QByteArray Rest() const { return {iPos, iEnd - iPos}; }
  void Skip(qsizetype aLen) {
    if (iEnd - iPos < aLen || aLen < 0) throw std::runtime_error("end of file");
    iPos += aLen;
  }
  template <class T> T Num() {
    T num;
    Skip(sizeof(T));
    std::memcpy(&num, iPos - sizeof(T), sizeof(T));
    return num;
  }
  char16_t* Text() {
    const auto len = Num<qint16>();
    if (len == 0) return nullptr;
    Skip(len);
    auto* text = static_cast<char16_t*>(std::malloc(static_cast<size_t>(len) + 2));
    text[0] = static_cast<char16_t>(len);
    std::memcpy(text + 1, iPos - len, static_cast<size_t>(len));
    return text;
  }
  void SkipText() { Skip(Num<qint16>()); }
  void SkipFont() {
    Skip(4);
    SkipText();
    Skip(10);
  }
  void SkipCommon() {
    Skip(4);
    SkipText();
    Skip(8);
    SkipText();
    if (Num<qint16>() != 0) SkipArray();
    if (Num<qint16>() != 0) SkipFont();
    Skip(4);
  }
  void SkipControl() {
    SkipCommon();
    SkipText();
    SkipText();
    Skip(2);
    SkipText();
    Skip(10);
    SkipText();
    Skip(16);
    if (Num<qint16>() != 0) SkipArray();
    Skip(6);
  }
  void SkipControlSet() {
    SkipCommon();
    SkipText();
    Skip(4);
    SkipArray();
    SkipArray();
    Skip(4);
  }
  void SkipSortKey() {
    Skip(8);
    SkipText();
    Skip(4);
    Skip(Num<qint16>() * 12);
  }
  void SkipArray() {
    TArray array;
    Head(array);
    for (qint32 i = 0; i < array.iHead[ECount]; ++i) {
      if (array.iHead[EFlags] & EStrKey) SkipText();
      if (array.iHead[EFlags] & EIntKey) Skip(4);
      SkipVal();
    }
  }
  void SkipVal() {
    switch (Num<qint16>()) {
    case 0:
      break;
    case 11:
      SkipText();
      break;
    case 12:
      Skip(4);
      break;
    case 101:
      if (Num<qint16>()) SkipControl();
      break;
    case 102:
      if (Num<qint16>()) SkipControlSet();
      break;
    case 103:
      if (Num<qint16>()) SkipSortKey();
      break;
    default:
      throw std::runtime_error("value tag");
    }
  }
  void Head(TArray& aArray) {
    Skip(4);
    aArray.iHead[EId] = Num<qint32>();
    aArray.iHead[EFlags] = Num<qint32>();
    aArray.iType = Num<qint16>();
    for (int i = EStep; i <= ESortKeyId; ++i) aArray.iHead[i] = Num<qint32>();
    if (aArray.iHead[ECount] < 0 || aArray.iHead[ECount] > iEnd - iPos) throw std::runtime_error("count");
  }
  void Elem(TElem& aElem) {
    aElem.iTag = Num<qint16>();
    switch (aElem.iTag) {
    case 11:
      aElem.iText = Text();
      break;
    case 12:
    case 14:
    case 15:
    case 17:
      aElem.iInt = Num<qint32>();
      break;
    case 13:
      aElem.iReal = Num<double>();
      break;
    case 16:
      aElem.iInt = Num<qint16>();
      break;
    default:
      throw std::runtime_error("value tag");
    }
  }
  void Array(TArray& aArray) {
    Head(aArray);
    const auto count = static_cast<size_t>(aArray.iHead[ECount]);
    aArray.iElems.resize(count);
    if (aArray.iHead[EFlags] & EStrKey) aArray.iKeys.resize(count);
    for (size_t i = 0; i < count; ++i) {
      if (aArray.iHead[EFlags] & EStrKey) aArray.iKeys[i].reset(Text());
      if (aArray.iHead[EFlags] & EIntKey) aArray.iElems[i].iKey = Num<qint32>();
      Elem(aArray.iElems[i]);
    }
  }
  void Card(TCard& aCard) {
    Skip(4);
    aCard.iName.reset(Text());
    aCard.iId = Num<qint32>();
    aCard.iFlags = Num<qint32>();
    aCard.iSource.reset(Text());
    if (Num<qint16>() != 0 || Num<qint16>() != 0) throw std::runtime_error("cards with scripts or fonts");
    aCard.iBackColor = Num<qint32>();
    for (qint32& num : aCard.iNums) num = Num<qint32>();
    Array(aCard.iValue);
  }

private:
  const char* iPos;
  const char* iEnd;
};

class MinimalStack::CWriter {
public:
  QByteArray iBytes;

  template <class T> void Num(T aNum) {
    if (iEnd - iPos < 8) Grow(8);
    std::memcpy(iPos, &aNum, sizeof(T));
    iPos += sizeof(T);
  }
  void Raw(const char* aBytes, qsizetype aLen) {
    if (iEnd - iPos < aLen) Grow(aLen);
    std::memcpy(iPos, aBytes, static_cast<size_t>(aLen));
    iPos += aLen;
  }
  // The count stands before the text in memory, as it does on file.
  void Text(const char16_t* aText) {
    if (aText)
      Raw(reinterpret_cast<const char*>(aText), aText[0] + 2);
    else
      Num(qint16{0});
  }
  void Frame(qint16 aTypeId, qint16 aGen) {
    Num(aTypeId);
    Num(aGen);
  }
  void Head(const TArray& aArray) {
    Frame(5, 3);
    Num(aArray.iHead[EId]);
    Num(aArray.iHead[EFlags]);
    Num(aArray.iType);
    for (int i = EStep; i <= ESortKeyId; ++i) Num(aArray.iHead[i]);
  }
  void Elem(const TElem& aElem) {
    Num(aElem.iTag);
    if (aElem.iTag == 11)
      Text(aElem.iText);
    else if (aElem.iTag == 13)
      Num(aElem.iReal);
    else if (aElem.iTag == 16)
      Num(static_cast<qint16>(aElem.iInt));
    else
      Num(aElem.iInt);
  }
  void Array(const TArray& aArray) {
    Head(aArray);
    for (size_t i = 0; i < aArray.iElems.size(); ++i) {
      if (aArray.iHead[EFlags] & EStrKey) Text(aArray.iKeys[i].get());
      if (aArray.iHead[EFlags] & EIntKey) Num(aArray.iElems[i].iKey);
      Elem(aArray.iElems[i]);
    }
  }
  void Card(const TCard& aCard) {
    Frame(1, 1);
    Text(aCard.iName.get());
    Num(aCard.iId);
    Num(aCard.iFlags);
    Text(aCard.iSource.get());
    Num(qint32{0}); // no script, no font
    Num(aCard.iBackColor);
    for (const qint32 num : aCard.iNums) Num(num);
    Array(aCard.iValue);
  }
  void Finish() { iBytes.resize(iPos - iBytes.constData()); }

private:
  void Grow(qsizetype aLen) {
    const qsizetype used = iPos ? iPos - iBytes.constData() : 0;
    iBytes.resize(used + aLen + used / 2 + 65536);
    iPos = iBytes.data() + used;
    iEnd = iBytes.data() + iBytes.size();
  }

  char* iPos = nullptr;
  char* iEnd = nullptr;
};

MinimalStack::TArray::~TArray() {
  for (const TElem& elem : iElems)
    if (elem.iTag == 11) std::free(elem.iText);
}

void MinimalStack::Load(const QString& aPath) {
  QFile file(aPath);
  if (!file.open(QIODevice::ReadOnly)) throw std::runtime_error("open");
  const QByteArray bytes = file.readAll();
  CReader reader(bytes);
  const char* start = reader.Pos();
  reader.Skip(11);
  reader.SkipCommon();
  reader.SkipText();
  if (reader.Num<qint16>() != 0) reader.SkipFont();
  reader.Skip(8);
  reader.SkipArray();
  iBegin = reader.From(start);
  reader.Head(iCardHead);
  iCards.resize(static_cast<size_t>(iCardHead.iHead[ECount]));
  for (TCard& card : iCards) {
    reader.Skip(2);
    if (reader.Num<qint16>() == 1)
      reader.Card(card);
    else
      card.iFlags = -1;
  }
  reader.Array(iOrder);
  reader.Array(iNames);
  start = reader.Pos();
  reader.SkipArray();
  iSortKeys = reader.From(start);
  reader.Head(iKeyIndexHead);
  iKeyIndexes.resize(static_cast<size_t>(iKeyIndexHead.iHead[ECount]));
  iKeyIndexHead.iElems.resize(iKeyIndexes.size());
  for (size_t i = 0; i < iKeyIndexes.size(); ++i) {
    iKeyIndexHead.iElems[i].iKey = reader.Num<qint32>();
    reader.Skip(4);
    reader.Array(iKeyIndexes[i]);
  }
  iEnd = reader.Rest();
}

void MinimalStack::Save(const QString& aPath) const {
  CWriter writer;
  writer.Raw(iBegin.constData(), iBegin.size());
  writer.Head(iCardHead);
  for (const TCard& card : iCards) {
    writer.Num(qint16{100});
    writer.Num(static_cast<qint16>(card.iFlags != -1));
    if (card.iFlags != -1) writer.Card(card);
  }
  writer.Array(iOrder);
  writer.Array(iNames);
  writer.Raw(iSortKeys.constData(), iSortKeys.size());
  writer.Head(iKeyIndexHead);
  for (size_t i = 0; i < iKeyIndexes.size(); ++i) {
    writer.Num(iKeyIndexHead.iElems[i].iKey);
    writer.Num(qint16{104});
    writer.Num(qint16{1});
    writer.Array(iKeyIndexes[i]);
  }
  writer.Raw(iEnd.constData(), iEnd.size());
  writer.Finish();
  QFile file(aPath);
  if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) throw std::runtime_error("open");
  if (file.write(writer.iBytes) != writer.iBytes.size()) throw std::runtime_error("write");
  if (fsync(file.handle()) != 0) throw std::runtime_error("sync");
}
