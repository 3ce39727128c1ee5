#pragma once

/// \file
/// What the pages' widgets have in common.

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

/// Pixels between widgets.
constexpr int Spacing = 8;

/// The layout of a page: the window has the margins.
void SetUpPageLayout(QLayout* layout);

/// A table of rows that are selected as a whole, without a grid.
void SetUpTable(QTableView* table);

/// The same with \a titles, the last column taking what is left, for reading only.
void SetUpTable(QTableWidget* table, QStringList const& titles);

/// A cell for reading only.
QTableWidgetItem* NewCell(QString const& text);

/// A button for \a action that shows its text.
QToolButton* NewActionButton(QAction* action);

/// A short explanation, in lines as wide as the page.
QLabel* NewHint(QString const& text);

/// Appends a row with \a title to \a form and returns the label of its value.
StatusLabel* AddValueRow(QFormLayout* form, QString const& title);

/// A label "\a title:" for \a buddy, which also becomes its accessible name. The title may hold a mnemonic.
QLabel* NewLabelOf(QWidget* buddy, QString const& title);

} // namespace Gallery
} // namespace Zelkor
