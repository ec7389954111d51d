// The window of the CSV settings in a test, as a user comes to it.
#pragma once

#include "core/CVelumMsg.h"
#include "exchange/CVelumCsvForm.h"
#include "shell/ShellTest.h"
#include "shell/dialogs/CVelumOptions.h"
#include "toolkit/CVelumListWidget.h"
#include "toolkit/CVelumWinMan.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTableWidget>
#include <QTest>

class CsvFormTest : public ShellTest {
protected:
  static QString Form() { return u"CVelumCsvImportOptions"_s; }
  // Chooses a file in the import window, so that the window of its settings opens.
  void OpenForm(const QByteArray& aCsv, bool aInto = false) {
    iPath = iFolder.Write(u"table.csv"_s, aCsv);
    Choose(u"fImport"_s);
    QWidget& form = *CVelumWinMan::NameToForm(u"CVelumImportOptions"_s)->Widget();
    if (form.findChild<QCheckBox*>(u"fIntoCurStack"_s)->isChecked() != aInto)
      form.findChild<QCheckBox*>(u"fIntoCurStack"_s)->click();
    form.findChild<QPushButton*>(u"fOkBut"_s)->click();
    ASSERT_TRUE(IsOpen());
  }
  // The same, and by the older rules.
  void OpenClassic(const QByteArray& aCsv, bool aInto = false) {
    OpenForm(aCsv, aInto);
    Press(u"fClassic"_s);
  }
  static bool IsOpen() { return CVelumWinMan::FormIsLoaded(Form()); }
  static bool ImportIsOpen() { return CVelumWinMan::FormIsLoaded(u"CVelumImportOptions"_s); }
  template <class T> static T& Find(const QString& aName) {
    return *CVelumWinMan::NameToForm(Form())->Widget()->findChild<T*>(aName);
  }
  static bool Checked(const QString& aName) { return Find<QAbstractButton>(aName).isChecked(); }
  static void Press(const QString& aName) { Find<QAbstractButton>(aName).click(); }
  // The titles of the preview, with the types.
  static QStringList Titles() {
    auto& box = Find<QTableWidget>(u"fPreviewBox"_s);
    QStringList titles;
    for (int i = 0; i < box.columnCount(); ++i) titles.append(box.horizontalHeaderItem(i)->text());
    return titles;
  }
  // What a click on the title of a column offers.
  static QMenu& TypeMenu(int aColumn) {
    QHeaderView& header = *Find<QTableWidget>(u"fPreviewBox"_s).horizontalHeader();
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                      QPoint(header.sectionViewportPosition(aColumn) + 8, header.height() / 2));
    return Find<QMenu>(u"fTypeMenu"_s);
  }
  static QStringList TypesOf(int aColumn) {
    QStringList types;
    QMenu& menu = TypeMenu(aColumn);
    EXPECT_TRUE(menu.isVisible());
    for (const QAction* action : menu.actions()) types.append(action->text());
    menu.close();
    return types;
  }
  static void ChooseType(int aColumn, int aEntry) {
    QMenu& menu = TypeMenu(aColumn);
    QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(menu.actions().at(aEntry)).center());
  }
  static QWidget& ReportForm() { return *CVelumWinMan::NameToForm(u"CVelumCsvReport"_s)->Widget(); }
  static QString ReportText() { return ReportForm().findChild<QPlainTextEdit*>(u"fReport"_s)->toPlainText(); }
  // The own values of all cards, a text each.
  static QStringList Values() {
    QStringList cards;
    Ref<CVelumCard> card;
    for (qint32 i = 0; gStack->GetNextCard(card, i);) {
      const Ref<CVelumControlSet> set = card->Background();
      QStringList values;
      for (qint32 c = 0; c < set->NumControls(); ++c) {
        const CVelumControl& field = *set->ControlAt(c);
        values.append(card->ControlValDef(field.Id())
                          ? CVelumCsvForms::PlainText(card->GetControlVal(field.Id(), false))
                          : u"-"_s);
      }
      cards.append(values.join(u'|'));
    }
    return cards;
  }
  static QString Cell(int aRow, int aColumn) {
    const QTableWidgetItem* item = Find<QTableWidget>(u"fPreviewBox"_s).item(aRow, aColumn);
    return item ? item->text() : u"(none)"_s;
  }
};
