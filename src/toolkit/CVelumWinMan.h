// The windows by name: making and finding them, their places, and the broadcast of changes.
//
// How a dialog takes part:
// - its class derives from CVelumDialogForm and hands its name, one of those that InitWinMan registers, to
//   the constructor, with the size of its design; its entries come from a form of the same name;
// - the room says how it is made: a SetFactory in CVelumShellForms::Register (or CVelumLib::InitRuntime);
// - Load calls CVelumDialogForm::Load, which restores the place, then fills the lists and shows the model;
// - ChangeNotify answers the kinds that concern it. Kind 7 must end in UnloadForm(*this), for the stack that
//   the dialog shows goes right after it;
// - Unload calls CVelumDialogForm::Unload, which keeps the place, and clears what the dialog held.
// Whoever wants it shown calls ShowDialog(*NameToForm(name)) and then the dialog's own operation. A dialog
// that changes the model calls CVelumSeams::ChangeNotify and refreshes by its own ChangeNotify, like all
// others.
#pragma once

#include "toolkit/CVelumForm.h"

#include <functional>

namespace CVelumWinMan {

// Makes the one instance of a form; it belongs to the window manager until it is unloaded.
using TVelumFormFactory = std::function<CVelumForm*()>;

// Registers the names of the 24 windows, and takes the change notifications of the model from now on. Safe
// to call again.
void InitWinMan();
// Host error 9 when the table of 31 names is full.
void RegisterFormName(const QString& aName);
[[nodiscard]] int FormCount();
// Host error 9 outside 0 to FormCount() - 1.
[[nodiscard]] const QString& FormName(int aIndex);
// Says how the form of a registered name is made. The owner of a form's class calls this at start.
void SetFactory(const QString& aName, TVelumFormFactory aFactory);

// Whether NameToForm can make that form.
[[nodiscard]] bool HasForm(const QString& aName);

// The one instance of a form, made on first use (but not loaded). Asserts "NameToForm name " and the name
// for a name that has no form; nothing after that, and for a form of the table that has no factory.
[[nodiscard]] CVelumForm* NameToForm(const QString& aName);
// Whether the form's name stands in the table.
[[nodiscard]] bool IsKnownForm(const CVelumForm& aForm);
[[nodiscard]] bool IsFrame(const CVelumForm& aForm);
// The main window when it is loaded, otherwise nothing.
[[nodiscard]] CVelumForm* Frame();
[[nodiscard]] bool FormIsLoaded(const QString& aName);
[[nodiscard]] QList<CVelumForm*> LoadedForms();

// Runs Load once per life of the form. A form that is loaded gets the notifications.
void LoadForm(CVelumForm& aForm);
// Runs Unload, hides the window and deletes it when control is back in the event loop.
void UnloadForm(CVelumForm& aForm);
// Called by the destructor of a form.
void Forget(CVelumForm& aForm);
// Loads and shows the form and brings it to the front. A modal one must be a QDialog; the call then returns
// when it is closed. With an owner the form stays above it.
void ShowDialog(CVelumForm& aForm, bool aModal = false, QWidget* aOwner = nullptr);

// Tells every loaded form of the table, in the order in which they were loaded; paints before and after
// each. Forms may be unloaded meanwhile.
void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2);

// Keeps the form's place under its name in the section "Windows".
void SaveWindow(CVelumForm& aForm);
// Puts the form where it was, and back onto the screen if that has become smaller. Without a sound stored
// place only the frame is moved, to a default place.
void RestoreWindow(CVelumForm& aForm);
// Moves the form to aRect (twips); only the frame and sizable forms take the size. A left or top edge beyond
// the screen (for other forms: beyond the size of the frame) becomes 0.
void SetFormRect(CVelumForm& aForm, const QRectF& aRect);

} // namespace CVelumWinMan
