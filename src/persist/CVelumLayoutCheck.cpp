#include "persist/CVelumLayoutCheck.h"

#include "core/CVelumLib.h"
#include "persist/CVelumViewState.h"

namespace {

constexpr qint64 EStackPos = 11; // behind the magic and the frame of the file

// The position behind the stack and the view. They are read once more: the file may be of an older
// generation, so that it cannot be computed.
qint64 PointerPos(CVelumFile& aFile) {
  aFile.SeekPos(EStackPos);
  MakeRef<CVelumStack>()->Internalize(aFile);
  MakeRef<CVelumViewState>()->Internalize(aFile);
  return aFile.CurrentPos();
}

} // namespace

QStringList CVelumLayoutCheck::Run(const CVelumStack& aStack) {
  const Ref<CVelumBlobStore> store = aStack.BlobStore();
  if (!store || !store->Flag(EBstFileBased) || aStack.Filename().isEmpty()) return {};
  CVelumFile file(aStack.Filename(), EFilRead);
  file.OpenFile();
  if (store->File()) file.SetPatch(store->File()->Patch());
  QStringList problems;
  const qint64 pointerPos = PointerPos(file);
  const qint64 behindPointer = pointerPos + 4;
  const qint64 tablePos = file.ReadInt();
  const auto add = [&](const QString& aText, qint64 aNum, qint64 aOther) {
    problems.append(u"file: "_s + aText.arg(aNum).arg(aOther));
  };
  if (store->StartPos() < behindPointer)
    add(u"the blob area begins at %1, before the stack ends at %2"_s, store->StartPos(), behindPointer);
  if (tablePos < store->BehindPos())
    add(u"the table of blobs stands at %1, before the blobs end at %2"_s, tablePos, store->BehindPos());
  if (file.Size() < store->BehindPos())
    add(u"it is %1 bytes long, but the blobs end at %2"_s, file.Size(), store->BehindPos());
  const qint64 end = tablePos + store->ExtLen();
  if (file.Size() < end) add(u"it is %1 bytes long, but the table of blobs ends at %2"_s, file.Size(), end);
  file.CloseFile();
  return problems;
}
