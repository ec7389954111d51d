#include "script/CVelumCodeScan.h"

#include "ScriptStack.h"

#include "core/CVelumLib.h"

namespace {

class CVelumCodeScanTest : public ScriptStack {
protected:
  // The code of a handler with aBody.
  static QByteArray Code(const char16_t* aBody) {
    CVelumCompiler compiler;
    CVelumArray handlers(EArrStrKey, EValStr);
    compiler.Compile(CVelumLib::ToCrLf(u"On test\n"_s + QString::fromUtf16(aBody) + u"\nEnd\n"_s), handlers);
    return compiler.Code();
  }
  // Of the first & in the code.
  static int AppendsTo(const char16_t* aBody) {
    const QByteArray code = Code(aBody);
    return CVelumCodeScan::AppendsTo(code, static_cast<qint32>(code.indexOf('\x28')) + 1);
  }
};

TEST_F(CVelumCodeScanTest, CountsTheSlotsThatCodeNames) {
  EXPECT_EQ(CVelumCodeScan::NumSlots(Code(u"Answer 5")), 0);
  EXPECT_EQ(CVelumCodeScan::NumSlots(Code(u"x = 1")), 1);
  EXPECT_EQ(CVelumCodeScan::NumSlots(Code(u"x = 1\nIf x = 1 Then\ny = 2\nElse\nAnswer z\nEnd If")), 3);
  EXPECT_EQ(CVelumCodeScan::NumSlots(Code(u"Repeat For Each Card c\nEnd Repeat")), 1);
  EXPECT_EQ(CVelumCodeScan::NumSlots(Code(u"Repeat For Each Card c Of Background (\"a\" & 17)\nEnd Repeat")),
            1);
  EXPECT_EQ(CVelumCodeScan::NumSlots(Code(u"Answer \"\x0b\x1f\x0c\"")), 0) << "letters are no instructions";
}

TEST_F(CVelumCodeScanTest, ReadsCodeThatNoCompilerMade) {
  EXPECT_EQ(CVelumCodeScan::NumSlots(QByteArray()), 0);
  EXPECT_EQ(CVelumCodeScan::NumSlots(Handler({13, 9, 0, 11})), 10);
  EXPECT_EQ(CVelumCodeScan::NumSlots(Handler({13, 0, 128, 11})), 0) << "a number that cannot be read";
  EXPECT_EQ(CVelumCodeScan::NumSlots(Handler({13, 255, 127, 12})), 32768);
  EXPECT_EQ(CVelumCodeScan::NumSlots(Handler({13, 9, 0, 16, 11})), 0) << "a slot that is computed";
  EXPECT_EQ(CVelumCodeScan::NumSlots(Handler({11, 31, 0, 0, 36, 0, 0})), 0) << "none at all";
  EXPECT_EQ(CVelumCodeScan::NumSlots(Handler({13, 1, 0, 11, 99, 13, 7, 0, 11})), 2) << "up to what is none";
  EXPECT_EQ(CVelumCodeScan::NumSlots(Handler({13, 1, 0, 11, 1, 11, 200, 13, 7, 0, 11})), 2);
  EXPECT_EQ(CVelumCodeScan::NumSlots(Handler({13, 1, 0, 11, 13, 7})), 2);
}

TEST_F(CVelumCodeScanTest, TellsWhatATextIsAppendedTo) {
  EXPECT_EQ(AppendsTo(u"s = s & 1"), 0);
  EXPECT_EQ(AppendsTo(u"x = 1\ns = s & 1 & x & Return & (x * 2) & Field \"a\" Of Card x & Number Of Cards"),
            1);
  EXPECT_EQ(AppendsTo(u"s = s & 1 & s"), -1) << "it is read meanwhile";
  EXPECT_EQ(AppendsTo(u"s = s & 1 & (1 & s)"), -1);
  EXPECT_EQ(AppendsTo(u"Answer s & 1 & 2"), -1) << "it is not stored";
  EXPECT_EQ(AppendsTo(u"s = s & 1 = 2"), -1) << "it is compared";
  EXPECT_EQ(AppendsTo(u"s = 1 + (s & 1)"), -1) << "it is the right side";
  EXPECT_EQ(AppendsTo(u"s = Not (s & 1)"), -1);
  EXPECT_EQ(AppendsTo(u"Put s & 1 Into Field 1"), -1);
  EXPECT_EQ(CVelumCodeScan::AppendsTo(Handler({}), 2), -1);
  EXPECT_EQ(CVelumCodeScan::AppendsTo(Handler({30, 2, 0, 13, 0, 0, 12}), 2), -1) << "a jump";
  EXPECT_EQ(CVelumCodeScan::AppendsTo(Handler({46, 13, 0, 0, 12}), 2), -1) << "it is dropped";
  EXPECT_EQ(CVelumCodeScan::AppendsTo(Handler({13, 0, 0, 16, 12}), 2), -1) << "stored who knows where";
  EXPECT_EQ(CVelumCodeScan::AppendsTo(Handler({41, 16, 11, 40, 13, 0, 0, 12}), 2), -1)
      << "who knows what is read";
}

} // namespace
