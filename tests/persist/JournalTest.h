// A document of plain bytes, and saves of it that are cut off.
#pragma once

#include "core/file/CVelumFile.h"
#include "persist/CVelumJournal.h"
#include "persist/CVelumRecovery.h"
#include "support/PrintQt.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <QFile>

#include <fcntl.h>

class JournalTest : public testing::Test {
protected:
  // Bytes that differ from place to place.
  static QByteArray Pattern(qsizetype aLen, int aSeed = 7) {
    QByteArray bytes;
    bytes.reserve(aLen);
    for (qsizetype i = 0; i < aLen; ++i) bytes.append(static_cast<char>(i * aSeed / 3 + i / 512));
    return bytes;
  }
  void Begin(const QByteArray& aOld) {
    iOld = aOld;
    iFolder.Write(u"d"_s, aOld);
  }
  // A save of aNew over the document that is cut off with the journal complete and nothing of the document
  // touched.
  void CutOff(const QByteArray& aNew) {
    int fd = CVelumOs::Open(iPath, O_RDWR);
    {
      CVelumJournal journal(iPath, fd);
      journal.Write(*PatchTo(fd, aNew));
      iJournal = iFolder.Read(u"d-journal"_s);
    }
    CVelumOs::Close(fd);
    iFolder.Write(u"d-journal"_s, iJournal);
  }
  Ref<CVelumFilePatch> PatchTo(int aFd, const QByteArray& aNew) {
    auto patch = MakeRef<CVelumFilePatch>(CVelumOs::IdOf(aFd).iSize);
    patch->WriteAt(aFd, iPath, aNew.constData(), aNew.size(), 0);
    patch->SetSize(aNew.size());
    return patch;
  }
  // What the disk holds when the next one opens the document.
  CVelumRecovery::EFound RunOn(const QByteArray& aDoc) {
    iFolder.Write(u"d"_s, aDoc);
    iFolder.Write(u"d-journal"_s, iJournal);
    return CVelumRecovery::Run(iPath);
  }
  QByteArray Doc() const { return iFolder.Read(u"d"_s); }
  bool HasJournal() const { return iFolder.Has(u"d-journal"_s); }

  TempFolder iFolder;
  QString iPath = iFolder.Path(u"d"_s);
  QByteArray iOld;
  QByteArray iJournal;
};
