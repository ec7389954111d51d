// The window that edits the source of a wiki text.
#pragma once

#include "model/CVelumCard.h"
#include "toolkit/CVelumDialogForm.h"

#include <memory>

class CVelumBaseRichTextBox;

namespace Ui {
class CVelumWikiTextEdit;
}

// Shows and stores the text of any field whose control is a rich text box. A read-only field is only shown.
class CVelumWikiTextEdit final : public CVelumDialogForm {
  Q_OBJECT

public:
  CVelumWikiTextEdit();
  ~CVelumWikiTextEdit() override;
  // Takes the value of a field. While another field's changed text is neither saved nor cancelled, that
  // stays.
  void SetObj(const Ref<CVelumCard>& aCard, const Ref<CVelumControl>& aControl);
  void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) override;
  [[nodiscard]] bool HasEntries() const override { return Changed(); }
  void DropEntries() override;
  void Unload() override;

private:
  [[nodiscard]] bool Changed() const;
  // Whether card and field are still those of the open stack.
  [[nodiscard]] bool IsThere() const;
  // Makes the selection a link; a blank at its end stays outside.
  void SelToLink();
  void Save();

  std::unique_ptr<Ui::CVelumWikiTextEdit> iUi;
  CVelumBaseRichTextBox* fWikiText;
  Ref<CVelumCard> iCard;
  Ref<CVelumControl> iControl;
  QString iStored; // the text that SetObj found
};
