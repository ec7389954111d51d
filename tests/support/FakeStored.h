// A base for stored objects of tests that no file will ever hold.
#pragma once

#include "core/CVelumObject.h"

class FakeStored : public CVelumStored {
public:
  void Internalize(CVelumFile&) override {}
  void Externalize(CVelumFile&) override {}
  [[nodiscard]] qint64 ExtLen() const override { return 0; }
  [[nodiscard]] QStringView XmlTag() const override { return u"Fake"; }
  void InternalizeXml(CVelumXmlParser&) override {}
  void ExternalizeXml(CVelumXmlWriter&) override {}
};
