// The view state of each file the editor has shown (selection, bookmarks, folded blocks), kept
// as the control's extra info record in the user's data directory, one file per document named
// after a hash of its absolute path. Each record carries the size and modification time the
// document had when the record was written; a document changed since then gets no state back,
// since the record's positions would point into other text.
#pragma once
#include <QString>

class CZentrelCtrl;

class CViewStates {
public:
    // Records under `directory`, which is made when the first record is written.
    explicit CViewStates(QString directory);
    // The folder in the user's data directory (the application's data location).
    static QString DefaultDirectory();

    // Writes the view's state for the document at `path`, which must hold what the view shows.
    bool Save(CZentrelCtrl& ctrl, const QString& path) const;
    // Gives the view the state saved for `path` if the file is the one it was saved with and
    // the record loads; false, with the view as it was, otherwise.
    bool Restore(CZentrelCtrl& ctrl, const QString& path) const;
    // Where the record of `path` lives.
    QString RecordFile(const QString& path) const;

private:
    QString m_directory;
};
