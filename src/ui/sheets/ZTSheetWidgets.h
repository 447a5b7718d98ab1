#pragma once

#include "model/ZTDateBit.h"

#include <QDateTime>
#include <QLineEdit>
#include <QToolButton>
#include <QWidget>

#include <functional>

class QCompleter;
class QLabel;
class QMimeData;
class QPushButton;

// The small controls the edit sheets share.

// Zero to five stars. Clicking a star sets it; clicking the chosen star again
// clears the rating. Left/Right and the digits 0-5 work from the keyboard.
class ZTRatingControl : public QWidget {
    Q_OBJECT
public:
    explicit ZTRatingControl(QWidget *parent = nullptr);
    int rating() const { return m_rating; }
    void setRating(int rating);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    void ratingEdited(int rating);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void edit(int rating);
    int m_rating = 0;
};

// A date whose known parts are chosen by a click on its format button, which
// walks full date, year and month, year. Without a bit button (lending dates)
// the date is always a full date.
class ZTPartialDateField : public QWidget {
    Q_OBJECT
public:
    enum class Precision { Partial, FullOnly };
    explicit ZTPartialDateField(Precision precision, QWidget *parent = nullptr);

    void setDate(const QDateTime &date, ZTDateBit bit);
    // Invalid when the field is blank or does not read as a date.
    QDateTime date() const;
    ZTDateBit dateBit() const { return m_bit; }
    bool isBlank() const;
    QLineEdit *lineEdit() const { return m_edit; }
    QToolButton *formatButton() const { return m_button; }
    // What a click on the format button does.
    void setDateBit(ZTDateBit bit);
    void setPlaceholderText(const QString &text) { m_edit->setPlaceholderText(text); }

Q_SIGNALS:
    // The text or the bit changed by the user.
    void dateEdited();

private:
    QDateTime parsed() const;
    QLineEdit *m_edit;
    QToolButton *m_button;
    ZTDateBit m_bit;
    QDateTime m_known;
};

// A price with its currency button; the button's menu offers every currency.
class ZTPriceField : public QWidget {
    Q_OBJECT
public:
    explicit ZTPriceField(QWidget *parent = nullptr);
    void setPrice(const QVariant &price, const QString &currency);
    // Nothing for a blank field; the text read with the currency's formatter.
    QVariant price() const;
    QString currency() const { return m_currency; }
    QLineEdit *lineEdit() const { return m_edit; }
    QToolButton *currencyButton() const { return m_button; }
    void chooseCurrency(const QString &code);

Q_SIGNALS:
    void priceEdited();
    void currencyChosen(const QString &code);

private:
    QLineEdit *m_edit;
    QToolButton *m_button;
    QString m_currency;
};

// The cover well: drop or paste a picture, choose a file, or remove it.
class ZTCoverWell : public QWidget {
    Q_OBJECT
public:
    explicit ZTCoverWell(QWidget *parent = nullptr);
    void showImage(const QImage &image);
    QImage image() const { return m_image; }
    // Takes a picture from dropped or pasted data: image data, or a local file.
    bool takeMimeData(const QMimeData *data);
    // Reads a picture file; false when it is no picture.
    bool takeFile(const QString &path);
    QPushButton *chooseButton() const { return m_choose; }
    QPushButton *removeButton() const { return m_remove; }

Q_SIGNALS:
    // A new picture by the user, with its raw bytes and type ("PNG", "JPEG" …).
    void imageChosen(const QImage &image, const QByteArray &bytes, const QString &type);
    void imageRemoved();

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    bool takeBytes(const QByteArray &bytes);
    QLabel *m_picture;
    QPushButton *m_choose;
    QPushButton *m_remove;
    QImage m_image;
};

namespace ZTSheetWidgets {
// A completer over the values of one cache key. `separated` completes the
// last entry of a comma-separated list (keywords).
enum class Completion { Whole, LastOfList };
QCompleter *completerForValues(const QStringList &values, QObject *parent,
                               Completion completion = Completion::Whole);
// A sheet's warning alert; tests put a hook in its place to read what it says.
using Warning = std::function<void(const QString &title, const QString &message)>;
// Calls the hook when there is one, else shows a window-modal warning on parent.
void warn(const Warning &hook, QWidget *parent, const QString &title, const QString &message);
// "a, b, c" and back, trimmed, blanks dropped.
QStringList splitList(const QString &text);
QString joinList(const QStringList &list);
} // namespace ZTSheetWidgets
