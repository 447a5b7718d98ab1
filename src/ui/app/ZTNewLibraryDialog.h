#pragma once

#include "model/ZTMediaKind.h"

#include <QDialog>

class QListWidget;

// "New Library": the user picks the kind; the save panel then asks for the
// package path with only that kind's extension. The dialog also offers to open
// an existing library or the sample library, so a first start is never a
// dead end.
class ZTNewLibraryDialog : public QDialog {
    Q_OBJECT
public:
    enum Outcome { Cancelled, Create, Open, Sample };

    explicit ZTNewLibraryDialog(QWidget *parent = nullptr);
    ZTMediaKind selectedKind() const;
    void selectKind(ZTMediaKind kind);
    Outcome outcome() const { return m_outcome; }
    QListWidget *choices() const { return m_choices; }

    // "ztbooklib" … for the tag of a choice (0 to 3); empty for any other tag.
    static QString extensionForTag(int tag);
    // The path with the kind's extension, added when missing.
    static QString pathWithExtension(const QString &path, ZTMediaKind kind);

private:
    QListWidget *m_choices = nullptr;
    Outcome m_outcome = Cancelled;
};
