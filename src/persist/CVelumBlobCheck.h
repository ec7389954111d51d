// Verifies the blobs of a stack: places, content, ids, references.
#pragma once

#include "model/CVelumStack.h"

#include <QHash>
#include <QList>
#include <QStringList>

class CVelumBlobCheck {
public:
  // The stack must live as long as the check.
  explicit CVelumBlobCheck(CVelumStack& aStack);

  // The ids of all blobs of the store.
  [[nodiscard]] QList<qint32> Ids() const;
  // A line of text per problem. Reads every blob whole, one after the other, without filling the cache.
  [[nodiscard]] QStringList Run();

private:
  // What is kept of a blob after it was read.
  struct TFacts {
    qint32 iOriginalId;
    qint32 iSampleId;
    qint32 iRefCount;
  };

  void Add(const QString& aProblem) { iProblems.append(aProblem); }
  void CheckPlaces();
  void ReadBlobs();
  void ReadBlob(qint32 aId, qint32 aPlace);
  [[nodiscard]] Ref<CVelumBlob> ReadFrom(qint32 aId, qint32 aPlace);
  void CountReferences();
  void CountReference(qint32 aBlobId, const QString& aFrom);
  void CheckPairs();
  void CheckCounts();

  CVelumStack& iStack;
  Ref<CVelumBlobStore> iStore;
  Ref<CVelumFile> iFile; // opened when the first blob on file is read
  QStringList iProblems;
  QHash<qint32, TFacts> iFacts;
  QHash<qint32, qint32> iRefs; // blob id to the references that were found
};
