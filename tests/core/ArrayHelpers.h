// What the tests of the keyed array share.
#pragma once

#include "core/CVelumMsg.h"
#include "core/array/CVelumArray.h"
#include "core/file/CVelumFile.h"
#include "core/text/CVelumCollation.h"
#include "support/FakeStored.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"

#include <gtest/gtest.h>

// A stored object that holds nothing but its mark and a number.
class MarkedObj final : public FakeStored {
public:
  explicit MarkedObj(qint32 aNum = 0) : iNum(aNum) {}
  [[nodiscard]] QString ObjDescr() const override { return u"MarkedObj "_s + QString::number(iNum); }
  [[nodiscard]] bool Changed() const override {
    ++iAsked;
    return iChanged;
  }
  void SetChanged(bool aChanged) override { iChanged = aChanged; }
  void Internalize(CVelumFile& aFile) override { iNum = aFile.ReadInt(); }
  void Externalize(CVelumFile& aFile) override { aFile.WriteInt(iNum); }
  [[nodiscard]] qint64 ExtLen() const override { return 4; }

  qint32 iNum;
  bool iChanged = false;
  mutable int iAsked = 0;
};

// The reverse of the exact order, by the first three characters alone.
class ReverseOrder final : public CVelumKeyOrder {
public:
  [[nodiscard]] QString ObjDescr() const override { return u"ReverseOrder"_s; }
  [[nodiscard]] qint32 Id() const override { return 77; }
  [[nodiscard]] int Compare(const QString& aKey1, const QString& aKey2) const override {
    return CVelumCollation::CompareBin(aKey2.left(3), aKey1.left(3)) + 1;
  }
  void Internalize(CVelumFile&) override {}
  void Externalize(CVelumFile&) override {}
  [[nodiscard]] qint64 ExtLen() const override { return 0; }
  [[nodiscard]] QStringView XmlTag() const override { return u"ReverseOrder"; }
  void InternalizeXml(CVelumXmlParser&) override {}
  void ExternalizeXml(CVelumXmlWriter&) override {}
};

inline TVelumElem IntElem(qint32 aVal) {
  return {{}, ENoInt, TVelumValue::OfInt(aVal)};
}
inline TVelumElem StrElem(const QString& aVal) {
  return {{}, ENoInt, TVelumValue::OfStr(aVal)};
}
inline TVelumElem IntKeyElem(qint32 aKey, qint32 aVal) {
  return {{}, aKey, TVelumValue::OfInt(aVal)};
}
inline TVelumElem StrKeyElem(const QString& aKey, qint32 aVal = 0) {
  return {aKey, ENoInt, TVelumValue::OfInt(aVal)};
}
inline TVelumElem ObjElem(const Ref<CVelumStored>& aObj) {
  return {{}, ENoInt, TVelumValue::OfObj(EValCard, aObj)};
}

inline QList<QString> KeysOf(const CVelumArray& aArray) {
  QList<QString> keys;
  for (qint32 i = 0; i < aArray.Count(); ++i) keys.append(aArray.StrKeyAt(i));
  return keys;
}
inline QList<qint32> IntKeysOf(const CVelumArray& aArray) {
  QList<qint32> keys;
  for (qint32 i = 0; i < aArray.Count(); ++i) keys.append(aArray.IntKeyAt(i));
  return keys;
}
inline QList<qint32> IntsOf(const CVelumArray& aArray) {
  QList<qint32> vals;
  for (qint32 i = 0; i < aArray.Count(); ++i) vals.append(aArray.ValRef(i).Int());
  return vals;
}

// An array of type Str without keys.
inline CVelumArray* FillStr(CVelumArray& aArray, const QList<QString>& aTexts) {
  for (const QString& s : aTexts) static_cast<void>(aArray.CreateAtEnd(StrElem(s)));
  return &aArray;
}
inline void FillInt(CVelumArray& aArray, const QList<qint32>& aInts) {
  for (qint32 i : aInts) static_cast<void>(aArray.CreateAtEnd(IntElem(i)));
}
inline void FillKeys(CVelumArray& aArray, const QList<QString>& aKeys) {
  qint32 val = 0;
  for (const QString& s : aKeys) aArray.CreateStrKey(StrKeyElem(s, val++));
}

// Runs aCall, which must fail an assertion with this procedure and text; the user says no.
template <class TCall> void ExpectAssert(const TCall& aCall, const QString& aProc, const QString& aText) {
  ScriptedPresenter presenter;
  try {
    aCall();
    FAIL() << "no assertion: " << aText.toStdString();
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EMsgAssertFailed);
    EXPECT_EQ(gLastError.iProc, aProc);
    const QString descr = aProc == u"Assert"_s ? QString() : gLastError.iP0 + u"\r\n"_s;
    EXPECT_EQ(gLastError.iP1, aText + descr);
    EXPECT_EQ(aProc != u"Assert"_s, gLastError.iP0.startsWith(u"CVelumArray max="_s));
  }
}
template <class TCall> void ExpectAssert(const TCall& aCall, const QString& aText) {
  ExpectAssert(aCall, u"Assert"_s, aText);
}

// Runs aCall, whose assertions the user overrules; it must end in this host error.
template <class TCall> void ExpectHostError(const TCall& aCall, qint32 aNumber) {
  ScriptedPresenter presenter;
  presenter.SetDefaultAnswer(true);
  try {
    aCall();
    FAIL() << "no host error";
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), aNumber);
  }
}
// The same, where it goes on.
template <class TCall> void Overruled(const TCall& aCall) {
  ScriptedPresenter presenter;
  presenter.SetDefaultAnswer(true);
  aCall();
  EXPECT_GT(presenter.Count(), 0);
}
