// The full-text search of the help.
#pragma once

#include "core/CVelumObject.h"

#include <QHelpSearchEngine>
#include <QObject>

// Finds the pages that hold all words of a text; of the last word its beginning is enough. The words of the
// pages are collected in the background when that has not been done before; a search asked for meanwhile is
// done again.
class CVelumHelpSearch final : public QObject {
  Q_OBJECT

public:
  // The engine must outlive this object.
  explicit CVelumHelpSearch(QHelpSearchEngine& aEngine);
  // Waits for the search that runs.
  ~CVelumHelpSearch() override;

  void Search(const QString& aText);

Q_SIGNALS:
  // The best pages first. None for a text without words.
  void Found(const QList<QHelpSearchResult>& aPages);

private:
  void Start();
  void Finish(int aCount);

  QHelpSearchEngine& iEngine;
  QString iTerms;
  bool iRunning = false;
};
