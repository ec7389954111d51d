// What the tests of the model share: outcomes of actions, stored bytes, and small stacks.
#pragma once

#include "core/CVelumError.h"
#include "core/file/CVelumFile.h"
#include "model/CVelumStack.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include <QtEndian>
#include <gtest/gtest.h>

namespace ModelTest {

// The text of the assertion that ends aAction when the user answers no, without the object's description;
// empty when none fails.
template <class F> QString AssertText(F aAction) {
  ScriptedPresenter presenter;
  try {
    aAction();
  } catch (const CVelumException& e) {
    if (e.Number() != 1000) return u"error %1"_s.arg(e.Number());
    QString text = gLastError.iP1;
    if (!gLastError.iP0.isEmpty()) text.chop(gLastError.iP0.size() + 2);
    return text;
  }
  return {};
}

// The number that aAction raises when every assertion is overruled, or -1.
template <class F> qint32 RaisedOverruled(F aAction) {
  ScriptedPresenter presenter;
  presenter.SetDefaultAnswer(true);
  try {
    aAction();
  } catch (const CVelumException& e) {
    return e.Number();
  }
  return -1;
}

// The number that aAction raises, or -1.
template <class F> qint32 Raised(F aAction) {
  ScriptedPresenter presenter;
  try {
    aAction();
  } catch (const CVelumException& e) {
    return e.Number();
  }
  return -1;
}

// The bytes that an object writes.
inline QByteArray Stored(CVelumStored& aObj) {
  TempFolder folder;
  CVelumFile file(folder.Path(u"object"_s), EFilWrite);
  file.OpenFile();
  aObj.Externalize(file);
  file.CloseFile();
  return folder.Read(u"object"_s);
}

// Reads an object from bytes.
inline void Load(CVelumStored& aObj, const QByteArray& aBytes) {
  TempFolder folder;
  CVelumFile file(folder.Write(u"object"_s, aBytes), EFilRead);
  file.OpenFile();
  aObj.Internalize(file);
  file.CloseFile();
}

// Bytes as a file has them, written by hand.
class Bytes {
public:
  Bytes& Short(int aValue) { return Put(static_cast<qint16>(aValue)); }
  Bytes& Int(qint32 aValue) { return Put(aValue); }
  Bytes& Single(float aValue) { return Put(aValue); }
  Bytes& Bool(bool aValue) { return Short(aValue ? -1 : 0); }
  Bytes& Str(const QString& aText) {
    Short(static_cast<int>(2 * aText.size()));
    for (const QChar c : aText) Put(c.unicode());
    return *this;
  }
  Bytes& Raw(const QByteArray& aBytes) {
    iBytes += aBytes;
    return *this;
  }
  // Frame and common block of an object without script and font.
  Bytes& Common(int aTypeId, int aGen, const QString& aName, qint32 aId, qint32 aFlags) {
    Short(aTypeId).Short(aGen).Str(aName).Int(aId).Int(aFlags).Str({}).Short(0).Bool(false);
    return Int(ENoInt);
  }
  // An empty array of flags and type, up to its count.
  Bytes& Array(qint32 aFlags, int aType, qint32 aCount) {
    Short(5).Short(3).Int(ENoInt).Int(aFlags).Short(aType).Int(50).Int(10).Int(aCount);
    return Int(ENoInt);
  }
  operator QByteArray() const { return iBytes; }

private:
  template <class T> Bytes& Put(T aValue) {
    char raw[sizeof(T)];
    qToLittleEndian(aValue, raw);
    iBytes.append(raw, sizeof(T));
    return *this;
  }
  QByteArray iBytes;
};

// A stack with two backgrounds and some fields.
//   First Background (id 0): Town (text), Size (integer), Since (date), Note (text)
//   Second (id 1): Key (text), All (card list), Some (card list with columns)
struct TSampleStack {
  TSampleStack();
  // A new control at the end of aBackground.
  Ref<CVelumControl> AddField(const Ref<CVelumControlSet>& aBackground, const QString& aName,
                              qint32 aConType) const;
  // A new card at the end, without defaults.
  Ref<CVelumCard> AddCard(const Ref<CVelumControlSet>& aBackground, const QString& aName) const;

  Ref<CVelumStack> iStack;
  Ref<CVelumControlSet> iFirst;
  Ref<CVelumControlSet> iSecond;
  Ref<CVelumControl> iTown;
  Ref<CVelumControl> iSize;
  Ref<CVelumControl> iSince;
  Ref<CVelumControl> iNote;
  Ref<CVelumControl> iKey;
  Ref<CVelumControl> iAll;
  Ref<CVelumControl> iSome;
};

} // namespace ModelTest
