#include "persist/CVelumXmlStack.h"

#include "core/CVelumChecked.h"
#include "core/CVelumMsg.h"
#include "core/text/CVelumXmlParser.h"
#include "core/text/CVelumXmlWriter.h"
#include "persist/CVelumSaveCheck.h"
#include "persist/CVelumSaveTarget.h"

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
  CVelumSaveCheck::RefuseUnreadable([&] {
    Ref<CVelumStack> stack;
    Ref<CVelumViewState> view;
    CVelumXmlStack::Load(aPath, stack, view);
  });
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
  stack->ResetChangeInfo();
  stack->ResetChanged();
  aStack = stack;
  aView = view;
}

void CVelumXmlStack::Save(const QString& aFilename, CVelumStack& aStack, CVelumViewState& aView) {
  CVelumSaveTarget target(aFilename, aStack);
  CVelumBlobStore& store = CVelumChecked::Deref(aStack.BlobStore().Get());
  aStack.PrepareForSave();
  const CVelumBlobStore::TState state = store.State();
  try {
    TakeBlobs(store);
    WriteOrRefuse(target.NewFile().Path(), aStack, aView);
    target.TakePlace();
  } catch (...) {
    store.Restore(state);
    throw;
  }
  store.CloseFile();
  store.SetFileId(CVelumOs::IdOf(target.NewFile().Fd()));
  aStack.SetFilename(aFilename);
  aStack.SetChanged(false);
  target.TellKept();
}
