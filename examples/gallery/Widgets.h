#pragma once

/// \file
/// Functions that set up the widgets of the pages.

#include <QtCore/QString>
#include <QtCore/QStringList>

QT_BEGIN_NAMESPACE
class QAction;
class QFormLayout;
class QLabel;
class QLayout;
class QTableView;
class QTableWidget;
class QTableWidgetItem;
class QToolButton;
class QWidget;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

class StatusLabel;

/// The distance between widgets in pixels.
constexpr int Spacing = 8;

/// Sets the margins of the \a layout of a page to zero, because the window has margins, and sets its spacing.
void SetUpPageLayout(QLayout* layout);

/// Sets up \a table without a grid and with the selection of whole rows.
void SetUpTable(QTableView* table);

/// Sets up \a table like the other overload, with the column \a titles and read-only cells. The last column takes the
/// remaining width.
void SetUpTable(QTableWidget* table, QStringList const& titles);

/// Creates a read-only cell.
QTableWidgetItem* NewCell(QString const& text);

/// Creates a button for \a action that shows only its text.
QToolButton* NewActionButton(QAction* action);

/// Creates a label for an explanation, with word wrap.
QLabel* NewHint(QString const& text);

/// Appends a row with \a title to \a form and returns the label that shows its value.
StatusLabel* AddValueRow(QFormLayout* form, QString const& title);

/// Creates a label for \a buddy with the text \a title, which may contain a mnemonic, and a colon. Also sets \a title
/// without the mnemonic as the accessible name of \a buddy.
QLabel* NewLabelFor(QWidget* buddy, QString const& title);

} // namespace Gallery
} // namespace Zelkor
