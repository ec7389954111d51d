// One change of a document as a value: it knows what was and what is, can be taken back and made again, and
// has a form in bytes.
#pragma once

#include "core/TVelumValue.h"
#include "core/file/CVelumFile.h"

#include <memory>

class CVelumReplay;

// Kinds of changes, as they stand in stored changes.
enum EChangeForm : quint8 {
  EFormMember = 1,
  EFormValue = 2,
  EFormKey = 3,
  EFormKeyBulk = 4,
  EFormOrder = 5,
  EFormOrderAll = 6,
  EFormCard = 7,
  EFormChild = 8,
  EFormGap = 9,
};

// Changes are replayed in the order in which they were made, and taken back in the reverse one; each finds
// the document as it left it. Replay is raw: what follows from a change was recorded as changes of its own.
class CVelumChange {
public:
  CVelumChange() = default;
  virtual ~CVelumChange() = default;
  CVelumChange(const CVelumChange&) = delete;
  CVelumChange& operator=(const CVelumChange&) = delete;

  [[nodiscard]] virtual EChangeForm Form() const = 0;
  // Makes the change again, or takes it back. False if the document is not as the change left it: nothing is
  // changed then.
  [[nodiscard]] virtual bool Apply(CVelumReplay& aReplay) = 0;
  [[nodiscard]] virtual bool Revert(CVelumReplay& aReplay) = 0;
  // Bytes of memory that it holds, roughly: what counts towards the bound of undo.
  [[nodiscard]] virtual qint64 Cost() const = 0;

  // The bytes: form, then what the class writes.
  void Write(CVelumFile& aFile) const;
  // Raises EMsgBadStruct for what is no change.
  [[nodiscard]] static std::unique_ptr<CVelumChange> Read(CVelumFile& aFile);

protected:
  virtual void WriteBody(CVelumFile& aFile) const = 0;
  virtual void ReadBody(CVelumFile& aFile) = 0;
};

using TChanges = std::vector<std::unique_ptr<CVelumChange>>;

// Pieces of which changes are written. Readers check each length against what is left of the file, and raise
// EMsgBadStruct.
namespace CVelumChangeIo {

// Any text, also one that a stack file could not hold.
void WriteText(CVelumFile& aFile, const QString& aText);
[[nodiscard]] QString ReadText(CVelumFile& aFile);
void WriteBlock(CVelumFile& aFile, const QByteArray& aBytes);
[[nodiscard]] QByteArray ReadBlock(CVelumFile& aFile);
// An empty file in memory, for reading and writing.
[[nodiscard]] Ref<CVelumFile> NewMemoryFile();
// The same on the disk, in the folder for temporary files.
[[nodiscard]] Ref<CVelumFile> NewUnnamedFile();
// A value that holds no object.
void WriteValue(CVelumFile& aFile, const TVelumValue& aVal);
[[nodiscard]] TVelumValue ReadValue(CVelumFile& aFile);
void WriteIds(CVelumFile& aFile, const std::vector<qint32>& aIds);
[[nodiscard]] std::vector<qint32> ReadIds(CVelumFile& aFile);
// A count of things that take at least aEach bytes.
[[nodiscard]] qint32 ReadCount(CVelumFile& aFile, qint64 aEach);
// Raises EMsgBadStruct unless aOk.
void Require(bool aOk, const QString& aWhat);
// What a text or a value holds beside its own size.
[[nodiscard]] qint64 CostOf(const QString& aText);
[[nodiscard]] qint64 CostOf(const TVelumValue& aVal);

} // namespace CVelumChangeIo
