// The definition of one field or command of a background.
#pragma once

#include "model/CVelumScripted.h"
#include "model/fields/CVelumCompanions.h"

#include <QPointer>

class CVelumControlSet;
class CVelumStack;

// Flags of a control, as they stand in files.
enum EConFlag : qint32 {
  EConWikiText = 1,
  EConComboText = 2,
  EConComboList = 4,
  EConInMenu = 8,
  EConAsButton = 16,
  EConInCardView = 32,
  EConInCardList = 64,
  EConDisabled = 128,
  EConReadOnly = 256,
  EConStdCmd = 512,
  EConCardList = 1024,
  EConFromBottom = 2048,
  EConPictButton = 4096,
  EConMaxHeight = 8192,
  EConCardName = 16384,
  EConPhoneNumber = 32768,
};

// Computed by CVelumStack::SetControlDynFlags, never saved.
enum EDyn : qint32 { EDynRefControl = 1, EDynSelControl = 2, EDynKeyPart = 4, EDynListCol = 8 };

// Standard commands on file and at run time; the lines of the editor's box are one higher.
enum EStdCmd : qint16 {
  EStdFirstCard = 0,
  EStdPrevCard = 1,
  EStdNextCard = 2,
  EStdLastCard = 3,
  EStdBackInHistory = 4,
  EStdForwInHistory = 5,
  EStdGoToCard = 6,
  EStdShowCardList = 7,
  EStdSelectCard = 8,
};

// Values are kept on the cards, not here.
class CVelumControl final : public CVelumScripted {
public:
  // Allocated only: for Internalize.
  CVelumControl();
  CVelumControl(qint32 aId, const QString& aName, qint32 aConType);
  ~CVelumControl() override;

  [[nodiscard]] QString ObjDescr() const override;
  [[nodiscard]] TDocAddress Address() const override { return {EDocControl, iId}; }
  void SetFlags(qint32 aFlags) override;

  // The background that holds this control, or null. Not counted; the background clears it.
  [[nodiscard]] CVelumControlSet* Owner() const { return iOwner; }
  void SetOwner(CVelumControlSet* aOwner) { iOwner = aOwner; }
  [[nodiscard]] qint32 ConType() const { return iConType; }
  // The sort keys that the field is part of compare by the new type, and their keys are made anew.
  void SetConType(qint32 aConType);
  [[nodiscard]] qint16 VisLines() const { return iVisLines; }
  void SetVisLines(qint16 aLines);
  [[nodiscard]] qint16 VisChar() const { return iVisChar; }
  void SetVisChar(qint16 aChars);
  [[nodiscard]] bool InCardView() const { return Flag(EConInCardView); }
  [[nodiscard]] bool InCardList() const { return Flag(EConInCardList); }
  [[nodiscard]] qint16 MaxChar() const { return iMaxChar; }
  void SetMaxChar(qint16 aMax);
  [[nodiscard]] qint16 Digits() const { return iDigits; }
  void SetDigits(qint16 aDigits);
  // Column width in characters: own, else VisChar, else 1.
  [[nodiscard]] qint16 ListVisChar() const;
  [[nodiscard]] qint16 TrueListVisChar() const { return iListVisChar; }
  void SetListVisChar(qint16 aChars);
  [[nodiscard]] const QString& Descr() const { return iDescr; }
  void SetDescr(const QString& aDescr);
  [[nodiscard]] const QString& Label() const { return iLabel; }
  void SetLabel(const QString& aLabel);
  [[nodiscard]] const QString& DefaultVal() const { return iDefaultVal; }
  // The keys of sort keys that the field is part of are made anew.
  void SetDefaultVal(const QString& aDefault);
  [[nodiscard]] qint32 DynFlags() const { return iDynFlags; }
  [[nodiscard]] bool DynFlag(qint32 aMask) const { return (iDynFlags & aMask) != 0; }
  void SetDynFlags(qint32 aFlags) { iDynFlags = aFlags; }
  void SetDynFlag(qint32 aMask, bool aOn);
  // The stack's ListBasis at which the default was computed as a list of cards; 0 if it is none. Run-time
  // only.
  [[nodiscard]] quint32 ListBasis() const { return iListBasis; }
  void SetListBasis(quint32 aBasis) { iListBasis = aBasis; }
  // Own title, else the name.
  [[nodiscard]] QString ListColTitle() const;
  [[nodiscard]] const QString& TrueListColTitle() const { return iListColTitle; }
  void SetListColTitle(const QString& aTitle);
  [[nodiscard]] qint32 PartnerId() const { return iPartnerId; }
  // Asserts "LetPartnerId Combo" for a real id on a control without combo flag.
  void SetPartnerId(qint32 aId);
  [[nodiscard]] qint32 RefControlId() const { return iRefControlId; }
  void SetRefControlId(qint32 aId);
  [[nodiscard]] qint32 SelBackgroundId() const { return iSelBackgroundId; }
  void SetSelBackgroundId(qint32 aId);
  [[nodiscard]] qint32 SelControlId() const { return iSelControlId; }
  void SetSelControlId(qint32 aId);
  // Control ids of the columns of a card list, or nothing.
  [[nodiscard]] Ref<CVelumArray> ListCol() const { return iListCol; }
  void SetListCol(const Ref<CVelumArray>& aListCol);
  [[nodiscard]] qint32 NumListCols() const { return iListCol ? iListCol->Count() : 0; }
  [[nodiscard]] qint16 StdCmd() const { return iStdCmd; }
  void SetStdCmd(qint16 aCmd);
  [[nodiscard]] qint32 DestCardId() const { return iDestCardId; }
  void SetDestCardId(qint32 aId);
  [[nodiscard]] bool Changed() const override;
  void SetChanged(bool aChanged) override;

  // Type and digits, for conversions.
  [[nodiscard]] TVelumFieldInfo FieldInfo() const { return {iConType, iDigits}; }
  [[nodiscard]] QString TypeStr() const;
  [[nodiscard]] bool OkForListCol() const;
  [[nodiscard]] bool AllowsCombo() const;
  // Whether the field is a column of the card list, and then its width in characters (else ENoShort).
  [[nodiscard]] bool GetListColInfo(qint16& aWidth) const;
  // The text of a card list: a line per card of the selected background whose selecting field equals aRefVal.
  // With columns, or without a combo, a line begins with the card's id; it does not depend on the list box.
  [[nodiscard]] QString GetCardList(CVelumStack& aStack, const TVelumValue& aRefVal);
  // Fills the list box from such a text; with aWithIds each line begins with the id of a card of aStack.
  void SetList(CVelumStack* aStack, const QString& aText, bool aWithIds);
  // All lines of the list box.
  [[nodiscard]] QString GetList() const;

  // What the type and the flags say of the list box: ELisCombo with EConComboList, else ELisSingle for
  // EConList; -1 for a control without one.
  [[nodiscard]] int LisType() const;

  // Run-time companions; never saved, never marked as changed. aBase is a toolkit control.
  [[nodiscard]] QObject* BaseControl() const { return iBaseControl; }
  void SetBaseControl(QObject* aBase, qint16 aType);
  [[nodiscard]] qint16 BaseType() const { return iBaseType; }
  [[nodiscard]] QObject* BaseLabel() const { return iBaseLabel; }
  void SetBaseLabel(QObject* aLabel) { iBaseLabel = aLabel; }
  [[nodiscard]] QObject* BaseFunc() const { return iBaseFunc; }
  void SetBaseFunc(QObject* aFunc) { iBaseFunc = aFunc; }
  // Made at the first call, so that loading a stack makes none; nothing if the control has no such box.
  [[nodiscard]] Ref<CVelumListBoxBase> ListBox() const;
  [[nodiscard]] Ref<CVelumWikiTextBoxBase> WikiTextBox() const;

  void Internalize(CVelumFile& aFile) override;
  void Externalize(CVelumFile& aFile) override;
  [[nodiscard]] qint64 ExtLen() const override;
  [[nodiscard]] QStringView XmlTag() const override { return u"Control"; }
  void InternalizeXml(CVelumXmlParser& aParser) override;
  void ExternalizeXml(CVelumXmlWriter& aWriter) override;

private:
  friend class CVelumReplay; // raw access for changes

  void CreateListBox() const;
  void CreateWikiTextBox() const;
  // Drops the companions that no longer fit; aOldLisType is what LisType was.
  void DropStaleBoxes(int aOldLisType);
  void InternalizeListCol(CVelumFile& aFile);
  void ReadAttrXml(const CVelumXmlParser& aParser);
  void ReadListColXml(CVelumXmlParser& aParser);
  [[nodiscard]] QList<CVelumControl*> CardListCols(const CVelumControlSet& aBackground) const;
  void DefineListColumns(CVelumStack* aStack, bool aWithIds);
  [[nodiscard]] CVelumStack* OwnerStack() const;

  CVelumControlSet* iOwner = nullptr;
  qint32 iConType = EConText;
  qint32 iDynFlags = 0;
  quint32 iListBasis = 0;
  QString iDescr;
  QString iLabel;
  QString iDefaultVal;
  QString iListColTitle;
  qint16 iVisLines = 1;
  qint16 iVisChar = 30;
  qint16 iMaxChar = ENoShort;
  qint16 iDigits = ENoShort;
  qint16 iListVisChar = ENoShort;
  qint16 iStdCmd = ENoShort;
  Ref<CVelumArray> iListCol;
  qint32 iPartnerId = ENoInt;
  qint32 iRefControlId = ENoInt;
  qint32 iSelBackgroundId = ENoInt;
  qint32 iSelControlId = ENoInt;
  qint32 iDestCardId = ENoInt;
  QPointer<QObject> iBaseControl;
  QPointer<QObject> iBaseLabel;
  QPointer<QObject> iBaseFunc;
  qint16 iBaseType = ENoShort;
  mutable Ref<CVelumListBoxBase> iListBox;
  mutable Ref<CVelumWikiTextBoxBase> iWikiTextBox;
};
