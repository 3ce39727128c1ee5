#pragma once

/// \file
/// Functions that create and set up the widgets of the pages.

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

/// Sets the margins and the spacing of \a layout, which is the top-level layout of a page. The margins are zero,
/// because the window already has margins.
void SetUpPageLayout(QLayout* layout);

/// Sets up \a table without a grid. The user can select only whole rows.
void SetUpTable(QTableView* table);

/// Sets up \a table like the other overload. Also sets the column \a titles, prevents editing of cells and allows the
/// selection of only one row at a time. The last column uses the remaining width of the table.
void SetUpTable(QTableWidget* table, QStringList const& titles);

/// Creates a read-only table cell with the text \a text.
QTableWidgetItem* NewCell(QString const& text);

/// Creates a button for \a action. The button shows the text of the action without an icon.
QToolButton* NewActionButton(QAction* action);

/// Creates a label with word wrap that shows the explanation \a text.
QLabel* NewHint(QString const& text);

/// Appends a row to \a form. The row consists of \a title and a label for a value. Returns the label for the value.
StatusLabel* AddValueRow(QFormLayout* form, QString const& title);

/// Creates a label for \a buddy. The text of the label is \a title and a colon; \a title may contain a mnemonic. Also
/// sets the accessible name of \a buddy to \a title without the mnemonic.
QLabel* NewLabelFor(QWidget* buddy, QString const& title);

} // namespace Gallery
} // namespace Zelkor
