// A rollback journal that is found beside a document.
#pragma once

#include "core/file/CVelumFilePatch.h"

#include <QByteArray>
#include <QCryptographicHash>

// The layout of the file: see CVelumJournal. A journal of another version of the program is host error 70.
class CVelumJournalReader {
public:
  // aFd is open for reading, aPath its name for failures. All members raise when the disk fails.
  CVelumJournalReader(int aFd, QString aPath) : iFd(aFd), iPath(std::move(aPath)) {}

  // Whether the journal was written to its end. Otherwise its save had not touched the document, and none of
  // the other members may be called.
  [[nodiscard]] bool IsWhole();

  // What a document has to do with the journal.
  enum class EFit {
    Complete, // its save wrote all there was
    CutOff,   // its save was cut off: PutBack and OldBytes give the old document
    Doubt     // something else has changed it since, or it is another document
  };
  [[nodiscard]] EFit Compare(int aDoc, const QString& aDocPath);
  // Makes the document the old one, and brings that to the disk. Doing it again changes nothing.
  void PutBack(int aDoc, const QString& aDocPath);
  // The same in memory, for a document that is read with CVelumFile::SetPatch.
  [[nodiscard]] Ref<CVelumFilePatch> OldBytes(int aDoc, const QString& aDocPath);

private:
  // Bytes of one block that all lie before or all behind the end of the old, and of the new, document.
  struct TPiece {
    qint64 iPos = 0;
    QByteArray iOld;    // none behind the old end
    qint64 iNewLen = 0; // 0 behind the new end
    QByteArray iNewSum; // of the new bytes
  };

  [[nodiscard]] QByteArray Take(qint64 aLen);
  [[nodiscard]] bool Begin();
  [[nodiscard]] bool Next(TPiece& aPiece);
  void Compare(const TPiece& aPiece, int aDoc, const QString& aDocPath, bool& aAllNew, bool& aFits) const;

  int iFd;
  QString iPath;
  qint64 iOldLen = 0; // of the document
  qint64 iNewLen = 0;
  qint64 iPos = 0; // in the journal, of what stands behind iBuf
  QByteArray iBuf;
  qsizetype iBufPos = 0; // first byte of iBuf not yet taken
  bool iAtEnd = false;   // the end mark was met
  bool iSumming = false;
  QCryptographicHash iSum{QCryptographicHash::Md5}; // of all that was taken, when iSumming
};
