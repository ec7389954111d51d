#include "persist/CVelumStackFile.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLog.h"
#include "core/CVelumMsg.h"
#include "core/CVelumSeams.h"
#include "persist/CVelumAccess.h"
#include "persist/CVelumBinFormat.h"
#include "persist/CVelumBinLoad.h"
#include "persist/CVelumBinSave.h"
#include "persist/CVelumRecovery.h"
#include "persist/CVelumSaveCheck.h"
#include "persist/CVelumXmlStack.h"

namespace {

const QByteArray EXmlStart = "<";

} // namespace

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
  return StartsWith(EXmlStart);
}

// The file with the lock that keeps others from saving into it. Another file may have taken the name while
// that was waited for, so each try opens it anew.
Ref<CVelumFile> CVelumStackFile::OpenLocked() const {
  Ref<CVelumFile> file;
  const bool locked = CVelumOs::WaitFor([&] {
    file = MakeRef<CVelumFile>(iFilename, qint32{EFilReadWrite});
    file->OpenFile();
    return file->TryLockShared();
  });
  if (!locked)
    CVelumError::RaiseHost(EHostPermissionDenied, iFilename + u" (another program is saving it)"_s);
  return file;
}

// Lets the user choose; the file that is not chosen stays where it is.
void CVelumStackFile::SettleDoubt() {
  enum { EPresent, EOld };
  const QString path = CVelumOs::RealPath(iFilename);
  const QString old = CVelumRecovery::BuildOld(path);
  const QString text = CVelumRecovery::DoubtText(path, old);
  const int choice = CVelumSeams::Presenter().Choose(text, {path, old});
  if (choice == EPresent)
    CVelumRecovery::Dismiss(path);
  else if (choice == EOld)
    iFilename = old;
  else
    CVelumError::RaiseHost(EHostPermissionDenied, text);
}

void CVelumStackFile::LoadAny(const Ref<CVelumFile>& aFile, Ref<CVelumStack>& aStack,
                              Ref<CVelumViewState>& aView) {
  const QByteArray start = aFile->PeekAt(0, CVelumBinFormat::EMagicLen);
  if (start.startsWith(EXmlStart)) {
    LoadXmlStack(aStack, aView);
  } else if (start == CVelumBinFormat::EMagic) {
    LoadBinStack(aFile, aStack, aView);
  } else {
    CVelumError::Throw(EMsgNotAOrvelle, u"CVelumStackFile.LoadStack"_s, iFilename, {});
  }
}

// False when something has written to the file, or given its name to another, while it was read.
bool CVelumStackFile::LoadUnchanged(Ref<CVelumStack>& aStack, Ref<CVelumViewState>& aView) {
  const bool there = CVelumOs::IdOf(iFilename).Exists(); // a journal must not make a document of nothing
  const Ref<CVelumFile> file = OpenLocked();
  const bool readOnly = !CVelumAccess::WhyReadOnly(iFilename).isEmpty();
  if (there && !readOnly &&
      CVelumRecovery::Run(CVelumOs::RealPath(iFilename)) == CVelumRecovery::EFound::Doubt) {
    SettleDoubt();
    return LoadUnchanged(aStack, aView);
  }
  const TVelumFileId before = file->FileId();
  const auto unchanged = [&] {
    const TVelumFileId now = CVelumOs::IdOf(iFilename);
    return file->FileId() == before && (!now.Exists() || now.SameFile(before));
  };
  if (readOnly) file->SetPatch(CVelumRecovery::OldBytes(CVelumOs::RealPath(iFilename), file->Fd()));
  Ref<CVelumStack> stack;
  Ref<CVelumViewState> view;
  try {
    LoadAny(file, stack, view);
  } catch (const std::exception&) {
    if (unchanged()) throw;
    return false;
  }
  if (!unchanged()) return false;
  stack->BlobStore()->SetFileId(before);
  aStack = stack;
  aView = view;
  return true;
}

void CVelumStackFile::LoadStack(Ref<CVelumStack>& aStack, Ref<CVelumViewState>& aView) {
  qCDebug(gLogPersist) << "load" << iFilename;
  constexpr int ETries = 3;
  for (int i = 0; i < ETries; ++i)
    if (LoadUnchanged(aStack, aView)) return;
  CVelumError::RaiseHost(EHostPermissionDenied, iFilename + u" (another program is writing to it)"_s);
}

void CVelumStackFile::LoadBinStack(const Ref<CVelumFile>& aFile, Ref<CVelumStack>& aStack,
                                   Ref<CVelumViewState>& aView) {
  try {
    CVelumBinLoad::Load(aFile, aStack, aView);
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
  qCDebug(gLogPersist) << "save" << iFilename;
  iStack = aStack;
  iView = aView;
  if (CVelumChecked::Deref(iStack).Flag(EStaBinary)) {
    SaveBinStack();
  } else {
    SaveXmlStack();
  }
}

void CVelumStackFile::RefuseReadOnly() const {
  const QString reason = CVelumAccess::WhyReadOnly(iFilename);
  if (!reason.isEmpty())
    CVelumSaveCheck::Refuse(reason + u" Save the stack under another name, in a folder of your own."_s);
}

void CVelumStackFile::SaveBinStack() {
  try {
    RefuseReadOnly();
    CVelumBinSave(iFilename, *iStack, CVelumChecked::Deref(iView)).Run();
  } catch (...) {
    CVelumError::CatchError(u"CVelumStackFile.SaveBinStack"_s);
    CVelumError::Rethrow();
  }
}

void CVelumStackFile::SaveXmlStack() {
  try {
    RefuseReadOnly();
    CVelumXmlStack::Save(iFilename, *iStack, CVelumChecked::Deref(iView));
  } catch (...) {
    CVelumError::CatchError(u"CVelumStackFile.SaveXmlStack"_s);
    CVelumError::Rethrow();
  }
}
