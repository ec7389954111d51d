#include "exchange/CVelumContentImport.h"

#include "core/CVelumChecked.h"
#include "core/CVelumValue.h"
#include "core/CVelumXmlParser.h"
#include "exchange/CVelumImportLimits.h"

using CVelumError::Assert;

namespace {

constexpr qint64 EStepCards = 500; // cards from one question to aStep to the next

class CContentReader {
public:
  CContentReader(const QString& aPath, CVelumStack& aStack) : iParser(aPath), iStack(aStack) {}

  bool Read(const TVelumStep& aStep) {
    ReadStart();
    QString name;
    while (!AtEndOf(u"orvelle"_s, name)) {
      Assert(name == u"card"_s, u"ImportXml card "_s + name);
      ReadCard();
      if (aStep && ++iCards % EStepCards == 0 && !aStep(iCards, 0)) return false;
    }
    iParser.CloseFile();
    return true;
  }

private:
  void ReadStart() {
    iParser.OpenFile();
    iParser.ReadHeader();
    iParser.ReadTheNext(u"orvelle"_s, false);
    bool term = false;
    iParser.ReadAttrAndSym(term);
    Assert(iParser.Attr(u"version"_s) == u"1.0"_s, u"ImportXml Version"_s);
  }

  // Reads the next tag, whose name aName becomes. Whether it is the end of the element aElem.
  bool AtEndOf(const QString& aElem, QString& aName) {
    bool term = false;
    iParser.ReadNext(aName, term);
    return term && aName == aElem;
  }

  void ReadCard() {
    bool term = false;
    iParser.ReadAttrAndSym(term);
    Ref<CVelumControlSet> background;
    const bool found = iStack.GetBackgroundByName(iParser.Attr(u"background"_s), background);
    Assert(found, u"ImportXml Background"_s);
    const QString name = iParser.Attr(u"name"_s);
    CheckText(name);
    const auto card = MakeRef<CVelumCard>(name, background);
    iStack.AddCard(card, nullptr, false);
    QString elem;
    while (!AtEndOf(u"card"_s, elem)) {
      Assert(elem == u"control"_s, u"ImportXml control"_s);
      ReadControl(*card, *background);
    }
  }

  void ReadControl(CVelumCard& aCard, const CVelumControlSet& aBackground) {
    bool term = false;
    iParser.ReadAttr(term);
    Ref<CVelumControl> control;
    const bool found = aBackground.GetControlByName(iParser.Attr(u"name"_s), control);
    Assert(found, u"ImportXml control"_s);
    QString text;
    iParser.ReadElemText(text, false);
    CheckText(text);
    const CVelumControl& field = CVelumChecked::Deref(control);
    // The text of a picture tells the number that it had in another stack.
    if (field.ConType() != EConPicture)
      aCard.SetControlVal(field.Id(), CVelumValue::ExtTextToVal(text, field.FieldInfo()));
    iParser.ReadTheNext(u"control"_s, true);
  }

  void CheckText(const QString& aText) const {
    if (CVelumImportLimits::Fits(aText)) return;
    CVelumImportLimits::RaiseTooLong(u"The text that ends in line %1 "_s.arg(iParser.LineNum()));
  }

  CVelumXmlParser iParser;
  CVelumStack& iStack;
  qint64 iCards = 0;
};

} // namespace

bool CVelumImports::ImportXml(const QString& aPath, CVelumStack& aStack, const TVelumStep& aStep) {
  CVelumImportLimits::CheckIsFile(aPath);
  aStack.BeginBulk(0);
  bool whole = false;
  try {
    whole = CContentReader(aPath, aStack).Read(aStep);
  } catch (...) {
    aStack.EndBulk();
    throw;
  }
  aStack.EndBulk();
  return whole;
}
