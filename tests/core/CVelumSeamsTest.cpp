#include "core/CVelumSeams.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"

#include "support/FakeStored.h"
#include <gtest/gtest.h>

namespace {

class CThing final : public FakeStored {
public:
  [[nodiscard]] QString ObjDescr() const override { return u"CThing"_s; }
};

struct CSink final : CVelumChangeSink {
  void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) override {
    iKind = aKind;
    iObj1 = aObj1;
    iObj2 = aObj2;
  }
  int iKind = -1;
  CVelumObject* iObj1 = nullptr;
  CVelumObject* iObj2 = nullptr;
};

struct CPump final : CVelumEventPump {
  void Pump() override { ++iPumps; }
  int iPumps = 0;
};

TEST(CVelumSeams, WithoutAPresenterQuestionsAreAnsweredNo) {
  EXPECT_FALSE(CVelumSeams::Presenter().Message(0, EMsgQuestion, {}, {}));
  {
    ScriptedPresenter presenter;
    presenter.Answer(true);
    EXPECT_TRUE(CVelumSeams::Presenter().Message(0, EMsgQuestion, {}, {}));
    CVelumSeams::Presenter().Tell(u"text"_s);
    EXPECT_EQ(presenter.Told(), QList<QString>{u"text"_s});
  }
  EXPECT_FALSE(CVelumSeams::Presenter().Message(0, EMsgQuestion, {}, {}));
}

TEST(CVelumSeams, ChangesGoToTheSink) {
  const Ref<CThing> thing = MakeRef<CThing>();
  CVelumSeams::ChangeNotify(3, thing.Get());
  CSink sink;
  CVelumSeams::SetChangeSink(&sink);
  CVelumSeams::ChangeNotify(4, thing.Get());
  EXPECT_EQ(sink.iKind, 4);
  EXPECT_EQ(sink.iObj1, thing.Get());
  EXPECT_EQ(sink.iObj2, nullptr);
  CVelumSeams::SetChangeSink(nullptr);
  CVelumSeams::ChangeNotify(5);
  EXPECT_EQ(sink.iKind, 4);
}

TEST(CVelumSeams, PaintPumpIsThePumpUnlessToldApart) {
  CPump pump;
  CVelumSeams::SetEventPump(&pump);
  CVelumSeams::EventPump().Pump();
  CVelumSeams::EventPump().PumpPaint();
  CVelumSeams::SetEventPump(nullptr);
  CVelumSeams::EventPump().Pump();
  EXPECT_EQ(pump.iPumps, 2);
}

TEST(CVelumSeams, Metrics) {
  const TVelumMetrics before = CVelumSeams::Metrics();
  EXPECT_EQ(before.iLabelWidth, 120.0F);
  EXPECT_EQ(before.iFieldGapX, 130.0F);
  EXPECT_EQ(before.iFieldGapY, 50.0F);
  EXPECT_EQ(before.iCardMarginX, 100.0F);
  EXPECT_EQ(before.iCardMarginY, 20.0F);
  TVelumMetrics metrics = before;
  metrics.iCharHeight = 210.0F;
  CVelumSeams::SetMetrics(metrics);
  EXPECT_EQ(CVelumSeams::Metrics().iCharHeight, 210.0F);
  CVelumSeams::SetMetrics(before);
}

TEST(CVelumSeams, ObjectsComeFromTheFactory) {
  CVelumSeams::SetObjectFactory(nullptr);
  EXPECT_FALSE(CVelumSeams::NewObject(100));
  CVelumSeams::SetObjectFactory(
      [](int aTag) { return aTag == 100 ? Ref<CVelumStored>(new CThing) : Ref<CVelumStored>(); });
  EXPECT_TRUE(CVelumSeams::NewObject(100));
  EXPECT_FALSE(CVelumSeams::NewObject(101));
  CVelumSeams::SetObjectFactory(nullptr);
}

} // namespace
