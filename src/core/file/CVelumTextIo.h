// Lines of bytes from and to a text file, below CVelumFile.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

// Cuts the bytes of a descriptor into lines. A line ends at CR or CR LF, and at LF alone too if that is how
// the first line of the file ends.
class CVelumTextReader {
public:
  CVelumTextReader(int aFd, QString aPath) : iFd(aFd), iPath(std::move(aPath)) {}
  // False at the end of the file, where aLine stays as it is. The line's end is not part of it. The bytes
  // stay where they are until the next call. Host error 7, with the number of the line, for one of more than
  // 64 MB.
  [[nodiscard]] bool ReadLine(QByteArrayView& aLine);
  // Whether the next line is the first one.
  [[nodiscard]] bool AtStart() const { return iLines == 0; }

private:
  // Reads more bytes behind those not yet used; false at the end of the file.
  bool Fill();
  // Place of the next line end at or behind aFrom, or -1 when none has been read yet.
  [[nodiscard]] qsizetype FindEnd(qsizetype aFrom);
  [[nodiscard]] QByteArrayView Take(qsizetype aEnd);

  int iFd;
  QString iPath;
  QByteArray iBuf;
  qsizetype iPos = 0;  // first byte not yet used
  qint64 iLines = 0;   // that have been taken, but for a last one without an end, behind which nothing comes
  bool iAtEnd = false; // the system has no more
  bool iFirstEnd = true; // no line end has been seen yet
  bool iLfEnds = false;  // LF alone ends a line
};

// Collects lines, and writes them in large pieces.
class CVelumTextWriter {
public:
  CVelumTextWriter(int aFd, QString aPath) : iFd(aFd), iPath(std::move(aPath)) {}
  // Adds aLine and CR LF.
  void WriteLine(QByteArrayView aLine);
  // Hands all collected bytes to the system; they are gone from here also when that fails.
  void Flush();

private:
  int iFd;
  QString iPath;
  QByteArray iBuf;
  qint64 iAhead = 0; // bytes written since the disk was last set to work
};
