#include "model/CVelumScripted.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/file/CVelumFile.h"
#include "core/text/CVelumXmlParser.h"
#include "core/text/CVelumXmlWriter.h"
#include "model/change/CVelumRecorder.h"

using CVelumRecord::Store;

namespace {

const QString EReadProc = u"CVelumLib.InternalizeCommon"_s;
const QString EScriptSource = u"ScriptSource"_s;

// Handlers are looked up by name and read as texts; an array of another make would fail at each script
// message instead of here.
bool IsScriptArray(const CVelumArray& aScript) {
  const qint32 keyMode = aScript.Flags() & (EArrStrKey | EArrIntKey | EArrSortKey | EArrMixed);
  return aScript.Type() == EValStr && keyMode == EArrStrKey;
}

} // namespace

void CVelumScripted::SetName(const QString& aName) {
  Store(*this, EMemberName, iName, aName, iChanged);
}

void CVelumScripted::SetId(qint32 aId) {
  Store(*this, EMemberId, iId, aId, iChanged);
}

void CVelumScripted::SetFlags(qint32 aFlags) {
  Store(*this, EMemberFlags, iFlags, aFlags, iChanged);
}

qint32 CVelumScripted::WithFlag(qint32 aFlags, qint32 aMask, bool aOn) {
  if (aOn) return aFlags | aMask;
  if ((aFlags & aMask) == 0) return aFlags;
  return static_cast<qint32>(static_cast<quint32>(aFlags) - static_cast<quint32>(aMask));
}

void CVelumScripted::SetFlag(qint32 aMask, bool aOn) {
  if (!aOn && !Flag(aMask)) return;
  SetFlags(WithFlag(iFlags, aMask, aOn));
}

CVelumScripted::TExtras& CVelumScripted::Extras() {
  if (!iExtras) iExtras = std::make_unique<TExtras>();
  return *iExtras;
}

template <class T> void CVelumScripted::StoreExtra(EMember aMember, T TExtras::*aSlot, const T& aNew) {
  if (iExtras || !(aNew == T())) {
    Store(*this, aMember, Extras().*aSlot, aNew, iChanged);
    return;
  }
  T none;
  Store(*this, aMember, none, aNew, iChanged);
}

QString CVelumScripted::ScriptSource() const {
  return iExtras ? iExtras->iScriptSource : QString();
}

void CVelumScripted::SetScriptSource(const QString& aSource) {
  StoreExtra(EMemberScriptSource, &TExtras::iScriptSource, aSource);
}

Ref<CVelumArray> CVelumScripted::Script() const {
  return iExtras ? iExtras->iScript : nullptr;
}

void CVelumScripted::SetScript(const Ref<CVelumArray>& aScript) {
  StoreExtra(EMemberScript, &TExtras::iScript, aScript);
}

qint16 CVelumScripted::ScriptCount() const {
  const bool present = iExtras && iExtras->iScript;
  return present ? CVelumChecked::Narrow<qint16>(iExtras->iScript->Count()) : qint16{0};
}

Ref<CVelumFont> CVelumScripted::Font() const {
  return iExtras ? iExtras->iFont : nullptr;
}

void CVelumScripted::SetFont(const Ref<CVelumFont>& aFont) {
  StoreExtra(EMemberFont, &TExtras::iFont, aFont);
}

void CVelumScripted::SetBackColor(qint32 aColor) {
  Store(*this, EMemberBackColor, iBackColor, aColor, iChanged);
}

bool CVelumScripted::ExtrasChanged() const {
  if (!iExtras) return false;
  return (iExtras->iScript && iExtras->iScript->Changed()) || (iExtras->iFont && iExtras->iFont->Changed());
}

void CVelumScripted::ClearExtrasChanged() {
  if (!iExtras) return;
  if (iExtras->iScript) iExtras->iScript->SetChanged(false);
  if (iExtras->iFont) iExtras->iFont->SetChanged(false);
}

int CVelumScripted::InternalizeCommon(CVelumFile& aFile, int aTypeId, int aMinGen, int aMaxGen) {
  const int gen = CVelumLib::ReadBinObjStart(aFile, aTypeId, aMinGen, aMaxGen);
  iExtras.reset();
  iName = aFile.ReadStr();
  iId = aFile.ReadInt();
  iFlags = aFile.ReadInt();
  if (QString source = aFile.ReadStr(); !source.isEmpty()) Extras().iScriptSource = std::move(source);
  if (aFile.ReadShort() != 0) {
    Ref<CVelumArray> script = MakeRef<CVelumArray>();
    script->Internalize(aFile);
    CVelumLib::CheckRead(aFile, IsScriptArray(*script), this, EReadProc, u"script"_s);
    Extras().iScript = std::move(script);
  }
  if (aFile.ReadBoolean()) {
    Extras().iFont = MakeRef<CVelumFont>();
    Extras().iFont->Internalize(aFile);
  }
  iBackColor = aFile.ReadInt();
  return gen;
}

void CVelumScripted::ExternalizeCommon(CVelumFile& aFile, int aTypeId, int aGen) {
  CVelumLib::WriteBinObjStart(aFile, aTypeId, aGen);
  aFile.WriteStr(iName);
  aFile.WriteInt(iId);
  aFile.WriteInt(iFlags);
  aFile.WriteStr(ScriptSource());
  const qint16 scriptCount = ScriptCount();
  aFile.WriteShort(scriptCount);
  if (scriptCount > 0) iExtras->iScript->Externalize(aFile);
  const Ref<CVelumFont> font = Font();
  aFile.WriteBoolean(static_cast<bool>(font));
  if (font) font->Externalize(aFile);
  aFile.WriteInt(iBackColor);
}

qint64 CVelumScripted::ExtLenCommon() const {
  qint64 len = 4 + CVelumFile::ExtStrLen(iName) + 4 + 4 + CVelumFile::ExtStrLen(ScriptSource()) + 2 + 2 + 4;
  if (ScriptCount() > 0) len += iExtras->iScript->ExtLen();
  if (const Ref<CVelumFont> font = Font()) len += font->ExtLen();
  return len;
}

CVelumScripted::TXmlExtras CVelumScripted::ReadExtrasAttr(const CVelumXmlParser& aParser) {
  return {aParser.CountAttr(u"numScripts"_s) > 0, aParser.BooleanAttr(u"fontDef"_s)};
}

void CVelumScripted::ReadExtrasXml(CVelumXmlParser& aParser, TXmlExtras aExtras) {
  iExtras.reset();
  if (QString source = aParser.ReadTextElem(EScriptSource); !source.isEmpty())
    Extras().iScriptSource = std::move(source);
  if (aExtras.iScript) {
    Ref<CVelumArray> script = MakeRef<CVelumArray>();
    aParser.ReadChild(*script, *this, u"InternalizeXml iScript"_s);
    CVelumError::ThrowBadStruct(IsScriptArray(*script), this, EReadProc, u"script"_s);
    Extras().iScript = std::move(script);
  }
  if (!aExtras.iFont) return;
  Extras().iFont = MakeRef<CVelumFont>();
  aParser.ReadChild(*iExtras->iFont, *this, u"InternalizeXml iFont"_s);
}

void CVelumScripted::WriteExtrasAttr(CVelumXmlWriter& aWriter) const {
  aWriter.AddShortAttr(u"numScripts"_s, ScriptCount());
  aWriter.AddBooleanAttr(u"fontDef"_s, static_cast<bool>(Font()));
}

void CVelumScripted::WriteExtrasXml(CVelumXmlWriter& aWriter) const {
  aWriter.WriteTextElem(EScriptSource, ScriptSource());
  if (ScriptCount() > 0) iExtras->iScript->ExternalizeXml(aWriter);
  if (const Ref<CVelumFont> font = Font()) font->ExternalizeXml(aWriter);
}
