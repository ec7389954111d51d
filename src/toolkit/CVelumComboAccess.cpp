#include "toolkit/CVelumComboAccess.h"

#include "core/CVelumObject.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QKeySequence>
#include <QLineEdit>

namespace {

// The toolkit asks for each class of a widget, from its own one up.
QAccessibleInterface* Make(const QString& aClass, QObject* aObject) {
  auto* combo = aClass == u"QComboBox" ? qobject_cast<QComboBox*>(aObject) : nullptr;
  return combo ? new CVelumComboAccess(*combo) : nullptr;
}

} // namespace

CVelumComboAccess::CVelumComboAccess(QComboBox& aCombo) : QAccessibleWidget(&aCombo, QAccessible::ComboBox) {
  QObject::connect(&aCombo, &QComboBox::currentTextChanged, &aCombo, [combo = &aCombo] {
    QAccessibleEvent event(combo, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&event);
  });
}

void CVelumComboAccess::Install() {
  QAccessible::installFactory(Make);
}

QComboBox& CVelumComboAccess::Combo() const {
  return *static_cast<QComboBox*>(object());
}

QString CVelumComboAccess::text(QAccessible::Text aText) const {
  const QString said = aText == QAccessible::Value ? QString() : QAccessibleWidget::text(aText);
  const bool shown =
      aText == QAccessible::Value || aText == QAccessible::Name || aText == QAccessible::Description;
  return said.isEmpty() && shown ? Combo().currentText() : said;
}

QAccessible::State CVelumComboAccess::state() const {
  QAccessible::State state = QAccessibleWidget::state();
  state.expandable = true;
  state.expanded = Combo().view()->isVisible();
  state.editable = Combo().isEditable();
  return state;
}

int CVelumComboAccess::childCount() const {
  return Combo().isEditable() ? 2 : 1;
}

QAccessibleInterface* CVelumComboAccess::child(int aIndex) const {
  if (aIndex == 0) return QAccessible::queryAccessibleInterface(Combo().view());
  const bool isEntry = aIndex == 1 && Combo().isEditable();
  return isEntry ? QAccessible::queryAccessibleInterface(Combo().lineEdit()) : nullptr;
}

QAccessibleInterface* CVelumComboAccess::childAt(int aX, int aY) const {
  return Combo().isEditable() && rect().contains(aX, aY) ? child(1) : nullptr;
}

int CVelumComboAccess::indexOfChild(const QAccessibleInterface* aChild) const {
  if (Combo().view() == aChild->object()) return 0;
  return Combo().isEditable() && Combo().lineEdit() == aChild->object() ? 1 : -1;
}

QStringList CVelumComboAccess::actionNames() const {
  return {showMenuAction(), pressAction()};
}

void CVelumComboAccess::doAction(const QString& aName) {
  if (!actionNames().contains(aName)) return;
  if (Combo().view()->isVisible())
    Combo().hidePopup();
  else
    Combo().showPopup();
}

QStringList CVelumComboAccess::keyBindingsForAction(const QString& aName) const {
  if (!actionNames().contains(aName)) return {};
  return {QKeySequence(Qt::ALT | Qt::Key_Down).toString()};
}
