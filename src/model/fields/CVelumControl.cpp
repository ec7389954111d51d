#include "model/fields/CVelumControl.h"

#include "core/CVelumChecked.h"
#include "core/CVelumFieldTypes.h"
#include "core/CVelumLib.h"
#include "core/CVelumSeams.h"
#include "core/CVelumValue.h"
#include "core/file/CVelumFile.h"
#include "model/CVelumStack.h"
#include "model/change/CVelumRecorder.h"

using CVelumRecord::Store;

namespace {

constexpr int ETypeId = 0;
constexpr int EMinGen = 2;
constexpr int EMaxGen = 3;
// From this generation on a control has its digits in the file.
constexpr int EDigitsGen = 3;
// Columns of which a card list's text is made, and columns that a list box shows.
constexpr qsizetype EMaxTextCols = 50;
constexpr qsizetype EMaxBoxCols = 100;

const QString EReadProc = u"CVelumControl.Internalize"_s;
const QString ECrLf = u"\r\n"_s;

// A column's value on one line of its own cell.
QString OneCell(QString aText) {
  return aText.replace(ECrLf, u" "_s).replace(u'\t', u' ');
}

void AppendCardLine(CVelumCard& aCard, const QList<CVelumControl*>& aCols, int aLisType, QString& aList) {
  if (aLisType != ELisSingle) {
    aList += aCard.Name();
    return;
  }
  aList += QString::number(aCard.Id());
  if (aCols.isEmpty()) aList += u'\t' + aCard.Name();
  for (const CVelumControl* col : aCols) {
    const TVelumValue val = aCard.GetControlVal(col->Id(), false);
    aList += u'\t' + OneCell(CVelumValue::ValToExtText(val, col->FieldInfo()));
  }
}

// The card whose id begins a line; nothing if no card has it.
Ref<CVelumObject> CardOfId(const CVelumStack* aStack, QStringView aId) {
  const double id = CVelumValue::LenientNum(aId);
  if (!aStack || !(id >= 0.0 && id < static_cast<double>(ENoInt))) return nullptr;
  return aStack->GetCardById(CVelumValue::RoundToInt(id));
}

} // namespace

CVelumControl::CVelumControl() = default;

CVelumControl::CVelumControl(qint32 aId, const QString& aName, qint32 aConType) : iConType(aConType) {
  iId = aId;
  iName = aName;
  iFlags = EConInCardView | (OkForListCol() ? EConInCardList : 0);
}

CVelumControl::~CVelumControl() = default;

QString CVelumControl::ObjDescr() const {
  return u"CVelumControl name="_s + iName + u",id="_s + QString::number(iId) + u",type="_s +
         QString::number(iConType);
}

void CVelumControl::SetFlags(qint32 aFlags) {
  const int oldLisType = LisType();
  CVelumScripted::SetFlags(aFlags);
  DropStaleBoxes(oldLisType);
}

void CVelumControl::SetConType(qint32 aConType) {
  const int oldLisType = LisType();
  Store(*this, EMemberConType, iConType, aConType, iChanged);
  DropStaleBoxes(oldLisType);
  if (CVelumStack* stack = OwnerStack()) stack->ControlTypeSet(iId, aConType);
}

void CVelumControl::SetVisLines(qint16 aLines) {
  Store(*this, EMemberVisLines, iVisLines, aLines, iChanged);
}

void CVelumControl::SetVisChar(qint16 aChars) {
  Store(*this, EMemberVisChar, iVisChar, aChars, iChanged);
}

void CVelumControl::SetMaxChar(qint16 aMax) {
  Store(*this, EMemberMaxChar, iMaxChar, aMax, iChanged);
}

void CVelumControl::SetDigits(qint16 aDigits) {
  Store(*this, EMemberDigits, iDigits, aDigits, iChanged);
}

qint16 CVelumControl::ListVisChar() const {
  if (iListVisChar != ENoShort) return iListVisChar;
  return iVisChar != ENoShort ? iVisChar : qint16{1};
}

void CVelumControl::SetListVisChar(qint16 aChars) {
  Store(*this, EMemberListVisChar, iListVisChar, aChars, iChanged);
}

void CVelumControl::SetDescr(const QString& aDescr) {
  Store(*this, EMemberDescr, iDescr, aDescr, iChanged);
}

void CVelumControl::SetLabel(const QString& aLabel) {
  Store(*this, EMemberLabel, iLabel, aLabel, iChanged);
}

void CVelumControl::SetDefaultVal(const QString& aDefault) {
  const bool other = aDefault != iDefaultVal;
  Store(*this, EMemberDefaultVal, iDefaultVal, aDefault, iChanged);
  iListBasis = 0;
  if (CVelumStack* stack = other ? OwnerStack() : nullptr) stack->RenewKeysOf(iId);
}

CVelumStack* CVelumControl::OwnerStack() const {
  return iOwner ? iOwner->Stack() : nullptr;
}

void CVelumControl::SetDynFlag(qint32 aMask, bool aOn) {
  iDynFlags = WithFlag(iDynFlags, aMask, aOn);
}

QString CVelumControl::ListColTitle() const {
  return iListColTitle.isEmpty() ? iName : iListColTitle;
}

void CVelumControl::SetListColTitle(const QString& aTitle) {
  Store(*this, EMemberListColTitle, iListColTitle, aTitle, iChanged);
}

void CVelumControl::SetPartnerId(qint32 aId) {
  CVelumError::AssertObj(aId == ENoInt || Flag(EConComboText | EConComboList), this, u"LetPartnerId"_s,
                         u"LetPartnerId Combo"_s);
  Store(*this, EMemberPartnerId, iPartnerId, aId, iChanged);
}

void CVelumControl::SetRefControlId(qint32 aId) {
  Store(*this, EMemberRefControlId, iRefControlId, aId, iChanged);
}

void CVelumControl::SetSelBackgroundId(qint32 aId) {
  Store(*this, EMemberSelBackgroundId, iSelBackgroundId, aId, iChanged);
}

void CVelumControl::SetSelControlId(qint32 aId) {
  Store(*this, EMemberSelControlId, iSelControlId, aId, iChanged);
}

void CVelumControl::SetListCol(const Ref<CVelumArray>& aListCol) {
  Store(*this, EMemberListCol, iListCol, aListCol, iChanged);
}

void CVelumControl::SetStdCmd(qint16 aCmd) {
  Store(*this, EMemberStdCmd, iStdCmd, aCmd, iChanged);
}

void CVelumControl::SetDestCardId(qint32 aId) {
  Store(*this, EMemberDestCardId, iDestCardId, aId, iChanged);
}

bool CVelumControl::Changed() const {
  return iChanged || ExtrasChanged() || (iListCol && iListCol->Changed());
}

void CVelumControl::SetChanged(bool aChanged) {
  iChanged = aChanged;
  if (aChanged) return;
  ClearExtrasChanged();
  if (iListCol) iListCol->SetChanged(false);
}

QString CVelumControl::TypeStr() const {
  CVelumError::AssertObj(CVelumFieldTypes::IsType(iConType), this, u"TypeStr"_s, u"iType"_s);
  return CVelumFieldTypes::Of(iConType).iName.toString();
}

bool CVelumControl::OkForListCol() const {
  return CVelumFieldTypes::Of(iConType).iTextLike;
}

bool CVelumControl::AllowsCombo() const {
  return CVelumFieldTypes::Of(iConType).iCombo;
}

bool CVelumControl::GetListColInfo(qint16& aWidth) const {
  aWidth = ENoShort;
  if (!OkForListCol() || !InCardList()) return false;
  aWidth = iListVisChar != ENoShort ? iListVisChar : iVisChar;
  return true;
}

QList<CVelumControl*> CVelumControl::CardListCols(const CVelumControlSet& aBackground) const {
  QList<CVelumControl*> cols;
  const qsizetype count = qMin<qsizetype>(NumListCols(), EMaxTextCols);
  for (qint32 i = 0; i < count; ++i) {
    CVelumControl* col = aBackground.FindControl(iListCol->IntNum(i));
    CVelumError::AssertObj(col, this, u"GetCardList"_s, u"control found"_s);
    if (col) cols.append(col);
  }
  return cols;
}

QString CVelumControl::GetCardList(CVelumStack& aStack, const TVelumValue& aRefVal) {
  CVelumError::AssertObj(Flag(EConCardList), this, u"GetCardList"_s, u"EConCardList"_s);
  const Ref<CVelumControlSet> background = aStack.Background(iSelBackgroundId);
  CVelumError::AssertObj(static_cast<bool>(background), this, u"GetCardList"_s, u"Background def"_s);
  if (!background) return {};
  const QList<CVelumControl*> cols = CardListCols(*background);
  const int lisType = LisType();
  QString list;
  bool first = true;
  for (CVelumCard* card : aStack.FindCards(background->Id(), iSelControlId, aRefVal)) {
    if (!first) list += ECrLf;
    first = false;
    AppendCardLine(*card, cols, lisType, list);
  }
  return list;
}

void CVelumControl::DefineListColumns(CVelumStack* aStack, bool aWithIds) {
  const Ref<CVelumControlSet> background =
      aStack && NumListCols() > 0 ? aStack->Background(iSelBackgroundId) : nullptr;
  QList<QString> titles;
  QList<float> widths;
  const TVelumMetrics& metrics = CVelumSeams::Metrics();
  for (qint32 i = 0; background && i < NumListCols() && titles.size() < EMaxBoxCols; ++i) {
    const CVelumControl* col = background->FindControl(iListCol->IntNum(i));
    if (!col) continue;
    titles.append(col->ListColTitle());
    widths.append(static_cast<float>(col->ListVisChar()) * metrics.iAvgCharWidth + metrics.iFieldGapY);
  }
  if (titles.isEmpty())
    iListBox->Define1Column(aWithIds ? u"Card Name"_s : u"Value"_s);
  else
    iListBox->DefineColumns(titles, widths);
}

void CVelumControl::SetList(CVelumStack* aStack, const QString& aText, bool aWithIds) {
  const Ref<CVelumListBoxBase> box = ListBox();
  CVelumListBoxBase& list = CVelumChecked::Deref(box);
  list.Clear();
  QList<QString> lines;
  CVelumLib::SplitLines(aText, lines);
  for (const QString& line : lines) {
    const qsizetype tab = aWithIds ? line.indexOf(u'\t') : -1;
    const QStringView id = QStringView(line).left(tab < 0 ? line.size() : tab);
    const Ref<CVelumObject> card = aWithIds ? CardOfId(aStack, id) : nullptr;
    const QString text = aWithIds ? line.mid(id.size() + 1) : line;
    list.AddLine(text, card);
  }
  if (list.LisType() == ELisSingle) DefineListColumns(aStack, aWithIds);
  list.Show();
}

QString CVelumControl::GetList() const {
  const Ref<CVelumListBoxBase> box = ListBox();
  const CVelumListBoxBase& list = CVelumChecked::Deref(box);
  QString text;
  for (int i = 0; i < list.NumLines(); ++i) {
    if (i > 0) text += ECrLf;
    text += list.Line(i);
  }
  return text;
}

int CVelumControl::LisType() const {
  if (Flag(EConComboList)) return ELisCombo;
  return iConType == EConList ? ELisSingle : -1;
}

void CVelumControl::SetBaseControl(QObject* aBase, qint16 aType) {
  iBaseControl = aBase;
  iBaseType = aType;
  if (iListBox) iListBox->SetBaseObj(aBase);
}

Ref<CVelumListBoxBase> CVelumControl::ListBox() const {
  if (!iListBox) CreateListBox();
  return iListBox;
}

Ref<CVelumWikiTextBoxBase> CVelumControl::WikiTextBox() const {
  if (!iWikiTextBox) CreateWikiTextBox();
  return iWikiTextBox;
}

void CVelumControl::CreateListBox() const {
  if (LisType() < 0) return;
  iListBox = CVelumCompanions::NewListBox(LisType());
  if (!iListBox) return;
  iListBox->SetFlag4(true);
  if (iBaseControl) iListBox->SetBaseObj(iBaseControl);
}

void CVelumControl::CreateWikiTextBox() const {
  if (Flag(EConWikiText)) iWikiTextBox = CVelumCompanions::NewWikiTextBox();
}

void CVelumControl::DropStaleBoxes(int aOldLisType) {
  if (LisType() != aOldLisType) iListBox = nullptr;
  if (!Flag(EConWikiText)) iWikiTextBox = nullptr;
}

void CVelumControl::InternalizeListCol(CVelumFile& aFile) {
  iListCol = nullptr;
  if (aFile.ReadShort() <= 0) return;
  iListCol = MakeRef<CVelumArray>();
  iListCol->Internalize(aFile);
  const bool plain = (iListCol->Flags() & (EArrStrKey | EArrIntKey | EArrMixed)) == 0;
  CVelumLib::CheckRead(aFile, plain && iListCol->Type() == EValInt, this, EReadProc, u"ListCol"_s);
}

void CVelumControl::Internalize(CVelumFile& aFile) {
  const int gen = InternalizeCommon(aFile, ETypeId, EMinGen, EMaxGen);
  iDescr = aFile.ReadStr();
  iLabel = aFile.ReadStr();
  iConType = aFile.ReadShort();
  CVelumLib::CheckRead(aFile, CVelumFieldTypes::IsType(iConType), this, EReadProc, u"ConType"_s);
  iDefaultVal = aFile.ReadStr();
  iVisLines = aFile.ReadShort();
  iVisChar = aFile.ReadShort();
  iMaxChar = aFile.ReadShort();
  iDigits = gen >= EDigitsGen ? aFile.ReadShort() : ENoShort;
  iListVisChar = aFile.ReadShort();
  iListColTitle = aFile.ReadStr();
  iPartnerId = aFile.ReadInt();
  iRefControlId = aFile.ReadInt();
  iSelBackgroundId = aFile.ReadInt();
  iSelControlId = aFile.ReadInt();
  InternalizeListCol(aFile);
  iStdCmd = aFile.ReadShort();
  iDestCardId = aFile.ReadInt();
  iListBox = nullptr;
  iWikiTextBox = nullptr;
  iChanged = false;
}

void CVelumControl::Externalize(CVelumFile& aFile) {
  ExternalizeCommon(aFile, ETypeId, EMaxGen);
  aFile.WriteStr(iDescr);
  aFile.WriteStr(iLabel);
  aFile.WriteShort(CVelumChecked::Narrow<qint16>(iConType));
  aFile.WriteStr(iDefaultVal);
  aFile.WriteShort(iVisLines);
  aFile.WriteShort(iVisChar);
  aFile.WriteShort(iMaxChar);
  aFile.WriteShort(iDigits);
  aFile.WriteShort(iListVisChar);
  aFile.WriteStr(iListColTitle);
  aFile.WriteInt(iPartnerId);
  aFile.WriteInt(iRefControlId);
  aFile.WriteInt(iSelBackgroundId);
  aFile.WriteInt(iSelControlId);
  aFile.WriteShort(CVelumChecked::Narrow<qint16>(NumListCols()));
  if (NumListCols() > 0) iListCol->Externalize(aFile);
  aFile.WriteShort(iStdCmd);
  aFile.WriteInt(iDestCardId);
}

qint64 CVelumControl::ExtLen() const {
  constexpr qint64 shorts = 2 * (1 + 5 + 1 + 1); // type; five widths and lengths; columns; command
  constexpr qint64 ints = 4 * (4 + 1);           // four references; destination
  qint64 len = ExtLenCommon() + shorts + ints;
  for (const QString* str : {&iDescr, &iLabel, &iDefaultVal, &iListColTitle})
    len += CVelumFile::ExtStrLen(*str);
  if (NumListCols() > 0) len += iListCol->ExtLen();
  return len;
}
