#include "runtime/CVelumIcons.h"

#include "toolkit/CVelumSvgIcon.h"

#include <QHash>

// Resources of a static library need this call, and the macro stands outside of namespaces.
static void InitIcons() {
  Q_INIT_RESOURCE(icons);
}

namespace {

const QString EAppKey = u"Orvelles"_s;

QIcon Cached(const QString& aKey) {
  static QHash<QString, QIcon> icons;
  if (icons.isEmpty()) InitIcons();
  auto it = icons.find(aKey);
  if (it == icons.end()) it = icons.insert(aKey, CVelumSvgIcon::Load(u":/icons/%1.svg"_s.arg(aKey)));
  return *it;
}

} // namespace

QIcon CVelumIcons::Icon(const QString& aKey) {
  return aKey == EAppKey ? QIcon() : Cached(aKey);
}

QIcon CVelumIcons::AppIcon() {
  return Cached(EAppKey);
}
