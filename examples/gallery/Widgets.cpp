#include "Widgets.h"

#include "StatusLabel.h"

#include <QtCore/QCoreApplication>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QTableWidget>
#include <QtWidgets/QToolButton>

namespace Zelkor::Gallery
{
namespace
{

struct Text
{
    Q_DECLARE_TR_FUNCTIONS(GalleryWidgets)
};

} // namespace

void SetUpPageLayout(QLayout* layout)
{
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Spacing);
}

void SetUpTable(QTableView* table)
{
    table->setAlternatingRowColors(true);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setShowGrid(false);
    table->setWordWrap(false);
    table->setTabKeyNavigation(false);
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + Spacing);
    table->horizontalHeader()->setHighlightSections(false);
}

void SetUpTable(QTableWidget* table, QStringList const& titles)
{
    SetUpTable(table);
    table->setColumnCount(titles.size());
    table->setHorizontalHeaderLabels(titles);
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table->horizontalHeader()->setStretchLastSection(true);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
}

QTableWidgetItem* NewCell(QString const& text)
{
    auto* const cell = new QTableWidgetItem(text);
    cell->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    return cell;
}

QToolButton* NewActionButton(QAction* action)
{
    auto* const button = new QToolButton;
    button->setDefaultAction(action);
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    return button;
}

QLabel* NewHint(QString const& text)
{
    auto* const hint = new QLabel(text);
    hint->setWordWrap(true);
    return hint;
}

StatusLabel* AddValueRow(QFormLayout* form, QString const& title)
{
    auto* const value = new StatusLabel(title);
    form->addRow(Text::tr("%1:").arg(title), value);
    return value;
}

QLabel* NewLabelFor(QWidget* buddy, QString const& title)
{
    auto* const label = new QLabel(Text::tr("%1:").arg(title));
    label->setBuddy(buddy);
    buddy->setAccessibleName(QString(title).remove(QLatin1Char('&')));
    return label;
}

} // namespace Zelkor::Gallery
