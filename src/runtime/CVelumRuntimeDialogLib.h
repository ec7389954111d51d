// What dialogs have in common: filling lists from the model, and showing fonts.
#pragma once

#include "model/CVelumStack.h"
#include "runtime/lists/CVelumListBox.h"

class QLabel;
class QLineEdit;

namespace CVelumDialogLib {

// Each of these replaces the lines of aList and shows it. Where aFirst is a parameter it stands first,
// without an object, unless it is empty; the other lines carry theirs.

// All backgrounds but aExclude (may be null) by name. Without a stack the one line "(No stack available)".
void FillBackgroundList(CVelumListBox& aList, const CVelumStack* aStack, const QString& aFirst,
                        const CVelumObject* aExclude);
// The same without a first line. The background that was selected stays so; otherwise the first one is.
void RefillBackgroundList(CVelumListBox& aList, const CVelumStack* aStack, const CVelumObject* aExclude);
// Selects the background of the card on show, or else the first line.
void SelectCurBackground(CVelumListBox& aList);
// The fields and commands of a background (nothing: none) by name, with aWithType also by type, and with
// aOnlyCombo only those that can be part of a combo box.
void FillControlList(CVelumListBox& aList, const CVelumControlSet* aSet, const QString& aFirst,
                     bool aWithType, bool aOnlyCombo);
// The sort keys of a background (nothing: none) by name.
void FillSortKeyList(CVelumListBox& aList, const CVelumControlSet* aSet, const QString& aFirst);
// The cards of a background but aExclude (may be null) in order by name; made as they are seen.
void FillCardList(CVelumListBox& aList, const CVelumControlSet& aSet, const CVelumObject* aExclude = nullptr);
// The line of a type stands at its number.
void FillTypeCombo(CVelumListBox& aList);
// The line of a standard command stands one below its EStdCmd; none stands first.
void FillStdCmdCombo(CVelumListBox& aList);

// Says that a field must not be changed.
void TellReadOnly();

// Shows a font; nothing empties both boxes and unsets the colour.
void ShowFont(const CVelumFont* aFont, QLineEdit& aNameBox, QLineEdit& aSizeBox, QLabel& aColorBox);

// The ids of controls that a comma list names, at most 21 (host error 9 beyond); nothing for an empty list.
// Asserts "ControlNameListToArray control found"; such a name is left out when that is overruled.
[[nodiscard]] Ref<CVelumArray> ControlNameListToArray(const QString& aNames, const CVelumControlSet& aSet);
// The reverse. Asserts "ArrayToControlNameList control found"; such an id is left out when that is overruled.
[[nodiscard]] QString ArrayToControlNameList(const CVelumArray* aArray, const CVelumControlSet& aSet);

} // namespace CVelumDialogLib
