#include "model/fields/CVelumCompanions.h"

#include "core/CVelumChecked.h"

namespace {

CVelumCompanionFactory plainFactory;
CVelumCompanionFactory* factory = &plainFactory;

// The list box of a program without windows.
class CLineStore final : public CVelumListBoxBase {
public:
  explicit CLineStore(int aLisType) : iLisType(aLisType) {}

  [[nodiscard]] QString ObjDescr() const override {
    return u"CVelumListBox type=%1,numLines=%2"_s.arg(iLisType).arg(NumLines());
  }
  [[nodiscard]] int LisType() const override { return iLisType; }
  void SetFlag4(bool) override {}
  void Clear() override { iLines.clear(); }
  void AddLine(const QString& aLine, const Ref<CVelumObject>&) override { iLines.append(aLine); }
  [[nodiscard]] int NumLines() const override { return static_cast<int>(iLines.size()); }
  [[nodiscard]] QString Line(int aIndex) const override {
    const bool inside = aIndex >= 0 && aIndex < NumLines();
    CVelumError::AssertObj(inside, this, u"Line"_s, u"Get Line index"_s);
    return iLines.at(CVelumChecked::Index(aIndex, NumLines()));
  }
  void DefineColumns(const QList<QString>&, const QList<float>&) override {}
  void Define1Column(const QString&) override {}
  void Show() override {}
  void SetBaseObj(QObject*) override {}

private:
  int iLisType;
  QList<QString> iLines;
};

} // namespace

Ref<CVelumListBoxBase> CVelumCompanionFactory::NewListBox(int aLisType) {
  return MakeRef<CLineStore>(aLisType);
}

Ref<CVelumWikiTextBoxBase> CVelumCompanionFactory::NewWikiTextBox() {
  return nullptr;
}

Ref<CVelumListBoxBase> CVelumCompanions::NewListBox(int aLisType) {
  return factory->NewListBox(aLisType);
}

Ref<CVelumWikiTextBoxBase> CVelumCompanions::NewWikiTextBox() {
  return factory->NewWikiTextBox();
}

void CVelumCompanions::SetFactory(CVelumCompanionFactory* aFactory) {
  factory = aFactory ? aFactory : &plainFactory;
}
