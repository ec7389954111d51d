#include "persist/CVelumXmlStack.h"

#include "core/CVelumChecked.h"
#include "core/CVelumMsg.h"
#include "core/CVelumXmlParser.h"
#include "core/CVelumXmlWriter.h"
#include "persist/CVelumBinSave.h"
#include "persist/CVelumNewFile.h"
#include "persist/CVelumOtherVersion.h"
#include "persist/CVelumSaveCheck.h"

#include <algorithm>

namespace {

const QString ERoot = u"VelumStack"_s;

// The next element, which has to be aObj's.
void ReadPart(CVelumXmlParser& aParser, CVelumStored& aObj, const QString& aText) {
  QString name;
  bool term = false;
  aParser.ReadNext(name, term);
  CVelumError::Assert(aObj.IsInXml(name), aText);
  aObj.InternalizeXml(aParser);
}

void WriteDocument(const QString& aPath, CVelumStack& aStack, CVelumViewState& aView) {
  CVelumXmlWriter writer(aPath);
  writer.OpenFile();
  writer.BeginElem(ERoot);
  writer.BeginStruct();
  aStack.ExternalizeXml(writer);
  aView.ExternalizeXml(writer);
  writer.EndElem(ERoot);
  writer.CloseFile();
}

// The same; what cannot be written so that it can be read is told like the other reasons not to save.
void WriteOrRefuse(const QString& aPath, CVelumStack& aStack, CVelumViewState& aView) {
  try {
    WriteDocument(aPath, aStack, aView);
  } catch (const CVelumException& e) {
    if (e.Number() != EHostBadCall && e.Number() != EHostOverflow) throw;
    CVelumSaveCheck::Refuse(e.Descr());
  }
}

// Whether the file is another than the one that the stack was loaded from or saved to last.
bool OtherVersionIsThere(const QString& aFilename, const QString& aPath, const CVelumStack& aStack,
                         const CVelumBlobStore& aStore) {
  if (aStack.Filename() != aFilename || !aStore.FileId().Exists()) return false;
  const TVelumFileId there = CVelumOs::IdOf(aPath);
  return there.Exists() && there != aStore.FileId();
}

// A text cannot hold the bytes of what is no picture any more.
[[noreturn]] void RefuseDamaged(QList<qint32> aIds) {
  std::sort(aIds.begin(), aIds.end());
  QStringList names;
  for (const qint32 id : aIds) names.append(QString::number(id));
  const QString which = names.isEmpty() ? QString() : u" (%1)"_s.arg(names.join(u", "_s));
  CVelumSaveCheck::Refuse(
      u"Pictures of this stack are damaged%1, and XML can only hold pictures that can be "
      "read. Save the stack in the binary format, which keeps their bytes as they are, or "
      "put other pictures in their place."_s.arg(which));
}

// All blobs come into memory.
void TakeBlobs(CVelumBlobStore& aStore) {
  QList<qint32> damaged;
  for (const qint32 id : aStore.Damaged())
    if (aStore.Cache().FindIntKey(id) < 0) damaged.append(id);
  if (!damaged.isEmpty()) RefuseDamaged(damaged);
  try {
    aStore.SwitchToRamBased();
  } catch (const CVelumException& e) {
    // What is found only now. A disk that cannot be read is another matter.
    if (e.Number() < EMsgAssertFailed) throw;
    RefuseDamaged({});
  }
}

} // namespace

void CVelumXmlStack::Load(const QString& aFilename, Ref<CVelumStack>& aStack, Ref<CVelumViewState>& aView) {
  const TVelumFileId id = CVelumOs::IdOf(CVelumOs::RealPath(aFilename));
  CVelumXmlParser parser(aFilename);
  parser.OpenFile();
  parser.ReadHeader();
  parser.ReadTheNext(ERoot, false);
  bool term = false;
  parser.ReadAttrAndSym(term);
  auto stack = MakeRef<CVelumStack>();
  stack->SetFilename(aFilename);
  ReadPart(parser, *stack, u"LoadXml iStack"_s);
  auto view = MakeRef<CVelumViewState>();
  ReadPart(parser, *view, u"LoadXml iStackView"_s);
  parser.ReadTheNext(ERoot, true);
  parser.CloseFile();
  stack->BlobStore()->SetFileId(id);
  stack->ResetChangeInfo();
  stack->ResetChanged();
  aStack = stack;
  aView = view;
}

void CVelumXmlStack::Save(const QString& aFilename, CVelumStack& aStack, CVelumViewState& aView) {
  static_cast<void>(CVelumBinSave::Recover(aFilename));
  const QString path = CVelumOs::RealPath(aFilename);
  CVelumBlobStore& store = CVelumChecked::Deref(aStack.BlobStore().Get());
  aStack.PrepareForSave();
  const CVelumBlobStore::TState state = store.State();
  QString kept;
  try {
    CVelumNewFile target(path);
    TakeBlobs(store);
    WriteOrRefuse(target.Path(), aStack, aView);
    if (OtherVersionIsThere(aFilename, path, aStack, store)) kept = CVelumOtherVersion::Keep(path);
    target.TakePlace();
  } catch (...) {
    store.Restore(state);
    if (!kept.isEmpty()) CVelumOs::RemoveQuietly(kept);
    throw;
  }
  store.CloseFile();
  store.SetFileId(CVelumOs::IdOf(path));
  aStack.SetFilename(aFilename);
  aStack.SetChanged(false);
  CVelumOtherVersion::Tell(aFilename, kept);
}
