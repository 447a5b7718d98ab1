#pragma once

#include <QWidget>

class QComboBox;
class QLineEdit;
class QStackedWidget;
class QToolButton;
class ZTRatingControl;
class ZTSmartListEntryController;

// One rule row of the smart-list editor: the attribute and operator pop-ups,
// the right-hand view their choice calls for, and "−"/"+". Every edit goes
// straight into the row's ZTSmartListEntryController.
class ZTSmartListRow : public QWidget {
    Q_OBJECT
public:
    ZTSmartListRow(ZTSmartListEntryController &entry, QWidget *parent = nullptr);

    ZTSmartListEntryController &entry() const { return m_entry; }
    QComboBox *lhsPopUp() const { return m_lhs; }
    QComboBox *operatorPopUp() const { return m_operator; }
    QToolButton *removeButton() const { return m_remove; }
    QToolButton *addButton() const { return m_add; }
    // The view shown on the right (0 none, then single text, range, in the
    // last, single rating, range rating: ZTSmartListEntryController::RhsView).
    int rhsViewIndex() const;
    QLineEdit *valueField() const { return m_value; }
    QLineEdit *fromField() const { return m_from; }
    QLineEdit *toField() const { return m_to; }
    QLineEdit *numberField() const { return m_number; }
    QComboBox *periodPopUp() const { return m_period; }
    ZTRatingControl *stars() const { return m_stars; }
    ZTRatingControl *fromStars() const { return m_fromStars; }
    ZTRatingControl *toStars() const { return m_toStars; }

    // Shows the entry's state: pop-ups, the view and its fields.
    void sync();
    // The row's controls in the order Tab visits them, left to right.
    QList<QWidget *> focusChain() const;

Q_SIGNALS:
    void addClicked();
    void removeClicked();

private:
    void fillOperators();
    void showFields();
    void readTexts();

    ZTSmartListEntryController &m_entry;
    QComboBox *m_lhs;
    QComboBox *m_operator;
    QStackedWidget *m_rhs;
    QLineEdit *m_value;
    QLineEdit *m_from;
    QLineEdit *m_to;
    QLineEdit *m_number;
    QComboBox *m_period;
    ZTRatingControl *m_stars;
    ZTRatingControl *m_fromStars;
    ZTRatingControl *m_toStars;
    QToolButton *m_remove;
    QToolButton *m_add;
    bool m_syncing = false;
};
