#include "exchange/CVelumContentImport.h"

#include "core/CVelumChecked.h"
#include "core/CVelumValue.h"
#include "core/text/CVelumXmlParser.h"
#include "exchange/CVelumImportLimits.h"

#include <QHash>
#include <vector>

using CVelumError::Assert;

namespace {

constexpr qint64 EStepCards = 500; // cards from one question to aStep to the next

// The fields of one name, in their order. Commands come last, as the export leaves them out.
struct TNamesakes {
  std::vector<Ref<CVelumControl>> iFields;
  size_t iUsed = 0; // by the card that iCard tells
  qint64 iCard = -1;
};
using TFields = QHash<QString, TNamesakes>;

TFields FieldsOf(const CVelumControlSet& aBackground) {
  TFields fields;
  for (const bool commands : {false, true}) {
    for (qint32 i = 0; i < aBackground.NumControls(); ++i) {
      const Ref<CVelumControl> control = aBackground.ControlAt(i);
      if (control && (control->ConType() == EConCommand) == commands)
        fields[control->Name()].iFields.push_back(control);
    }
  }
  return fields;
}

class CContentReader {
public:
  CContentReader(const QString& aPath, CVelumStack& aStack) : iParser(aPath), iStack(aStack) {}

  bool Read(const TVelumStep& aStep) {
    ReadStart();
    QString name;
    while (!AtEndOf(u"orvelle"_s, name)) {
      Assert(name == u"card"_s, u"ImportXml card "_s + name);
      ReadCard();
      ++iCards;
      if (aStep && iCards % EStepCards == 0 && !aStep(iCards, 0)) return false;
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
    if (background && !iFields.contains(background->Id()))
      iFields.insert(background->Id(), FieldsOf(*background));
    TFields& fields = iFields[background ? background->Id() : ENoInt];
    QString elem;
    while (!AtEndOf(u"card"_s, elem)) {
      Assert(elem == u"control"_s, u"ImportXml control"_s);
      ReadControl(*card, fields);
    }
  }

  // The field that a text is for: the first text of a name is for the first field of that name, and so on.
  // Where there are more texts than fields, and the user wants to go on, the last field takes them.
  Ref<CVelumControl> FieldFor(const QString& aName, TFields& aFields) const {
    const auto found = aFields.find(aName);
    Assert(found != aFields.end(), u"ImportXml control"_s);
    if (found == aFields.end()) return nullptr;
    if (std::exchange(found->iCard, iCards) != iCards) found->iUsed = 0;
    const bool free = found->iUsed < found->iFields.size();
    Assert(free, u"ImportXml control "_s + aName + u" twice"_s);
    if (free) ++found->iUsed;
    return found->iFields[found->iUsed - 1];
  }

  void ReadControl(CVelumCard& aCard, TFields& aFields) {
    bool term = false;
    iParser.ReadAttr(term);
    const Ref<CVelumControl> control = FieldFor(iParser.Attr(u"name"_s), aFields);
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
  QHash<qint32, TFields> iFields; // of the backgrounds, by their ids
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
