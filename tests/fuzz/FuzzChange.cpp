// Arbitrary bytes as a group of changes, on a small stack: a group is refused, or it is applied and taken
// back whole.
#include "FuzzTarget.h"

#include "core/text/CVelumLocale.h"
#include "model/change/CVelumUndo.h"
#include "support/ScriptedPresenter.h"

#include <cstdlib>

namespace {

struct TBed {
  TBed() {
    CVelumModel::Install();
    qint32 index = 0;
    static_cast<void>(iStack->GetFirstBackground(iBackground, index));
    for (const auto& [name, type] : {std::pair{u"Town"_s, EConText}, std::pair{u"Size"_s, EConInteger}})
      iBackground->AddControl(MakeRef<CVelumControl>(iStack->IdGen().NextId(), name, type), ENoInt);
    for (const QString& name : {u"Ann"_s, u"Bob"_s, u"Cat"_s})
      iStack->AddCard(MakeRef<CVelumCard>(name, iBackground), nullptr, true);
  }
  Ref<CVelumStack> iStack = MakeRef<CVelumStack>(u"Fuzz"_s);
  Ref<CVelumControlSet> iBackground;
};

QByteArray Form(CVelumStack& aStack) {
  const Ref<CVelumFile> file = CVelumChangeIo::NewMemoryFile();
  aStack.Externalize(*file);
  file->SeekPos(0);
  return file->ReadRawBytes(file->Size());
}

Ref<CVelumFile> FileOf(const QByteArray& aBytes) {
  const Ref<CVelumFile> file = CVelumChangeIo::NewMemoryFile();
  if (!aBytes.isEmpty()) file->WriteRawBytes(aBytes);
  file->SeekPos(0);
  return file;
}

// Bytes of real groups, one of each kind of work, from which inputs are made.
class CCollector final : public CVelumChangeTaker {
public:
  [[nodiscard]] qint64 Bound() const override { return std::numeric_limits<qint64>::max(); }
  void Take(CVelumChangeGroup aGroup, bool) override {
    const Ref<CVelumFile> file = CVelumChangeIo::NewMemoryFile();
    aGroup.Write(*file);
    file->SeekPos(0);
    iGroups.append(file->ReadRawBytes(file->Size()));
  }
  QList<QByteArray> iGroups;
};

QList<QByteArray> RealGroups() {
  TBed bed;
  CCollector collector;
  CVelumRecorder recorder(*bed.iStack, collector);
  const auto step = [](auto aDo) {
    const CVelumError::CCommand command(u"Step"_s);
    aDo();
  };
  Ref<CVelumCard> ann;
  static_cast<void>(bed.iStack->GetCard(u"Ann"_s, ann));
  const qint32 town = bed.iBackground->ControlAt(0)->Id();
  step([&] { ann->SetControlVal(town, TVelumValue::OfStr(u"Bern"_s)); });
  step([&] { bed.iStack->RenameCard(ann, u"Zoe"_s); });
  step([&] { bed.iStack->AddCard(MakeRef<CVelumCard>(u"Dan"_s, bed.iBackground), ann, true); });
  step([&] { ann->SetFont(MakeRef<CVelumFont>(u"Arial"_s, qint16{200}, 255)); });
  step([&] { bed.iBackground->AddControl(MakeRef<CVelumControl>(50, u"New"_s, EConText), town); });
  step([&] { bed.iStack->MoveCard(ann, nullptr); });
  step([&] { bed.iStack->DeleteCard(ann); });
  step([&] {
    const auto last = MakeRef<CVelumCard>(u"Eve"_s, bed.iBackground);
    bed.iStack->AddCard(last, nullptr, false);
    bed.iStack->DeleteCardsOf(*bed.iBackground, last->Id());
    bed.iStack->CloseGap(last->Id());
  });
  step([&] { bed.iStack->DeleteAllCards(); });
  step([&] { bed.iStack->DeleteControl(town, bed.iBackground); });
  return collector.iGroups;
}

} // namespace

QByteArray FuzzTarget::MakeInput(std::mt19937& aRandom) {
  static const QList<QByteArray> groups = RealGroups();
  QByteArray input = groups[static_cast<qsizetype>(aRandom() % static_cast<size_t>(groups.size()))];
  for (auto changes = aRandom() % 4; changes > 0 && !input.isEmpty(); --changes) {
    const auto at = static_cast<qsizetype>(aRandom() % static_cast<size_t>(input.size()));
    if (aRandom() % 8 == 0)
      input.truncate(at);
    else
      input[at] = static_cast<char>(aRandom() % 4 == 0 ? aRandom() : static_cast<unsigned>(input[at]) + 1);
  }
  return input;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  CVelumLocale::Init(u"en_US"_s);
  ScriptedPresenter presenter;
  presenter.SetDefaultAnswer(aSize % 2 == 1);
  TBed bed;
  const QByteArray before = Form(*bed.iStack);
  try {
    const Ref<CVelumFile> file =
        FileOf(QByteArray(reinterpret_cast<const char*>(aData), static_cast<qsizetype>(aSize)));
    const CVelumChangeGroup group = CVelumChangeGroup::Read(*file);
    try {
      static_cast<void>(group.Apply(*bed.iStack));
    } catch (const CVelumException&) {
      if (Form(*bed.iStack).size() != before.size()) std::abort();
      return 0;
    }
    static_cast<void>(group.Revert(*bed.iStack));
  } catch (const CVelumException&) { // refused
  }
  return 0;
}
