// What lower rooms need from higher ones, turned round: the higher room fills these in.
#pragma once

#include "core/CVelumObject.h"

// Message classes, with the picture and the buttons that go with them.
enum EMsgClass : qint32 { EMsgCritical = 0, EMsgExclamation = 1, EMsgQuestion = 2, EMsgInfo = 3 };

// Asks or tells the user. The shell shows windows, the command-line tool writes to the terminal, tests
// script the answers.
class CVelumPresenter {
public:
  virtual ~CVelumPresenter() = default;
  // Shows a finished message; aName is its constant's name. Returns true exactly for an answered yes.
  virtual bool Message(qint32 aMsg, EMsgClass aClass, const QString& aName, const QString& aText) = 0;
  // A plain box with nothing but a text.
  virtual void Tell(const QString& aText) = 0;
  // Asks for one of several things, each named by a text; the index of the one that was chosen, -1 for none.
  virtual int Choose(const QString& aText, const QStringList& aChoices) {
    static_cast<void>(aText);
    static_cast<void>(aChoices);
    return -1;
  }
  // The same for what a running script answers; true when the user wants the script to stop.
  [[nodiscard]] virtual bool Answer(const QString& aText) {
    Tell(aText);
    return false;
  }
  // Opens a page of the help by its name (without ending).
  virtual void HelpPage(const QString& aPage) = 0;
  // Progress of a running script: a count of steps; 0 means none runs.
  virtual void ScriptProgress(int aSteps) { static_cast<void>(aSteps); }
};

// The kinds of change that ChangeNotify tells of, and what its two objects are (nothing where none is named).
enum EChange : int {
  EChangeStack = 0,          // a stack was opened or has a new name
  EChangeStructure = 1,      // backgrounds, controls or properties of the stack
  EChangeValues = 2,         // values of fields, across cards
  EChangeCards = 3,          // cards came, went or have other settings
  EChangeSortKeys = 4,       // the list of sort keys
  EChangeOrder = 5,          // the order of the cards
  EChangeBackgroundGoes = 6, // a background, the first object, is about to be deleted
  EChangeStackCloses = 7,    // the stack is about to close: windows that show it go
  EChangeStackClosed = 8,    // no stack is open
  EChangeCardGoes = 9,       // a card, the second object, is about to be deleted
};

// Takes the change notifications of the model; aKind is an EChange.
class CVelumChangeSink {
public:
  virtual ~CVelumChangeSink() = default;
  virtual void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) = 0;
};

// Hears of the commands of the user (CVelumError::CCommand), nested ones too.
class CVelumCommandWatch {
public:
  virtual ~CVelumCommandWatch() = default;
  virtual void CommandBegun(const QString& aName) = 0;
  virtual void CommandEnded() = 0;
};

// Lets pending window events run, and shows the wait cursor.
class CVelumEventPump {
public:
  virtual ~CVelumEventPump() = default;
  // All pending events.
  virtual void Pump() = 0;
  // Only paints and timers of the toolkit, no commands: for yields while something is half done.
  virtual void PumpPaint() { Pump(); }
  virtual void SetWaitCursor(bool aOn) { static_cast<void>(aOn); }
};

// Layout metrics in twips (15 to a logical pixel).
struct TVelumMetrics {
  float iCharHeight = 195.0F;
  float iLabelWidth = 120.0F;
  float iAvgCharWidth = 105.0F;
  float iFieldGapX = 130.0F;
  float iFieldGapY = 50.0F;
  float iCardMarginX = 100.0F;
  float iCardMarginY = 20.0F;
};

// What a conversion needs to know of a field.
struct TVelumFieldInfo {
  qint32 iConType = 0;    // ECon...
  qint16 iDigits = 31999; // decimal places of a Real; ENoShort when unset
};

// Order of the strings of an array with EArrSortKey.
class CVelumKeyOrder : public CVelumStored {
public:
  [[nodiscard]] virtual qint32 Id() const = 0;
  // 0 when aKey1 sorts before aKey2, 1 when equal, 2 when after.
  [[nodiscard]] virtual int Compare(const QString& aKey1, const QString& aKey2) const = 0;
};

// Makes an empty stored object for a value tag of 100 to 105, or nothing for a tag it does not know.
using TVelumObjectFactory = Ref<CVelumStored> (*)(int aTag);

namespace CVelumSeams {

// The installed parts. Setting nothing puts the silent default back (Message answers no). The callers keep
// what they install alive.
[[nodiscard]] CVelumPresenter& Presenter();
void SetPresenter(CVelumPresenter* aPresenter);
[[nodiscard]] CVelumEventPump& EventPump();
void SetEventPump(CVelumEventPump* aPump);
// Tells the installed change sink, if any; aKind is an EChange.
void ChangeNotify(int aKind, CVelumObject* aObj1 = nullptr, CVelumObject* aObj2 = nullptr);
void SetChangeSink(CVelumChangeSink* aSink);
// Tells the installed watch of commands, if any. A watch that comes while a command is open hears of its end
// only.
void CommandBegun(const QString& aName);
void CommandEnded();
void SetCommandWatch(CVelumCommandWatch* aWatch);
[[nodiscard]] const TVelumMetrics& Metrics();
void SetMetrics(const TVelumMetrics& aMetrics);
// The factory for objects in arrays; the model installs it once (see CVelumModel::Install).
[[nodiscard]] Ref<CVelumStored> NewObject(int aTag);
void SetObjectFactory(TVelumObjectFactory aFactory);

} // namespace CVelumSeams
