// What the commands of the main window ask of the editors, each of which is its window besides. An editor
// implements the class of its kind and is found by its name in the window manager; it is shown first.
#pragma once

#include "model/CVelumCard.h"
#include "model/fields/CVelumControlSet.h"

// "CVelumBackgroundEdit"
class CVelumBackgroundEditor {
public:
  virtual ~CVelumBackgroundEditor() = default;
  // Chooses the background, ready for changes.
  virtual void SetAndShowBackground(const Ref<CVelumControlSet>& aSet) = 0;
};

// "CVelumControlEdit"
class CVelumControlEditor {
public:
  virtual ~CVelumControlEditor() = default;
  // Chooses the background, whose fields are then listed.
  virtual void SetAndShowBackground(const Ref<CVelumControlSet>& aSet) = 0;
  // Chooses the background and one of its fields, ready for changes.
  virtual void SetAndShowControl(const Ref<CVelumControlSet>& aSet, const Ref<CVelumControl>& aControl) = 0;
};

// "CVelumCardEdit"
class CVelumCardEditor {
public:
  virtual ~CVelumCardEditor() = default;
  // Chooses the card and its background, ready for changes.
  virtual void SetAndShowCard(const Ref<CVelumCard>& aCard) = 0;
  // Ready for a new card of the background.
  virtual void NewCard(const Ref<CVelumControlSet>& aSet) = 0;
};
