// Reads XML documents as CVelumXmlWriter writes them, an element at a time. No tree is built.
#pragma once

#include "core/text/CVelumScanner.h"
#include "core/text/CVelumTextPool.h"

#include <QMultiHash>
#include <vector>

// Not a general XML processor: a header on its own line, elements with attributes in double quotes, children
// or text but not both, six entities (see CVelumLib::EscapeXml), blanks and line ends between tags; no
// comments, CDATA, DOCTYPE, numeric references. Every syntax problem is an assertion. Where the user
// overrules one, reading goes on as it can; it ends with host error 5, and the line's number, where it could
// not move.
class CVelumXmlParser final : public CVelumObject {
public:
  // Opens nothing.
  explicit CVelumXmlParser(const QString& aFilename);

  [[nodiscard]] QString ObjDescr() const override { return u"CVelumXmlParser"_s; }
  // ECod...; for the lines that are read from now on.
  void SetCoding(qint32 aCoding);
  [[nodiscard]] qint32 Coding() const { return iCoding; }
  // Opens the file and reads the first symbol.
  void OpenFile();
  void CloseFile();
  // The line being read, from 1.
  [[nodiscard]] qint32 LineNum() const { return iScanner->LineNum(); }

  // Attributes of the element that was read last. Numbers are read from their beginning, with a point in any
  // locale; what follows is ignored. Rounded to the nearest, halves to even; host error 6 when too large.
  [[nodiscard]] QString Attr(QStringView aName) const;
  [[nodiscard]] bool HasAttr(QStringView aName) const { return !AttrView(aName).isEmpty(); } // and not empty
  [[nodiscard]] qint32 IntAttr(QStringView aName) const;   // ENoInt when empty or absent
  [[nodiscard]] qint16 ShortAttr(QStringView aName) const; // ENoShort when empty or absent
  [[nodiscard]] double RealAttr(QStringView aName) const;  // 0 when empty or absent
  [[nodiscard]] bool BooleanAttr(QStringView aName) const; // false when empty or absent
  // A count or set of flags, for which a missing attribute means none.
  [[nodiscard]] qint32 CountAttr(QStringView aName) const;

  // Reads the attributes of the current start tag. aTerm: the element is an empty one.
  void ReadAttr(bool& aTerm);
  // The same, and the next symbol.
  void ReadAttrAndSym(bool& aTerm);
  // The same for what must be an empty element.
  void ReadAttrTerm();
  void ReadHeader();
  // Attributes, text and end tag of the element whose name was read.
  void ReadElem(QString& aText);
  // The next tag up to its name. aTerm: it is an end tag.
  void ReadNext(QString& aName, bool& aTerm);
  // The same for a tag that is known.
  void ReadTheNext(QStringView aName, bool aTerm);
  // The text up to the next tag. Line ends of the file belong to it only with aKeepEol.
  void ReadElemText(QString& aText, bool aKeepEol);
  void ReadLongElemText(QString& aText);
  // A whole element that holds only text.
  [[nodiscard]] QString ReadTextElem(QStringView aName);
  // The next element, which must be aChild's: asserts aText for aOwner otherwise, and reads it all the same.
  void ReadChild(CVelumStored& aChild, const CVelumObject& aOwner, const QString& aText);
  // ReadAttrAndSym for an element with children.
  void ReadStructAttr(const CVelumObject& aOwner);

private:
  void NextSym();
  void GetTheSym(qint32 aKind);
  void GetTheIdent(QStringView aName);
  void AddAttr(QStringView aName, QStringView aValue);
  [[nodiscard]] qsizetype FindAttr(QStringView aName) const;
  [[nodiscard]] QStringView AttrView(QStringView aName) const;
  void ReadAttrs();
  void AddEscaped(QStringView aName, QStringView aValue);
  // ReadNext, with the name in iName.
  [[nodiscard]] bool ReadName();
  [[nodiscard]] QString Pooled(QStringView aText) const;
  [[nodiscard]] bool ReadShortText(QString& aText);
  void TakePending(QString& aText);
  [[noreturn]] void Stop(const QString& aWhy) const;

  Ref<CVelumScanner> iScanner;
  Ref<CVelumFile> iFile;
  // Attributes of the element: their names and values stand one behind the other in iAttrText. Names that
  // differ in case alone are the same.
  struct TAttr {
    qsizetype iName;  // where the name begins
    qsizetype iValue; // where it ends and the value begins
    qsizetype iEnd;
    qsizetype iLook; // of the name; see LookOf in the source
  };
  [[nodiscard]] QStringView NameOf(const TAttr& aAttr) const;
  [[nodiscard]] bool IsKnown(QStringView aName, qsizetype aLook);
  [[nodiscard]] bool IsKnownOfMany(QStringView aName);
  std::vector<TAttr> iAttrs;
  // Places in iAttrs by the names in small letters, where there are many; of the first iIndexed ones.
  QMultiHash<QString, qsizetype> iIndex;
  size_t iIndexed = 0;
  std::vector<char16_t> iAttrText;
  qsizetype iAttrUsed = 0;
  // Behind the attribute that was asked for last: attributes are mostly asked for in the order of the file.
  mutable size_t iNextAttr = 0;
  mutable CVelumTextPool iTexts; // of what is handed out
  qint32 iSym = ESymEof;
  QStringView iSymStr; // in the line that the scanner reads
  QString iName;       // of the tag read last
  qint32 iCoding = ECodUtf8;
  // The scanner joins ">" and "=" into one symbol; where ">" ended a tag, the "=" is the first character of
  // what follows.
  bool iPendingEqual = false;
};
