// Writes XML documents as CVelumXmlParser reads them: a builder of lines with automatic indentation.
#pragma once

#include "core/file/CVelumFile.h"

#include <vector>

// An element is BeginElem, any attributes, and then EndEmptyElem; or AddElemText and EndElem; or
// BeginStruct, its children and EndElem. Text is escaped here.
//
// What could not be read back is host error 6 (a line over 32,766 characters) or 5 (a text with U+0001,
// with CR alone, or with half a surrogate pair), with the beginning of the text.
class CVelumXmlWriter final : public CVelumObject {
public:
  explicit CVelumXmlWriter(const QString& aFilename);

  [[nodiscard]] QString ObjDescr() const override { return u"CVelumXmlWriter"_s; }
  void BeginElem(QStringView aName);
  void AddAttr(QStringView aName, const QString& aValue);
  void AddIntAttr(QStringView aName, qint32 aValue);
  void AddShortAttr(QStringView aName, qint16 aValue) { AddIntAttr(aName, aValue); }
  void AddRealAttr(QStringView aName, double aValue);
  // As few digits as read back to the same single-precision number.
  void AddSingleAttr(QStringView aName, float aValue);
  // "-1" for true, "0" for false.
  void AddBooleanAttr(QStringView aName, bool aValue);
  void EndEmptyElem();
  void AddElemText(const QString& aText) { AddLongElemText(aText); }
  // The escaped text in lines of 80 characters; their ends are no part of the text.
  void AddLongElemText(const QString& aText);
  void EndElem(QStringView aName);
  void BeginStruct();
  // An element that holds only text.
  void WriteTextElem(QStringView aName, const QString& aText);
  // Opens the file and writes the header.
  void OpenFile();
  // Asserts that no element is half written.
  void CloseFile();

private:
  [[nodiscard]] bool AtLineStart() const { return iUsed == iLineStart; }
  // Where aCount more bytes are to be put.
  char* Room(qsizetype aCount) {
    if (iUsed + aCount > static_cast<qsizetype>(iBuf.size())) Grow(aCount);
    char* room = iBuf.data() + iUsed;
    iUsed += aCount;
    return room;
  }
  void Grow(qsizetype aCount);
  char* LineRoom(qsizetype aCount);
  void AddPlainAttr(QStringView aName, QStringView aValue);
  void AddText(QStringView aText);
  void EndLine();
  void WriteOut();
  [[nodiscard]] QString LineBeginning() const;

  Ref<CVelumFile> iFile;
  // What was not written yet, in UTF-8: whole lines, and from iLineStart on one under construction.
  std::vector<char> iBuf;
  qsizetype iUsed = 0;
  qsizetype iLineStart = 0;
  qsizetype iLineExtra = 0; // bytes of that line beyond its characters
  qint16 iDepth = 0;
};
