#include "persist/CVelumStackFile.h"

#include "core/CVelumChecked.h"
#include "core/CVelumMsg.h"
#include "persist/CVelumBinFormat.h"
#include "persist/CVelumBinLoad.h"
#include "persist/CVelumBinSave.h"
#include "persist/CVelumXmlStack.h"

CVelumStackFile::CVelumStackFile(QString aFilename) : iFilename(std::move(aFilename)) {}

QString CVelumStackFile::ObjDescr() const {
  return u"CVelumStackFile name="_s + iFilename;
}

// Whether the file starts with aBytes. A file that is not there is made, as every opening does.
bool CVelumStackFile::StartsWith(const QByteArray& aBytes) const {
  CVelumFile file(iFilename, EFilRead);
  file.OpenFile();
  bool ok = file.ReadRawBytes(aBytes.size()) == aBytes;
  file.CloseFile();
  return ok;
}

bool CVelumStackFile::IsBinStack() {
  return StartsWith(QByteArray(CVelumBinFormat::EMagic, CVelumBinFormat::EMagicLen));
}

bool CVelumStackFile::IsXmlStack() {
  return StartsWith("<");
}

void CVelumStackFile::LoadStack(Ref<CVelumStack>& aStack, Ref<CVelumViewState>& aView) {
  CVelumBinSave::Recover(iFilename);
  if (IsXmlStack()) {
    LoadXmlStack(aStack, aView);
  } else if (IsBinStack()) {
    LoadBinStack(aStack, aView);
  } else {
    CVelumError::Throw(EMsgNotAOrvelle, u"CVelumStackFile.LoadStack"_s, iFilename, {});
  }
}

void CVelumStackFile::LoadBinStack(Ref<CVelumStack>& aStack, Ref<CVelumViewState>& aView) {
  try {
    CVelumBinLoad::Load(iFilename, aStack, aView);
  } catch (...) {
    CVelumError::CatchError(u"CVelumLib.LoadBinStack"_s);
    CVelumError::Rethrow();
  }
}

void CVelumStackFile::LoadXmlStack(Ref<CVelumStack>& aStack, Ref<CVelumViewState>& aView) {
  try {
    CVelumXmlStack::Load(iFilename, aStack, aView);
  } catch (...) {
    CVelumError::CatchError(u"CVelumStackFile.LoadXmlStack"_s);
    CVelumError::Rethrow();
  }
}

void CVelumStackFile::SaveStack(const Ref<CVelumStack>& aStack, const Ref<CVelumViewState>& aView) {
  iStack = aStack;
  iView = aView;
  if (CVelumChecked::Deref(iStack).Flag(EStaBinary)) {
    SaveBinStack();
  } else {
    SaveXmlStack();
  }
}

void CVelumStackFile::SaveBinStack() {
  try {
    CVelumBinSave(iFilename, *iStack, CVelumChecked::Deref(iView)).Run();
  } catch (...) {
    CVelumError::CatchError(u"CVelumStackFile.SaveBinStack"_s);
    CVelumError::Rethrow();
  }
}

void CVelumStackFile::SaveXmlStack() {
  try {
    CVelumXmlStack::Save(iFilename, *iStack, CVelumChecked::Deref(iView));
  } catch (...) {
    CVelumError::CatchError(u"CVelumStackFile.SaveXmlStack"_s);
    CVelumError::Rethrow();
  }
}
