// Writes XML documents as CVelumXmlParser reads them: a builder of lines with automatic indentation.
#pragma once

#include "core/CVelumFile.h"

// An element is BeginElem, any attributes, and then EndEmptyElem; or AddElemText and EndElem; or
// BeginStruct, its children and EndElem. Text is escaped here.
//
// What could not be read back is host error 6 (a line over 32,766 characters) or 5 (a text with U+0001,
// with CR alone, or with half a surrogate pair), with the beginning of the text.
class CVelumXmlWriter final : public CVelumObject {
public:
  explicit CVelumXmlWriter(const QString& aFilename);

  [[nodiscard]] QString ObjDescr() const override { return u"CVelumXmlWriter"_s; }
  void BeginElem(const QString& aName);
  void AddAttr(const QString& aName, const QString& aValue);
  void AddIntAttr(const QString& aName, qint32 aValue);
  void AddShortAttr(const QString& aName, qint16 aValue);
  void AddRealAttr(const QString& aName, double aValue);
  // As few digits as read back to the same single-precision number.
  void AddSingleAttr(const QString& aName, float aValue);
  // "-1" for true, "0" for false.
  void AddBooleanAttr(const QString& aName, bool aValue);
  void EndEmptyElem();
  void AddElemText(const QString& aText) { AddLongElemText(aText); }
  // The escaped text in lines of 80 characters; their ends are no part of the text.
  void AddLongElemText(const QString& aText);
  void EndElem(const QString& aName);
  void BeginStruct();
  // An element that holds only text.
  void WriteTextElem(const QString& aName, const QString& aText);
  // Opens the file and writes the header.
  void OpenFile();
  // Asserts that no element is half written.
  void CloseFile();

private:
  void AddPlainAttr(const QString& aName, const QString& aValue);
  void WriteLine();
  void CheckText(const QString& aText) const;

  Ref<CVelumFile> iFile;
  QString iLine;
  qint16 iDepth = 0;
};
