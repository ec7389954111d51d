#include "support/TestTree.h"

QString TestTree::Data() {
  return QStringLiteral(ORVELLES_TEST_DATA);
}

QString TestTree::Source() {
  return QStringLiteral(ORVELLES_SOURCE);
}
