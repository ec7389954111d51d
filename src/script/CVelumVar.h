// The run-time cell of the script interpreter.
#pragma once

#include "core/array/CVelumArray.h"

class CVelumCard;
class CVelumControl;
class CVelumControlSet;

// A value shared by reference on the interpreter's stack. Its type is set once and never changes; its
// conversions are its own, not those of CVelumValue.
class CVelumVar final : public CVelumObject {
public:
  // A cell without a type: no operation but TypeStr.
  CVelumVar() = default;
  // Construct: aType EVal..., not 0 (assertion "undef").
  explicit CVelumVar(int aType);
  // A cell that holds aVal and has its type.
  explicit CVelumVar(TVelumValue aVal);

  [[nodiscard]] QString ObjDescr() const override { return u"CVelumVar type="_s + TypeStr(); }
  // The system's own short names: "Int", "Float"; unknown tags assert.
  [[nodiscard]] QString TypeStr() const;
  [[nodiscard]] int ValType() const { return iType; }

  // Reading checks nothing: the slot of another type gives its zero.
  [[nodiscard]] const QString& StrVal() const { return iValue.Str(); }
  [[nodiscard]] qint32 IntVal() const { return iValue.Int(); }
  [[nodiscard]] double RealVal() const { return iValue.Real(); }
  [[nodiscard]] double DateVal() const { return iValue.Date(); }
  [[nodiscard]] double TimeVal() const { return iValue.Time(); }
  [[nodiscard]] bool BooleanVal() const { return iValue.Boolean(); }
  // Null when the cell holds another class, or nothing.
  [[nodiscard]] CVelumCard* CardVal() const;
  [[nodiscard]] CVelumControl* ControlVal() const;
  [[nodiscard]] CVelumControlSet* ControlSetVal() const;
  // Setters assert that the type is the slot's, with "type" and their name; overruled, nothing is set.
  void LetStrVal(const QString& aStr);
  void LetIntVal(qint32 aInt);
  void LetRealVal(double aReal);
  void LetDateVal(double aDate);
  void LetTimeVal(double aTime);
  void LetBooleanVal(bool aBoolean);
  void LetCardVal(const Ref<CVelumCard>& aCard);
  void LetControlVal(const Ref<CVelumControl>& aControl);
  void LetControlSetVal(const Ref<CVelumControlSet>& aSet);

  [[nodiscard]] bool Equal(const CVelumVar& aVar) const;
  [[nodiscard]] bool Lt(const CVelumVar& aVar) const;
  [[nodiscard]] bool Gt(const CVelumVar& aVar) const;
  // Copies the value of a variable of the same type.
  void Assign(const CVelumVar& aVar);
  // Appends to the text in place when nobody else holds it. For String cells.
  void AppendStr(const QString& aStr);
  // A new cell with the text of this one, which is left with the empty text. For String cells.
  [[nodiscard]] Ref<CVelumVar> MoveStr();
  // As a user reads it, in the locale; a Float with at most 15 digits that count, whatever else it holds.
  [[nodiscard]] QString ToStr() const;
  [[nodiscard]] qint32 ToInt() const;
  [[nodiscard]] double ToReal() const;
  // Reads a string literal (tag, length, characters) and moves aIp behind it.
  void GetFromCode(const QByteArray& aCode, qint32& aIp);
  [[nodiscard]] const TVelumValue& GetValue() const { return iValue; }
  void SetValue(const TVelumValue& aVal) { iValue = aVal; }

  [[nodiscard]] static bool IsNumeric(int aType) { return aType == EValInt || aType == EValReal; }
  [[nodiscard]] static bool TypesCompatible(int aTypeA, int aTypeB) {
    return aTypeA == aTypeB || (IsNumeric(aTypeA) && IsNumeric(aTypeB));
  }
  // Characters that a text built by a script may have (64 MiB); more is host error 7.
  static constexpr qsizetype EMaxTextLen = 32 * 1024 * 1024;
  // For Int and Card cells in the loops of the interpreter.
  void ReplaceInt(qint32 aInt) { iValue.ReplaceInt(aInt); }
  void SwapCard(Ref<CVelumCard>& aCard) { iValue.SwapObj(aCard); }

  // Cells come and go with every instruction: a few are kept for the next.
  static void* operator new(size_t aSize);
  static void operator delete(void* aCell) noexcept;

private:
  void Let(int aType, const QString& aProc, TVelumValue aVal);
  [[nodiscard]] int Compare(const CVelumVar& aVar, int aType, const QString& aProc) const;
  [[nodiscard]] int CheckedCommonType(const CVelumVar& aVar, const QString& aProc) const;

  int iType = EValUndef;
  TVelumValue iValue;
};
