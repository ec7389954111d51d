#include "model/CVelumModel.h"

#include "model/CVelumStack.h"

namespace {
Ref<CVelumStored> NewObject(int aTag) {
  switch (aTag) {
  case EValCard:
    return MakeRef<CVelumCard>();
  case EValControl:
    return MakeRef<CVelumControl>();
  case EValControlSet:
    return MakeRef<CVelumControlSet>();
  case EValSortKey:
    return MakeRef<CVelumSortKey>();
  case EValArray:
    return MakeRef<CVelumArray>();
  case EValBlob:
    return MakeRef<CVelumBlob>();
  default:
    return nullptr;
  }
}
} // namespace

void CVelumModel::Install() {
  CVelumSeams::SetObjectFactory(&NewObject);
}
