#include "core/CVelumSeams.h"

namespace {

// Nobody to ask: every question is answered no.
class CSilentPresenter final : public CVelumPresenter {
public:
  bool Message(qint32, EMsgClass, const QString&, const QString&) override { return false; }
  void Tell(const QString&) override {}
  void HelpPage(const QString&) override {}
};

class CIdlePump final : public CVelumEventPump {
public:
  void Pump() override {}
};

CSilentPresenter sSilentPresenter;
CIdlePump sIdlePump;
CVelumPresenter* sPresenter = &sSilentPresenter;
CVelumEventPump* sPump = &sIdlePump;
CVelumChangeSink* sSink = nullptr;
CVelumCommandWatch* sCommandWatch = nullptr;
TVelumMetrics sMetrics;
TVelumObjectFactory sFactory = nullptr;

} // namespace

CVelumPresenter& CVelumSeams::Presenter() {
  return *sPresenter;
}

void CVelumSeams::SetPresenter(CVelumPresenter* aPresenter) {
  sPresenter = aPresenter ? aPresenter : &sSilentPresenter;
}

CVelumEventPump& CVelumSeams::EventPump() {
  return *sPump;
}

void CVelumSeams::SetEventPump(CVelumEventPump* aPump) {
  sPump = aPump ? aPump : &sIdlePump;
}

void CVelumSeams::ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) {
  if (sSink) sSink->ChangeNotify(aKind, aObj1, aObj2);
}

void CVelumSeams::SetChangeSink(CVelumChangeSink* aSink) {
  sSink = aSink;
}

void CVelumSeams::CommandBegun(const QString& aName) {
  if (sCommandWatch) sCommandWatch->CommandBegun(aName);
}

void CVelumSeams::CommandEnded() {
  if (sCommandWatch) sCommandWatch->CommandEnded();
}

void CVelumSeams::SetCommandWatch(CVelumCommandWatch* aWatch) {
  sCommandWatch = aWatch;
}

const TVelumMetrics& CVelumSeams::Metrics() {
  return sMetrics;
}

void CVelumSeams::SetMetrics(const TVelumMetrics& aMetrics) {
  sMetrics = aMetrics;
}

Ref<CVelumStored> CVelumSeams::NewObject(int aTag) {
  return sFactory ? sFactory(aTag) : nullptr;
}

void CVelumSeams::SetObjectFactory(TVelumObjectFactory aFactory) {
  sFactory = aFactory;
}
