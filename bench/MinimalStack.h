// The floor for loading and saving: reads and writes the bytes of a binary stack, and does nothing else.
#pragma once

#include <QByteArray>
#include <QString>
#include <memory>
#include <vector>

// The smallest form in which each value could still be changed by itself: elements of 16 bytes, each text in
// a block of its own with a count before it, the few objects that are not cards as the bytes they came in.
// Nothing is checked but the end of the bytes; no index is verified or connected. Throws std::runtime_error.
class MinimalStack {
public:
  // Reads the whole file at one go, and takes it apart.
  void Load(const QString& aPath);
  // Puts the bytes together in memory and writes them at one go, followed by one sync.
  void Save(const QString& aPath) const;
  [[nodiscard]] size_t NumCards() const { return iCards.size(); }

private:
  class CReader;
  class CWriter;

  // A count and that many code units in one block; null when empty.
  struct TFree {
    void operator()(void* aBlock) const { std::free(aBlock); }
  };
  using TText = std::unique_ptr<char16_t[], TFree>;

  struct TElem {
    qint32 iKey = 0;
    qint16 iTag = 0;
    union {
      qint32 iInt;
      double iReal;
      char16_t* iText;
    };
  };
  static_assert(sizeof(TElem) == 16);

  struct TArray {
    qint32 iHead[6];
    qint16 iType = 0;
    std::vector<TElem> iElems;
    std::vector<TText> iKeys; // when it has string keys
    TArray() = default;
    TArray(TArray&&) = default;
    TArray& operator=(TArray&&) = default;
    ~TArray();
  };

  struct TCard {
    TText iName;
    qint32 iId;
    qint32 iFlags;
    TText iSource;
    qint32 iBackColor;
    qint32 iNums[6]; // order number, background, four dates and times
    TArray iValue;
  };

  QByteArray iBegin; // up to the array of cards
  TArray iCardHead;
  std::vector<TCard> iCards; // with an empty name and iFlags -1 where there is none
  TArray iOrder;
  TArray iNames;
  QByteArray iSortKeys;
  TArray iKeyIndexHead;
  std::vector<TArray> iKeyIndexes;
  QByteArray iEnd; // view, blob pointer, blob store
};
